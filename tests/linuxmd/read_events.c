/* Takes events from the controller library that is loaded, as the event service does, and prints a
 * line for each: its number, class, code, device and first parameter.
 *
 * usage: read_events [MAX]      at most MAX for each call, 50 without it; with 0 it looks for
 * changes and leaves the events in the queue
 */
#include <hxraid.h>
#include <stdio.h>
#include <stdlib.h>

enum { kMost = 50 };

int main(int argc, char** argv) {
    static Event events[kMost];
    const long max = argc > 1 ? strtol(argv[1], NULL, 10) : kMost;
    if (argc > 2 || max < 0 || max > kMost || HX_API_Initialize() != HX_SUCCESS) return 2;
    HX_U8 count = 0;
    HX_U8 status = HX_SUCCESS;
    do {
        count = 0;
        status = HX_EVT_GetEvent(0, (HX_U8)max, &count, events);
        for (HX_U8 i = 0; i < count; ++i) {
            printf("%u %u,%u %u %u\n", (unsigned)events[i].SequenceNo, (unsigned)events[i].Class,
                   (unsigned)events[i].Code, (unsigned)events[i].DeviceID,
                   (unsigned)events[i].Params[0]);
        }
    } while (status == HX_SUCCESS && count != 0);
    HX_API_Finalize();
    if (status != HX_SUCCESS) fprintf(stderr, "read_events: status %u\n", (unsigned)status);
    return status == HX_SUCCESS ? 0 : 1;
}
