// Another libhxraid.so, told from the virtual controller by its version and by what it refuses.
#include "hxfake.h"

namespace {

const struct Script {
    Script() {
        hxfake::On<&HX_API_Version>().Always("another controller library");
        hxfake::On<&HX_Adapter_GetCount>().Always(HX_U8{3});
        hxfake::On<&HX_Adapter_GetInfo>().Always(HX_U8{9});
    }
} script;

}  // namespace
