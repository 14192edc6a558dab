// Memory that runs out, for programs that have faults.c among their sources: every allocation of
// the whole process goes through it, those of the libraries, too.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/// From now on the allocation of that number fails, counted from 1, and with `all_behind` those
/// that follow. 0 lets all succeed.
void FaultsFailAllocation(unsigned long number, int all_behind);

/// How many allocations there were since FaultsFailAllocation.
unsigned long FaultsAllocations(void);

#ifdef __cplusplus
}
#endif
