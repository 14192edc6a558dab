// vexorctl flash ...
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "codes/named.h"
#include "common/address.h"
#include "common/read_file.h"
#include "common/replace_file.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/bios_image.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "model/result_tree.h"
#include "model/sightings.h"
#include "nouns/find_object.h"
#include "nouns/flash_progress.h"
#include "nouns/flash_transfer.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::flash_noun {

namespace {

using fields::Adapter_Info;
using fields::VX_BIOS_Version;
using hxcodes::CodeTable;

constexpr std::string_view kBios = "bios";

// The fields of an adapter's record about each image, with the image's name in the code table. Some
// images have no field for the version.
struct ImageRow {
    std::string_view name;
    std::optional<RecordField<Adapter_Info, fields::Version_Info>> version;
    NumberField<Adapter_Info> health;
};
constexpr ImageRow kImages[] = {
    {kBios, Adapter_Info::BIOSVersion, Adapter_Info::boot_rom_img_health},
    {"firmware", Adapter_Info::FirmwareVersion, Adapter_Info::firmware_img_health},
    {"boot_loader", Adapter_Info::BootLoaderVersion, Adapter_Info::boot_loader_img_health},
    {"autoload", {}, Adapter_Info::autoload_img_health},
    {"hba_info", {}, Adapter_Info::hba_info_img_health},
};

struct Image {
    const Adapter* adapter;
    const ImageRow* row;
    std::optional<std::uint64_t> code;
};

// Null where the controller's codes are not known.
std::optional<std::uint64_t> CodeOf(Controller& controller, std::string_view image) {
    const auto* const row = hxcodes::FindName(controller.codes().table().images, image);
    return row == nullptr ? std::nullopt : std::optional<std::uint64_t>(row->code);
}

Cell VersionCell(const Image& image) {
    if (!image.row->version) return None();
    return TextCell(VersionText(image.adapter->info[*image.row->version]));
}

using enum Kind;
using enum Place;

constexpr Column<Image> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "The address of its adapter"},
     [](const Image& it) { return TextCell(it.adapter->address.Text()); }},
    {{"image", "IMAGE", kCode, kTable, "Which image it is", &CodeTable::images},
     [](const Image& it) { return NumberCell(it.code); }},
    {{"version", "VERSION", kText, kTable, "Its version, where the adapter tells it"},
     [](const Image& it) { return VersionCell(it); }},
    {{"healthy", "HEALTHY", kBool, kTable, "Whether it is whole"},
     [](const Image& it) { return FieldCell(it.adapter->info, it.row->health); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListImages(Invocation& invocation) {
    SelectAdapters(invocation);
    const std::vector<Adapter> adapters = LoadAdapters(invocation.controller());
    std::vector<Image> images;
    for (const Adapter& adapter : adapters) {
        for (const ImageRow& row : kImages) {
            images.push_back({&adapter, &row, CodeOf(invocation.controller(), row.name)});
        }
    }
    return Show(invocation, Tabulated(invocation, kColumns, images));
}

// ---- show -------------------------------------------------------------------------------------

struct ImageFile {
    std::string path;
    Record<VX_BIOS_Version> info;
};

constexpr Column<ImageFile> kFileColumns[] = {
    {{"file", "FILE", kText, kTable, "The file"},
     [](const ImageFile& it) { return TextCell(it.path); }},
    {{"version", "VERSION", kText, kTable, "The version of the image in it"},
     [](const ImageFile& it) {
         return TextCell(VersionText(it.info[VX_BIOS_Version::BIOSVersion]));
     }},
    {{"vendor_id", "VENDOR", kText, kTable, "The vendor it was made for, hexadecimal"},
     [](const ImageFile& it) { return FieldCell(it.info, VX_BIOS_Version::VenID); }},
    {{"device_id", "DEVICE", kText, kTable, "The device it was made for, hexadecimal"},
     [](const ImageFile& it) { return FieldCell(it.info, VX_BIOS_Version::DevID); }},
};

std::vector<ColumnInfo> FileColumns() { return InfoOf(kFileColumns); }

using ReadVersion = calls::HX_BIOS_Version;

AnswerTo<ReadVersion> AskVersion(Controller& controller, const std::string& path) {
    return controller.Ask(Request<ReadVersion>{{ReadVersion::filepath, path}});
}

Record<VX_BIOS_Version> InfoIn(const AnswerTo<ReadVersion>& answer) {
    const Value* const info = answer.result.Find(ReadVersion::Result::BIOSInfo.name);
    return info == nullptr ? Record<VX_BIOS_Version>() : Record<VX_BIOS_Version>(*info);
}

std::string BytesOf(const std::string& path) {
    try {
        return ReadFile(path.c_str(), FileKind::kRegular, kMostImageBytes);
    } catch (const FileError& error) {
        throw Failure(error.error == EACCES ? Exit::kNotPermitted : Exit::kUsage,
                      path + ": " + error.what());
    }
}

// The library reads a version out of any 64 bytes.
Exit ShowFile(Invocation& invocation) {
    const std::string& path = invocation.targets().front();
    const std::string image = BytesOf(path);
    if (const auto complaint = WhyNoBiosImage(image)) {
        throw Failure(Exit::kUsage, path + ": is no BIOS image: it " + *complaint);
    }
    const auto answer = AskVersion(invocation.controller(), path);
    if (answer.exit != Exit::kDone) {
        throw Failure(answer.exit == Exit::kRefused ? Exit::kUsage : answer.exit,
                      path + ": cannot be read, or is no image");
    }
    if (const auto complaint = WhyNotWhole(image)) {
        invocation.controller().Note({.message = path + ": the image " + *complaint},
                                     Exit::kRefused);
    }
    return Present(
        invocation,
        Tabulated(invocation, kFileColumns, std::vector<ImageFile>{{path, InfoIn(answer)}}),
        "list");
}

// ---- Changes ----------------------------------------------------------------------------------

using Erase = calls::HX_Flash_Erase;

Request<Erase> RequestErase(const FlashPlace& place) {
    return {{Erase::AdapterID, place.adapter.adapter}, {Erase::Page, place.image}};
}

std::uint64_t ImageOption(Invocation& invocation) {
    return CodeOption(invocation, "--image", &CodeTable::images);
}

// Throws Failure where there is no such adapter any more.
Adapter LoadAdapter(Controller& controller, const Address& address) {
    for (Adapter& adapter : LoadAdapters(controller)) {
        if (adapter.address == address) return std::move(adapter);
    }
    throw Failure(Exit::kNoObject, address.Text() + " is not there any more");
}

std::string InstalledVersion(Controller& controller, const FlashPlace& place) {
    const Adapter adapter = LoadAdapter(controller, place.adapter);
    for (const ImageRow& row : kImages) {
        if (CodeOf(controller, row.name) != place.image || !row.version) continue;
        return VersionText(adapter.info[*row.version]).value_or("not known");
    }
    return "not told";
}

// What is known of the file before it is sent.
struct FileFacts {
    std::uint64_t bytes = 0;
    std::string version = "not told: only files of BIOS images tell theirs";
    std::optional<std::string> complaint{};  // why it is not what it claims to be
    Sighting sighting{};
};

// An adapter that does not tell its subsystem is no reason to refuse.
std::optional<std::string> WhyNotFor(const Adapter& adapter, std::string_view image) {
    const auto vendor = adapter.info[Adapter_Info::SubVenID];
    const auto device = adapter.info[Adapter_Info::SubDevID];
    if (!vendor || !device) return std::nullopt;
    const Subsystem own{*vendor, *device};
    const Subsystem claimed = SubsystemOf(image);
    if (own == claimed) return std::nullopt;
    return "is for " + claimed.Text() + ", and " + adapter.address.Text() + " is " + own.Text();
}

void LookAtBios(Controller& controller, const std::string& path, const FlashPlace& place,
                FileFacts& facts) {
    const std::string image = BytesOf(path);
    facts.complaint = WhyNoBiosImage(image);
    if (facts.complaint) {
        facts.version = "none";
        return;
    }
    const auto answer = AskVersion(controller, path);
    facts.version = VersionText(InfoIn(answer)[VX_BIOS_Version::BIOSVersion]).value_or("not known");
    facts.complaint = WhyNotWhole(image);
    if (!facts.complaint) {
        facts.complaint = WhyNotFor(LoadAdapter(controller, place.adapter), image);
    }
}

FileFacts LookAtFile(Controller& controller, const std::string& path, const FlashPlace& place) {
    FileFacts facts;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        throw Failure(Exit::kUsage, path + ": " + std::strerror(errno));
    }
    facts.bytes = static_cast<std::uint64_t>(status.st_size);
    if (!S_ISREG(status.st_mode) || facts.bytes == 0 || facts.bytes > kMostImageBytes) {
        throw Failure(Exit::kUsage, path + ": no file of 1 byte to 2 GiB");
    }
    if (access(path.c_str(), R_OK) != 0) {
        throw Failure(Exit::kNotPermitted, path + ": " + std::strerror(errno));
    }
    const auto seconds = static_cast<std::uint64_t>(status.st_mtim.tv_sec);
    const auto nanoseconds = static_cast<std::uint64_t>(status.st_mtim.tv_nsec);
    facts.sighting.facts = {
        NumberFact("size", facts.bytes), NumberFact("number on its file system", status.st_ino),
        NumbersFact("time of the last change", std::vector<std::uint64_t>{seconds, nanoseconds})};
    if (CodeOf(controller, kBios) == place.image) LookAtBios(controller, path, place, facts);
    return facts;
}

// Whoever has lost the image between the two is told what the flash holds.
void WriteImage(const Send& send, const FlashPlace& place, const std::string& path,
                std::uint64_t pieces, bool erases) {
    if (erases) send(RequestErase(place));
    try {
        const TransferProgress progress(place.adapter.Text() + " flash update", path, pieces);
        send(WriteCommand(place, path));
    } catch (const Failure& refused) {
        if (!erases) throw;
        throw Failure(refused.exit,
                      std::string(refused.what()) +
                          "; the installed image is erased and the new one is not whole: write it "
                          "again before the adapter is started",
                      refused.fault);
    }
    CompareWithFlash(send, place, path);
}

// The library reads the file itself, piece by piece. The file is checked first, so that nothing is
// erased for one that cannot be sent.
Exit UpdateFlash(Invocation& invocation) {
    const std::string* const path = invocation.Get("--file");
    if (path == nullptr) throw UsageError("--file is missing");
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    Controller& controller = invocation.controller();
    const FlashPlace place{adapter, ImageOption(invocation)};
    const bool erases = !invocation.Has("--no-erase");
    const auto look = [&controller, path, place] {
        FileFacts facts = LookAtFile(controller, *path, place);
        controller.sightings()->Note(*path, facts.sighting);
        return facts;
    };
    const FileFacts file = look();
    if (file.complaint && !invocation.Has("--force")) {
        throw Failure(Exit::kUsage, *path + " " + *file.complaint +
                                        "; nothing was erased or written. --force writes it all "
                                        "the same");
    }
    const std::uint64_t pieces = (file.bytes + kFlashPieceBytes - 1) / kFlashPieceBytes;
    std::vector<Command> commands;
    if (erases) commands.push_back(RequestErase(place));
    commands.push_back(WriteCommand(place, *path));
    std::vector<std::string> losses = {"installed version: " + InstalledVersion(controller, place),
                                       "version in the file: " + file.version,
                                       std::to_string(file.bytes) + " bytes in " +
                                           std::to_string(pieces) +
                                           (pieces == 1 ? " piece" : " pieces"),
                                       erases ? "the installed image is erased before"
                                              : "the installed image is not erased before"};
    if (file.complaint) losses.push_back("the file " + *file.complaint);
    return CarryOut(invocation, {.what = "Write " + *path + " into the flash of " + adapter.Text() +
                                         " as its " + invocation.Get("--image", "") + " image",
                                 .losses = std::move(losses),
                                 .confirm = adapter.Text(),
                                 .commands = std::move(commands),
                                 .address = adapter.Text(),
                                 .beside = *path,
                                 .look_beside = look,
                                 .act = [=](const Send& send) {
                                     WriteImage(send, place, *path, pieces, erases);
                                 }});
}

Exit SaveFlash(Invocation& invocation) {
    const std::string* const path = invocation.Get("--file");
    if (path == nullptr) throw UsageError("--file is missing");
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    const FlashPlace place{adapter, ImageOption(invocation)};
    const Existing existing = invocation.Has("--force") ? Existing::kReplace : Existing::kKeep;
    if (existing == Existing::kKeep) RefuseExisting(*path);
    return CarryOut(invocation,
                    {.what = "Save an image of the flash of " + adapter.Text() + " to " + *path,
                     .commands = {ReadCommand(place, *path)},
                     .address = adapter.Text(),
                     .act = [=](const Send& send) { SaveImage(send, place, *path, existing); }});
}

Exit EraseFlash(Invocation& invocation) {
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    const FlashPlace place{adapter, ImageOption(invocation)};
    return CarryOut(invocation, {.what = "Erase an image in the flash of " + adapter.Text(),
                                 .losses = {"installed version: " +
                                            InstalledVersion(invocation.controller(), place)},
                                 .confirm = adapter.Text(),
                                 .commands = {RequestErase(place)},
                                 .address = adapter.Text()});
}

constexpr std::string_view kImageNames = "bios firmware boot_loader autoload hba_info";
constexpr OptionRow kUpdateOptions[] = {
    {"--image", "IMAGE", "Which image", kImageNames},
    {"--file", "FILE", "The file that holds the new image"},
    {"--no-erase", "", "Do not erase the old one first"},
    {"--force", "", "Also a file that is not what it claims to be"},
};
constexpr OptionRow kSaveOptions[] = {
    {"--image", "IMAGE", "Which image", kImageNames},
    {"--file", "FILE", "The file to save it to"},
    {"--force", "", "Replace a file that is there"},
};
constexpr OptionRow kEraseOptions[] = {{"--image", "IMAGE", "Which image", kImageNames}};

constexpr CommandRow kCommands[] = {
    {.noun = "flash",
     .verb = "list",
     .summary = "List the images in the adapters' flash",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = kNamesOf<calls::HX_Adapter_GetInfo>,
     .examples = {"vexorctl flash list", "vexorctl flash list a0 -o json"},
     .run = ListImages,
     .columns = Columns},
    {.noun = "flash",
     .verb = "show",
     .summary = "Show the version of the BIOS image in a file",
     .target = Target::kFile,
     .arity = Arity::kOne,
     .target_name = "FILE",
     .functions = kNamesOf<calls::HX_BIOS_Version>,
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
     .functions = kNamesOf<calls::HX_Flash_Option, calls::HX_Flash_Erase, calls::HX_BIOS_Version>,
     .examples = {"vexorctl flash update a0 --image bios --file bios.rom --dry-run",
                  "vexorctl flash update a0 --image bios --file bios.rom --no-erase --dry-run"},
     .run = UpdateFlash,
     .columns = ChangeColumns,
     .note =
         "It shows the version in the file beside the installed one and asks for the address "
         "of the adapter. Of BIOS images the file tells the version; of the others only its "
         "size is shown. A BIOS image that is not whole, or is for another adapter, is refused. "
         "What was written is read back and compared. A terminal shows the progress by piece. "
         "Ctrl-C does not end it: half an image helps nobody.",
     .changes = true},
    {.noun = "flash",
     .verb = "save",
     .summary = "Save an image of the flash to a file",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kSaveOptions,
     .functions = kNamesOf<calls::HX_Flash_Option>,
     .examples = {"vexorctl flash save a0 --image bios --file saved.rom",
                  "vexorctl flash save a0 --image bios --file bios.rom --force --dry-run"},
     .run = SaveFlash,
     .columns = ChangeColumns,
     .note = "The file is there as a whole or not at all: it is made beside its place, checked and "
             "renamed. One that is replaced leaves its mode to the new one.",
     .changes = true},
    {.noun = "flash",
     .verb = "erase",
     .summary = "Erase an image in the flash",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kEraseOptions,
     .functions = kNamesOf<calls::HX_Flash_Erase>,
     .examples = {"vexorctl flash erase a0 --image bios --dry-run",
                  "vexorctl flash erase a0 --image autoload --dry-run"},
     .run = EraseFlash,
     .columns = ChangeColumns,
     .note = "It asks for the address of the adapter.",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::flash_noun
