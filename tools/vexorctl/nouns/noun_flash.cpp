// vexorctl flash ...
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "codes/flash.h"
#include "common/address.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/result_tree.h"
#include "nouns/find_object.h"
#include "nouns/flash_progress.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

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
    {hxcodes::Image::kBios, "BIOSVersion", "boot_rom_img_health"},
    {hxcodes::Image::kFirmware, "FirmwareVersion", "firmware_img_health"},
    {hxcodes::Image::kBootLoader, "BootLoaderVersion", "boot_loader_img_health"},
    {hxcodes::Image::kAutoload, "", "autoload_img_health"},
    {hxcodes::Image::kHbaInfo, "", "hba_info_img_health"},
};

const ImageRow& RowOf(const Image& image) { return kImages[image.type - hxcodes::Image::kBios]; }

using enum Kind;
using enum Place;

constexpr Column<Image> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "The address of its adapter"},
     [](const Image& it) { return TextCell(it.adapter.Text()); }},
    {{"image", "IMAGE", kCode, kTable, "Which image it is"},
     [](const Image& it) { return CodeCell(hxcodes::kImageNames, it.type); }},
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
    return Present(invocation, std::move(report), "list");
}

// ---- Changes ----------------------------------------------------------------------------------

constexpr unsigned kWrite = HX_FLASH_WRITE;
constexpr unsigned kRead = HX_FLASH_READ;

// The file's path as the library takes it; it refuses longer ones as a whole.
constexpr std::size_t kMaxPath = 255;

Fields TransferFields(const Address& adapter, unsigned action, const std::string& image,
                      const std::string& path) {
    if (path.size() > kMaxPath) throw UsageError("the path of the file is too long");
    return {{"Actions", std::to_string(action)},
            {"AdapterID", std::to_string(adapter.adapter)},
            {"Type", image},
            {"filepath", path}};
}

std::string InstalledVersion(Controller& controller, const std::string& image) {
    const std::vector<Adapter> adapters = LoadAdapters(controller);
    for (const ImageRow& row : kImages) {
        if (std::to_string(row.type) != image || *row.version == '\0' || adapters.empty()) continue;
        return VersionAt(adapters.front().info, row.version).text;
    }
    return "not told";
}

// What is in the file, as far as it can be told. Throws Failure for one that cannot be sent.
struct FileFacts {
    std::uint64_t bytes = 0;
    std::string version = "not told: only files of BIOS images tell theirs";
};

constexpr std::uint64_t kMostPieces = 65536;

FileFacts LookAtFile(Controller& controller, const std::string& path, const std::string& image) {
    FileFacts facts;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        throw Failure(Exit::kUsage, path + ": " + std::strerror(errno));
    }
    facts.bytes = static_cast<std::uint64_t>(status.st_size);
    if (!S_ISREG(status.st_mode) || facts.bytes == 0 ||
        facts.bytes > kMostPieces * kFlashPieceBytes) {
        throw Failure(Exit::kUsage, path + ": no file of 1 byte to 2 GiB");
    }
    if (access(path.c_str(), R_OK) != 0) {
        throw Failure(Exit::kNotPermitted, path + ": " + std::strerror(errno));
    }
    if (image != std::to_string(hxcodes::Image::kBios)) return facts;
    const Answer file = controller.Ask({"HX_BIOS_Version", {{"filepath", path}}});
    const Value* const info = file.result.Find("BIOSInfo");
    if (info == nullptr || file.exit != Exit::kDone) {
        throw Failure(Exit::kUsage, path + ": is no BIOS image");
    }
    facts.version = VersionAt(*info, "BIOSVersion").text;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> head(std::fopen(path.c_str(), "re"),
                                                               &std::fclose);
    if (!head || std::fgetc(head.get()) != 0x55 || std::fgetc(head.get()) != 0xAA) {
        facts.version += "; but the file does not begin with 55 AA, as BIOS images do";
    }
    return facts;
}

// The file goes piece by piece through the library, which reads it itself. Without a look at the
// file nothing is erased.
Exit UpdateFlash(Invocation& invocation) {
    const std::string* const path = invocation.Get("--file");
    if (path == nullptr) throw UsageError("--file is missing");
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    Controller& controller = invocation.controller();
    const std::string image = CodeOption(invocation, "--image", hxcodes::kImageNames);
    const FileFacts file = LookAtFile(controller, *path, image);
    const std::uint64_t pieces = (file.bytes + kFlashPieceBytes - 1) / kFlashPieceBytes;
    std::vector<Command> commands;
    if (!invocation.Has("--no-erase")) {
        commands.push_back(
            {"HX_Flash_Erase", {{"AdapterID", std::to_string(adapter.adapter)}, {"Page", image}}});
    }
    commands.push_back({"HX_Flash_Option", TransferFields(adapter, kWrite, image, *path)});
    return CarryOut(
        invocation,
        {.what = "Write " + *path + " into the flash of " + adapter.Text() + " as its " +
                 invocation.Get("--image", "") + " image",
         .losses = {"installed version: " + InstalledVersion(controller, image),
                    "version in the file: " + file.version,
                    std::to_string(file.bytes) + " bytes in " + std::to_string(pieces) +
                        (pieces == 1 ? " piece" : " pieces"),
                    invocation.Has("--no-erase") ? "the installed image is not erased before"
                                                 : "the installed image is erased before"},
         .confirm = adapter.Text(),
         .commands = std::move(commands),
         .address = adapter.Text(),
         .size_bytes = {},
         .image_file = *path,
         .image_pieces = pieces});
}

Exit SaveFlash(Invocation& invocation) {
    const std::string* const path = invocation.Get("--file");
    if (path == nullptr) throw UsageError("--file is missing");
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    const std::string image = CodeOption(invocation, "--image", hxcodes::kImageNames);
    return CarryOut(
        invocation,
        {.what = "Save an image of the flash of " + adapter.Text() + " to " + *path,
         .losses = {},
         .confirm = {},
         .commands = {{"HX_Flash_Option", TransferFields(adapter, kRead, image, *path)}},
         .address = adapter.Text(),
         .size_bytes = {},
         .image_file = *path});
}

Exit EraseFlash(Invocation& invocation) {
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    const std::string image = CodeOption(invocation, "--image", hxcodes::kImageNames);
    return CarryOut(
        invocation,
        {.what = "Erase an image in the flash of " + adapter.Text(),
         .losses = {"installed version: " + InstalledVersion(invocation.controller(), image)},
         .confirm = adapter.Text(),
         .commands = {{"HX_Flash_Erase",
                       {{"AdapterID", std::to_string(adapter.adapter)}, {"Page", image}}}},
         .address = adapter.Text(),
         .size_bytes = {}});
}

constexpr std::string_view kImageNames = "bios firmware boot_loader autoload hba_info";
constexpr OptionRow kUpdateOptions[] = {
    {"--image", "IMAGE", "Which image", kImageNames},
    {"--file", "FILE", "The file that holds the new image"},
    {"--no-erase", "", "Do not erase the old one first"},
};
constexpr OptionRow kSaveOptions[] = {
    {"--image", "IMAGE", "Which image", kImageNames},
    {"--file", "FILE", "The file to save it to"},
};
constexpr OptionRow kEraseOptions[] = {{"--image", "IMAGE", "Which image", kImageNames}};

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
     .examples = {"vexorctl flash show bios.rom", "vexorctl flash show bios.rom -o json"},
     .run = ShowFile,
     .columns = FileColumns},
    {.noun = "flash",
     .verb = "update",
     .summary = "Write an image from a file into the flash",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kUpdateOptions,
     .functions = "HX_Flash_Option HX_Flash_Erase HX_BIOS_Version",
     .examples = {"vexorctl flash update a0 --image bios --file bios.rom --dry-run",
                  "vexorctl flash update a0 --image bios --file bios.rom --no-erase --dry-run"},
     .run = UpdateFlash,
     .columns = ChangeColumns,
     .note = "It shows the version in the file beside the installed one and asks for the address "
             "of the adapter. Of BIOS images the file tells the version; of the others only its "
             "size is shown. A terminal shows the progress by piece. Ctrl-C does not end it: half "
             "an image helps nobody.",
     .changes = true},
    {.noun = "flash",
     .verb = "save",
     .summary = "Save an image of the flash to a file",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kSaveOptions,
     .functions = "HX_Flash_Option",
     .examples = {"vexorctl flash save a0 --image bios --file bios.rom",
                  "vexorctl flash save a0 --image bios --file bios.rom --dry-run"},
     .run = SaveFlash,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "flash",
     .verb = "erase",
     .summary = "Erase an image in the flash",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kEraseOptions,
     .functions = "HX_Flash_Erase",
     .examples = {"vexorctl flash erase a0 --image bios --dry-run",
                  "vexorctl flash erase a0 --image autoload --dry-run"},
     .run = EraseFlash,
     .columns = ChangeColumns,
     .note = "It asks for the address of the adapter.",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> FlashCommands() { return kCommands; }

}  // namespace vexorctl
