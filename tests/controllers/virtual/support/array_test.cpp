#include "controllers/virtual/support/array_test.h"

#include <cstring>

#include "calls/hxsim_disk_group_create.h"
#include "calls/hxsim_virtual_disk_create.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

constexpr Time kNow = TestMachine::kNow;

template <class Param>
using Creation = Status (*)(Adapter& adapter, Time now, Param& param);

template <class Param>
Param MadeBy(TestMachine& machine, Creation<Param> create, Param param) {
    EXPECT_EQ(Status::kSuccess, create(machine.adapter(), kNow, param));
    Settle(machine.adapter(), kNow);
    return param;
}

template <class Param>
Status RefusalBy(TestMachine& machine, Creation<Param> create, const Param& asked) {
    Param param = asked;
    const std::string before = machine.Everything();
    const Status status = create(machine.adapter(), kNow, param);
    EXPECT_EQ(before, machine.Everything());
    EXPECT_EQ(0, std::memcmp(&asked, &param, sizeof param));
    return status;
}

template <class Param>
Status MoveBy(TestMachine& machine, Creation<Param> move, Param& param) {
    const Status status = move(machine.adapter(), kNow, param);
    if (status == Status::kSuccess) Settle(machine.adapter(), kNow);
    return status;
}

}  // namespace

Create_LD_Param ArrayTest::Made(Create_LD_Param param) {
    return MadeBy(*this, CreateVirtualDisk, param);
}
CreateOrModify_DG_Param ArrayTest::Made(CreateOrModify_DG_Param param) {
    return MadeBy(*this, CreateOrModifyDiskGroup, param);
}
CreateOrModify_VD_Param ArrayTest::Made(CreateOrModify_VD_Param param) {
    return MadeBy(*this, CreateOrModifyOnGroup, param);
}

Status ArrayTest::Refusal(const Create_LD_Param& param) {
    return RefusalBy(*this, CreateVirtualDisk, param);
}
Status ArrayTest::Refusal(const CreateOrModify_DG_Param& param) {
    return RefusalBy(*this, CreateOrModifyDiskGroup, param);
}
Status ArrayTest::Refusal(const CreateOrModify_VD_Param& param) {
    return RefusalBy(*this, CreateOrModifyOnGroup, param);
}

Status ArrayTest::Move(Create_LD_Param param) { return MoveBy(*this, StartMigration, param); }
Status ArrayTest::Move(CreateOrModify_DG_Param param) {
    return MoveBy(*this, StartGroupMigration, param);
}

Status ArrayTest::RefusedMove(const Create_LD_Param& param) {
    return RefusalBy(*this, StartMigration, param);
}
Status ArrayTest::RefusedMove(const CreateOrModify_DG_Param& param) {
    return RefusalBy(*this, StartGroupMigration, param);
}

Create_LD_Param ArrayTest::MovedTo(HX_U16 id, HX_U8 level, const Ids& disks, std::uint64_t size) {
    Create_LD_Param param = WantedOn(level, disks, size);
    param.LDID = id;
    return param;
}

std::uint64_t ArrayTest::MostAfterMove(Create_LD_Param param) {
    param.Size.value = 1;  // not looked at
    EXPECT_EQ(Status::kSuccess, SizeMigration(adapter(), param));
    return param.Size.value;
}

std::uint64_t ArrayTest::SizeOnly(CreateOrModify_DG_Param param) {
    param.Size.value = 1;  // not looked at
    const std::string before = Everything();
    EXPECT_EQ(Status::kSuccess, SizeDiskGroup(adapter(), param));
    EXPECT_EQ(before, Everything());
    return param.Size.value;
}

}  // namespace hxsim
