// The adapters' flash: images that are erased, written and read back in pieces.
#include "calls/hxsim_flash.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "calls/hxsim_session.h"
#include "incidents/hxsim_hostile_answer.h"
#include "model/hxsim_bios_image.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

constexpr std::size_t kRegion = 2 * 1024 * 1024;  // the largest image, in bytes

// ---- The rows ----

template <class Rows>
auto FindImage(Rows& images, HX_U8 type) -> decltype(images.data()) {
    const auto found =
        std::ranges::find_if(images, [&](const FlashImage& image) { return type == image.type; });
    return found == images.end() ? nullptr : &*found;
}

// The member of Adapter_Info that reports the health of a type of image.
struct Health {
    Image type;
    HX_BOOLEAN Adapter_Info::*field;
};
constexpr Health kHealth[] = {
    {Image::kBios, &Adapter_Info::boot_rom_img_health},
    {Image::kFirmware, &Adapter_Info::firmware_img_health},
    {Image::kBootLoader, &Adapter_Info::boot_loader_img_health},
    {Image::kAutoload, &Adapter_Info::autoload_img_health},
    {Image::kHbaInfo, &Adapter_Info::hba_info_img_health},
};

void SetHealth(Adapter& adapter, FlashImage& image, bool healthy) {
    image.healthy = healthy;
    for (const Health& each : kHealth) {
        if (each.type == image.type) adapter.info.*each.field = healthy;
    }
    adapter.info.img_health = std::ranges::all_of(adapter.images, &FlashImage::healthy);
}

bool IsGood(const Adapter& adapter, Image type, std::string_view image) {
    return type != Image::kBios || IsBiosFor(adapter.info, image);
}

void FinishWriting(Adapter& adapter, Time now, FlashImage& image) {
    const bool good = IsGood(adapter, image.type, *image.data);
    const auto size = static_cast<HX_U32>(image.data->size());
    image.erased = false;
    image.written = 0;
    SetHealth(adapter, image, good);
    const HX_U8 type = NumberOf(image.type);
    Queue(adapter, now, EventKind::kFlashWritten, type, {type, size});
    if (!good) {
        Queue(adapter, now, EventKind::kFlashDamaged, type, {type});
    } else if (image.type == Image::kBios) {
        adapter.info.BIOSVersion = VersionOf(*image.data);
    }
}

// A piece's offset follows from its number, so all pieces but the last must have full length.
bool IsNextPiece(const FlashImage& image, const Flash_Data& piece) {
    if (piece.DataLength == 0 || piece.DataLength > HX_FLASH_PIECE_SIZE) return false;
    if (piece.PageNum != image.written) return false;
    if (piece.isLastPage == 0 && piece.DataLength != HX_FLASH_PIECE_SIZE) return false;
    return std::size_t{image.written} * HX_FLASH_PIECE_SIZE + piece.DataLength <= kRegion;
}

Status MovePiece(const Adapter& adapter, HX_U8 type, Flash_Data* piece) {
    if (piece == nullptr) return Status::kNullAddress;
    const Status status = ReadPiece(adapter, type, *piece);
    if (status == Status::kSuccess && IsHostile()) MakeRecordHostile(piece, sizeof *piece);
    return status;
}

Status RefuseAction(const Flash_Data* piece) {
    return piece == nullptr ? Status::kNullAddress : Status::kBadAction;
}

}  // namespace

Status EraseImage(Adapter& adapter, Time now, HX_U8 type) {
    if (!ToCode<Image>(type)) return Status::kBadAction;
    FlashImage* const image = FindImage(adapter.images, type);
    if (image == nullptr) return Status::kNoImage;
    image->erased = true;
    image->written = 0;
    image->data = nullptr;
    SetHealth(adapter, *image, false);
    Queue(adapter, now, EventKind::kFlashErased, type, {type});
    return Status::kSuccess;
}

Status WritePiece(Adapter& adapter, Time now, HX_U8 type, const Flash_Data& piece) {
    FlashImage* const image = FindImage(adapter.images, type);
    if (image == nullptr) return Status::kNoImage;
    if (!image->erased) return Status::kNotErased;
    if (!IsNextPiece(*image, piece)) return Status::kBadPiece;
    std::string data = image->data == nullptr ? std::string() : *image->data;
    data.append(reinterpret_cast<const char*>(piece.Data), piece.DataLength);
    image->data = std::make_shared<const std::string>(std::move(data));
    ++image->written;
    if (piece.isLastPage != 0) FinishWriting(adapter, now, *image);
    return Status::kSuccess;
}

Status ReadPiece(const Adapter& adapter, HX_U8 type, Flash_Data& piece) {
    const FlashImage* const image = FindImage(adapter.images, type);
    if (image == nullptr || image->erased) return Status::kNoImage;
    if (!image->healthy) return Status::kBadImage;
    std::string made;  // the image that a row without data stands for
    if (image->data == nullptr && type == Image::kBios) made = SampleBios(adapter.info);
    const std::string_view data = image->data == nullptr ? made : *image->data;
    if (data.empty()) return Status::kNoImage;
    const std::size_t start = std::size_t{piece.PageNum} * HX_FLASH_PIECE_SIZE;
    if (start >= data.size()) return Status::kNoPiece;
    const std::string_view bytes = data.substr(start, HX_FLASH_PIECE_SIZE);
    std::memcpy(piece.Data, bytes.data(), bytes.size());
    piece.DataLength = static_cast<HX_U32>(bytes.size());
    piece.isLastPage = start + bytes.size() == data.size();
    return Status::kSuccess;
}

}  // namespace hxsim

HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8 Page) {
    return hxsim::ChangeBy(__func__, AdapterID, hxsim::EraseImage, Page);
}

HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8 Actions, HX_U8 Type, Flash_Data* piece) {
    if (Actions == HX_FLASH_WRITE) {
        return hxsim::ChangeWith(__func__, AdapterID, piece, hxsim::WritePiece, Type);
    }
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return Actions == HX_FLASH_READ ? hxsim::MovePiece(adapter, Type, piece)
                                        : hxsim::RefuseAction(piece);
    });
}
