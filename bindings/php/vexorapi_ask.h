// Calls with names and values instead of XML.
#pragma once

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone
#include "vexorapi_functions.h"

namespace vexorapi_php {

/// The function of that name; null, with an exception of PHP, when there is none.
const Function* FindFunction(zend_string* name);

/// A function that the extension itself needs.
const Function& KnownFunction(const char* name);

/// Calls the function and makes an array of its result. Returns false, with an exception of PHP and
/// nothing in `array`, when the call was refused or its result cannot be read.
bool Ask(const Function& function, HashTable* parameters, zval* array);

}  // namespace vexorapi_php
