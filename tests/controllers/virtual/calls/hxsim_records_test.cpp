// Every byte of every record is written by what describes it: a member that is forgotten keeps what
// was there before, which these tests see. A new record is added to them by hand.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "calls/hxsim_block_record.h"
#include "calls/hxsim_disk_group_record.h"
#include "calls/hxsim_disk_record.h"
#include "calls/hxsim_enclosure_record.h"
#include "calls/hxsim_expander_record.h"
#include "calls/hxsim_virtual_disk_record.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

// Describes into records of two kinds of bytes and expects the same twice.
template <class Record, class Work>
void ExpectWhole(const std::string& name, Work describe) {
    Record zeros;
    Record ones;
    std::memset(&zeros, 0x00, sizeof zeros);
    std::memset(&ones, 0xFF, sizeof ones);
    describe(zeros);
    describe(ones);
    const auto* const some = reinterpret_cast<const unsigned char*>(&zeros);
    const auto* const others = reinterpret_cast<const unsigned char*>(&ones);
    for (std::size_t at = 0; at < sizeof(Record); ++at) {
        ASSERT_EQ(some[at], others[at]) << name << ": byte " << at << " is not written";
    }
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

    // With and without an activity.
    void ExpectDisksWhole() {
        ASSERT_FALSE(adapter().disks.empty());
        const DiskRoles roles(adapter());
        for (const Disk& disk : adapter().disks) {
            const auto expect = [&]<class Record>(const char* name, Record*) {
                ExpectWhole<Record>(name, [&](Record& record) {
                    Describe(adapter(), disk, roles.Of(disk), kNow, record);
                });
            };
            expect("HD_Info", static_cast<HD_Info*>(nullptr));
            expect("HD_FreeSpaceInfo", static_cast<HD_FreeSpaceInfo*>(nullptr));
            expect("HD_Config", static_cast<HD_Config*>(nullptr));
            expect("HD_BGA_Status", static_cast<HD_BGA_Status*>(nullptr));
            expect("HD_SMART_Status", static_cast<HD_SMART_Status*>(nullptr));
            expect("HD_RAID_Status", static_cast<HD_RAID_Status*>(nullptr));
        }
    }

    void ExpectVirtualDisksWhole() {
        ASSERT_FALSE(adapter().virtual_disks.empty());
        for (const VirtualDisk& row : adapter().virtual_disks) {
            ExpectWhole<LD_Info>("LD_Info", [&](LD_Info& record) {
                BlocksByPosition blocks;
                Describe(adapter(), row, blocks, record);
            });
            ExpectWhole<LD_Status>(
                "LD_Status", [&](LD_Status& record) { Describe(adapter(), row, kNow, record); });
            ExpectWhole<LD_Config>(
                "LD_Config", [&](LD_Config& record) { Describe(adapter(), row, kNow, record); });
        }
    }

    void ExpectGroupsWhole() {
        ASSERT_FALSE(adapter().disk_groups.empty());
        for (const DiskGroup& row : adapter().disk_groups) {
            ExpectWhole<DG_Info>("DG_Info",
                                 [&](DG_Info& record) { Describe(adapter(), row, kNow, record); });
            ExpectWhole<DG_Config>(
                "DG_Config", [&](DG_Config& record) { Describe(adapter(), row, kNow, record); });
        }
    }
};

TEST_F(Records, OfDisksAreWritten) {
    ExpectDisksWhole();
    StartActivity(ActivityKind::kMediaPatrol, Owner::kDisk, 0);
    ExpectDisksWhole();
}

TEST_F(Records, OfRemapsAreWritten) {
    ExpectWhole<RCT_Record>("RCT_Record",
                            [&](RCT_Record& record) { Describe(adapter().remaps[0], record); });
}

TEST_F(Records, OfBlocksAreWritten) {
    ASSERT_FALSE(adapter().blocks.empty());
    const DiskRoles roles(adapter());
    for (const Block& row : adapter().blocks) {
        ExpectWhole<Block_Info>("Block_Info", [&](Block_Info& record) {
            Describe(disk(row.disk), roles.Of(disk(row.disk)), row, record);
        });
    }
    const BlocksByDisk blocks(adapter());
    for (std::size_t i = 0; i < adapter().disks.size(); ++i) {
        ExpectWhole<HD_Block_Info>("HD_Block_Info", [&](HD_Block_Info& record) {
            Describe(adapter().disks[i], blocks.At(i), record);
        });
    }
}

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

TEST_F(Records, OfExpandersAndPortMultipliersAreWritten) {
    ExpectWhole<Exp_Info>("Exp_Info", [&](Exp_Info& record) {
        Describe(adapter(), adapter().expanders[0], kNow, record);
    });
    ExpectWhole<PM_Info>("PM_Info", [&](PM_Info& record) {
        Describe(adapter(), adapter().port_multipliers[0], kNow, record);
    });
}

TEST_F(Records, OfEnclosuresAreWritten) {
    ExpectWhole<Enclosure_Info>("Enclosure_Info", [&](Enclosure_Info& record) {
        Describe(adapter(), adapter().enclosures[0], kNow, record);
    });
    for (const Element& row : adapter().elements) {
        ExpectWhole<EncElementType_Info>("EncElementType_Info", [&](EncElementType_Info& record) {
            Describe(adapter(), row, record);
        });
        ExpectWhole<EncElement_Config>("EncElement_Config", [&](EncElement_Config& record) {
            Describe(adapter(), row, record);
        });
    }
}

TEST_F(Records, OfEventsAreWritten) {
    ExpectWhole<Event>("Event", [&](Event& record) {
        Describe(adapter().id, kNow, EventKind::kAdapterFound, 3, 7, {1, 2, 3, 4}, "VC-1", record);
    });
}

}  // namespace
}  // namespace hxsim
