/* A stand-in for libvexorapi.so.1, found first. It fails in the ways that the real library cannot
 * be made to fail from outside: STANDIN in the environment names the way. Otherwise it answers
 * every command with STANDIN_RESULT. The file named by STANDIN_LOG gets one line for each call. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "vexorapi.h"

static int Way(const char* name) {
    const char* const way = getenv("STANDIN");
    return way != NULL && strcmp(way, name) == 0;
}

static void Note(const char* call, const char* argument, unsigned long size) {
    const char* const name = getenv("STANDIN_LOG");
    FILE* const log = name == NULL ? NULL : fopen(name, "a");
    if (log == NULL) return;
    fprintf(log, "%s(%s, %lu)\n", call, argument, size);
    fclose(log);
}

int vexorApiInit(void) {
    Note("vexorApiInit", "", 0);
    return Way("no start") ? 0 : 1;
}

int vexorApiShutdown(void) {
    Note("vexorApiShutdown", "", 0);
    return 1;
}

int vexorApi(const char* XMLCmd, char* XMLRet, uint32_t XMLRetLen) {
    Note("vexorApi", XMLCmd, XMLRetLen);
    if (Way("no memory")) return 0;
    if (Way("largest result")) {
        memset(XMLRet, ' ', XMLRetLen - 1);
        memcpy(XMLRet, "<Large>", 7);
        memcpy(XMLRet + XMLRetLen - 1 - 8, "</Large>", 8);
        XMLRet[XMLRetLen - 1] = '\0';
    } else {
        const char* const result = getenv("STANDIN_RESULT");
        snprintf(XMLRet, XMLRetLen, "%s", result == NULL ? "" : result);
    }
    return 1;
}
