// Transfers flash images between a file and an adapter, reads the version of a BIOS image, and has
// the file functions for both.
//
// Functions called HX_ behave like the controller library's own: they return its codes, 0 for
// success, and the executor calls them with the fields of their request's record.
#pragma once

#include <cstddef>

#include "hxraid.h"

inline constexpr std::size_t kFilePathSize = 256;  // its NUL included

/// The record of HX_Flash_Option.
struct VX_Flash_Option {
    char filepath[kFilePathSize];
    HX_U32 reserv;
    HX_U8 AdapterID;
    HX_U8 Actions;
    HX_U8 Type;
    HX_U8 RetVal;
};

/// The record of HX_BIOS_Version.
struct VX_BIOS_Version {
    char filepath[kFilePathSize];
    Version_Info_CIM VersionInfo;
    HX_U16 SubVenID;
    HX_U16 SubDevID;
    HX_U32 reserv;
    HX_U8 RetVal;
};

/// Moves a flash image in pieces of 32768 bytes: from the file to the adapter when `Actions` is 15,
/// from the adapter to the file when it is 240; every other action does nothing and returns 0.
///
/// Returns 1 without a path (also one that fills its 256 bytes without a NUL), when the file cannot
/// be opened, when it ends before the piece that is marked last, when it has more than 65536 pieces
/// and when there is no memory; otherwise the controller's code for the last piece.
///
/// Only regular files are opened. When an image is read from the adapter, its file is created if
/// missing and gets the mode 0644; it is overwritten from its start but not truncated, and a failed
/// write is not reported. It is opened by OpenGuarded, so not where another user may have put a
/// link in its place.
HX_U8 HX_Flash_Option(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, HX_U8* filename);

/// Reads version and subsystem IDs from the header of the BIOS image `filename`. Returns 0, or 1
/// with the record untouched when the path is missing or too long, the file cannot be opened or is
/// shorter than 64 bytes.
HX_U8 HX_BIOS_Version(HX_U8* filename, VX_BIOS_Version* BiosVersion);

// Files, by descriptor ---------------------------------------------------------------------------

/// Writes `size` bytes at the file's position. Returns 1 when fewer were written, otherwise 0.
HX_U8 WriteToFile(int file, HX_U8* Data, HX_U32 size);

/// Reads up to `len` bytes at the file's position and sets *ReadBytes to their number: fewer at the
/// end of the file or after an error. Returns 0.
HX_U8 ReadFromFile(int file, HX_U8* buf, HX_U32 len, HX_U32* ReadBytes);

/// The file's length; 0xFFFFFFFF when it has none or 32 bits do not hold it. Keeps the file's
/// position.
HX_U32 GetFileLen(int file);

/// lseek. Returns the new position; 0xFFFFFFFF when it fails or 32 bits do not hold it.
HX_U32 FileSeek(int file, HX_I32 offset, HX_U32 whence);
