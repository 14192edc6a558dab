// The reference for those who write front ends.
#pragma once

#include <string>
#include <vector>

#include "chapter.h"

/// The whole of docs/xml-api.md.
std::string Markdown(const std::vector<Chapter>& chapters);
