// The flash: images erased, written in pieces, judged and read back.
#include "calls/hxsim_flash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_bios_image.h"
#include "model/hxsim_codes.h"
#include "support/folders.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

std::string SampleFile() {
    std::ifstream file(std::string(kSourceFolder) + "/examples/sample-bios.bin", std::ios::binary);
    std::string image{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(40960u, image.size()) << "the example is not where this test's source says";
    image.resize(40960);
    return image;
}

class Flash : public MixedMachineTest {
protected:
    static std::unique_ptr<Flash_Data> Piece(HX_U16 number, const std::string& bytes, bool last) {
        auto piece = std::make_unique<Flash_Data>();
        piece->PageNum = number;
        piece->isLastPage = last;
        piece->DataLength = static_cast<HX_U32>(bytes.size());
        std::memcpy(piece->Data, bytes.data(), std::min(bytes.size(), sizeof piece->Data));
        return piece;
    }

    Status Erase(HX_U8 type) { return EraseImage(adapter(), kNow, type); }

    Status Write(HX_U8 type, HX_U16 number, const std::string& bytes, bool last) {
        return WritePiece(adapter(), kNow, type, *Piece(number, bytes, last));
    }

    void WriteAll(HX_U8 type, const std::string& image) {
        for (std::size_t at = 0; at < image.size(); at += 32768) {
            const std::string bytes = image.substr(at, 32768);
            ASSERT_EQ(0, Write(type, static_cast<HX_U16>(at / 32768), bytes,
                               at + bytes.size() == image.size()));
        }
    }

    Status Read(HX_U8 type, HX_U16 number, std::string& image) {
        const auto piece = Piece(number, "", false);
        const Status status = ReadPiece(adapter(), type, *piece);
        if (status == Status::kSuccess) {
            image.append(reinterpret_cast<const char*>(piece->Data), piece->DataLength);
        }
        return status;
    }

    std::string ReadAll(HX_U8 type) {
        std::string image;
        for (HX_U16 number = 0; Read(type, number, image) == Status::kSuccess;) ++number;
        return image;
    }
};

constexpr HX_U8 kBios = 1, kFirmware = 2;

// ---- Erasing ----

TEST_F(Flash, HoldsTheSampleAtFirst) { EXPECT_EQ(SampleBios(adapter().info), ReadAll(kBios)); }

TEST_F(Flash, ErasedImageIsDamaged) {
    EXPECT_EQ(0, Erase(kBios));
    EXPECT_EQ(0, adapter().info.boot_rom_img_health);
    EXPECT_EQ(0, adapter().info.img_health);
    EXPECT_EQ(1, adapter().info.firmware_img_health);
    EXPECT_THAT(EventsWithParams(), ElementsAre("10/0 of 1 1 0 0 0"));
}

TEST_F(Flash, ErasesOnlyImagesThatThereAre) {
    const std::string before = Everything();
    ExpectRefused(Status::kBadAction, Erase(0), before);
    ExpectRefused(Status::kBadAction, Erase(77), before);
    ExpectRefused(Status::kNoImage, Erase(NumberOf(Image::kAutoload)), before);
}

// ---- Writing ----

TEST_F(Flash, WrittenImageIsReadBack) {
    const std::string image = SampleFile();
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, image);
    EXPECT_EQ(image, ReadAll(kBios));
    EXPECT_EQ(1, adapter().info.boot_rom_img_health);
    EXPECT_EQ(1, adapter().info.img_health);
}

TEST_F(Flash, BiosVersionFollowsTheImage) {
    ASSERT_EQ(0, Erase(kBios));
    EXPECT_EQ(27, adapter().info.BIOSVersion.BuildNumber);
    WriteAll(kBios, SampleFile());
    EXPECT_EQ(3, adapter().info.BIOSVersion.MajorVersion);
    EXPECT_EQ(2, adapter().info.BIOSVersion.MinorVersion);
    EXPECT_EQ(0, adapter().info.BIOSVersion.RevisionNumber);
    EXPECT_EQ(28, adapter().info.BIOSVersion.BuildNumber);
}

TEST_F(Flash, BiosVersionInDigitsIsUnderstood) {
    std::string image = SampleBios(adapter().info);
    const std::string digits("4\0002\0001\00035", 8);
    int sum = 0;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        sum += digits[i] - image[6 + i];
        image[6 + i] = digits[i];
    }
    image.back() = static_cast<char>(image.back() - sum);
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, image);
    EXPECT_EQ(4, adapter().info.BIOSVersion.MajorVersion);
    EXPECT_EQ(2, adapter().info.BIOSVersion.MinorVersion);
    EXPECT_EQ(1, adapter().info.BIOSVersion.RevisionNumber);
    EXPECT_EQ(35, adapter().info.BIOSVersion.BuildNumber);
}

TEST_F(Flash, TellsOfAnImageThatWasWritten) {
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, SampleFile());
    EXPECT_THAT(EventsWithParams(), ElementsAre("10/0 of 1 1 0 0 0", "10/1 of 1 1 40960 0 0"));
}

TEST_F(Flash, DamagedImageIsNotHealthyAndNotReadBack) {
    std::string image = SampleFile();
    image[5000] = static_cast<char>(image[5000] + 1);
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, image);
    EXPECT_EQ(0, adapter().info.boot_rom_img_health);
    EXPECT_EQ(27, adapter().info.BIOSVersion.BuildNumber);
    EXPECT_THAT(Events(), ElementsAre("10/0 of 1", "10/1 of 1", "10/2 of 1"));
    std::string read;
    EXPECT_EQ(Status::kBadImage, Read(kBios, 0, read));
}

TEST_F(Flash, ImageOfAnotherAdapterIsDamaged) {
    Adapter_Info other = adapter().info;
    other.SubDevID = 2;
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, SampleBios(other));
    EXPECT_FALSE(adapter().images[0].healthy);
}

TEST_F(Flash, DamagedImageIsMadeGoodByAnotherOne) {
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, "nothing of use");
    ASSERT_EQ(0, Erase(kBios));
    WriteAll(kBios, SampleFile());
    EXPECT_TRUE(adapter().images[0].healthy);
}

TEST_F(Flash, FirmwareIsTakenAsItIs) {
    ASSERT_EQ(0, Erase(kFirmware));
    WriteAll(kFirmware, "firmware");
    EXPECT_EQ("firmware", ReadAll(kFirmware));
    EXPECT_EQ(1, adapter().info.firmware_img_health);
}

TEST_F(Flash, TwoMebibytesFitAndNotAByteMore) {
    ASSERT_EQ(0, Erase(kFirmware));
    const std::string whole(32768, 'x');
    for (HX_U16 number = 0; number < 63; ++number) {
        ASSERT_EQ(0, Write(kFirmware, number, whole, false));
    }
    ASSERT_EQ(0, Write(kFirmware, 63, whole, false));
    const std::string before = Everything();
    ExpectRefused(Status::kBadPiece, Write(kFirmware, 64, "x", true), before);
}

// ---- Refusals ----

TEST_F(Flash, IsErasedBeforeItIsWritten) {
    const std::string before = Everything();
    ExpectRefused(Status::kNotErased, Write(kBios, 0, "x", true), before);
}

TEST_F(Flash, TakesPiecesInTheirOrder) {
    ASSERT_EQ(0, Erase(kFirmware));
    std::string before = Everything();
    ExpectRefused(Status::kBadPiece, Write(kFirmware, 1, std::string(32768, 'x'), false), before);
    ASSERT_EQ(0, Write(kFirmware, 0, std::string(32768, 'x'), false));
    before = Everything();
    ExpectRefused(Status::kBadPiece, Write(kFirmware, 0, std::string(32768, 'x'), false), before);
}

TEST_F(Flash, TakesWholePiecesBeforeTheLast) {
    ASSERT_EQ(0, Erase(kFirmware));
    const std::string before = Everything();
    ExpectRefused(Status::kBadPiece, Write(kFirmware, 0, std::string(32767, 'x'), false), before);
    ExpectRefused(Status::kBadPiece, Write(kFirmware, 0, "", true), before);
    ExpectRefused(Status::kBadPiece, Write(kFirmware, 0, std::string(32769, 'x'), true), before);
}

TEST_F(Flash, HasNoImageThatIsErasedOrNeverWasThere) {
    std::string read;
    EXPECT_EQ(Status::kNoImage, Read(NumberOf(Image::kAutoload), 0, read));
    EXPECT_EQ(Status::kNoImage, Read(kFirmware, 0, read));  // there, and nobody can read it
    EXPECT_EQ(Status::kNoImage, Write(NumberOf(Image::kAutoload), 0, "x", true));
    ASSERT_EQ(0, Erase(kBios));
    EXPECT_EQ(Status::kNoImage, Read(kBios, 0, read));
    ASSERT_EQ(0, Write(kBios, 0, std::string(32768, 'x'), false));
    EXPECT_EQ(Status::kNoImage, Read(kBios, 0, read));
}

TEST_F(Flash, EndsBehindItsLastPiece) {
    std::string read;
    EXPECT_EQ(0, Read(kBios, 1, read));
    EXPECT_EQ(8192u, read.size());
    EXPECT_EQ(Status::kNoPiece, Read(kBios, 2, read));
    EXPECT_EQ(Status::kNoPiece, Read(kBios, 65535, read));
}

}  // namespace
}  // namespace hxsim
