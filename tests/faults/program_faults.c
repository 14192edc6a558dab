/* Preloaded into a program: its call to the system of that number fails. Counting begins when the
 * loader has done its work.
 *
 * FAULT_KIND=NUMBER    which calls: enum FaultKind
 * FAULT_AT=NUMBER      the call that fails, from 1; 0: none does
 * FAULT_ALWAYS=1       and all that follow it
 * FAULT_ERROR=NUMBER   errno, kFaultShort or kFaultKill
 * FAULT_CUT=NUMBER     of kFaultKill: the bytes that the write has moved
 * FAULT_COUNT=FILE     the number of calls is written there at the end */
#define _GNU_SOURCE
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "fault_injector.h"

static const char* count_file;

static long Number(const char* name) {
    const char* const text = getenv(name);
    return text == NULL ? 0 : strtol(text, NULL, 10);
}

__attribute__((constructor)) static void Begin(void) {
    count_file = getenv("FAULT_COUNT");
    FaultSetCut((size_t)Number("FAULT_CUT"));
    FaultArm((int)Number("FAULT_KIND"), Number("FAULT_AT"), (int)Number("FAULT_ALWAYS"),
             (int)Number("FAULT_ERROR"));
}

__attribute__((destructor)) static void End(void) {
    const long calls = FaultDisarm();
    if (count_file == NULL) return;
    const int file = open(count_file, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) return;
    if (dprintf(file, "%ld\n", calls) < 0) unlink(count_file);
    close(file);
}
