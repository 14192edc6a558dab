// Tests that make, change and move virtual disks and disk groups on eight empty disks.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "hxraid.h"

namespace hxsim {

class ArrayTest : public MachineTest {
protected:
    explicit ArrayTest(unsigned disks = 8) : MachineTest(disks) {}

    /// Makes or changes what has to succeed, and returns what was answered.
    Create_LD_Param Made(Create_LD_Param param);
    CreateOrModify_DG_Param Made(CreateOrModify_DG_Param param);
    CreateOrModify_VD_Param Made(CreateOrModify_VD_Param param);

    /// The refusal of that. Nothing has changed, the request included.
    Status Refusal(const Create_LD_Param& param);
    Status Refusal(const CreateOrModify_DG_Param& param);
    Status Refusal(const CreateOrModify_VD_Param& param);

    /// Starts a migration. Returns the status.
    Status Move(Create_LD_Param param);
    Status Move(CreateOrModify_DG_Param param);

    /// The refusal of a migration. Nothing has changed, the request included.
    Status RefusedMove(const Create_LD_Param& param);
    Status RefusedMove(const CreateOrModify_DG_Param& param);

    /// The request for a migration of a virtual disk.
    static Create_LD_Param MovedTo(HX_U16 id, HX_U8 level, const Ids& disks,
                                   std::uint64_t size = 0);

    /// The sizes that are answered when nothing is to be made. Nothing has changed.
    std::uint64_t MostAfterMove(Create_LD_Param param);
    std::uint64_t SizeOnly(CreateOrModify_DG_Param param);
};

/// A test with disk group 0, a RAID 5 of disks 0 to 2.
class SlotTest : public ArrayTest {
protected:
    void SetUp() override { Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2})); }
};

}  // namespace hxsim
