/* Makes one call to the system fail: the k-th of its kind, alone or with all that follow.
 *
 * Linked into a test program it takes the place of the C library's functions for the program and
 * for every library that the program loads. */
#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

enum FaultKind {
    kFaultNothing,
    kFaultAllocation, /* malloc, calloc, realloc, and with them operator new */
    kFaultOpen,
    kFaultRead,
    kFaultWrite,
    kFaultSync,
    kFaultTruncate,
    kFaultRename,
    kFaultMap,
    kFaultLock, /* fcntl */
    kFaultTime,
    kFaultUser, /* the user databases and crypt_r */
    kFaultKinds
};

/* Errors beside the system's numbers: a read or write of half the bytes; the end of the process
 * by SIGKILL, before the call or within a write. */
enum { kFaultShort = 10000, kFaultKill = 10001 };

/* From now on call number `at` (from 1; 0: none) of that kind fails with `error`, and with `always`
 * all that follow. */
void FaultArm(int kind, long at, int always, int error);

/* The write in which the process is killed has moved so many bytes. */
void FaultSetCut(size_t bytes);

/* Everything succeeds again. Returns how many calls of the kind there were since FaultArm. */
long FaultDisarm(void);

/* From now on the real time is that much later than the machine's. */
void FaultSetClockAhead(long seconds);

/* Bytes of the heap that are taken. */
long FaultLiveBytes(void);

#ifdef __cplusplus
}
#endif
