// The table of the vendor functions: a function by the name that commands call it by.
#pragma once

#include <expat.h>

#include <cstddef>

/// The position in kFunctions of the function called `name`, exactly; kFunctionCount when it is
/// none of them.
std::size_t FindFunction(const char* name);

/// Selects the vendor function called `name`: stores its handlers and its record's size in the
/// XMLElement `userData` and returns 1, or changes nothing and returns 0.
int RA_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char** atts);
