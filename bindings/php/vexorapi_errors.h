// The exceptions of the extension.
#pragma once

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone

namespace vexorapi_php {

/// The classes below Vexorapi\Exception.
struct ExceptionClasses {
    zend_class_entry* base;
    zend_class_entry* unknown_function;
    zend_class_entry* parameter;
    zend_class_entry* unknown_parameter;
    zend_class_entry* declined;
    zend_class_entry* does_not_fit;
    zend_class_entry* unreadable;
    zend_class_entry* refused;
    zend_class_entry* logon_failed;
    zend_class_entry* store_unreadable;
};

/// Set by RegisterExceptions.
const ExceptionClasses& Exceptions();
void RegisterExceptions();

void ThrowUnknownFunction(zend_string* function);
/// `parameters` are the names that there are.
void ThrowUnknownParameter(const char* function, zend_string* parameter, const char* const* names,
                           std::size_t count);
void ThrowRefused(const char* function, zend_long code, const char* name, const char* sentence);
void ThrowLogonFailed(zend_long code);

}  // namespace vexorapi_php
