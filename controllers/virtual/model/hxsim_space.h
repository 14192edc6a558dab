// The space on the disks: allocates blocks from free runs and releases them.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Sectors in the free blocks of a disk, whether or not the disk's role lets anyone use them.
Sectors FreeSectors(const Adapter& adapter, HX_U16 disk);

/// The longest free block of a disk; null when nothing is free.
const Block* LongestFree(const Adapter& adapter, HX_U16 disk);

/// The first free block of a disk with at least so many sectors; null when there is none.
const Block* FirstFree(const Adapter& adapter, HX_U16 disk, Sectors sectors);

/// Whether the disk cannot have one more block. Free blocks count: a new block that leaves part of
/// a free block adds one, a block that uses all of it does not.
bool IsFullOfBlocks(const Adapter& adapter, HX_U16 disk);

/// Whether the disk can have `more` blocks in addition to those that running migrations will create
/// when they end.
bool HasRoomFor(const Adapter& adapter, HX_U16 disk, unsigned more);

/// Whether Cut can allocate these sectors: they lie in one free block, and its remainders do not
/// exceed the disk's limit of blocks.
Status CheckCut(const Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors);

/// Makes a block longer (the sectors behind it must be free) or shorter (its last sectors become
/// free).
void Resize(Adapter& adapter, HX_U16 block, Sectors sectors);

/// Cuts `sectors` from sector `start` on out of a free block for a virtual disk's position. Returns
/// the new block, which takes over the free block's ID; the remainders get new IDs. Invalidates
/// pointers to blocks. Throws std::logic_error when no free block holds all the sectors.
Block& Cut(Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors, HX_U16 virtual_disk,
           HX_U8 position);

/// Frees a block; free neighbours become one block, with the lowest of their IDs. This and the next
/// two functions invalidate pointers to blocks.
void Release(Adapter& adapter, HX_U16 block);

/// Frees every block of a virtual disk, targets included.
void ReleaseAll(Adapter& adapter, HX_U16 virtual_disk);

/// Drops all blocks of the disk and makes its usable space one free block. The caller updates the
/// Home rows.
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
