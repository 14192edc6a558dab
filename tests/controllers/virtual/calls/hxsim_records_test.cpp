// Every byte of every record is written by what describes it: a member that is forgotten keeps what
// was there before, which these tests see. A new record is added to them by hand.
#include <cxxabi.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <typeinfo>

#include "calls/hxsim_block_record.h"
#include "calls/hxsim_disk_group_record.h"
#include "calls/hxsim_disk_record.h"
#include "calls/hxsim_enclosure_record.h"
#include "calls/hxsim_expander_record.h"
#include "calls/hxsim_virtual_disk_record.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_event_queue.h"
#include "support/folders.h"

namespace hxsim {
namespace {

// What is not described member by member: the machine keeps it whole, or it is a caller's, or a
// part of other records.
constexpr const char* kNotDescribed[] = {
    "Adapter_Config_V2",        // kept whole
    "Adapter_Info",             // kept whole
    "BBU_Info",                 // kept whole
    "CreateOrModify_DG_Param",  // a caller's, of which a size is filled in
    "Create_LD_Param",          // likewise
    "HD_MBR_Info",              // a list of numbers
    "Link_Endpoint",            // a part of HD_Info and others
    "Link_Entity",              // likewise
    "RequestHeader",            // a caller's
    "VX_BIOS_Version",          // read from an image of the flash by the library
    "Version_Info",             // a part of Adapter_Info
};

// The records of the library's table but for those.
std::set<std::string> RecordsOfTheTable() {
    std::ifstream file(std::string(kSourceFolder) + "/backend/vexorapi/xml_rapi_record_rows.h");
    const std::string rows{std::istreambuf_iterator<char>(file), {}};
    const std::regex type("\"struct (\\w+)\"");
    std::set<std::string> names;
    for (std::sregex_iterator at(rows.begin(), rows.end(), type), end; at != end; ++at) {
        names.insert((*at)[1]);
    }
    for (const char* const name : kNotDescribed) {
        EXPECT_EQ(1u, names.erase(name)) << name << " is no record of the table";
    }
    return names;
}

template <class Record>
std::string RecordName() {
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(typeid(Record).name(), nullptr, nullptr, nullptr), &std::free);
    return name.get();
}

class Records : public MixedMachineTest {
protected:
    Records() {
        disk(6).sas = true;
        disk(6).parent = Device::kExpander;
        Expander expander;
        expander.parent = Device::kAdapter;
        adapter().expanders.push_back(expander);
        PortMultiplier port_multiplier;
        port_multiplier.parent = Device::kAdapter;
        adapter().port_multipliers.push_back(port_multiplier);
        adapter().remaps.push_back({0, 5, 1, RemapReason::kReadError});
    }

    // Describes into records of two kinds of bytes and expects the same twice.
    template <class Record, class Work>
    void ExpectWhole(Work describe) {
        Record zeros;
        Record ones;
        std::memset(&zeros, 0x00, sizeof zeros);
        std::memset(&ones, 0xFF, sizeof ones);
        describe(zeros);
        describe(ones);
        const auto* const some = reinterpret_cast<const unsigned char*>(&zeros);
        const auto* const others = reinterpret_cast<const unsigned char*>(&ones);
        for (std::size_t at = 0; at < sizeof(Record); ++at) {
            ASSERT_EQ(some[at], others[at])
                << RecordName<Record>() << ": byte " << at << " is not written";
        }
        seen_.insert(RecordName<Record>());
    }

    void ExpectDisksWhole() {
        ASSERT_FALSE(adapter().disks.empty());
        const DiskRoles roles(adapter());
        for (const Disk& disk : adapter().disks) {
            const auto expect = [&]<class Record>(Record*) {
                ExpectWhole<Record>([&](Record& record) {
                    Describe(adapter(), disk, roles.Of(disk), kNow, record);
                });
            };
            expect(static_cast<HD_Info*>(nullptr));
            expect(static_cast<HD_FreeSpaceInfo*>(nullptr));
            expect(static_cast<HD_Config*>(nullptr));
            expect(static_cast<HD_BGA_Status*>(nullptr));
            expect(static_cast<HD_SMART_Status*>(nullptr));
            expect(static_cast<HD_RAID_Status*>(nullptr));
        }
    }

    void ExpectVirtualDisksWhole() {
        ASSERT_FALSE(adapter().virtual_disks.empty());
        for (const VirtualDisk& row : adapter().virtual_disks) {
            ExpectWhole<LD_Info>([&](LD_Info& record) {
                BlocksByPosition blocks;
                Describe(adapter(), row, blocks, record);
            });
            ExpectWhole<LD_Status>(
                [&](LD_Status& record) { Describe(adapter(), row, kNow, record); });
            ExpectWhole<LD_Config>(
                [&](LD_Config& record) { Describe(adapter(), row, kNow, record); });
        }
    }

    void ExpectGroupsWhole() {
        ASSERT_FALSE(adapter().disk_groups.empty());
        for (const DiskGroup& row : adapter().disk_groups) {
            ExpectWhole<DG_Info>([&](DG_Info& record) { Describe(adapter(), row, kNow, record); });
            ExpectWhole<DG_Config>(
                [&](DG_Config& record) { Describe(adapter(), row, kNow, record); });
        }
    }

    void ExpectRemapsWhole() {
        ExpectWhole<RCT_Record>([&](RCT_Record& record) { Describe(adapter().remaps[0], record); });
    }

    void ExpectBlocksWhole() {
        ASSERT_FALSE(adapter().blocks.empty());
        const DiskRoles roles(adapter());
        for (const Block& row : adapter().blocks) {
            ExpectWhole<Block_Info>([&](Block_Info& record) {
                Describe(disk(row.disk), roles.Of(disk(row.disk)), row, record);
            });
        }
        const BlocksByDisk blocks(adapter());
        for (std::size_t i = 0; i < adapter().disks.size(); ++i) {
            ExpectWhole<HD_Block_Info>(
                [&](HD_Block_Info& record) { Describe(adapter().disks[i], blocks.At(i), record); });
        }
    }

    void ExpectExpandersWhole() {
        ExpectWhole<Exp_Info>(
            [&](Exp_Info& record) { Describe(adapter(), adapter().expanders[0], kNow, record); });
        ExpectWhole<PM_Info>([&](PM_Info& record) {
            Describe(adapter(), adapter().port_multipliers[0], kNow, record);
        });
    }

    void ExpectEnclosuresWhole() {
        ExpectWhole<Enclosure_Info>([&](Enclosure_Info& record) {
            Describe(adapter(), adapter().enclosures[0], kNow, record);
        });
        for (const Element& row : adapter().elements) {
            ExpectWhole<EncElementType_Info>(
                [&](EncElementType_Info& record) { Describe(adapter(), row, record); });
            ExpectWhole<EncElement_Config>(
                [&](EncElement_Config& record) { Describe(adapter(), row, record); });
        }
    }

    std::set<std::string> seen_;
};

TEST_F(Records, OfDisksAreWritten) {
    ExpectDisksWhole();
    StartActivity(ActivityKind::kMediaPatrol, Owner::kDisk, 0);
    ExpectDisksWhole();
}

TEST_F(Records, OfRemapsAreWritten) { ExpectRemapsWhole(); }

TEST_F(Records, OfBlocksAreWritten) { ExpectBlocksWhole(); }

TEST_F(Records, OfVirtualDisksAreWritten) {
    ExpectVirtualDisksWhole();
    StartActivity(ActivityKind::kCheck, Owner::kVirtualDisk, 0);
    ExpectVirtualDisksWhole();
}

TEST_F(Records, OfDiskGroupsAreWritten) {
    ExpectGroupsWhole();
    StartActivity(ActivityKind::kMigration, Owner::kDiskGroup, 0);
    ExpectGroupsWhole();
    adapter().activities.clear();
}

TEST_F(Records, OfExpandersAndPortMultipliersAreWritten) { ExpectExpandersWhole(); }

TEST_F(Records, OfEnclosuresAreWritten) { ExpectEnclosuresWhole(); }

TEST_F(Records, OfEventsAreWritten) {
    ExpectWhole<Event>([&](Event& record) {
        Describe(adapter().id, kNow, EventKind::kAdapterFound, 3, 7, {1, 2, 3, 4}, "VC-1", record);
    });
}

TEST_F(Records, OfEveryKindInTheTableAreWritten) {
    ExpectDisksWhole();
    ExpectRemapsWhole();
    ExpectBlocksWhole();
    ExpectVirtualDisksWhole();
    ExpectGroupsWhole();
    ExpectExpandersWhole();
    ExpectEnclosuresWhole();
    EXPECT_EQ(RecordsOfTheTable(), seen_);
}

}  // namespace
}  // namespace hxsim
