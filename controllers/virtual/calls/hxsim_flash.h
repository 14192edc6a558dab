// The adapters' flash: images that are erased, written and read back in pieces.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Erases an image, which is damaged until another one is written. Refused with Status::kBadAction
/// for a number that is no image type, and with Status::kNoImage when the adapter has no such
/// image.
Status EraseImage(Adapter& adapter, Time now, HX_U8 type);

/// Writes the next piece of an image that has been erased. The last piece triggers the check of the
/// image: a good image becomes healthy, and a good BIOS image sets the adapter's BIOS version.
/// Refused with Status::kNoImage, Status::kNotErased or Status::kBadPiece.
Status WritePiece(Adapter& adapter, Time now, HX_U8 type, const Flash_Data& piece);

/// Fills the piece that piece.PageNum names. Refused with Status::kNoImage, Status::kBadImage
/// (damaged) or Status::kNoPiece.
Status ReadPiece(const Adapter& adapter, HX_U8 type, Flash_Data& piece);

}  // namespace hxsim
