/* Moves the controllers' queued events into the event store, as the event service does.
 *
 * usage: check_in [ADAPTERS]      adapters to ask, 1 to 4; 4 without it
 *
 * Ends with 0, with 2 for wrong usage, and with 3 when the event store cannot be written: what a
 * check-in takes from a controller and cannot store is lost, so that nothing is taken then.
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <vexorapi.h>

#include "event_store_check.h"

enum { kStored = 0, kUsage = 2, kNoStore = 3 };

/* What one round of a check-in takes from an adapter at most. */
enum { kEventsPerCall = 50 };

enum { kComplaintSize = 4096 + 256 }; /* the longest path, and why */

int main(int argc, char** argv) {
    const long adapters = argc > 1 ? strtol(argv[1], NULL, 10) : 4;
    if (argc > 2 || adapters < 1 || adapters > 4) {
        fprintf(stderr, "usage: check_in [ADAPTERS]   (1 to 4)\n");
        return kUsage;
    }
    char complaint[kComplaintSize];
    if (!EventStoreTakes((uint32_t)adapters * kEventsPerCall, complaint, sizeof complaint)) {
        fprintf(stderr, "check_in: %s. No event was taken from a controller.\n", complaint);
        return kNoStore;
    }
    /* A full store gives up an old event for each new one, so its number of events tells nothing
     * of what was stored; the sequence number of the next event does. Both wrap alike. */
    uint32_t oldest = 0, count = 0;
    vexorApiInit();
    VX_EvGetInfo(&oldest, &count);
    const uint32_t next_before = oldest + count;
    VX_EvFile_CheckIn((uint8_t)adapters);
    VX_EvGetInfo(&oldest, &count);
    const uint32_t stored = oldest + count - next_before;
    vexorApiShutdown();
    printf("%u events stored, %u in the store\n", (unsigned)stored, (unsigned)count);
    return kStored;
}
