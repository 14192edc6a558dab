// The space on the disks: blocks cut out of free runs and given back.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Sectors in the free blocks of a disk, whoever may have them.
Sectors FreeSectors(const Adapter& adapter, HX_U16 disk);

/// The longest free block of a disk; null when nothing is free.
const Block* LongestFree(const Adapter& adapter, HX_U16 disk);

/// The first free block of a disk with at least so many sectors; null when there is none.
const Block* FirstFree(const Adapter& adapter, HX_U16 disk, Sectors sectors);

/// Whether one block more on the disk is one too many. Free blocks count: a block that leaves
/// something of a free one is one more, and one that takes all of it is not.
bool IsFullOfBlocks(const Adapter& adapter, HX_U16 disk);

/// Whether the disk can have so many blocks more, beside those that running migrations will make
/// when they end.
bool HasRoomFor(const Adapter& adapter, HX_U16 disk, unsigned more);

/// Whether Cut can take these sectors: all of them lie in one free block, and what is left of that
/// is not one block too many.
Status CheckCut(const Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors);

/// Makes a block longer (its next sectors are free) or shorter (they become free).
void Resize(Adapter& adapter, HX_U16 block, Sectors sectors);

/// Cuts `sectors` from sector `start` on out of a free block that holds them all, for a virtual
/// disk's position. Returns the new block, which has the free one's ID; what is left of that has
/// a new one. What the caller found before by pointer is void. Throws std::logic_error when no free
/// block holds the sectors.
Block& Cut(Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors, HX_U16 virtual_disk,
           HX_U8 position);

/// Gives a block's sectors back; free neighbours become one block, with the lowest of their IDs.
/// What the caller found before by pointer is void, also after the next two.
void Release(Adapter& adapter, HX_U16 block);

/// Gives back every block of a virtual disk, targets included.
void ReleaseAll(Adapter& adapter, HX_U16 virtual_disk);

/// Makes the disk's whole usable space one free block, whatever was on it. Which positions the
/// disk served (Home) is left to the caller.
void ResetDisk(Adapter& adapter, HX_U16 disk);

/// The block that serves a virtual disk's position (or, with `target`, is to serve it); null when
/// it has none.
Block* BlockOf(Adapter& adapter, HX_U16 virtual_disk, HX_U8 position, bool target = false);
const Block* BlockOf(const Adapter& adapter, HX_U16 virtual_disk, HX_U8 position,
                     bool target = false);

/// Any block that serves the virtual disk: all have the same size. Null when none is left.
const Block* AnyBlockOf(const Adapter& adapter, HX_U16 virtual_disk);

/// Whether a block of any virtual disk lies on the disk.
bool CarriesBlocks(const Adapter& adapter, HX_U16 disk);

}  // namespace hxsim
