// The adapters' flash: images that are erased, written and read back in pieces.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Erases an image; it is damaged until another one has been written. Refused with
/// Status::kBadAction for a type that is none, and with Status::kNoImage when the adapter has no
/// such image.
Status EraseImage(Adapter& adapter, Time now, HX_U8 type);

/// Writes the next piece of an image that has been erased. With the last piece the image is judged:
/// a good one is healthy, and an adapter's BIOS version is then that of its image. Refused with
/// Status::kNoImage, Status::kNotErased or Status::kBadPiece.
Status WritePiece(Adapter& adapter, Time now, HX_U8 type, const Flash_Data& piece);

/// Fills the piece that piece.PageNum names. Refused with Status::kNoImage, Status::kBadImage
/// (damaged) or Status::kNoPiece.
Status ReadPiece(const Adapter& adapter, HX_U8 type, Flash_Data& piece);

}  // namespace hxsim
