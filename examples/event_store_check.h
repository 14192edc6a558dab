/* Tells, before an event leaves a controller, whether the event store can take it. */
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Looks at the store's folder and both files, and at the room that `events` more events need. What
 *  the library will find closed is found here: a file or link that it refuses to write, too.
 *
 *  Returns 1 when the store can be written. Otherwise 0, and the `size` bytes at `complaint` name
 *  the path and the system's reason, without a line end. Both files are left as they are; space
 *  that has been reserved for the events stays reserved. */
int EventStoreTakes(uint32_t events, char* complaint, size_t size);

#ifdef __cplusplus
}
#endif
