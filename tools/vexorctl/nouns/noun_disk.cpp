// vexorctl disk ...: its commands. What they do is in disk_show, disk_blocks and disk_change.
#include <span>

#include "library_fields.h"
#include "model/library_record.h"
#include "nouns/disk_blocks.h"
#include "nouns/disk_change.h"
#include "nouns/disk_show.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "shell/command_rows.h"

namespace vexorctl::disk_noun {

namespace {

constexpr OptionRow kLocateOptions[] = {
    {"--off", "", "Switch the light off"},
    {"--for", "DURATION", "Switch it off again after 90s or 10m; Ctrl-C does so at once"},
    {"--slot", "NUMBER", "Of an enclosure: only the disk in this slot, its phy"},
};
constexpr OptionRow kSpareOptions[] = {
    {"--dg", "DG", "Only for this disk group; otherwise for all of the adapter"},
};
constexpr OptionRow kWipeOptions[] = {
    {"--force", "", "Even when it carries blocks of a virtual disk"},
};
constexpr OptionRow kSetOptions[] = {
    {"--state", "STATE", "What the disk is to become", "online offline free"},
    {"--force", "", "Even when a virtual disk cannot be used any more then"},
    {"--write-cache", "ON", "Its write cache", "on off"},
    {"--smart", "ON", "SMART", "on off"},
};

constexpr OptionRow kListOptions[] = {
    {"--adapter", "NUMBER", "Only those of this adapter"},
    {"--free", "", "Only those that new virtual disks can be made of"},
    {"--spare", "", "Only spares"},
};
constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr const auto& kListFunctions =
    kNamesOf<calls::HX_PD_GetHDInfo_Ext, calls::HX_PD_GetHDInfo, calls::HX_PD_GetConfig,
             calls::HX_PD_GetSmartStatus, calls::HX_PD_GetHDRaidStatus, calls::HX_PD_GetBGAStatus,
             calls::HX_PD_GetFreeSpaceInfo, calls::HX_PD_GetMBRInfo, calls::HX_PD_GetSpareInfo,
             calls::HX_DG_GetInfo, calls::HX_LD_GetInfo, calls::HX_LD_GetConfig,
             calls::HX_LD_GetStatus, calls::HX_BLK_GetInfo>;

constexpr CommandRow kCommands[] = {
    {.noun = "disk",
     .verb = "list",
     .summary = "List the disks",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kListOptions,
     .functions = kListFunctions,
     .examples = {"vexorctl disk list a0/dg0", "vexorctl disk list --free --sort=-size_bytes"},
     .run = ListDisks,
     .columns = DiskColumns,
     .note =
         "A virtual disk as the target means the disks that it lies on, a disk group those that "
         "serve it, its spares among them, an enclosure those in it."},
    {.noun = "disk",
     .verb = "show",
     .summary = "Show all about disks",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl disk show a0/pd3", "vexorctl disk show serial:6TW0D21A -o json"},
     .run = ListDisks,
     .columns = DiskColumns},
    {.noun = "disk",
     .verb = "blocks",
     .summary = "List the blocks that disks carry",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kAdapterOption,
     .functions = kNamesOf<calls::HX_BLK_GetInfo, calls::HX_BLK_GetHDBlock>,
     .examples = {"vexorctl disk blocks a0/pd0", "vexorctl disk blocks --bytes --no-header"},
     .run = ListBlocks,
     .columns = BlockColumns},
    {.noun = "disk",
     .verb = "remapped",
     .summary = "List the sectors of a disk that have been remapped",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .functions = kNamesOf<calls::HX_PD_GetRCT>,
     .examples = {"vexorctl disk remapped a0/pd3", "vexorctl disk remapped a0/pd3 -o csv"},
     .run = ListRemapped,
     .columns = RemappedColumns},
    {.noun = "disk",
     .verb = "set",
     .summary = "Change the state or the settings of a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kSetOptions,
     .functions =
         kNamesOf<calls::HX_PD_SetHDStatus, calls::HX_PD_SetConfig, calls::HX_PD_GetConfig>,
     .examples = {"vexorctl disk set a0/pd3 --write-cache on --dry-run",
                  "vexorctl disk set a0/pd3 --state offline --dry-run"},
     .run = SetDisk,
     .columns = ChangeColumns,
     .note =
         "A disk that a virtual disk cannot do without is set offline or free only with --force. "
         "It asks for the address of the disk.",
     .changes = true},
    {.noun = "disk",
     .verb = "spare",
     .summary = "Make a free disk a spare",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kSpareOptions,
     .functions = kNamesOf<calls::HX_PD_FreeHD2GlobalSpare, calls::HX_PD_FreeHD2DGSpare>,
     .examples = {"vexorctl disk spare a0/pd11 --dry-run",
                  "vexorctl disk spare a0/pd11 --dg a0/dg0 --dry-run"},
     .run = SpareDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "unspare",
     .summary = "Make a spare a free disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .functions = kNamesOf<calls::HX_PD_Spare2FreeHD>,
     .examples = {"vexorctl disk unspare a0/pd9 --dry-run",
                  "vexorctl disk unspare a0/pd9 --dry-run -o json"},
     .run = UnspareDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "disk",
     .verb = "wipe",
     .summary = "Take the configuration off a disk",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kWipeOptions,
     .functions = kNamesOf<calls::HX_PD_WipeHDMDD>,
     .examples = {"vexorctl disk wipe a0/pd11 --dry-run",
                  "vexorctl disk wipe a0/pd11 --force --dry-run"},
     .run = WipeDisk,
     .columns = ChangeColumns,
     .note = "It asks for the address of the disk.",
     .changes = true},
    {.noun = "disk",
     .verb = "locate",
     .summary = "Switch the locate light of disks",
     .target = Target::kDisk,
     .arity = Arity::kOne,
     .target_name = "DISK",
     .options = kLocateOptions,
     .functions = kNamesOf<calls::HX_LocateArrayDevice>,
     .examples = {"vexorctl disk locate a0/pd3 --for 10m --dry-run",
                  "vexorctl disk locate a0/enc0 --slot 5 --dry-run"},
     .run = LocateDisk,
     .columns = ChangeColumns,
     .note =
         "A virtual disk or disk group as the target means its disks, an enclosure with --slot the "
         "disk in that slot.",
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::disk_noun
