// The sources of the Python package that the rows decide.
#pragma once

#include <string>
#include <vector>

#include "chapter.h"

struct Python {
    std::string records;    // bindings/python/vexorapi/records.py
    std::string functions;  // bindings/python/vexorapi/functions.py
};
Python PythonSources(const std::vector<Chapter>& chapters);
