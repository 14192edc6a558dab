// Commands as the library reads them.
#pragma once

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone
#include "vexorapi_functions.h"

namespace vexorapi_php {

/// The command of a call. Returns null and throws an exception of PHP when a parameter is none of
/// the function's or has a value that it does not take. The caller wipes and releases it.
zend_string* MakeCommand(const Function& function, HashTable* parameters);

/// Overwrites the text, which may hold a password, and releases it.
void WipeAndRelease(zend_string* text);

}  // namespace vexorapi_php
