// The event store: its life in the process.
#pragma once

#include "hxraid.h"

/// Zeroes the store's state and creates its semaphore.
void VX_EvInit();

/// Destroys the semaphore.
void VX_EvShutdown();
