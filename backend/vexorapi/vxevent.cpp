// The event store's state, which lives for the process, and its semaphore.
#include "vxevent.h"

#include <semaphore.h>

namespace {

// Process-shared and five wide, though it lies in each process's own data: it orders neither
// processes nor threads. A stopped service must never block the front end.
constinit sem_t sem{};
constexpr unsigned kSemaphoreValue = 5;

}  // namespace

void VX_EvInit() { static_cast<void>(sem_init(&sem, 1, kSemaphoreValue)); }

void VX_EvShutdown() { static_cast<void>(sem_destroy(&sem)); }
