// Vexorapi\Events: the events of the store, one after the other.
#pragma once

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone

namespace vexorapi_php {

void RegisterEvents();

/// Makes an iterator over the stored events from that number on.
void MakeEvents(zval* object, zend_long from);

}  // namespace vexorapi_php
