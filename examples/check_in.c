/* Moves the controllers' queued events into the event store, as the event service does.
 *
 * usage: check_in [ADAPTERS]      adapters to ask, 1 to 4; 4 without it
 */
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <vexorapi.h>

int main(int argc, char** argv) {
    const long adapters = argc > 1 ? strtol(argv[1], NULL, 10) : 4;
    if (argc > 2 || adapters < 1 || adapters > 4) {
        fprintf(stderr, "usage: check_in [ADAPTERS]   (1 to 4)\n");
        return 2;
    }
    uint32_t first = 0, before = 0, after = 0;
    vexorApiInit();
    VX_EvGetInfo(&first, &before);
    VX_EvFile_CheckIn((uint8_t)adapters);
    VX_EvGetInfo(&first, &after);
    vexorApiShutdown();
    printf("%u events stored, %u in the store\n", (unsigned)(after - before), (unsigned)after);
    return 0;
}
