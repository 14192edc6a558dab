// vexorctl flash ...
#include <utility>

#include "command.h"
#include "failure.h"
#include "hxraid_codes.h"
#include "objects.h"
#include "output.h"
#include "target.h"

namespace {

struct Image {
    Address adapter;
    unsigned type;
    const Value* info;
};

// What an adapter's record says of each image; not of every one does it tell a version.
struct ImageRow {
    unsigned type;
    const char* version;
    const char* health;
};
constexpr ImageRow kImages[] = {
    {HXSIM_IMAGE_BIOS, "BIOSVersion", "boot_rom_img_health"},
    {HXSIM_IMAGE_FIRMWARE, "FirmwareVersion", "firmware_img_health"},
    {HXSIM_IMAGE_BOOT_LOADER, "BootLoaderVersion", "boot_loader_img_health"},
    {HXSIM_IMAGE_AUTOLOAD, "", "autoload_img_health"},
    {HXSIM_IMAGE_HBA_INFO, "", "hba_info_img_health"},
};

const ImageRow& RowOf(const Image& image) { return kImages[image.type - HXSIM_IMAGE_BIOS]; }

using enum Kind;
using enum Place;

constexpr Column<Image> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "The address of its adapter"},
     [](const Image& it) { return TextCell(it.adapter.Text()); }},
    {{"image", "IMAGE", kCode, kTable, "Which image it is"},
     [](const Image& it) { return CodeCell(kHxsimImageNames, it.type); }},
    {{"version", "VERSION", kText, kTable, "Its version, where the adapter tells it"},
     [](const Image& it) {
         return *RowOf(it).version == '\0' ? Unknown() : VersionAt(*it.info, RowOf(it).version);
     }},
    {{"healthy", "HEALTHY", kBool, kTable, "Whether it is whole"},
     [](const Image& it) { return NumberAt(*it.info, RowOf(it).health); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListImages(Invocation& invocation) {
    SelectAdapters(invocation);
    const std::vector<Adapter> adapters = LoadAdapters(invocation.controller());
    std::vector<Image> images;
    for (const Adapter& adapter : adapters) {
        for (const ImageRow& row : kImages) {
            images.push_back({adapter.address, row.type, &adapter.info});
        }
    }
    Report report;
    Tabulate(report, kColumns, images);
    return Show(invocation, std::move(report), "table");
}

// ---- show -------------------------------------------------------------------------------------

struct ImageFile {
    std::string path;
    Value info;
};

constexpr Column<ImageFile> kFileColumns[] = {
    {{"file", "FILE", kText, kTable, "The file"},
     [](const ImageFile& it) { return TextCell(it.path); }},
    {{"version", "VERSION", kText, kTable, "The version of the image in it"},
     [](const ImageFile& it) { return VersionAt(it.info, "BIOSVersion"); }},
    {{"vendor_id", "VENDOR", kText, kTable, "The vendor it was made for, hexadecimal"},
     [](const ImageFile& it) { return TextAt(it.info, "VenID"); }},
    {{"device_id", "DEVICE", kText, kTable, "The device it was made for, hexadecimal"},
     [](const ImageFile& it) { return TextAt(it.info, "DevID"); }},
};

std::vector<ColumnInfo> FileColumns() { return InfoOf(kFileColumns); }

Exit ShowFile(Invocation& invocation) {
    const std::string& path = invocation.targets().front();
    const Answer answer = invocation.controller().Ask({"HX_BIOS_Version", {{"filepath", path}}});
    if (answer.exit != Exit::kDone) {
        throw Failure(answer.exit == Exit::kRefused ? Exit::kUsage : answer.exit,
                      path + ": cannot be read, or is no image");
    }
    std::vector<ImageFile> files(1, {path, {}});
    if (const Value* const info = answer.result.Find("BIOSInfo")) files.front().info = *info;
    Report report;
    Tabulate(report, kFileColumns, files);
    report.command = invocation.row().Name();
    const Style style = StyleOf(invocation, "list");
    Arrange(invocation, style, report);
    Print(report, style);
    return Exit::kDone;
}

// FLASH-COMMANDS

constexpr CommandRow kCommands[] = {
    {.noun = "flash",
     .verb = "list",
     .summary = "List the images in the adapters' flash",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = "HX_Adapter_GetInfo",
     .examples = {"vexorctl flash list", "vexorctl flash list a0 -o json"},
     .run = ListImages,
     .columns = Columns},
    {.noun = "flash",
     .verb = "show",
     .summary = "Show the version of the BIOS image in a file",
     .target = Target::kFile,
     .arity = Arity::kOne,
     .target_name = "FILE",
     .functions = "HX_BIOS_Version",
     .examples = {"vexorctl flash show examples/root/bios.rom",
                  "vexorctl flash show examples/root/bios.rom -o json"},
     .run = ShowFile,
     .columns = FileColumns},
    // FLASH-ROWS
};

}  // namespace

std::span<const CommandRow> FlashCommands() { return kCommands; }
