// The event store: collects the controllers' events in a file that survives restarts, counts
// changes by class, and answers queries.
//
// Each function runs between a wait and a post on the event semaphore, except
// VX_EvGetChangeCounters. No file is open between them. VX_EvFile_CheckIn and VX_EvGetInfo stand in
// vexorapi.h. Without a semaphore (before VX_EvInit, after VX_EvShutdown) they behave as after a
// failed wait.
#pragma once

#include "hxraid.h"
#include "vexorapi.h"  // IWYU pragma: export (the two functions of the store that it declares)
#include "vxevent_file.h"

inline constexpr HX_U32 kNewestEvents = 0xFFFFFFFF;  // a first sequence number: the newest events

/// Zeroes the store's state and creates its semaphore.
void VX_EvInit();

/// Destroys the semaphore.
void VX_EvShutdown();

/// Counts `count` events: each raises Whatever_Change and the counter of its class.
void VX_EvFilter(const Event* events, HX_U32 count);

/// Reads a page of the store into `ev`, which has room for `*n` records on entry.
///
/// In: `*n` events from store sequence number `*s` upward, or, with kNewestEvents in `*s`, the `*n`
/// up to `*e`. Out: the number read, the first and the last of them. A start below the oldest event
/// becomes the oldest; past the newest, `*n` becomes 0 and `*e` stays. For 0 events, or an empty
/// store, it reads none and sets the three to the extent: number, oldest, newest.
/// Returns 0 always; an unreadable store leaves the three unchanged and gives `*n` events of zeros.
HX_U8 VX_EvGet(HX_U32* n, HX_U32* s, HX_U32* e, Event* ev);

/// VX_EvGet for a caller who needs only the first `room` events: no more are read into `ev`. The
/// numbers are those of VX_EvGet.
HX_U8 VX_EvGetFirst(HX_U32* n, HX_U32* s, HX_U32* e, Event* ev, HX_U32 room);

/// Empties the event file, which starts again at sequence number 0 and keeps its counters. A
/// missing or foreign file is left alone, and so is the sequence-number file: the next check-in
/// takes counters and numbers from disk again.
void VX_EvFile_Reset();

/// Copies the stored change counters, or those in memory when the file cannot be opened. Returns 1.
HX_U8 VX_EvGetChangeCounters(VX_HX_ChangeCounters* cc);
