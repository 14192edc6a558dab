/* A stand-in for libvexorapi.so.1, found first. It fails in the ways that the real library cannot
 * be made to fail from outside: STANDIN in the environment names the way. Otherwise it answers
 * with what stands in the folder STANDIN_RESULTS:
 *
 *   A/FUNCTION       the whole result of the function for adapter A (a0, a1, ...)
 *   FUNCTION         the same for every adapter
 *   A/FUNCTION.N     item N of a paged list, which ends before the first number without a file
 *
 * and a function without such a file with STANDIN_RESULT, which is the answer to every command
 * where there is no folder. The file named by STANDIN_LOG gets one line for each call. */
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

struct Result {
    char* at;
    char* end;
};

static void PutText(struct Result* result, const char* text) {
    const size_t length = strlen(text);
    if (length >= (size_t)(result->end - result->at)) return;
    memcpy(result->at, text, length + 1);
    result->at += length;
}

/* Appends the file's bytes; 0 when there is no such file. */
static int PutFile(struct Result* result, const char* path) {
    FILE* const file = fopen(path, "r");
    if (file == NULL) return 0;
    result->at += fread(result->at, 1, (size_t)(result->end - result->at) - 1, file);
    *result->at = '\0';
    fclose(file);
    return 1;
}

static unsigned NumberOf(const char* command, const char* tag) {
    const char* const at = strstr(command, tag);
    return at == NULL ? 0 : (unsigned)strtoul(at + strlen(tag), NULL, 10);
}

static int Exists(const char* path) {
    FILE* const file = fopen(path, "r");
    if (file != NULL) fclose(file);
    return file != NULL;
}

/* A page of the items beside `path`; 0 when there is not even a first one. */
static int PutPage(struct Result* result, const char* function, const char* path,
                   const char* command) {
    char item[512];
    const unsigned first = NumberOf(command, "<startingIndexOrId>");
    const unsigned end = first + NumberOf(command, "<numRequested>");
    snprintf(item, sizeof item, "%.400s.0", path);
    if (!Exists(item)) return 0;
    snprintf(item, sizeof item, "%.400s.%u", path, end);
    char head[512];
    snprintf(head, sizeof head,
             "<%.99s type=\"function\"><RetVal type=\"U8\">0</RetVal><RequestHeader>"
             "<nextStartingIndex>%u</nextStartingIndex></RequestHeader>",
             function, Exists(item) ? end : 65535);
    PutText(result, head);
    for (unsigned number = first; number < end; ++number) {
        snprintf(item, sizeof item, "%.400s.%u", path, number);
        if (!PutFile(result, item)) break;
    }
    snprintf(head, sizeof head, "</%.99s>", function);
    PutText(result, head);
    return 1;
}

static int PutScripted(struct Result* result, const char* command) {
    const char* const folder = getenv("STANDIN_RESULTS");
    if (folder == NULL) return 0;
    char function[100] = "";
    sscanf(command, "<%99[A-Za-z0-9_]", function);
    char path[400];
    snprintf(path, sizeof path, "%.200s/a%u/%.99s", folder, NumberOf(command, "<AdapterID>"),
             function);
    if (PutFile(result, path) || PutPage(result, function, path, command)) return 1;
    snprintf(path, sizeof path, "%.200s/%.99s", folder, function);
    return PutFile(result, path);
}

int vexorApi(const char* XMLCmd, char* XMLRet, uint32_t XMLRetLen) {
    Note("vexorApi", XMLCmd, XMLRetLen);
    if (Way("no memory")) return 0;
    struct Result result = {XMLRet, XMLRet + XMLRetLen};
    *XMLRet = '\0';
    if (Way("largest result")) {
        memset(XMLRet, ' ', XMLRetLen - 1);
        memcpy(XMLRet, "<Large>", 7);
        memcpy(XMLRet + XMLRetLen - 1 - 8, "</Large>", 8);
        XMLRet[XMLRetLen - 1] = '\0';
    } else if (!PutScripted(&result, XMLCmd)) {
        const char* const text = getenv("STANDIN_RESULT");
        snprintf(XMLRet, XMLRetLen, "%s", text == NULL ? "" : text);
    }
    return 1;
}
