// The virtual adapters, as the controller library describes them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

using testing::ElementsAre;

using SimulatorAdapter = SimulatorTest;

// The description of an adapter, written over bytes that are not zero.
Adapter_Info InfoOf(HX_U8 adapter) {
    Adapter_Info info;
    std::memset(&info, 0xA5, sizeof info);
    HX_U8 count = 0xA5;
    EXPECT_EQ(0, HX_Adapter_GetInfo(adapter, &count, &info));
    EXPECT_EQ(1, count);
    return info;
}

Adapter_Config_V2 SettingsOf(HX_U8 adapter) {
    Adapter_Config_V2 settings;
    std::memset(&settings, 0xA5, sizeof settings);
    HX_U8 count = 0xA5;
    EXPECT_EQ(0, HX_Adapter_GetConfig(adapter, &count, &settings));
    EXPECT_EQ(1, count);
    return settings;
}

// The shares of all background activities, of consistency checks, initialisation, rebuilds,
// migrations, copybacks and media patrols, in percent.
std::vector<int> RatesOf(HX_U8 adapter) {
    const Adapter_Config_V2 settings = SettingsOf(adapter);
    return {settings.BGARate,        settings.SyncRate,      settings.InitRate,
            settings.RebuildRate,    settings.MigrationRate, settings.CopybackRate,
            settings.MediaPatrolRate};
}

std::string SerialNumberOf(HX_U8 adapter) {
    const Adapter_Info info = InfoOf(adapter);
    return {info.SerialNo, sizeof info.SerialNo};
}

TEST_F(SimulatorAdapter, ZeroHasEightPortsAndExpanders) {
    const Adapter_Info info = InfoOf(0);
    EXPECT_EQ(8, info.PortCount);
    EXPECT_EQ(8, info.MaxExpander);
    EXPECT_EQ(8, info.MaxPM);
    EXPECT_EQ(128, info.MaxHD);
    EXPECT_EQ(128, info.MaxHD_Ext);
}

TEST_F(SimulatorAdapter, ZeroOffersEveryUsualLevelAndDiskGroups) {
    const Adapter_Info info = InfoOf(0);
    EXPECT_EQ(0x017F, info.LogicalDriverMode);
    EXPECT_EQ(1, info.DiskGroupSupport);
    EXPECT_EQ(32, info.MaxPDPerDG);
    EXPECT_EQ(32, info.MaxVDPerDG);
    EXPECT_EQ(4, info.MaxParityDisks);
}

TEST_F(SimulatorAdapter, ZeroLetsEveryRateBeSet) { EXPECT_EQ(0x5F, InfoOf(0).Features); }

TEST_F(SimulatorAdapter, ZeroMoves64KibibytesACall) { EXPECT_EQ(64, InfoOf(0).MaxBufferSize); }

TEST_F(SimulatorAdapter, ZeroHasItsOwnVersions) {
    const Adapter_Info info = InfoOf(0);
    EXPECT_EQ(4u, info.DriverVersion.VerMajor);
    EXPECT_EQ(1u, info.DriverVersion.VerMinor);
    EXPECT_EQ(0u, info.DriverVersion.VerOEM);
    EXPECT_EQ(1208u, info.DriverVersion.VerBuild);
    EXPECT_EQ(3, info.BIOSVersion.MajorVersion);
    EXPECT_EQ(1, info.BIOSVersion.MinorVersion);
    EXPECT_EQ(0, info.BIOSVersion.RevisionNumber);
    EXPECT_EQ(27, info.BIOSVersion.BuildNumber);
    EXPECT_EQ(1350, info.FirmwareVersion.BuildNumber);
    EXPECT_EQ(9, info.BootLoaderVersion.BuildNumber);
}

TEST_F(SimulatorAdapter, OneHasFourPortsAndNoExpanders) {
    const Adapter_Info info = InfoOf(1);
    EXPECT_EQ(4, info.PortCount);
    EXPECT_EQ(0, info.MaxExpander);
    EXPECT_EQ(4, info.MaxPM);
    EXPECT_EQ(8, info.MaxHD);
    EXPECT_EQ(8, info.MaxHD_Ext);
}

TEST_F(SimulatorAdapter, OneOffersFourLevelsAndNoDiskGroups) {
    const Adapter_Info info = InfoOf(1);
    EXPECT_EQ(0x0017, info.LogicalDriverMode);
    EXPECT_EQ(0, info.DiskGroupSupport);
    EXPECT_EQ(0, info.MaxPDPerDG);
    EXPECT_EQ(0, info.MaxVDPerDG);
    EXPECT_EQ(1, info.MaxParityDisks);
}

TEST_F(SimulatorAdapter, OneFixesTheRatesOfMigrationAndCopyback) {
    EXPECT_EQ(0x17, InfoOf(1).Features);
}

TEST_F(SimulatorAdapter, OneMoves16KibibytesACall) { EXPECT_EQ(16, InfoOf(1).MaxBufferSize); }

TEST_F(SimulatorAdapter, HasASerialNumberOfItsOwnFilledUpWithZeros) {
    EXPECT_EQ(std::string("VC08-24100001\0\0\0\0\0\0\0", 20), SerialNumberOf(0));
    EXPECT_EQ(std::string("VC04-24100002\0\0\0\0\0\0\0", 20), SerialNumberOf(1));
}

TEST_F(SimulatorAdapter, HasAWorldWideNameOfItsOwn) {
    EXPECT_THAT(InfoOf(0).WWN, ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 0, 0));
    EXPECT_THAT(InfoOf(1).WWN, ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 1, 0));
}

TEST_F(SimulatorAdapter, HasASasAddressAtEachPortAndNoneBeyond) {
    const Adapter_Info info = InfoOf(1);
    EXPECT_THAT(info.PortSasAddress[0], ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 1, 1));
    EXPECT_THAT(info.PortSasAddress[3], ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 1, 4));
    EXPECT_THAT(info.PortSasAddress[4], ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(InfoOf(0).PortSasAddress[7], ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 0, 8));
}

TEST_F(SimulatorAdapter, LeavesTheReservedBytesZero) {
    const Adapter_Info info = InfoOf(0);
    EXPECT_EQ(0, info.Reserved1);
    EXPECT_EQ(0, info.Reserved2);
    EXPECT_EQ(0, info.Reserved3);
    EXPECT_THAT(info.Reserved4, testing::Each(0));
}

TEST_F(SimulatorAdapter, HasHealthyImages) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const Adapter_Info info = InfoOf(adapter);
        EXPECT_EQ(1, info.img_health);
        EXPECT_EQ(1, info.autoload_img_health);
        EXPECT_EQ(1, info.boot_loader_img_health);
        EXPECT_EQ(1, info.firmware_img_health);
        EXPECT_EQ(1, info.boot_rom_img_health);
        EXPECT_EQ(1, info.hba_info_img_health);
    }
}

TEST_F(SimulatorAdapter, IsNotDescribedWithoutAnAddressForIt) {
    HX_U8 count = 7;
    EXPECT_EQ(203, HX_Adapter_GetInfo(0, &count, nullptr));
    EXPECT_EQ(7, count);
}

TEST_F(SimulatorAdapter, IsNotDescribedWithoutAnAddressForTheCount) {
    Adapter_Info info{};
    EXPECT_EQ(203, HX_Adapter_GetInfo(0, nullptr, &info));
    EXPECT_EQ(0, info.PortCount);
}

TEST_F(SimulatorAdapter, ZeroSoundsItsAlarmAndLetsSparesStepIn) {
    const Adapter_Config_V2 settings = SettingsOf(0);
    EXPECT_EQ(1, settings.AlarmOn);
    EXPECT_EQ(1, settings.AutoRebuildOn);
    EXPECT_EQ(1, settings.PollSMARTStatus);
    EXPECT_EQ(1, settings.CopyBack);
    EXPECT_EQ(1, settings.InterruptCoalescing);
    EXPECT_EQ(0, settings.ModuleConsolidate);
    EXPECT_EQ(0, settings.v_atapi_disable);
}

TEST_F(SimulatorAdapter, ZeroSharesItsTimeAmongActivities) {
    EXPECT_THAT(RatesOf(0), ElementsAre(50, 30, 50, 70, 50, 40, 20));
}

TEST_F(SimulatorAdapter, OneHasNoAlarmToSoundAndNoCopyBack) {
    const Adapter_Config_V2 settings = SettingsOf(1);
    EXPECT_EQ(0, settings.AlarmOn);
    EXPECT_EQ(1, settings.AutoRebuildOn);
    EXPECT_EQ(0, settings.CopyBack);
    EXPECT_EQ(1, settings.v_atapi_disable);
}

TEST_F(SimulatorAdapter, OneSharesItsTimeInItsOwnWay) {
    EXPECT_THAT(RatesOf(1), ElementsAre(30, 20, 30, 50, 30, 30, 10));
}

TEST_F(SimulatorAdapter, LeavesPortsAloneAndReservedBytesOfSettingsZero) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        EXPECT_THAT(SettingsOf(adapter).port_phy_ctrl, testing::Each(0));
        EXPECT_THAT(SettingsOf(adapter).Reserved, testing::Each(0));
    }
}

TEST_F(SimulatorAdapter, TakesMuteWhenNothingSounds) { EXPECT_EQ(0, HX_AdapterMute(0)); }

TEST_F(SimulatorAdapter, WithoutAnAlarmCannotBeMuted) { EXPECT_EQ(202, HX_AdapterMute(1)); }

}  // namespace
