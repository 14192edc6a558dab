// Flash images between a file and an adapter, the version in a BIOS image, and the file functions.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "hxfake.h"
#include "support/failing_allocations.h"
#include "support/temporary_root.h"
#include "xml_rapi_flash.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// `size` bytes of which no two that are a piece apart are equal.
std::string Bytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(1 + i % 251);
    return bytes;
}

std::size_t OpenDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// A path as the functions take it: bytes that they may change.
std::vector<HX_U8> AsField(const std::string& path) {
    std::vector<HX_U8> field(path.begin(), path.end());
    field.push_back('\0');
    return field;
}

HX_U8 Flash(HX_U8 action, const std::string& path) {
    return HX_Flash_Option(1, action, 3, AsField(path).data());
}

struct Piece {
    HX_U32 length;
    int number;
    int last;
    bool operator==(const Piece&) const = default;
};

void PrintTo(const Piece& piece, std::ostream* out) {
    *out << "piece " << piece.number << " of " << piece.length << " bytes"
         << (piece.last == 1 ? ", the last" : "");
}

class Image : public testing::Test {
protected:
    void SetUp() override { hxfake::Reset(); }
    void TearDown() override {
        EXPECT_EQ(hxfake::AnswersLeft(), 0U);
        hxfake::Reset();
    }
    std::string Path(const std::string& name = "/image") const { return root_.Path(name); }
    mode_t ModeOf(const std::string& name) const {
        struct stat status;
        return stat(Path(name).c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TemporaryRoot root_;
};

// ---- File to adapter ----

class SendImage : public Image {
protected:
    void SetUp() override {
        Image::SetUp();
        hxfake::On<&HX_Flash_Bin>().Inspect([this](HX_U8, HX_U8, HX_U8, const Flash_Data* piece) {
            pieces_.push_back({piece->DataLength, piece->PageNum, piece->isLastPage});
            sent_.append(reinterpret_cast<const char*>(piece->Data), piece->DataLength);
        });
    }
    HX_U8 Send(const std::string& bytes) {
        root_.Write("/image", bytes);
        return Flash(15, Path());
    }

    std::vector<Piece> pieces_;
    std::string sent_;
};

TEST_F(SendImage, OfTwoFullPieces) {
    EXPECT_EQ(Send(Bytes(65536)), 0);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 0}, Piece{32768, 1, 1}));
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Flash_Bin(1, 15, 3, &)", "HX_Flash_Bin(1, 15, 3, &)"));
    EXPECT_EQ(sent_, Bytes(65536));
}

TEST_F(SendImage, WithAShortLastPiece) {
    EXPECT_EQ(Send(Bytes(40000)), 0);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 0}, Piece{7232, 1, 1}));
    EXPECT_EQ(sent_, Bytes(40000));
}

TEST_F(SendImage, OfOneByte) {
    EXPECT_EQ(Send("A"), 0);
    EXPECT_THAT(pieces_, ElementsAre(Piece{1, 0, 1}));
}

TEST_F(SendImage, OfExactlyOnePiece) {
    EXPECT_EQ(Send(Bytes(32768)), 0);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 1}));
}

TEST_F(SendImage, OfOnePieceAndAByte) {
    EXPECT_EQ(Send(Bytes(32769)), 0);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 0}, Piece{1, 1, 1}));
}

TEST_F(SendImage, OfNothingFailsWithoutACall) {
    EXPECT_EQ(Send(""), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(SendImage, HasNothingButZeroesAroundTheBytes) {
    int dirty = 0;
    hxfake::On<&HX_Flash_Bin>().Inspect([&](HX_U8, HX_U8, HX_U8, const Flash_Data* piece) {
        dirty += piece->Reserved1 + piece->Reserved[0] + piece->Reserved[1];
        dirty +=
            static_cast<int>(std::count_if(piece->Data + piece->DataLength, std::end(piece->Data),
                                           [](HX_U8 byte) { return byte != 0; }));
    });
    EXPECT_EQ(Send(Bytes(40000)), 0);
    EXPECT_EQ(dirty, 0);
}

TEST_F(SendImage, EndsWithTheCodeOfThePieceThatFails) {
    hxfake::On<&HX_Flash_Bin>().Once(0).Once(9);
    EXPECT_EQ(Send(Bytes(100000)), 9);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 0}, Piece{32768, 1, 0}));
}

TEST_F(SendImage, EndsWithTheCodeOfTheLastPiece) {
    hxfake::On<&HX_Flash_Bin>().Once(0).Once(9);
    EXPECT_EQ(Send(Bytes(40000)), 9);
}

TEST_F(SendImage, IsNotLedAstrayByWhatTheControllerWrites) {
    hxfake::On<&HX_Flash_Bin>().Always(0, [](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        piece->isLastPage = piece->isLastPage == 0 ? 1 : 0;
        piece->DataLength = 0xFFFFFFFF;
        piece->PageNum = 700;
        std::memset(piece->Data, 0xEE, sizeof piece->Data);
    });
    EXPECT_EQ(Send(Bytes(70000)), 0);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 0}, Piece{32768, 1, 0}, Piece{4464, 2, 1}));
}

TEST_F(SendImage, PassesAdapterAndTypeThrough) {
    root_.Write("/image", "A");
    EXPECT_EQ(HX_Flash_Option(255, 15, 254, AsField(Path()).data()), 0);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Flash_Bin(255, 15, 254, &)"));
}

TEST_F(SendImage, LeavesTheFileAsItIs) {
    root_.Write("/image", "BIOS");
    std::filesystem::permissions(Path(), std::filesystem::perms::owner_read);
    EXPECT_EQ(Flash(15, Path()), 0);
    EXPECT_EQ(root_.Read("/image"), "BIOS");
    EXPECT_EQ(ModeOf("/image"), 0400U);
}

TEST_F(SendImage, FollowsALink) {
    root_.Write("/image", "BIOS");
    std::filesystem::create_symlink("image", Path("/link"));
    EXPECT_EQ(Flash(15, Path("/link")), 0);
    EXPECT_EQ(sent_, "BIOS");
}

TEST_F(SendImage, ThatIsMissingFails) {
    EXPECT_EQ(Flash(15, Path()), 1);
    EXPECT_FALSE(root_.Exists("/image"));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(SendImage, ThatIsNoFileFailsAndIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(Path("/pipe").c_str(), 0600), 0);
    EXPECT_EQ(Flash(15, Path("/pipe")), 1);
    EXPECT_EQ(Flash(15, Path("/")), 1);
    EXPECT_EQ(Flash(15, "/dev/zero"), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(SendImage, WithoutMemoryFails) {
    root_.Write("/image", "BIOS");
    const std::size_t descriptors = OpenDescriptors();
    const FailingAllocations no_memory;
    EXPECT_EQ(Flash(15, Path()), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
    EXPECT_EQ(OpenDescriptors(), descriptors);
}

// The low 32 bits of the length say that one piece is all.
TEST_F(SendImage, BeyondFourGiBIsNotTakenForAShortOne) {
    root_.Write("/image", "A");
    std::filesystem::resize_file(Path(), (std::uintmax_t{1} << 32) + 32768);
    hxfake::On<&HX_Flash_Bin>().Once(9);
    EXPECT_EQ(Flash(15, Path()), 9);
    EXPECT_THAT(pieces_, ElementsAre(Piece{32768, 0, 0}));
}

// An image whose pieces use up the numbers. It is a file in memory without a page of its own, so
// that 2 GiB are read at once.
class HugeImage : public Image {
protected:
    void SetUp() override {
        Image::SetUp();
        hxfake::NoteCalls(false);
        hxfake::On<&HX_Flash_Bin>().Inspect([this](HX_U8, HX_U8, HX_U8, const Flash_Data* piece) {
            last_ = {piece->DataLength, piece->PageNum, piece->isLastPage};
        });
    }
    static HX_U8 SendZeroes(off_t size) {
        const int file = memfd_create("image", MFD_CLOEXEC);
        EXPECT_EQ(ftruncate(file, size), 0);
        const HX_U8 code = Flash(15, "/proc/self/fd/" + std::to_string(file));
        close(file);
        return code;
    }
    static std::size_t CallCount() { return hxfake::On<&HX_Flash_Bin>().CallCount(); }

    Piece last_{};
};

TEST_F(HugeImage, UsesUpThePieceNumbers) {
    EXPECT_EQ(SendZeroes(off_t{1} << 31), 0);
    EXPECT_EQ(CallCount(), 65536U);
    EXPECT_EQ(last_, (Piece{32768, 65535, 1}));
}

TEST_F(HugeImage, FailsWhenThePieceNumbersAreUsedUp) {
    EXPECT_EQ(SendZeroes((off_t{1} << 31) + 1), 1);
    EXPECT_EQ(CallCount(), 65536U);
    EXPECT_EQ(last_, (Piece{32768, 65535, 0}));
}

// ---- Adapter to file ----

using PieceAnswer = std::function<void(HX_U8, HX_U8, HX_U8, Flash_Data*)>;

// What an adapter answers with one piece of its image.
PieceAnswer PieceOf(const std::string& bytes, HX_BOOLEAN last, std::optional<HX_U32> length = {}) {
    return [=](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        std::copy(bytes.begin(), bytes.end(), piece->Data);
        piece->DataLength = length.value_or(static_cast<HX_U32>(bytes.size()));
        piece->isLastPage = last;
    };
}

using ReceiveImage = Image;

TEST_F(ReceiveImage, AppendsPieceToPiece) {
    const std::string image = Bytes(40000);
    hxfake::On<&HX_Flash_Bin>()
        .Once(0, PieceOf(image.substr(0, 32768), 0))
        .Once(0, PieceOf(image.substr(32768), 1));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_EQ(root_.Read("/image"), image);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_Flash_Bin(1, 240, 3, &)", "HX_Flash_Bin(1, 240, 3, &)"));
}

TEST_F(ReceiveImage, AsksForZeroedPiecesByNumber) {
    std::vector<int> numbers;
    int dirty = 0;
    hxfake::On<&HX_Flash_Bin>().Inspect([&](HX_U8, HX_U8, HX_U8, const Flash_Data* piece) {
        numbers.push_back(piece->PageNum);
        Flash_Data expected{};
        expected.PageNum = piece->PageNum;
        dirty += std::memcmp(piece, &expected, sizeof expected) != 0;
    });
    hxfake::On<&HX_Flash_Bin>()
        .Once(0, PieceOf(Bytes(32768), 0))
        .Once(0, PieceOf("B", 0))
        .Once(0, PieceOf("C", 1));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2));
    EXPECT_EQ(dirty, 0);
}

TEST_F(ReceiveImage, MakesTheFileReadableForAllWhateverTheUmask) {
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("BIOS", 1));
    const mode_t mask = umask(077);
    EXPECT_EQ(Flash(240, Path()), 0);
    umask(mask);
    EXPECT_EQ(ModeOf("/image"), 0644U);
}

TEST_F(ReceiveImage, SetsTheModeOfAFileThatIsThere) {
    root_.Write("/image", "");
    std::filesystem::permissions(Path(), std::filesystem::perms::owner_all);
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("BIOS", 1));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_EQ(ModeOf("/image"), 0644U);
}

TEST_F(ReceiveImage, OverwritesAFileFromItsStartAndDoesNotShortenIt) {
    root_.Write("/image", "0123456789");
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("AB", 0)).Once(0, PieceOf("CD", 1));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_EQ(root_.Read("/image"), "ABCD456789");
}

TEST_F(ReceiveImage, ThatFailsAtOnceLeavesAnEmptyFile) {
    hxfake::On<&HX_Flash_Bin>().Once(9, PieceOf("BIOS", 1));
    EXPECT_EQ(Flash(240, Path()), 9);
    EXPECT_TRUE(root_.Exists("/image"));
    EXPECT_EQ(root_.Read("/image"), "");
}

TEST_F(ReceiveImage, ThatFailsLaterKeepsWhatHasCome) {
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("AB", 0)).Once(9, PieceOf("CD", 1));
    EXPECT_EQ(Flash(240, Path()), 9);
    EXPECT_EQ(root_.Read("/image"), "AB");
}

TEST_F(ReceiveImage, TakesNoMoreThanAPieceHolds) {
    hxfake::On<&HX_Flash_Bin>()
        .Once(0, PieceOf(Bytes(32768), 0, 32769))
        .Once(0, PieceOf(Bytes(32768), 1, 0xFFFFFFFF));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_EQ(root_.Read("/image"), Bytes(32768) + Bytes(32768));
}

TEST_F(ReceiveImage, MayBeEmpty) {
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("", 1));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_EQ(root_.Read("/image"), "");
}

TEST_F(ReceiveImage, EndsWhateverTrueIsSpeltAs) {
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("BIOS", 255));
    EXPECT_EQ(Flash(240, Path()), 0);
    EXPECT_THAT(hxfake::Calls(), SizeIs(1));
}

TEST_F(ReceiveImage, DoesNotReportAFailedWrite) {
    struct rlimit before;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("AB", 0)).Once(0, PieceOf("CD", 1));
    const struct rlimit three_bytes { 3, before.rlim_max };
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &three_bytes), 0);
    const HX_U8 code = Flash(240, Path());
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(root_.Read("/image"), "ABC");
}

TEST_F(ReceiveImage, IntoAFolderThatIsMissingFails) {
    EXPECT_EQ(Flash(240, Path("/missing/image")), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ReceiveImage, IntoWhatIsNoFileFailsAndIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(Path("/pipe").c_str(), 0600), 0);
    EXPECT_EQ(Flash(240, Path("/pipe")), 1);
    EXPECT_EQ(Flash(240, Path("/")), 1);
    EXPECT_EQ(Flash(240, "/dev/null"), 1);
    EXPECT_EQ(ModeOf("/pipe"), 0600U);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ReceiveImage, WithoutMemoryMakesNoFile) {
    const FailingAllocations no_memory;
    EXPECT_EQ(Flash(240, Path()), 1);
    EXPECT_FALSE(root_.Exists("/image"));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(HugeImage, OfAnAdapterThatNeverEndsIsGivenUp) {
    EXPECT_EQ(Flash(240, Path()), 1);
    EXPECT_EQ(CallCount(), 65536U);
    EXPECT_EQ(last_.number, 65535);
}

// ---- Links where an image is to go ----

class ImageLink : public Image {
protected:
    void SetUp() override {
        Image::SetUp();
        hxfake::On<&HX_Flash_Bin>().Always(0, PieceOf("BIOS", 1));
    }
    void Link(const std::string& name, const std::string& target) {
        std::filesystem::create_symlink(target, Path(name));
    }
    bool IsLink(const std::string& name) const { return std::filesystem::is_symlink(Path(name)); }
};

TEST_F(ImageLink, OfOnesOwnIsFollowed) {
    root_.Write("/image", "");
    Link("/link", Path("/image"));
    EXPECT_EQ(Flash(240, Path("/link")), 0);
    EXPECT_EQ(root_.Read("/image"), "BIOS");
    EXPECT_TRUE(IsLink("/link"));
}

TEST_F(ImageLink, BeginsAtItsOwnFolder) {
    std::filesystem::create_directories(Path("/a/b"));
    Link("/a/link", "b/image");
    EXPECT_EQ(Flash(240, Path("/a/link")), 0);
    EXPECT_EQ(root_.Read("/a/b/image"), "BIOS");
}

TEST_F(ImageLink, BesideTheWorkingFolderBeginsThere) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(Path("/"));
    Link("/link", "image");
    const HX_U8 code = Flash(240, "link");
    std::filesystem::current_path(before);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(root_.Read("/image"), "BIOS");
}

TEST_F(ImageLink, ThatLeadsNowhereMakesTheFile) {
    Link("/link", "image");
    EXPECT_EQ(Flash(240, Path("/link")), 0);
    EXPECT_EQ(root_.Read("/image"), "BIOS");
    EXPECT_EQ(ModeOf("/image"), 0644U);
}

TEST_F(ImageLink, MayLeadToAnother) {
    Link("/first", "second");
    Link("/second", "image");
    EXPECT_EQ(Flash(240, Path("/first")), 0);
    EXPECT_EQ(root_.Read("/image"), "BIOS");
}

TEST_F(ImageLink, ThatLeadsToItselfFails) {
    Link("/link", "link");
    EXPECT_EQ(Flash(240, Path("/link")), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ImageLink, ThatLeadsToNoFileFails) {
    Link("/link", ".");
    EXPECT_EQ(Flash(240, Path("/link")), 1);
    Link("/null", "/dev/null");
    EXPECT_EQ(Flash(240, Path("/null")), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ImageLink, WhoseTargetIsTooLongFails) {
    Link("/link", std::string(2000, 'x') + "/" + std::string(2090, 'x'));
    EXPECT_EQ(Flash(240, Path("/link")), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ImageLink, OfSomebodyElseIsRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a link away";
    constexpr uid_t kSomebody = 65534;
    root_.Write("/image", "precious");
    Link("/link", "image");
    Link("/mine", "link");
    ASSERT_EQ(lchown(Path("/link").c_str(), kSomebody, kSomebody), 0);
    EXPECT_EQ(Flash(240, Path("/link")), 1);
    EXPECT_EQ(Flash(240, Path("/mine")), 1);
    EXPECT_EQ(root_.Read("/image"), "precious");
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ImageLink, WhereOthersCouldHavePutItIsRefused) {
    root_.Write("/image", "precious");
    Link("/link", "image");
    ASSERT_EQ(chmod(Path("/").c_str(), 01777), 0);
    EXPECT_EQ(Flash(240, Path("/link")), 1);
    EXPECT_EQ(root_.Read("/image"), "precious");
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(ImageLink, ThatIsASecondNameWhereOthersCouldHavePutItIsRefused) {
    root_.Write("/image", "precious");
    std::filesystem::create_hard_link(Path("/image"), Path("/link"));
    ASSERT_EQ(chmod(Path("/").c_str(), 01777), 0);
    EXPECT_EQ(Flash(240, Path("/link")), 1);
    EXPECT_EQ(root_.Read("/image"), "precious");
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

// ---- Both directions ----

class BothDirections : public Image, public testing::WithParamInterface<int> {
protected:
    HX_U8 Action() const { return static_cast<HX_U8>(GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Actions, BothDirections, testing::Values(15, 240));

TEST_P(BothDirections, WithoutAPathFail) {
    EXPECT_EQ(HX_Flash_Option(1, Action(), 3, nullptr), 1);
    EXPECT_EQ(Flash(Action(), ""), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_P(BothDirections, TakeAPathThatFillsItsFieldButForTheNul) {
    std::string name = "/";
    const std::size_t rest = 255 - Path(name).size();
    name += std::string(rest, 'i');
    root_.Write(name, "BIOS");
    hxfake::On<&HX_Flash_Bin>().Once(9);
    EXPECT_EQ(Flash(Action(), Path(name)), 9);
}

TEST_P(BothDirections, NeverTakeAPathForItsPrefix) {
    std::string name = "/";
    const std::size_t rest = 256 - Path(name).size();
    name += std::string(rest, 'i');
    root_.Write(name, "BIOS");
    VX_Flash_Option record{};
    std::memcpy(record.filepath, Path(name).data(), sizeof record.filepath);
    record.reserv = 0xFFFFFFFF;
    EXPECT_EQ(HX_Flash_Option(1, Action(), 3, reinterpret_cast<HX_U8*>(record.filepath)), 1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Path("/")), {}), 1);
}

TEST_P(BothDirections, LeaveNothingOpenAndNoMemoryBehind) {
    root_.Write("/image", "BIOS");
    hxfake::On<&HX_Flash_Bin>().Once(0, PieceOf("BIOS", 1)).Once(9);
    const std::size_t descriptors = OpenDescriptors();
    const std::ptrdiff_t blocks = LiveBlocks();
    Flash(Action(), Path());
    Flash(Action(), Path());
    Flash(Action(), Path("/"));
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_EQ(LiveBlocks(), blocks);
}

// Whether the program hands `path` down to the programs that it starts.
bool IsInherited(const std::string& path) {
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry.path(), gone) != path) continue;
        const int flags = fcntl(std::stoi(entry.path().filename().string()), F_GETFD);
        return (flags & FD_CLOEXEC) == 0;
    }
    ADD_FAILURE() << path << " is not open";
    return true;
}

TEST_P(BothDirections, DoNotHandTheFileDown) {
    root_.Write("/image", "BIOS");
    bool inherited = true;
    hxfake::On<&HX_Flash_Bin>().Inspect(
        [&](HX_U8, HX_U8, HX_U8, Flash_Data*) { inherited = IsInherited(Path()); });
    hxfake::On<&HX_Flash_Bin>().Once(9);
    Flash(Action(), Path());
    EXPECT_FALSE(inherited);
}

using OtherAction = Image;

TEST_F(OtherAction, DoesNothing) {
    for (const HX_U8 action : std::initializer_list<HX_U8>{0, 1, 14, 16, 239, 241, 255}) {
        EXPECT_EQ(Flash(action, Path()), 0);
    }
    EXPECT_FALSE(root_.Exists("/image"));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(OtherAction, WithoutAPathFails) { EXPECT_EQ(HX_Flash_Option(1, 0, 3, nullptr), 1); }

// ---- HX_BIOS_Version ----

class BiosVersion : public Image {
protected:
    BiosVersion() {
        std::memset(&record_, 0xEE, sizeof record_);
        header_.assign(64, '\x77');
    }
    void Put(std::size_t at, const std::string& bytes) { header_.replace(at, bytes.size(), bytes); }
    HX_U8 Read() {
        root_.Write("/bios", header_);
        return HX_BIOS_Version(AsField(Path("/bios")).data(), &record_);
    }
    std::array<int, 4> Version() const {
        const Version_Info_CIM& version = record_.VersionInfo;
        return {version.MajorVersion, version.MinorVersion, version.RevisionNumber,
                version.BuildNumber};
    }
    bool IsUntouched() const {
        VX_BIOS_Version untouched;
        std::memset(&untouched, 0xEE, sizeof untouched);
        return std::memcmp(&record_, &untouched, sizeof untouched) == 0;
    }

    std::string header_;
    VX_BIOS_Version record_;
};

TEST_F(BiosVersion, InDigitsIsRead) {
    Put(6, "3");
    Put(8, "1");
    Put(10, "0");
    Put(12, "12");
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{3, 1, 0, 12}));
}

TEST_F(BiosVersion, InDigitsSkipsTheBytesBetween) {
    Put(6,
        "9\xFF"
        "8\xFF"
        "7\xFF"
        "65");
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{9, 8, 7, 65}));
}

TEST_F(BiosVersion, InBinaryIsRead) {
    Put(6, {1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{0x0201, 0x0403, 0x0605, 0x0807}));
}

TEST_F(BiosVersion, IsBinaryBelowTheDigitZero) {
    Put(6, {0x2F, 0, 1, 0, 2, 0, 3, 0});
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{0x2F, 1, 2, 3}));
}

TEST_F(BiosVersion, IsInDigitsFromTheDigitZeroOn) {
    Put(6, {0x30, 0, 0x31, 0, 0x32, 0, 0x30, 0x33});
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{0, 1, 2, 3}));
}

TEST_F(BiosVersion, InWhatIsNoDigitWrapsAtSixteenBits) {
    Put(6, {'\xFF', 0, '\0', 0, '\x2F', 0, '\0', '\0'});
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{207, 65488, 65535, 65008}));
}

TEST_F(BiosVersion, InBinaryHoldsTheLargestNumbers) {
    Put(6, {0, '\xFF', '\xFF', '\xFF', '\xFF', '\xFF', '\xFF', '\xFF'});
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{0xFF00, 0xFFFF, 0xFFFF, 0xFFFF}));
}

TEST_F(BiosVersion, ComesWithTheSubsystemIDs) {
    Put(32, {'\x34', '\xF2', '\x78', '\xF6'});
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(record_.SubVenID, 0xF234);
    EXPECT_EQ(record_.SubDevID, 0xF678);
}

TEST_F(BiosVersion, LeavesTheOtherFieldsAsTheyAre) {
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(record_.reserv, 0xEEEEEEEE);
    EXPECT_EQ(record_.RetVal, 0xEE);
    EXPECT_EQ(record_.filepath[0], '\xEE');
}

TEST_F(BiosVersion, OfALongerImageIsInItsHeader) {
    Put(6, {1, 0, 2, 0, 3, 0, 4, 0});
    header_ += Bytes(100000);
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Version(), (std::array{1, 2, 3, 4}));
}

TEST_F(BiosVersion, OfAShortHeaderFails) {
    header_.resize(63);
    EXPECT_EQ(Read(), 1);
    EXPECT_TRUE(IsUntouched());
    header_.clear();
    EXPECT_EQ(Read(), 1);
    EXPECT_TRUE(IsUntouched());
}

TEST_F(BiosVersion, MayBeReadIntoTheRecordThatHoldsThePath) {
    Put(6, {1, 0, 2, 0, 3, 0, 4, 0});
    root_.Write("/bios", header_);
    record_ = {};
    const std::string path = Path("/bios");
    std::memcpy(record_.filepath, path.data(), path.size());
    EXPECT_EQ(HX_BIOS_Version(reinterpret_cast<HX_U8*>(record_.filepath), &record_), 0);
    EXPECT_EQ(Version(), (std::array{1, 2, 3, 4}));
    EXPECT_EQ(record_.filepath, path);
}

TEST_F(BiosVersion, WithoutAPathFails) {
    EXPECT_EQ(HX_BIOS_Version(nullptr, &record_), 1);
    EXPECT_EQ(HX_BIOS_Version(AsField("").data(), &record_), 1);
    EXPECT_TRUE(IsUntouched());
}

TEST_F(BiosVersion, OfAPathThatFillsItsFieldFails) {
    std::string name = "/";
    const std::size_t rest = 256 - Path(name).size();
    name += std::string(rest, 'i');
    root_.Write(name, header_);
    record_ = {};
    std::memcpy(record_.filepath, Path(name).data(), sizeof record_.filepath);
    EXPECT_EQ(HX_BIOS_Version(reinterpret_cast<HX_U8*>(record_.filepath), &record_), 1);
    EXPECT_EQ(Version(), (std::array{0, 0, 0, 0}));
}

TEST_F(BiosVersion, OfWhatIsNoFileFailsAndIsNotWaitedFor) {
    ASSERT_EQ(mkfifo(Path("/pipe").c_str(), 0600), 0);
    for (const char* const name : {"/pipe", "/", "/missing"}) {
        EXPECT_EQ(HX_BIOS_Version(AsField(Path(name)).data(), &record_), 1) << name;
    }
    EXPECT_TRUE(IsUntouched());
}

TEST_F(BiosVersion, LeavesNothingOpen) {
    const std::size_t descriptors = OpenDescriptors();
    EXPECT_EQ(Read(), 0);
    header_.resize(10);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(OpenDescriptors(), descriptors);
}

// ---- File functions ----

// A file of ten bytes, open for reading and writing.
class FileFunctions : public Image {
protected:
    void SetUp() override {
        Image::SetUp();
        root_.Write("/file", "0123456789");
        file_ = open(Path("/file").c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_GE(file_, 0);
    }
    void TearDown() override {
        close(file_);
        Image::TearDown();
    }
    off_t Position() const { return lseek(file_, 0, SEEK_CUR); }
    void Resize(std::uintmax_t size) { std::filesystem::resize_file(Path("/file"), size); }

    int file_ = -1;
};

TEST_F(FileFunctions, WriteToFileWritesWhereTheFileStands) {
    HX_U8 bytes[] = {'A', 'B', 'C'};
    lseek(file_, 8, SEEK_SET);
    EXPECT_EQ(WriteToFile(file_, bytes, 3), 0);
    EXPECT_EQ(root_.Read("/file"), "01234567ABC");
}

TEST_F(FileFunctions, WriteToFileWritesNothingWhenThereIsNothing) {
    EXPECT_EQ(WriteToFile(file_, nullptr, 0), 0);
    EXPECT_EQ(root_.Read("/file"), "0123456789");
}

TEST_F(FileFunctions, WriteToFileTellsWhenItCannotWrite) {
    HX_U8 bytes[] = {'A'};
    const int read_only = open(Path("/file").c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_EQ(WriteToFile(read_only, bytes, 1), 1);
    close(read_only);
    EXPECT_EQ(WriteToFile(-1, bytes, 1), 1);
}

TEST_F(FileFunctions, WriteToFileTellsWhenItWritesLess) {
    HX_U8 bytes[] = {'A', 'B'};
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
    while (write(ends[1], "x", 1) == 1) {
    }
    EXPECT_EQ(WriteToFile(ends[1], bytes, 2), 1);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(FileFunctions, ReadFromFileReadsFromWhereTheFileStands) {
    HX_U8 bytes[4] = {};
    HX_U32 count = 77;
    lseek(file_, 2, SEEK_SET);
    EXPECT_EQ(ReadFromFile(file_, bytes, 3, &count), 0);
    EXPECT_EQ(count, 3U);
    EXPECT_THAT(bytes, ElementsAre('2', '3', '4', 0));
    EXPECT_EQ(Position(), 5);
}

TEST_F(FileFunctions, ReadFromFileReadsLessAtTheEnd) {
    HX_U8 bytes[4] = {};
    HX_U32 count = 77;
    lseek(file_, 8, SEEK_SET);
    EXPECT_EQ(ReadFromFile(file_, bytes, 4, &count), 0);
    EXPECT_EQ(count, 2U);
    EXPECT_THAT(bytes, ElementsAre('8', '9', 0, 0));
    EXPECT_EQ(ReadFromFile(file_, bytes, 4, &count), 0);
    EXPECT_EQ(count, 0U);
}

TEST_F(FileFunctions, ReadFromFileReadsNothingFromWhatIsNotOpen) {
    HX_U8 bytes[4] = {};
    HX_U32 count = 77;
    EXPECT_EQ(ReadFromFile(-1, bytes, 4, &count), 0);
    EXPECT_EQ(count, 0U);
}

TEST_F(FileFunctions, GetFileLenLeavesTheFileWhereItStands) {
    lseek(file_, 4, SEEK_SET);
    EXPECT_EQ(GetFileLen(file_), 10U);
    EXPECT_EQ(Position(), 4);
}

TEST_F(FileFunctions, GetFileLenHoldsThirtyTwoBits) {
    Resize(0xC0000001);
    EXPECT_EQ(GetFileLen(file_), 0xC0000001U);
    Resize(0xFFFFFFFE);
    EXPECT_EQ(GetFileLen(file_), 0xFFFFFFFEU);
}

TEST_F(FileFunctions, GetFileLenOfALongerFileIsTheLargestNumber) {
    Resize(std::uintmax_t{1} << 32);
    EXPECT_EQ(GetFileLen(file_), 0xFFFFFFFFU);
    Resize((std::uintmax_t{1} << 32) + 10);
    EXPECT_EQ(GetFileLen(file_), 0xFFFFFFFFU);
}

TEST_F(FileFunctions, GetFileLenOfWhatIsNotOpenIsTheLargestNumber) {
    EXPECT_EQ(GetFileLen(-1), 0xFFFFFFFFU);
}

TEST_F(FileFunctions, FileSeekMovesFromStartPositionAndEnd) {
    EXPECT_EQ(FileSeek(file_, 4, SEEK_SET), 4U);
    EXPECT_EQ(FileSeek(file_, -1, SEEK_CUR), 3U);
    EXPECT_EQ(FileSeek(file_, -2, SEEK_END), 8U);
    EXPECT_EQ(FileSeek(file_, 5, SEEK_END), 15U);
    EXPECT_EQ(Position(), 15);
}

TEST_F(FileFunctions, FileSeekToTheStartIsAtZero) {
    EXPECT_EQ(FileSeek(file_, 5, SEEK_SET), 5U);
    EXPECT_EQ(FileSeek(file_, 0, SEEK_SET), 0U);
}

TEST_F(FileFunctions, FileSeekTellsWhenItFails) {
    lseek(file_, 3, SEEK_SET);
    EXPECT_EQ(FileSeek(file_, -1, SEEK_SET), 0xFFFFFFFFU);
    EXPECT_EQ(FileSeek(file_, 0, 99), 0xFFFFFFFFU);
    EXPECT_EQ(FileSeek(-1, 0, SEEK_SET), 0xFFFFFFFFU);
    EXPECT_EQ(Position(), 3);
}

TEST_F(FileFunctions, FileSeekHoldsThirtyTwoBits) {
    Resize(0xC0000001);
    EXPECT_EQ(FileSeek(file_, 0, SEEK_END), 0xC0000001U);
    Resize(std::uintmax_t{1} << 33);
    EXPECT_EQ(FileSeek(file_, 0, SEEK_END), 0xFFFFFFFFU);
}

}  // namespace
