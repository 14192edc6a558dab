#include "hostile_controller.h"

#include <algorithm>
#include <string>
#include <type_traits>

#include "hxfake.h"

namespace {

// The bytes to answer from, and where in them the next answer begins.
struct Source {
    const std::uint8_t* bytes;
    std::size_t size;
    std::size_t at;
};
Source source{};

std::uint8_t NextByte() {
    if (source.size == 0) return 0;
    if (source.at == source.size) source.at = 0;
    return source.bytes[source.at++];
}

std::uint16_t NextU16() {
    const std::uint8_t low = NextByte();
    return static_cast<std::uint16_t>(low | NextByte() << 8);
}

template <class T>
void FillRecords(T* records, std::size_t count) {
    auto* const bytes = reinterpret_cast<std::uint8_t*>(records);
    for (std::size_t i = 0; i < count * sizeof(T); ++i) bytes[i] = NextByte();
}

template <class T>
concept Page = requires(T request) {
    request.header.numRequested;
};

template <class Request>
void FillPage(Request& request) {
    auto& [header, items] = request;
    const std::size_t filled = std::min<std::size_t>(NextByte(), header.numRequested);
    FillRecords(items, filled);
    // Mostly the truth, so that lists go on to their end; else any number.
    const std::uint8_t choice = NextByte();
    header.numReturned = choice < 200 ? static_cast<HX_U16>(filled) : NextU16();
    header.nextStartingIndex = choice % 2 == 0 ? HX_LIST_COMPLETE : NextU16();
}

// Writes to one parameter. `room` is what the call's other parameters say of an array's size.
template <class T>
void FillParameter(T parameter, std::size_t room) {
    using Pointee = std::remove_pointer_t<T>;
    if constexpr (!std::is_pointer_v<T> || std::is_const_v<Pointee>) {
        return;
    } else if constexpr (Page<Pointee>) {
        FillPage(*parameter);
    } else if constexpr (std::is_same_v<Pointee, HX_U8>) {
        *parameter = NextByte();  // a count, whatever was filled
    } else if constexpr (std::is_same_v<Pointee, HX_U32>) {
        *parameter = NextU16() * 16u;  // a table's length; its caller allocates it
    } else if constexpr (std::is_same_v<Pointee, RCT_Record> || std::is_same_v<Pointee, Event>) {
        FillRecords(parameter, std::min<std::size_t>(NextByte(), room));
    } else if constexpr (std::is_same_v<Pointee, Flash_Data>) {
        parameter->DataLength = NextU16() * 3u;  // also longer than a piece is
        parameter->isLastPage = NextByte();
    } else {
        FillRecords(parameter, std::min<std::size_t>(NextByte(), hxfake::kRoomUnasked<Pointee>));
    }
}

template <class... A>
std::size_t RoomOf(A... parameters) {
    std::size_t room = 0;
    const auto look = [&room](auto parameter) {
        if constexpr (!std::is_pointer_v<decltype(parameter)>) room = parameter;
    };
    (look(parameters), ...);  // the last number of the call is the array's size
    return room;
}

HX_U8 NextStatus() {
    const std::uint8_t byte = NextByte();
    return byte < 192 ? HX_U8{0} : byte;
}

template <auto function>
void Script() {
    hxfake::On<function>().Always([](auto... parameters) -> HX_U8 {
        (FillParameter(parameters, RoomOf(parameters...)), ...);
        return NextStatus();
    });
}

const char* Version() {
    static std::string version;
    const std::size_t length = NextU16() % 400;
    if (length == 399) return nullptr;
    version.clear();
    for (std::size_t i = 0; i < length; ++i) version += static_cast<char>(NextByte());
    return version.c_str();
}

void ScriptAll() {
    hxfake::NoteCalls(false);
    hxfake::On<&HX_API_Version>().Always(Version);
    hxfake::On<&HX_Adapter_GetCount>().Always([] { return NextByte(); });
    Script<&HX_Adapter_GetInfo>();
    Script<&HX_Adapter_GetConfig>();
    Script<&HX_Adapter_SetConfig>();
    Script<&HX_ENC_GetEnclosureInfo>();
    Script<&HX_ENC_GetElementInfo>();
    Script<&HX_ENC_GetElementConfig>();
    Script<&HX_PD_GetHDInfo>();
    Script<&HX_PD_GetHDInfo_Ext>();
    Script<&HX_PD_GetExpanderInfo>();
    Script<&HX_PD_GetPMInfo>();
    Script<&HX_PD_GetFreeSpaceInfo>();
    Script<&HX_PD_GetConfig>();
    Script<&HX_PD_GetBGAStatus>();
    Script<&HX_PD_GetSmartStatus>();
    Script<&HX_PD_GetHDRaidStatus>();
    Script<&HX_PD_RCT_GetCount>();
    Script<&HX_PD_GetRCT>();
    Script<&HX_PD_GetMBRInfo>();
    Script<&HX_DiskHasOS>();
    Script<&HX_BLK_GetInfo>();
    Script<&HX_BLK_GetHDBlock>();
    Script<&HX_LD_GetInfo>();
    Script<&HX_LD_GetTargetLDInfo>();
    Script<&HX_LD_GetStatus>();
    Script<&HX_LD_GetConfig>();
    Script<&HX_LD_Create>();
    Script<&HX_LD_GetMaxSize>();
    Script<&HX_LD_GetMigratedLdSize>();
    Script<&HX_DG_GetInfo>();
    Script<&HX_DG_GetConfig>();
    Script<&HX_CreateOrModify_DG>();
    Script<&HX_CreateOrModify_VD>();
    Script<&HX_BBU_GetInfo>();
    Script<&HX_Flash_Bin>();
    Script<&HX_EVT_GetEvent>();
}

}  // namespace

void AnswerFrom(const std::uint8_t* bytes, std::size_t size) {
    static const bool scripted = (ScriptAll(), true);
    (void)scripted;
    source = {bytes, size, 0};
}
