// The tables of the PHP extension.
#pragma once

#include <string>
#include <vector>

#include "chapter.h"

/// The whole of bindings/php/vexorapi_functions.cpp.
std::string PhpFunctions(const std::vector<Chapter>& chapters);
