// Preloaded into a program, or among its sources: its disk is full, or its memory runs out.
//
// FAULTS_FULL_DISK=FOLDER      nothing can be written below the folder (ENOSPC)
// FAULTS_ALLOCATION=NUMBER     the allocation of that number fails, counted from 1
// FAULTS_ALLOCATION=NUMBER+    and all that follow it
// FAULTS_COUNT=FILE            the number of allocations is written there at the end
// FAULTS_NO_PROCESS=FILE       while the file is there, no process can be started (EAGAIN)
// FAULTS_CLOCK=FILE            the date is so many seconds ahead as stand there, or behind it
//
// Allocations are counted from the end of the loader's work on: what the program's own static
// objects allocate counts, what the loader allocates does not.
// Programs call either of pwrite and pwrite64; here each is what its name says.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS

#include "support/faults.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <spawn.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

static const char* full_folder;
static const char* count_file;
static const char* no_process_file;
static const char* clock_file;
static bool is_counting;
static bool fails_on;
static unsigned long failing;
static atomic_ulong allocations;

__attribute__((constructor)) static void Begin(void) {
    full_folder = getenv("FAULTS_FULL_DISK");
    count_file = getenv("FAULTS_COUNT");
    no_process_file = getenv("FAULTS_NO_PROCESS");
    clock_file = getenv("FAULTS_CLOCK");
    const char* const number = getenv("FAULTS_ALLOCATION");
    if (number != NULL) {
        char* rest = NULL;
        failing = strtoul(number, &rest, 10);
        fails_on = *rest == '+';
    }
    is_counting = failing != 0 || count_file != NULL;
}

__attribute__((destructor)) static void End(void) {
    is_counting = false;
    if (count_file == NULL) return;
    char text[32];
    const int length = snprintf(text, sizeof text, "%lu\n", atomic_load(&allocations));
    const int file = open(count_file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) return;
    if (length > 0 && write(file, text, (size_t)length) != length) unlink(count_file);
    close(file);
}

void FaultsFailAllocation(unsigned long number, int all_behind) {
    failing = number;
    fails_on = all_behind != 0;
    atomic_store(&allocations, 0);
    is_counting = true;
}

unsigned long FaultsAllocations(void) { return atomic_load(&allocations); }

// ---- Memory ----

// Names of the C library for what stands behind its own malloc: to look them up would allocate.
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

static bool Refused(void) {
    if (!is_counting) return false;
    const unsigned long number = atomic_fetch_add(&allocations, 1) + 1;
    if (failing == 0 || number < failing || (number > failing && !fails_on)) return false;
    errno = ENOMEM;
    return true;
}

void* malloc(size_t size) { return Refused() ? NULL : __libc_malloc(size); }

void* calloc(size_t count, size_t size) { return Refused() ? NULL : __libc_calloc(count, size); }

void* realloc(void* block, size_t size) { return Refused() ? NULL : __libc_realloc(block, size); }

void* aligned_alloc(size_t alignment, size_t size) {
    return Refused() ? NULL : __libc_memalign(alignment, size);
}

// ---- The disk ----

static bool IsFull(int file) {
    if (full_folder == NULL) return false;
    char link[64];
    char path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    const ssize_t length = readlink(link, path, sizeof path);
    const size_t prefix = strlen(full_folder);
    if (length <= 0 || (size_t)length <= prefix || memcmp(path, full_folder, prefix) != 0 ||
        path[prefix] != '/') {
        return false;
    }
    errno = ENOSPC;
    return true;
}

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

ssize_t write(int file, const void* bytes, size_t count) {
    return IsFull(file) ? -1 : NEXT(write)(file, bytes, count);
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
    return IsFull(file) ? -1 : NEXT(pwrite)(file, bytes, count, offset);
}

ssize_t pwrite64(int file, const void* bytes, size_t count, off64_t offset) {
    return IsFull(file) ? -1 : NEXT(pwrite64)(file, bytes, count, offset);
}

int ftruncate(int file, off_t length) { return IsFull(file) ? -1 : NEXT(ftruncate)(file, length); }

int ftruncate64(int file, off64_t length) {
    return IsFull(file) ? -1 : NEXT(ftruncate64)(file, length);
}

int fallocate(int file, int mode, off_t offset, off_t length) {
    return IsFull(file) ? -1 : NEXT(fallocate)(file, mode, offset, length);
}

int fallocate64(int file, int mode, off64_t offset, off64_t length) {
    return IsFull(file) ? -1 : NEXT(fallocate64)(file, mode, offset, length);
}

// ---- Processes ----

int posix_spawn(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const words[],
                char* const environment[]) {
    if (no_process_file != NULL && access(no_process_file, F_OK) == 0) return EAGAIN;
    return NEXT(posix_spawn)(process, path, actions, attributes, words, environment);
}

// ---- The date ----

static long SecondsAhead(void) {
    char text[32] = "";
    if (clock_file == NULL) return 0;
    const int file = open(clock_file, O_RDONLY | O_CLOEXEC);
    if (file < 0) return 0;
    const ssize_t length = read(file, text, sizeof text - 1);
    close(file);
    return length <= 0 ? 0 : strtol(text, NULL, 10);
}

int clock_gettime(clockid_t clock, struct timespec* now) {
    const int result = NEXT(clock_gettime)(clock, now);
    if (result == 0 && clock == CLOCK_REALTIME) now->tv_sec += SecondsAhead();
    return result;
}

time_t time(time_t* now) {
    const time_t moved = NEXT(time)(NULL) + SecondsAhead();
    if (now != NULL) *now = moved;
    return moved;
}
