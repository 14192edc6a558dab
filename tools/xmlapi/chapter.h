// A chapter of the reference, the source of each kind of document.
#pragma once

#include <string>
#include <vector>

#include "describe.h"

struct Chapter {
    std::string title;
    std::vector<FunctionText> functions;
    std::vector<std::string> results;  // of the functions' example commands, in their order
};
