// vexorctl vd ...: its commands. What they do is in vd_show, vd_create and vd_change.
#include <span>
#include <string_view>

#include "library_fields.h"
#include "model/library_record.h"
#include "nouns/creation_options.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "nouns/vd_change.h"
#include "nouns/vd_create.h"
#include "nouns/vd_show.h"
#include "shell/command_rows.h"

namespace vexorctl::vd_noun {

namespace {

constexpr std::string_view kInitNames = "quick foreground background none";
constexpr OptionRow kCreateOptions[] = {
    {"--raid", "LEVEL", "The RAID level", kLevelNames},
    {"--disks", "COUNT", "Pick so many free disks"},
    {"--dg", "DG", "On this disk group, whose level and disks it gets"},
    {"--adapter", "NUMBER", "Pick the disks on this adapter"},
    {"--size", "SIZE", "10GiB, 20GB, 50% of the most, or max; max when not given"},
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--stripe", "SIZE", "Its stripe size, as in 64KiB"},
    {"--cache", "MODES", "write_back, read_ahead, both with a comma, or none"},
    {"--init", "KIND", "How it is initialised", kInitNames},
    {"--legs", "COUNT", "Of RAID 50 and 60: the number of legs"},
    {"--round", "SCHEME", "How the size is rounded down", "stripe 1_gib 10_gib"},
    {"--slot", "NUMBER", "Its slot on the disk group"},
    kWaitOption,
};
constexpr OptionRow kQuickOptions[] = {
    {"--adapter", "NUMBER", "The adapter"},
    {"--plain", "", "Without redundancy"},
    kWaitOption,
};
constexpr OptionRow kDeleteOptions[] = {
    {"--keep-boot-record", "", "Leave the boot record on the disks"},
};
constexpr OptionRow kSetOptions[] = {
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--cache", "MODES", "write_back, read_ahead, both with a comma, or none"},
    {"--auto-rebuild", "ON", "A spare is taken at once", "on off"},
};
constexpr OptionRow kMigrateOptions[] = {
    {"--raid", "LEVEL", "The new RAID level", kLevelNames},
    {"--to", "DISKS", "The disks it is to lie on, between commas; those it has when not given"},
    kWaitOption,
};
constexpr OptionRow kModifyOptions[] = {
    {"--size", "SIZE", "10GiB, 20GB, 50% of the most, or max"},
    {"--name", "NAME", "Its name, of at most 15 bytes"},
    {"--cache", "MODES", "write_back, read_ahead, both with a comma, or none"},
    {"--plain", "", "With the function that knows no cache and switches it off"},
};

constexpr OptionRow kAdapterOption[] = {{"--adapter", "NUMBER", "Only those of this adapter"}};

constexpr const auto& kListFunctions =
    kNamesOf<calls::HX_LD_GetInfo, calls::HX_LD_GetTargetLDInfo, calls::HX_LD_GetConfig,
             calls::HX_LD_GetStatus, calls::HX_BLK_GetInfo, calls::HX_PD_GetHDInfo_Ext,
             calls::VX_HX_EVT_GetEvents>;

constexpr CommandRow kCommands[] = {
    {.noun = "vd",
     .verb = "list",
     .summary = "List the virtual disks",
     .target = Target::kVirtualDisk,
     .arity = Arity::kAny,
     .target_name = "VD",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl vd list", "vexorctl vd list a0 --columns name,state,size_bytes --si"},
     .run = ListVirtualDisks,
     .columns = VirtualDiskColumns,
     .note = "Whether one has been initialised is told by the stored events: it is not known where "
             "no event service collects them, and of one that was created before the oldest."},
    {.noun = "vd",
     .verb = "show",
     .summary = "Show all about virtual disks",
     .target = Target::kVirtualDisk,
     .arity = Arity::kAny,
     .target_name = "VD",
     .options = kAdapterOption,
     .functions = kListFunctions,
     .examples = {"vexorctl vd show a0/vd0", "vexorctl vd show name:ARCHIVE -o json"},
     .run = ListVirtualDisks,
     .columns = VirtualDiskColumns},
    {.noun = "vd",
     .verb = "create",
     .summary = "Create a virtual disk",
     .target = Target::kDisk,
     .arity = Arity::kAny,
     .target_name = "DISK",
     .options = kCreateOptions,
     .functions = kNamesOf<calls::HX_LD_GetMaxSize, calls::HX_LD_Create, calls::HX_LD_Create_OnDG>,
     .examples =
         {"vexorctl vd create --adapter 1 --raid 5 --disks 4 --size max --name data1 --dry-run",
          "vexorctl vd create --dg a0/dg0 --size 10GiB --name data2 --dry-run"},
     .run = CreateVirtualDisk,
     .columns = ChangeColumns,
     .note =
         "Name the disks, or say how many to pick: free ones of about the same size, the "
         "smallest that suffice for the --size, or those that give the most. When a disk holds "
         "data it asks for the name of the virtual disk. Where it cannot be made, it tells "
         "which disks are free, on the other adapters too. RAID 0 takes 1 disk or more, "
         "RAID 1 exactly 2, RAID 1E an odd number from 3, RAID 5 and 6 take 3 or more, RAID 10 "
         "an even number from 4, RAID 50 and 60 legs of 3 or more each, all of the same number.",
     .changes = true},
    {.noun = "vd",
     .verb = "quick-create",
     .summary = "Create one virtual disk over all free disks",
     .target = Target::kNone,
     .arity = Arity::kNone,
     .target_name = "",
     .options = kQuickOptions,
     .functions = kNamesOf<calls::HX_LD_QuickCreate>,
     .examples = {"vexorctl vd quick-create --adapter 1 --dry-run",
                  "vexorctl vd quick-create --adapter 1 --plain --dry-run"},
     .run = QuickCreate,
     .columns = ChangeColumns,
     .note = "The library chooses level and disks. It asks for the address of the adapter.",
     .changes = true},
    {.noun = "vd",
     .verb = "delete",
     .summary = "Delete a virtual disk",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kDeleteOptions,
     .functions = kNamesOf<calls::HX_LD_Delete>,
     .examples = {"vexorctl vd delete a0/vd2 --dry-run",
                  "vexorctl vd delete name:ARCHIVE --dry-run -o json"},
     .run = DeleteVirtualDisk,
     .columns = ChangeColumns,
     .note = "It asks for the name of the virtual disk.",
     .changes = true},
    {.noun = "vd",
     .verb = "set",
     .summary = "Change settings of a virtual disk; those not named stay",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kSetOptions,
     .functions = kNamesOf<calls::HX_LD_GetConfig, calls::HX_LD_SetConfig>,
     .examples = {"vexorctl vd set a0/vd0 --name DB2 --dry-run",
                  "vexorctl vd set a0/vd0 --cache write_back,read_ahead --dry-run"},
     .run = SetVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "vd",
     .verb = "modify",
     .summary = "Change the size or the name of a virtual disk on a disk group",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kModifyOptions,
     .functions = kNamesOf<calls::HX_LD_Modify_OnDG, calls::HX_CreateOrModify_VD>,
     .examples = {"vexorctl vd modify a0/vd0 --size max --dry-run",
                  "vexorctl vd modify a0/vd0 --name DB2 --dry-run"},
     .run = ModifyVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "vd",
     .verb = "migrate",
     .summary = "Move a virtual disk to another level or other disks",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .options = kMigrateOptions,
     .functions = kNamesOf<calls::HX_LD_GetMigratedLdSize, calls::HX_LD_StartMigration>,
     .examples =
         {"vexorctl vd migrate a1/vd0 --raid 5 --to a1/pd0,a1/pd1,a1/pd3 --dry-run",
          "vexorctl vd migrate a1/vd0 --raid 10 --to a1/pd0,a1/pd1,a1/pd3,a1/pd4 --dry-run"},
     .run = MigrateVirtualDisk,
     .columns = ChangeColumns,
     .note =
         "It returns at once; --wait waits for the end. It asks for the name of the virtual disk.",
     .changes = true},
    {.noun = "vd",
     .verb = "import",
     .summary = "Take over a virtual disk that another controller has made",
     .target = Target::kVirtualDisk,
     .arity = Arity::kOne,
     .target_name = "VD",
     .functions = kNamesOf<calls::HX_LD_Import>,
     .examples = {"vexorctl vd import a0/vd0 --dry-run",
                  "vexorctl vd import name:ARCHIVE --dry-run"},
     .run = ImportVirtualDisk,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::vd_noun
