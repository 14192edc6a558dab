// The functions that fail on demand. Each has every name that the C library gives it: for files
// beyond 2 GiB, and for fortified builds.
#undef _FILE_OFFSET_BITS /* every name is defined here by itself */
#undef _TIME_BITS
#define _GNU_SOURCE
#include "fault_injector.h"

#include <crypt.h>
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <grp.h>
#include <malloc.h>
#include <pwd.h>
#include <shadow.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

static int armed_kind;
static int armed_always;
static int armed_error;
static long armed_at;
static long calls;
static long live_bytes;
static long ahead;
static size_t cut;

static void Die(void) { kill(getpid(), SIGKILL); }

// Returns the error to fail with, or 0.
static int Fault(int kind) {
    if (kind != armed_kind) return 0;
    ++calls;
    if (armed_at == 0 || calls < armed_at || (calls > armed_at && !armed_always)) return 0;
    if (armed_error == kFaultKill && kind != kFaultWrite) Die();
    return armed_error;
}

void FaultArm(int kind, long at, int always, int error) {
    armed_at = at;
    armed_always = always;
    armed_error = error;
    calls = 0;
    armed_kind = kind;
}

long FaultDisarm(void) {
    armed_kind = kFaultNothing;
    return calls;
}

void FaultSetCut(size_t bytes) { cut = bytes; }

void FaultSetClockAhead(long seconds) { ahead = seconds; }

long FaultLiveBytes(void) { return live_bytes; }

// The function of that name behind this one. Finding it may allocate, and must not fail.
static void* Next(const char* name) {
    const int kind = armed_kind;
    armed_kind = kFaultNothing;
    void* const function = dlsym(RTLD_NEXT, name);
    armed_kind = kind;
    return function;
}

#define NEXT(type, name)                      \
    static __typeof__(type) next;             \
    if (next == NULL) {                       \
        void* const address = Next(name);     \
        memcpy(&next, &address, sizeof next); \
    }

// ---- Memory ----

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void __libc_free(void* block);

static void Taken(void* block) { live_bytes += (long)malloc_usable_size(block); }
static void Given(void* block) { live_bytes -= (long)malloc_usable_size(block); }

static void* Refuse(int error) {
    errno = error;
    return NULL;
}

void* malloc(size_t size) {
    const int error = Fault(kFaultAllocation);
    if (error != 0) return Refuse(error);
    void* const block = __libc_malloc(size);
    Taken(block);
    return block;
}

void* calloc(size_t count, size_t size) {
    const int error = Fault(kFaultAllocation);
    if (error != 0) return Refuse(error);
    void* const block = __libc_calloc(count, size);
    Taken(block);
    return block;
}

void* realloc(void* block, size_t size) {
    const int error = Fault(kFaultAllocation);
    if (error != 0) return Refuse(error);
    const long before = (long)malloc_usable_size(block);
    void* const moved = __libc_realloc(block, size);
    if (moved == NULL && size != 0) return NULL;
    live_bytes -= before;
    Taken(moved);
    return moved;
}

void free(void* block) {
    Given(block);
    __libc_free(block);
}

// ---- Files ----

#define OPEN(name)                                          \
    int name(const char* path, int flags, ...) {            \
        NEXT(int (*)(const char*, int, ...), #name)         \
        va_list rest;                                       \
        va_start(rest, flags);                              \
        const mode_t mode = (mode_t)va_arg(rest, unsigned); \
        va_end(rest);                                       \
        const int error = Fault(kFaultOpen);                \
        if (error == 0) return next(path, flags, mode);     \
        errno = error;                                      \
        return -1;                                          \
    }
#define OPEN_AT(name)                                           \
    int name(int folder, const char* path, int flags, ...) {    \
        NEXT(int (*)(int, const char*, int, ...), #name)        \
        va_list rest;                                           \
        va_start(rest, flags);                                  \
        const mode_t mode = (mode_t)va_arg(rest, unsigned);     \
        va_end(rest);                                           \
        const int error = Fault(kFaultOpen);                    \
        if (error == 0) return next(folder, path, flags, mode); \
        errno = error;                                          \
        return -1;                                              \
    }
#define OPEN_2(name)                              \
    int name(const char* path, int flags) {       \
        NEXT(int (*)(const char*, int), #name)    \
        const int error = Fault(kFaultOpen);      \
        if (error == 0) return next(path, flags); \
        errno = error;                            \
        return -1;                                \
    }
// Of the bytes of a read or write: half of them, and at least one, or those before a kill.
static size_t Part(size_t size) {
    if (armed_error == kFaultKill) return cut < size ? cut : size;
    return size > 1 ? size / 2 : size;
}
static ssize_t AfterPart(int error, ssize_t moved) {
    if (error == kFaultKill) Die();
    return moved;
}
#define MOVE(name, kind, parameters, arguments, shorter)                                        \
    ssize_t name parameters {                                                                   \
        NEXT(ssize_t(*) parameters, #name)                                                      \
        const int error = Fault(kind);                                                          \
        if (error == 0) return next arguments;                                                  \
        if (error == kFaultShort || error == kFaultKill) return AfterPart(error, next shorter); \
        errno = error;                                                                          \
        return -1;                                                                              \
    }

#undef open
#undef open64
#undef openat
#undef openat64
OPEN(open)
OPEN(open64)
OPEN_AT(openat)
OPEN_AT(openat64)
OPEN_2(__open_2)
OPEN_2(__open64_2)

MOVE(read, kFaultRead, (int file, void* bytes, size_t size), (file, bytes, size),
     (file, bytes, Part(size)))
MOVE(__read_chk, kFaultRead, (int file, void* bytes, size_t size, size_t room),
     (file, bytes, size, room), (file, bytes, Part(size), room))
#undef pread
#undef pwrite
MOVE(pread, kFaultRead, (int file, void* bytes, size_t size, off_t at), (file, bytes, size, at),
     (file, bytes, Part(size), at))
MOVE(pread64, kFaultRead, (int file, void* bytes, size_t size, off64_t at), (file, bytes, size, at),
     (file, bytes, Part(size), at))
MOVE(__pread_chk, kFaultRead, (int file, void* bytes, size_t size, off_t at, size_t room),
     (file, bytes, size, at, room), (file, bytes, Part(size), at, room))
MOVE(__pread64_chk, kFaultRead, (int file, void* bytes, size_t size, off64_t at, size_t room),
     (file, bytes, size, at, room), (file, bytes, Part(size), at, room))
MOVE(write, kFaultWrite, (int file, const void* bytes, size_t size), (file, bytes, size),
     (file, bytes, Part(size)))
MOVE(pwrite, kFaultWrite, (int file, const void* bytes, size_t size, off_t at),
     (file, bytes, size, at), (file, bytes, Part(size), at))
MOVE(pwrite64, kFaultWrite, (int file, const void* bytes, size_t size, off64_t at),
     (file, bytes, size, at), (file, bytes, Part(size), at))

// A short one moves the first part alone.
MOVE(writev, kFaultWrite, (int file, const struct iovec* parts, int count), (file, parts, count),
     (file, parts, count > 1 ? 1 : count))

#define SIMPLE(result, name, kind, parameters, arguments, failed) \
    result name parameters {                                      \
        NEXT(result(*) parameters, #name)                         \
        const int error = Fault(kind);                            \
        if (error == 0) return next arguments;                    \
        errno = error;                                            \
        return failed;                                            \
    }
SIMPLE(int, fsync, kFaultSync, (int file), (file), -1)
SIMPLE(int, fdatasync, kFaultSync, (int file), (file), -1)
SIMPLE(int, ftruncate, kFaultTruncate, (int file, off_t size), (file, size), -1)
SIMPLE(int, ftruncate64, kFaultTruncate, (int file, off64_t size), (file, size), -1)
SIMPLE(int, rename, kFaultRename, (const char* from, const char* to), (from, to), -1)
SIMPLE(int, renameat2, kFaultRename,
       (int from_folder, const char* from, int to_folder, const char* to, unsigned flags),
       (from_folder, from, to_folder, to, flags), -1)

#define MAP(name, offset)                                                                 \
    void* name(void* at, size_t size, int protection, int flags, int file, offset from) { \
        NEXT(void* (*)(void*, size_t, int, int, int, offset), #name)                      \
        const int error = Fault(kFaultMap);                                               \
        if (error == 0) return next(at, size, protection, flags, file, from);             \
        errno = error;                                                                    \
        return (void*)-1;                                                                 \
    }
MAP(mmap, off_t)
MAP(mmap64, off64_t)

#define CONTROL(name)                                         \
    int name(int file, int command, ...) {                    \
        NEXT(int (*)(int, int, ...), #name)                   \
        va_list rest;                                         \
        va_start(rest, command);                              \
        void* const argument = va_arg(rest, void*);           \
        va_end(rest);                                         \
        const int error = Fault(kFaultLock);                  \
        if (error == 0) return next(file, command, argument); \
        errno = error;                                        \
        return -1;                                            \
    }
#undef fcntl
#undef fcntl64
CONTROL(fcntl)
CONTROL(fcntl64)

// openat2 has no function of its own; every other number is passed on.
long syscall(long number, ...) {
    NEXT(long (*)(long, ...), "syscall")
    va_list rest;
    va_start(rest, number);
    long argument[6];
    for (int i = 0; i < 6; ++i) argument[i] = va_arg(rest, long);
    va_end(rest);
    const int error = number == SYS_openat2 ? Fault(kFaultOpen) : 0;
    if (error == 0) {
        return next(number, argument[0], argument[1], argument[2], argument[3], argument[4],
                    argument[5]);
    }
    errno = error;
    return -1;
}

// ---- Time and users ----

time_t time(time_t* at) {
    NEXT(time_t(*)(time_t*), "time")
    const int error = Fault(kFaultTime);
    if (error == 0) return next(at);
    errno = error;
    return (time_t)-1;
}
int clock_gettime(clockid_t clock, struct timespec* now) {
    NEXT(int (*)(clockid_t, struct timespec*), "clock_gettime")
    const int error = Fault(kFaultTime);
    if (error != 0) {
        errno = error;
        return -1;
    }
    const int result = next(clock, now);
    if (result == 0 && clock == CLOCK_REALTIME) now->tv_sec += ahead;
    return result;
}

// The lookups return their error.
#define LOOKUP(name, parameters, arguments)    \
    int name parameters {                      \
        NEXT(int(*) parameters, #name)         \
        const int error = Fault(kFaultUser);   \
        if (error == 0) return next arguments; \
        *found = NULL;                         \
        return error;                          \
    }
#define BY_NAME(entry)                                                          \
    (const char* name, entry* result, char* texts, size_t room, entry** found), \
        (name, result, texts, room, found)
#define BY_FILE(entry)                                                      \
    (FILE * file, entry * result, char* texts, size_t room, entry** found), \
        (file, result, texts, room, found)
#define LOOKUP_EXPANDED(name, ...) LOOKUP(name, __VA_ARGS__)
LOOKUP_EXPANDED(getspnam_r, BY_NAME(struct spwd))
LOOKUP_EXPANDED(getpwnam_r, BY_NAME(struct passwd))
LOOKUP_EXPANDED(getgrnam_r, BY_NAME(struct group))
LOOKUP_EXPANDED(fgetspent_r, BY_FILE(struct spwd))
LOOKUP_EXPANDED(fgetpwent_r, BY_FILE(struct passwd))
LOOKUP_EXPANDED(fgetgrent_r, BY_FILE(struct group))
SIMPLE(char*, crypt_r, kFaultUser, (const char* text, const char* hash, struct crypt_data* data),
       (text, hash, data), NULL)

// ---- Waiting ----

// Whoever waits for trouble to pass waits in vain here, and need not take the time.
int nanosleep(const struct timespec* time, struct timespec* rest) {
    NEXT(int (*)(const struct timespec*, struct timespec*), "nanosleep")
    return armed_kind != kFaultNothing ? 0 : next(time, rest);
}
int usleep(useconds_t time) {
    NEXT(int (*)(useconds_t), "usleep")
    return armed_kind != kFaultNothing ? 0 : next(time);
}
