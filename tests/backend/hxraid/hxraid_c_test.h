/* What hxraid_c_test.c tells the tests about hxraid.h in C. */
#ifndef HXRAID_C_TEST_H
#define HXRAID_C_TEST_H

#include <stddef.h>

#include "hxraid.h"

#ifdef __cplusplus
extern "C" {
#endif

struct hxraid_c_size {
    const char* record;
    size_t expected;
    size_t actual; /* sizeof, as a C compiler has it */
};
extern const struct hxraid_c_size hxraid_c_sizes[];
extern const size_t hxraid_c_size_count;

/* Sets the Voltage of an element, by its own name. */
void hxraid_c_set_voltage(EncElementType_Info* element, HX_U16 voltage);

#ifdef __cplusplus
}
#endif

#endif
