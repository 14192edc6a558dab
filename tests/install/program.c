// Asks the controller how many adapters there are: a program as users of the library write it, in
// C99 and in C++20.
#include <stdio.h>
#include <vexorapi.h>

#if VEXORAPI_VERSION < VEXORAPI_VERSION_OF(1, 2, 0) || VEXORAPI_VERSION_MAJOR != 1
#error "not the version that this was written for"
#endif
// The controllers' interface asks for C11.
#if defined(__cplusplus) || __STDC_VERSION__ >= 201112L
#include <hxraid.h>
#if HXRAID_VERSION < 1
#error "not the controller interface that this was written for"
#endif
#endif

static char result[VEXORAPI_MAX_RESULT];

int main(void) {
    vexorApiInit();
    const int taken = vexorApi("<HX_Adapter_GetCount type=\"function\"/>", result, sizeof result);
    vexorApiShutdown();
    puts(taken ? result : "declined");
    return taken ? 0 : 1;
}
