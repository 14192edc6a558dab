#include "vexorapi_library.h"

#include <pthread.h>

#include <mutex>

#include "vexorapi.h"

namespace vexorapi_php {

namespace {

static_assert(kResultSize == VEXORAPI_MAX_RESULT);

// The library holds no lock, and its state is the whole process's: threads of an interpreter take
// turns. The lock is held across a fork, so that no call is cut in two.
std::mutex turn;
bool is_initialised = false;

void BeforeFork() { turn.lock(); }

void AfterForkInParent() { turn.unlock(); }

// A controller library need not survive a fork: the child's first call initialises it anew. The
// workers of php-fpm and Apache are forked before any call and initialise it for the first time.
void AfterForkInChild() {
    is_initialised = false;
    turn.unlock();
}

}  // namespace

bool PrepareForForks() {
    return pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild) == 0;
}

bool Send(const char* command, char* result) {
    const std::lock_guard lock(turn);
    if (!is_initialised) {
        vexorApiInit();
        is_initialised = true;
    }
    *result = '\0';
    return vexorApi(command, result, kResultSize) == 1;
}

void ShutDown() {
    const std::lock_guard lock(turn);
    if (!is_initialised) return;
    is_initialised = false;
    vexorApiShutdown();
}

}  // namespace vexorapi_php
