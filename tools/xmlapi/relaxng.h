// The schema of every result.
#pragma once

#include <string>
#include <vector>

#include "chapter.h"

/// The whole of docs/vexorapi-results.rng, a RELAX NG schema in XML syntax.
std::string RelaxNg(const std::vector<Chapter>& chapters);
