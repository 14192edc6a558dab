// Results of the library as arrays of PHP.
#pragma once

#include <string_view>

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone
#include "vexorapi_functions.h"

namespace vexorapi_php {

/// Makes the keys of all arrays, once for the process.
void MakeKeys();

/// The status of a result whose function has one; -1 when it has none.
zend_long StatusOf(std::string_view result);

/// Reads the result of the function into a new array. Elements that the function's rows do not have
/// are those of a later library: they are passed over. Returns false and throws an exception of
/// PHP, with nothing in `array`, when an element is missing or the result was cut.
bool ReadResult(const Function& function, std::string_view result, zval* array);

}  // namespace vexorapi_php
