// The module "vexorapi" of PHP, as PHP loads it.
#pragma once

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone

extern "C" {
extern zend_module_entry vexorapi_module_entry;
}
#define phpext_vexorapi_ptr (&vexorapi_module_entry)
