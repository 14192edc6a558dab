// Another libhxraid.so, told from the virtual controller by its version and by what it refuses. Its
// last adapter answers, and takes its time over each piece of an image.
#include <time.h>

#include <vector>

#include "hxfake.h"

namespace {

constexpr HX_U8 kSlowAdapter = 2;

HX_U8 AnswerForOne(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    if (AdapterID != kSlowAdapter) return 9;
    *count = 1;
    *info = {};
    return 0;
}

std::vector<Flash_Data> pieces;  // of the image that was written last

HX_U8 MoveAPieceSlowly(HX_U8, HX_U8 action, HX_U8, Flash_Data* piece) {
    constexpr timespec kPause{0, 150000000};
    nanosleep(&kPause, nullptr);
    if (action == HX_FLASH_WRITE) {
        if (piece->PageNum == 0) pieces.clear();
        pieces.push_back(*piece);
        return 0;
    }
    if (piece->PageNum >= pieces.size()) return 1;
    *piece = pieces[piece->PageNum];
    return 0;
}

const struct Script {
    Script() {
        hxfake::On<&HX_API_Version>().Always("another controller library");
        hxfake::On<&HX_Adapter_GetCount>().Always(HX_U8{3});
        hxfake::On<&HX_Adapter_GetInfo>().Always(AnswerForOne);
        hxfake::On<&HX_Flash_Bin>().Always(MoveAPieceSlowly);
    }
} script;

}  // namespace
