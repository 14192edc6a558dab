// The version registry: what is built in, and what the event service's version file makes of it.
#include "vexorapi_version.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <string>
#include <vector>

#include "support/temporary_root.h"

namespace {

using Numbers = std::vector<int>;  // major, minor, OEM, build

Numbers Product() {
    return {productVersionMajor, productVersionMinor, productVersionOEM, productVersionBuild};
}
Numbers Php() {
    return {php_vexorapiVersionMajor, php_vexorapiVersionMinor, php_vexorapiVersionOEM,
            php_vexorapiVersionBuild};
}
Numbers Library() {
    return {vexorapiVersionMajor, vexorapiVersionMinor, vexorapiVersionOEM, vexorapiVersionBuild};
}
Numbers EventSvc() {
    return {eventSvcVersionMajor, eventSvcVersionMinor, eventSvcVersionOEM, eventSvcVersionBuild};
}

class Versions : public testing::Test {
protected:
    void SetUp() override {
        STORE_KEY(PRODUCT, 0, 0, 0, 0);
        STORE_KEY(PHP_VEXORAPI, 0, 0, 0, 0);
        STORE_KEY(VEXORAPI, 0, 0, 0, 0);
        STORE_KEY(HXRAIDSVC, 91, 92, 93, 94);
    }

    // The event service's numbers after its file held `bytes`.
    Numbers Read(const std::string& bytes) const {
        root_.Write("/hxraidver.dat", bytes);
        getEventSvcVersion();
        return EventSvc();
    }

    TemporaryRoot root_;
};

// ---- The registry ----

TEST_F(Versions, BuiltInOnesAreStoredByInitialisation) {
    VX_VER_INIT();
    EXPECT_EQ((Numbers{1, 0, 0, 16}), Product());
    EXPECT_EQ((Numbers{1, 0, 0, 14}), Php());
    EXPECT_EQ((Numbers{1, 2, 0, 2}), Library());
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
}

TEST_F(Versions, AreStoredPerModule) {
    STORE_KEY(PRODUCT, 1, 2, 3, 4);
    STORE_KEY(PHP_VEXORAPI, 5, 6, 7, 8);
    STORE_KEY(VEXORAPI, 9, 10, 11, 12);
    STORE_KEY(HXRAIDSVC, 13, 14, 15, 16);
    EXPECT_EQ((Numbers{1, 2, 3, 4}), Product());
    EXPECT_EQ((Numbers{5, 6, 7, 8}), Php());
    EXPECT_EQ((Numbers{9, 10, 11, 12}), Library());
    EXPECT_EQ((Numbers{13, 14, 15, 16}), EventSvc());
}

TEST_F(Versions, OfUnknownModulesAreIgnored) {
    for (const int module : {INT_MIN, -1, 0, 5, INT_MAX}) STORE_KEY(module, 1, 2, 3, 4);
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Product());
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Php());
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Library());
    EXPECT_EQ((Numbers{91, 92, 93, 94}), EventSvc());
}

TEST_F(Versions, ModulesAreNumberedFromOne) {
    EXPECT_EQ(1, PRODUCT);
    EXPECT_EQ(2, PHP_VEXORAPI);
    EXPECT_EQ(3, VEXORAPI);
    EXPECT_EQ(4, HXRAIDSVC);
}

// ---- The version file ----

using VersionFile = Versions;

TEST_F(VersionFile, AbsentMeansTheBuiltInVersion) {
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
}

TEST_F(VersionFile, HoldsFourNumbersJoinedByDots) {
    EXPECT_EQ((Numbers{2, 1, 0, 35}), Read("2.1.0.35\n"));
}

TEST_F(VersionFile, NeedsNoLineEnd) { EXPECT_EQ((Numbers{2, 1, 0, 35}), Read("2.1.0.35")); }

TEST_F(VersionFile, LeavesTheOtherModulesAlone) {
    Read("2.1.0.35\n");
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Product());
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Php());
    EXPECT_EQ((Numbers{0, 0, 0, 0}), Library());
}

TEST_F(VersionFile, WithTwoNumbersGivesMajorAndBuild) {
    EXPECT_EQ((Numbers{3, 92, 93, 4}), Read("3.4"));
}

TEST_F(VersionFile, WithOneNumberGivesTheBuild) {
    EXPECT_EQ((Numbers{91, 92, 93, 12}), Read("12\n"));
}

TEST_F(VersionFile, EmptyGivesBuildZero) { EXPECT_EQ((Numbers{91, 92, 93, 0}), Read("")); }

TEST_F(VersionFile, StoresTheNumberOfAFourthDotNowhere) {
    EXPECT_EQ((Numbers{1, 2, 3, 6}), Read("1.2.3.4.5.6"));
}

TEST_F(VersionFile, EndingWithADotGivesBuildZero) {
    EXPECT_EQ((Numbers{1, 2, 3, 0}), Read("1.2.3."));
}

TEST_F(VersionFile, EmptyFieldsAreZero) { EXPECT_EQ((Numbers{0, 0, 0, 0}), Read("...")); }

TEST_F(VersionFile, ReadsNumbersBehindBlanksAndSigns) {
    EXPECT_EQ((Numbers{1, -2, 3, 4}), Read(" 1.\n-2.\t+3. 4 "));
}

TEST_F(VersionFile, ReadsANumberUpToTheFirstOtherCharacter) {
    EXPECT_EQ((Numbers{1, 0, 3, 4}), Read("1a9.b2.3 3.4\r\n"));
}

TEST_F(VersionFile, ReadsANumberUpToANul) {
    EXPECT_EQ((Numbers{1, 2, 3, 4}), Read(std::string("1.2\0009.3.4\0", 10)));
}

TEST_F(VersionFile, SkipsBytesThatLookLikeItsEnd) {
    EXPECT_EQ((Numbers{12, 2, 3, 45}), Read("1\xFF"
                                            "2.2.3.\xFF"
                                            "4\xFF"
                                            "5"));
}

TEST_F(VersionFile, TakesOtherHighBytesAsCharacters) {
    EXPECT_EQ((Numbers{1, 2, 3, 4}), Read("1\xFE"
                                          "2.2.3.4\x80"));
}

TEST_F(VersionFile, KeepsFiftyCharactersOfAField) {
    EXPECT_EQ((Numbers{7, 2, 3, 4}), Read(std::string(49, '0') + "7.2.3.4"));
}

TEST_F(VersionFile, DropsTheFiftyFirstCharacterOfAField) {
    EXPECT_EQ((Numbers{0, 2, 3, 4}), Read(std::string(50, '0') + "7.2.3.4"));
}

TEST_F(VersionFile, DropsTheFiftyFirstCharacterOfTheBuild) {
    EXPECT_EQ((Numbers{1, 2, 3, 0}), Read("1.2.3." + std::string(50, '0') + "7"));
}

TEST_F(VersionFile, CutsLargeNumbersToTheLargestInt) {
    EXPECT_EQ((Numbers{2147483647, 2147483647, 2147483647, 2147483647}),
              Read("2147483647.2147483648.4294967297.99999999999999999999"));
}

TEST_F(VersionFile, CutsSmallNumbersToTheSmallestInt) {
    EXPECT_EQ((Numbers{INT_MIN, INT_MIN, INT_MIN, 4}),
              Read("-2147483648.-2147483649.-99999999999999999999.4"));
}

TEST_F(VersionFile, ReadsBehindAFieldOfAHundredThousandDigits) {
    EXPECT_EQ((Numbers{0, 2, 3, 4}), Read(std::string(100000, '0') + ".2.3.4"));
}

TEST_F(VersionFile, WithAHundredThousandDotsKeepsTheFirstThreeNumbers) {
    EXPECT_EQ((Numbers{1, 2, 3, 9}), Read("1.2.3" + std::string(100000, '.') + "9"));
}

TEST_F(VersionFile, IsReadToItsFirstMebibyte) {
    const std::string digits(1048574, '0');
    EXPECT_EQ((Numbers{0, 92, 93, 5}), Read(digits + ".56.7"));
}

TEST_F(VersionFile, OfHugeSizeIsNotReadToItsEnd) {
    root_.Write("/hxraidver.dat", "1.2.3.4\n");
    // Nearly all of it a hole: it takes no room on the disk, and minutes to read.
    ASSERT_EQ(0, truncate(root_.Path("/hxraidver.dat").c_str(), off_t{1} << 40));
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 2, 3, 4}), EventSvc());
}

TEST_F(VersionFile, IsReadAfreshEveryTime) {
    EXPECT_EQ((Numbers{1, 2, 3, 4}), Read("1.2.3.4"));
    EXPECT_EQ((Numbers{5, 6, 7, 8}), Read("5.6.7.8"));
    std::filesystem::remove(root_.Path("/hxraidver.dat"));
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
}

TEST_F(VersionFile, IsFollowedThroughALink) {
    root_.Write("/real.dat", "1.2.3.4");
    std::filesystem::create_symlink(root_.Path("/real.dat"), root_.Path("/hxraidver.dat"));
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 2, 3, 4}), EventSvc());
}

TEST_F(VersionFile, ThatIsAFolderCountsAsAbsent) {
    std::filesystem::create_directory(root_.Path("/hxraidver.dat"));
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
}

TEST_F(VersionFile, ThatIsAFifoCountsAsAbsentWithoutWaiting) {
    ASSERT_EQ(0, mkfifo(root_.Path("/hxraidver.dat").c_str(), 0600));
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
}

TEST_F(VersionFile, ThatLinksToAnEndlessDeviceCountsAsAbsent) {
    std::filesystem::create_symlink("/dev/zero", root_.Path("/hxraidver.dat"));
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
}

TEST_F(VersionFile, PathIsKept) {
    getEventSvcVersion();
    EXPECT_EQ(root_.Path("/hxraidver.dat"), m_VerFile);
}

TEST_F(VersionFile, WithAPathTooLongForItsFieldCountsAsAbsent) {
    setenv("VEXORAPI_ROOT", std::string(500, 'x').c_str(), 1);
    getEventSvcVersion();
    EXPECT_EQ((Numbers{1, 0, 0, 7}), EventSvc());
    EXPECT_STREQ("", m_VerFile);
}

TEST_F(VersionFile, LeavesNoDescriptorBehind) {
    const auto open_descriptors = [] {
        const std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    const auto before = open_descriptors();
    Read("1.2.3.4");
    EXPECT_EQ(before, open_descriptors());
}

}  // namespace
