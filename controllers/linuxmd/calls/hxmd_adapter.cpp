// The library's version, and the adapter's description and settings.
#include "calls/hxmd_adapter.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "calls/hxmd_list_page.h"
#include "calls/hxmd_session.h"
#include "codes/identity.h"
#include "codes/status.h"
#include "hxraid.h"
#include "rules/hxmd_identity.h"
#include "sysfs/hxmd_look.h"

namespace hxmd {
namespace {

using hxcodes::NumberOf;
using hxcodes::Status;

// The numbers at the beginning of "6.1.0-42-amd64".
std::array<HX_U32, 3> NumbersOf(std::string_view release) {
    std::array<HX_U32, 3> numbers{};
    const char* at = release.data();
    const char* const end = at + release.size();
    for (HX_U32& number : numbers) {
        const auto [stop, error] = std::from_chars(at, end, number);
        if (error != std::errc() || stop == end || *stop != '.') break;
        at = stop + 1;
    }
    return numbers;
}

// The rates that can be set: rebuild, initialisation, synchronisation, migration and copyback.
constexpr HX_U8 kFeatures = 0x4F;

// Levels 0, 1, 10, 1E, 5 and 6, and stripes of 4 KiB to 4 MiB, a bit for each power of two KiB.
constexpr HX_U16 kOfferedLevels = 0x003F;
constexpr HX_U16 kStripes = 0x1FFC;

Adapter_Info Describe(const Machine& machine) {
    Adapter_Info info{};
    const auto version = NumbersOf(machine.release);
    info.DriverVersion = {version[0], version[1], 0, version[2]};
    info.Features = kFeatures;
    info.LogicalDriverMode = kOfferedLevels;
    info.StripeSizeSupported = kStripes;
    info.MaxParityDisks = 2;
    info.MaxPDPerVD = HX_MAX_HDS;
    info.MaxBlockPerPD = 16;
    info.MaxHD = UINT8_MAX;
    info.MaxHD_Ext = kNoId;
    info.MaxLogicalDrive = kMostArrays;
    SetText(info.SerialNo, SerialNumber());
    // There is no flash, so no image in it is damaged; 0 would tell that they all are.
    info.img_health = info.autoload_img_health = info.boot_loader_img_health = 1;
    info.firmware_img_health = info.boot_rom_img_health = info.hba_info_img_health = 1;
    return info;
}

// The settings of HX_Adapter_SetConfig; one that was never set is 0.
struct Setting {
    const char* name;
    HX_U8 Adapter_Config_V2::*field;
};
constexpr Setting kSettings[] = {
    {"auto_rebuild", &Adapter_Config_V2::AutoRebuildOn},
    {"general_rate", &Adapter_Config_V2::BGARate},
    {"sync_rate", &Adapter_Config_V2::SyncRate},
    {"init_rate", &Adapter_Config_V2::InitRate},
    {"rebuild_rate", &Adapter_Config_V2::RebuildRate},
    {"migration_rate", &Adapter_Config_V2::MigrationRate},
    {"copyback_rate", &Adapter_Config_V2::CopybackRate},
    {"poll_smart", &Adapter_Config_V2::PollSMARTStatus},
};

Adapter_Config_V2 DescribeSettings(const Kept& kept) {
    Adapter_Config_V2 config{};
    for (const Setting& setting : kSettings) {
        const auto row = std::ranges::find(kept.settings, setting.name, &KeptSetting::name);
        if (row != kept.settings.end()) config.*setting.field = static_cast<HX_U8>(row->value);
    }
    return config;
}

template <class Record, class Describe>
HX_U8 Fill(HX_U8 adapter, HX_U8* count, Record* record, Describe describe) {
    return OnView(adapter, [&](const View& view) -> HX_U8 {
        if (count == nullptr || record == nullptr) return NumberOf(Status::kNullAddress);
        *record = describe(view);
        *count = 1;
        return HX_SUCCESS;
    });
}

}  // namespace

std::string SerialNumber() {
    const std::string machine_id = LineOf("/etc", "machine-id");
    if (machine_id.empty()) return "";
    std::uint64_t hash = 0xCBF29CE484222325;  // FNV-1a: 64 bits do not reveal the 128
    for (const char each : machine_id) {
        hash = (hash ^ static_cast<unsigned char>(each)) * 0x100000001B3;
    }
    char text[20];
    std::snprintf(text, sizeof text, "M%016llX", static_cast<unsigned long long>(hash));
    return text;
}

}  // namespace hxmd

HX_U8 HX_API_Initialize() { return hxmd::Open(); }

void HX_API_Finalize() { hxmd::Close(); }

const char* HX_API_Version() {
    static constexpr char kVersion[] = HXMD_VERSION " (linuxmd)";
    static_assert(std::string_view(kVersion).ends_with(hxcodes::kLinuxMd));
    return kVersion;
}

HX_U8 HX_Adapter_GetCount() { return hxmd::AdapterCount(); }

HX_U8 HX_Adapter_GetInfo(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    return hxmd::Fill(AdapterID, count, info,
                      [](const hxmd::View& view) { return hxmd::Describe(view.machine); });
}

HX_U8 HX_Adapter_GetConfig(HX_U8 AdapterID, HX_U8* count, Adapter_Config_V2* config) {
    return hxmd::Fill(AdapterID, count, config,
                      [](const hxmd::View& view) { return hxmd::DescribeSettings(view.kept); });
}

HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8 max, HX_U8* count, Event* events) {
    return hxmd::TakeEvents(AdapterID, max, count, events);
}
