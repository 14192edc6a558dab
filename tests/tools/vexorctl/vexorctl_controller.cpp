// Another libhxraid.so, told from the virtual controller by its version and by what it refuses. Its
// last adapter answers, and takes a piece of an image when STANDIN_PIECES, a pipe, holds a byte for
// it.
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "hxfake.h"

namespace {

constexpr HX_U8 kPatientAdapter = 2;

HX_U8 AnswerForOne(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    if (AdapterID != kPatientAdapter) return 9;
    *count = 1;
    *info = {};
    return 0;
}

std::vector<Flash_Data> pieces;  // of the image that was written last

// Until the test lets the next piece go. An interrupt does not.
void WaitForLeave() {
    static const char* const path = std::getenv("STANDIN_PIECES");
    if (path == nullptr) return;
    static const int pipe = open(path, O_RDONLY | O_CLOEXEC);
    char leave;
    while (read(pipe, &leave, 1) < 0) {
    }
}

HX_U8 MoveAPiece(HX_U8, HX_U8 action, HX_U8, Flash_Data* piece) {
    if (action == HX_FLASH_WRITE) {
        WaitForLeave();
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
        hxfake::On<&HX_Flash_Bin>().Always(MoveAPiece);
    }
} script;

}  // namespace
