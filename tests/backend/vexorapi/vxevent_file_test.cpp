// The event store's files: their bytes, the arithmetic of the ring, and files that are not as they
// should be.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "vxevent_golden.h"
#include "vxevent_store.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

using EventFile = EventStore;

// The text field of a slot, all of its bytes.
std::string StoredText(const std::string& file, std::size_t slot) {
    return file.substr(512 + 192 * slot + 72, 120);
}

// ---- Bytes --------------------------------------------------------------------------------------

TEST_F(EventFile, HoldsTwoEventsByteForByte) {
    Event created = MakeEvent(1, 2, 7);
    created.TimeStamp = 1700000000;
    Event error = MakeEvent(2, 36, 8);
    error.TimeStamp = 1700000001;
    error.DeviceID = 17;
    error.Severity = 6;
    error.Params[0] = 0x28;
    error.Params[1] = 0x12345678;
    error.Params[3] = 0xFFFFFFFF;
    error.SenseDataLength = 3;
    error.SenseData[0] = 0x70;
    error.SenseData[2] = 0x05;
    CheckIn({created, error});
    EXPECT_EQ(GoldenBytes("vxevent_two_events.hex"), root_.Read(kEventFile));
    EXPECT_EQ(GoldenBytes("vxevent_two_events_seqnum.hex"), root_.Read(kSeqNoFile));
}

TEST_F(EventFile, HoldsAWrappedRingByteForByte) {
    SetCapacity(2);
    for (HX_U16 i = 0; i < 3; ++i) {
        Event event = MakeEvent(9, 16 + i, 10 + HX_U32{i});
        event.Severity = 1;
        event.DeviceID = 0;
        event.AdapterID = 1;
        CheckIn({event}, 1);
    }
    EXPECT_EQ(GoldenBytes("vxevent_wrapped.hex"), root_.Read(kEventFile));
}

// The bytes that a hexdump in the text of `file` shows, lines of "*" repeating the one before.
std::string DumpedBytes(const std::string& file) {
    std::string bytes;
    std::string line;
    bool repeat = false;
    for (std::istringstream text(GoldenText(file)); std::getline(text, line);) {
        if (line == "*") repeat = true;
        if (line.find_first_not_of("0123456789abcdef") != std::min<std::size_t>(line.size(), 8)) {
            continue;
        }
        const std::size_t offset = std::stoul(line, nullptr, 16);
        const std::string last = bytes.size() < 16 ? "" : bytes.substr(bytes.size() - 16);
        for (; repeat && bytes.size() < offset; bytes += last) {
        }
        repeat = false;
        EXPECT_EQ(offset, bytes.size());
        std::istringstream row(line.substr(8));
        for (std::string byte; row >> byte && byte.size() == 2;) {
            bytes += static_cast<char>(std::stoi(byte, nullptr, 16));
        }
    }
    return bytes;
}

TEST_F(EventFile, IsTheOneThatTheDocumentationDumps) {
    EXPECT_EQ(GoldenBytes("vxevent_two_events.hex"),
              DumpedBytes("../../../../docs/event-store.md"));
}

TEST_F(EventFile, IsEmptyAnd112BytesLongWhenCreated) {
    EXPECT_EQ(0, VX_EvFile_Load(kForUpdate));
    EXPECT_EQ(1, VX_EvFile_Create(g_VX_EventExt.Filename));
    VX_EvFile_Close();
    std::string expected = std::string("Ombra Event File v0.1") + std::string(91, '\0');
    expected[36] = '\x50';  // 50000 is 0xC350
    expected[37] = '\xC3';
    EXPECT_EQ(expected, root_.Read(kEventFile));
}

// Service and front end are different users.
TEST_F(EventFile, AndTheNumbersHaveTheModeThatTheUmaskLeaves) {
    const mode_t before = umask(0);
    CheckIn(DiskEvents(1, 1));
    umask(before);
    for (const char* const file : {g_VX_EventExt.Filename, g_VX_EventExt.SeqNoFilename}) {
        struct stat status {};
        ASSERT_EQ(0, stat(file, &status));
        EXPECT_EQ(mode_t{0666}, status.st_mode & mode_t{07777});
    }
}

TEST_F(EventFile, KeepsTheEventAsItCame) {
    Event event;
    std::memset(&event, 0xA5, sizeof event);
    CheckIn({event});
    const std::string file = root_.Read(kEventFile);
    EXPECT_EQ(std::string(64, '\xA5'), file.substr(520, 64));
}

TEST_F(EventFile, PadsTheTextWithZeros) {
    CheckIn({MakeEvent(2, 1, 1)});
    const std::string text = "Thu Jan  1 00:00:00 1970 EVT_CODE_HD_ONLINE|[INFO]|3| \n";
    EXPECT_EQ(text + std::string(120 - text.size(), '\0'), StoredText(root_.Read(kEventFile), 0));
}

TEST_F(EventFile, LeavesNothingOfALongerTextBehindAShorterOne) {
    SetCapacity(1);  // two slots
    Event error = MakeEvent(2, 37, 1);
    CheckIn({error, error, error}, 0);
    CheckIn({MakeEvent(5, 0, 2), MakeEvent(5, 0, 3)});
    const std::string text = "Thu Jan  1 00:00:00 1970 \n";
    EXPECT_EQ(text + std::string(120 - text.size(), '\0'), StoredText(root_.Read(kEventFile), 0));
}

TEST_F(EventFile, WritesNothingOfSlotsThatItHasReadBefore) {
    CheckIn(DiskEvents(1, 2));
    const std::string whole = root_.Read(kEventFile);
    std::string other = whole;
    other.replace(512, 8, 8, '\xEE');
    other.replace(704, 8, 8, '\xEE');
    root_.Write(kEventFile, other);
    Get(2, 0, 0);
    CheckIn(DiskEvents(3, 2));
    EXPECT_EQ(whole.substr(512, 8), root_.Read(kEventFile).substr(896, 8));
    EXPECT_EQ(whole.substr(704, 8), root_.Read(kEventFile).substr(1088, 8));
}

TEST_F(EventFile, SequenceNumberFileIs96BytesWithoutSerialNumbers) {
    CheckIn({MakeEvent(2, 1, 0x01020304)}, 2);
    EXPECT_EQ(std::string(8, '\0') + "\x04\x03\x02\x01" + std::string(84, '\0'),
              root_.Read(kSeqNoFile));
}

// ---- Configuration --------------------------------------------------------------------------

TEST_F(EventFile, HasTheConfiguredCapacityWhenCreated) {
    SetCapacity(7);
    CheckIn({MakeEvent(2, 1, 1)});
    EXPECT_EQ(7u, StoredHeader().Capacity);
}

TEST_F(EventFile, KeepsItsCapacityWhateverIsConfiguredLater) {
    SetCapacity(2);
    CheckIn(DiskEvents(1, 1));
    SetCapacity(9);
    CheckIn(DiskEvents(2, 5));
    EXPECT_EQ(2u, StoredHeader().Capacity);
    EXPECT_EQ(2u, StoredHeader().NumOfEvent);
}

TEST_F(EventFile, FollowsTheConfigurationAndTheSequenceNumberFileDoesNot) {
    Configure("Filename=\"" + root_.Path("/elsewhere.ev") + "\"");
    CheckIn(DiskEvents(1, 1));
    EXPECT_EQ(704u, root_.Read("/elsewhere.ev").size());
    EXPECT_FALSE(root_.Exists(kEventFile));
    EXPECT_EQ(96u, root_.Read(kSeqNoFile).size());
}

TEST_F(EventFile, ReadsTheConfigurationOnce) {
    SetCapacity(5);
    CheckIn({});
    VX_EvLogHeader header;
    VX_EvHeader_Init(&header);
    EXPECT_EQ(5u, header.Capacity);
    root_.Write("/vexorapi.ini", R"(<c><EventLogConfig type="config" MaxNumOfEvent="6"/></c>)");
    VX_EvHeader_Init(&header);
    EXPECT_EQ(5u, header.Capacity);
    VX_EvInit();
    VX_EvHeader_Init(&header);
    EXPECT_EQ(6u, header.Capacity);
}

TEST_F(EventFile, IsNeitherOpenedNorCutWhenItsPathIsTooLong) {
    const std::string folder = root_.Path("");
    setenv("VEXORAPI_ROOT", std::string(4080, 'x').c_str(), 1);
    VX_EvInit();
    EXPECT_EQ(0, VX_EvFile_Load(kForUpdate));
    EXPECT_STREQ("", g_VX_EventExt.Filename);
    CheckIn(DiskEvents(1, 1));
    EXPECT_EQ(-1, g_VX_EventExt.fileEv);
    EXPECT_EQ(0, VX_EvSeqNoFile_Load(kForUpdate));
    EXPECT_STREQ("", g_VX_EventExt.SeqNoFilename);
    setenv("VEXORAPI_ROOT", folder.c_str(), 1);
}

// ---- Opening ------------------------------------------------------------------------------------

TEST_F(EventFile, IsReadOnlyForReadersAndClosedOnExec) {
    CheckIn(DiskEvents(1, 1));
    ASSERT_EQ(1, VX_EvFile_Load(kForReading));
    EXPECT_EQ(O_RDONLY, fcntl(g_VX_EventExt.fileEv, F_GETFL) & O_ACCMODE);
    EXPECT_EQ(FD_CLOEXEC, fcntl(g_VX_EventExt.fileEv, F_GETFD));
    ASSERT_EQ(1, VX_EvSeqNoFile_Load(kForReading));
    EXPECT_EQ(O_RDONLY, fcntl(g_VX_EventExt.fileSeqNo, F_GETFL) & O_ACCMODE);
    EXPECT_EQ(FD_CLOEXEC, fcntl(g_VX_EventExt.fileSeqNo, F_GETFD));
    VX_EvFile_Close();
    VX_EvSeqNoFile_Close();
}

TEST_F(EventFile, IsWritableForUpdateAndClosedOnExec) {
    CheckIn(DiskEvents(1, 1));
    ASSERT_EQ(1, VX_EvFile_Load(kForUpdate));
    EXPECT_EQ(O_RDWR, fcntl(g_VX_EventExt.fileEv, F_GETFL) & O_ACCMODE);
    EXPECT_EQ(FD_CLOEXEC, fcntl(g_VX_EventExt.fileEv, F_GETFD));
    VX_EvFile_Close();
}

TEST_F(EventFile, IsNotReadAgainWhileItIsOpen) {
    CheckIn(DiskEvents(1, 1));
    ASSERT_EQ(1, VX_EvFile_Load(kForReading));
    g_VX_EventExt.EvLogHeader.NumOfEvent = 77;
    EXPECT_EQ(1, VX_EvFile_Load(kForReading));
    EXPECT_EQ(77u, g_VX_EventExt.EvLogHeader.NumOfEvent);
    VX_EvFile_Close();
    ASSERT_EQ(1, VX_EvFile_Load(kForReading));
    EXPECT_EQ(1u, g_VX_EventExt.EvLogHeader.NumOfEvent);
    VX_EvFile_Close();
}

TEST_F(EventFile, SequenceNumbersAreNotReadAgainWhileTheirFileIsOpen) {
    CheckIn(DiskEvents(9, 1));
    ASSERT_EQ(1, VX_EvSeqNoFile_Load(kForReading));
    g_VX_EventExt.EvSeqNo.SequenceNo[0] = 77;
    EXPECT_EQ(1, VX_EvSeqNoFile_Load(kForReading));
    EXPECT_EQ(77u, g_VX_EventExt.EvSeqNo.SequenceNo[0]);
    VX_EvSeqNoFile_Close();
}

TEST_F(EventFile, MissingLeavesAnEmptyHeaderAndTheCounters) {
    g_VX_EventExt.EvLogHeader.NumOfEvent = 5;
    g_VX_EventExt.HXChangeCounters.LD_Change = 6;
    EXPECT_EQ(0, VX_EvFile_Load(kForReading));
    EXPECT_STREQ("Ombra Event File v0.1", g_VX_EventExt.EvLogHeader.Magic);
    EXPECT_EQ(0u, g_VX_EventExt.EvLogHeader.NumOfEvent);
    EXPECT_EQ(50000u, g_VX_EventExt.EvLogHeader.Capacity);
    EXPECT_EQ(6u, g_VX_EventExt.HXChangeCounters.LD_Change);
}

TEST_F(EventFile, ThatCannotBeCreatedLeavesTheOpenOneOpen) {
    CheckIn(DiskEvents(1, 1));
    ASSERT_EQ(1, VX_EvFile_Load(kForUpdate));
    const int open_file = g_VX_EventExt.fileEv;
    EXPECT_EQ(0, VX_EvFile_Create(root_.Path("/no/such/folder/x.ev").c_str()));
    EXPECT_EQ(open_file, g_VX_EventExt.fileEv);
    VX_EvFile_Close();
}

TEST_F(EventFile, CreatedAnewTakesThePlaceOfTheOpenOne) {
    CheckIn(DiskEvents(1, 3));
    const auto before = OpenDescriptors();
    ASSERT_EQ(1, VX_EvFile_Load(kForUpdate));
    ASSERT_EQ(1, VX_EvFile_Create(g_VX_EventExt.Filename));
    VX_EvFile_Close();
    EXPECT_EQ(before, OpenDescriptors());
    EXPECT_EQ(112u, root_.Read(kEventFile).size());
}

// ---- Foreign and short files ------------------------------------------------------------------

std::string ForeignFile() {
    std::string bytes(112, '\x11');
    bytes.replace(0, 22, "Ombra Event File v0.0\0", 22);
    return bytes;
}

TEST_F(EventFile, OfAnotherMagicIsDeclinedButStaysInMemory) {
    root_.Write(kEventFile, ForeignFile());
    EXPECT_EQ(0, VX_EvFile_Load(kForReading));
    EXPECT_EQ(-1, g_VX_EventExt.fileEv);
    EXPECT_EQ(0x11111111u, g_VX_EventExt.EvLogHeader.SeqStart);
    EXPECT_EQ(0x11111111u, g_VX_EventExt.HXChangeCounters.ARRAY_Change);
}

TEST_F(EventFile, OfAnotherMagicLeaksNoDescriptor) {
    root_.Write(kEventFile, ForeignFile());
    const auto before = OpenDescriptors();
    for (int i = 0; i < 1000; ++i) EXPECT_EQ(0, VX_EvFile_Load(kForReading));
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(EventFile, OfAnotherMagicIsMadeAnewWithItsCounters) {
    root_.Write(kEventFile, ForeignFile() + std::string(10000, 'x'));
    CheckIn(DiskEvents(1, 1));
    const std::string file = root_.Read(kEventFile);
    EXPECT_EQ(704u, file.size());
    EXPECT_EQ(1u, StoredHeader().NumOfEvent);
    EXPECT_EQ(0u, StoredHeader().SeqStart);
    // What the file held, and the count of what lay behind the event in the poll buffer.
    EXPECT_EQ(std::string("\x12\x11\x11\x11"), file.substr(52, 4));  // Adapter_Change
    EXPECT_EQ(std::string("\x11\x11\x11\x11"), file.substr(56, 4));  // HD_Change
    EXPECT_EQ(std::string("\x12\x11\x11\x11"), file.substr(96, 4));  // Whatever_Change
}

TEST_F(EventFile, MagicIsComparedWithItsNulAndNoFurther) {
    std::string bytes =
        std::string("Ombra Event File v0.1\0xxxxxxxxxx", 32) + std::string(80, '\0');
    root_.Write(kEventFile, bytes);
    EXPECT_EQ(1, VX_EvFile_Load(kForReading));
    VX_EvFile_Close();
    bytes[21] = ' ';
    root_.Write(kEventFile, bytes);
    EXPECT_EQ(0, VX_EvFile_Load(kForReading));
}

TEST_F(EventFile, ShorterThanItsHeaderIsDeclinedAndMadeAnew) {
    CheckIn(DiskEvents(1, 1));
    const std::string whole = root_.Read(kEventFile);
    for (std::size_t length = 0; length < 52; ++length) {
        root_.Write(kEventFile, whole.substr(0, length));
        EXPECT_EQ(0, VX_EvFile_Load(kForReading)) << length;
        CheckIn(DiskEvents(static_cast<HX_U32>(100 + length), 1));
        EXPECT_EQ(704u, root_.Read(kEventFile).size()) << length;
        EXPECT_EQ(1u, StoredHeader().NumOfEvent) << length;
    }
}

TEST_F(EventFile, ShorterThanItsHeaderLeavesNoStaleIndices) {
    CheckIn(DiskEvents(1, 9));
    root_.Write(kEventFile, root_.Read(kEventFile).substr(0, 40));
    HX_U32 first = 1;
    HX_U32 count = 1;
    VX_EvGetInfo(&first, &count);
    EXPECT_EQ(9u, count);  // the file still tells NumOfEvent
    EXPECT_EQ(0u, first);
    EXPECT_EQ(0u, g_VX_EventExt.EvLogHeader.End);
}

TEST_F(EventFile, CutBehindItsHeaderYieldsTheCountersItHas) {
    CheckIn(DiskEvents(1, 1));
    root_.Write(kEventFile, root_.Read(kEventFile).substr(0, 60));
    g_VX_EventExt.HXChangeCounters.Adapter_Change = 500;
    g_VX_EventExt.HXChangeCounters.HD_Change = 500;
    g_VX_EventExt.HXChangeCounters.MDD_Change = 500;
    const VX_HX_ChangeCounters counters = Counters();
    EXPECT_EQ(1u, counters.Adapter_Change);
    EXPECT_EQ(1u, counters.HD_Change);
    EXPECT_EQ(500u, counters.MDD_Change);
}

TEST_F(EventFile, CutBehindItsHeaderDeliversEventsOfZeros) {
    CheckIn(DiskEvents(1, 3));
    root_.Write(kEventFile, root_.Read(kEventFile).substr(0, 704 + 8 + 4));
    const Page page = Get(3, 0, 0);
    ASSERT_EQ(3u, page.n);
    EXPECT_EQ(1u, page.events[0].SequenceNo);
    EXPECT_EQ(2u, page.events[1].Class);  // the bytes that there are
    EXPECT_EQ(0u, page.events[1].SequenceNo);
    EXPECT_TRUE(IsZero(page.events[2]));
}

TEST_F(EventFile, ShortSequenceNumberFileYieldsTheNumbersItHas) {
    CheckIn(DiskEvents(5, 1));
    VX_EvInit();
    root_.Write(kSeqNoFile, std::string("\x09\0\0\0", 4));
    ASSERT_EQ(1, VX_EvSeqNoFile_Load(kForUpdate));
    VX_EvSeqNoFile_Close();
    EXPECT_THAT(g_VX_EventExt.EvSeqNo.SequenceNo, ElementsAre(9, 0, 0, 0));
}

TEST_F(EventFile, SequenceNumberFileIsMadeWhenItIsMissing) {
    CheckIn(DiskEvents(5, 1));
    std::filesystem::remove(root_.Path(kSeqNoFile));
    CheckIn(DiskEvents(3, 1));
    EXPECT_EQ(std::string("\x03") + std::string(95, '\0'), root_.Read(kSeqNoFile));
    EXPECT_EQ(2u, StoredHeader().NumOfEvent);
}

// ---- The ring ---------------------------------------------------------------------------------

TEST_F(EventFile, GivesUpItsOldestWhenItIsFull) {
    SetCapacity(3);
    CheckIn(DiskEvents(100, 4));
    const VX_EvLogHeader header = StoredHeader();
    EXPECT_EQ(3u, header.NumOfEvent);
    EXPECT_EQ(1u, header.Start);
    EXPECT_EQ(0u, header.End);
    EXPECT_EQ(1u, header.SeqStart);
    const Page page = Get(10, 0, 0);
    EXPECT_EQ(Range(101, 3), Numbers(page.events));
    EXPECT_EQ(1u, page.s);
    EXPECT_EQ(3u, page.e);
}

TEST_F(EventFile, SequenceNumbersOutsideTheRingHaveNoOffset) {
    g_VX_EventExt.EvLogHeader.SeqStart = 10;
    g_VX_EventExt.EvLogHeader.NumOfEvent = 5;
    EXPECT_EQ(kNoOffset, VX_EvSeqToOffset(9));
    EXPECT_EQ(0u, VX_EvSeqToOffset(10));
    EXPECT_EQ(4u, VX_EvSeqToOffset(14));
    EXPECT_EQ(kNoOffset, VX_EvSeqToOffset(15));
    EXPECT_EQ(kNoOffset, VX_EvSeqToOffset(0xFFFFFFFF));
}

TEST_F(EventFile, SequenceNumbersUpToTheLastOf32BitsAreFound) {
    g_VX_EventExt.EvLogHeader.SeqStart = 0xFFFFFFF0;
    g_VX_EventExt.EvLogHeader.NumOfEvent = 100;
    EXPECT_EQ(15u, VX_EvSeqToOffset(0xFFFFFFFF));
    EXPECT_EQ(kNoOffset, VX_EvSeqToOffset(0));
}

TEST_F(EventFile, ReadBySequenceNumberEndsAtTheNewest) {
    CheckIn(DiskEvents(100, 5));
    ASSERT_EQ(1, VX_EvFile_Load(kForReading));
    std::vector<Event> events(10, MakeEvent(0, 0, 7));
    EXPECT_EQ(2u, VX_EvFile_LoadEventsBySeq(events.data(), 3, 10));
    EXPECT_EQ(0u, VX_EvFile_LoadEventsBySeq(events.data() + 2, 5, 8));
    VX_EvFile_Close();
    EXPECT_THAT(Numbers(events), ElementsAre(103, 104, 7, 7, 7, 7, 7, 7, 7, 7));
}

TEST_F(EventFile, ReadOverTheRingsEndIsTwoBlocks) {
    g_VX_EventExt.EvLogHeader = {"", 20, 20, 18, 17, 0};
    EXPECT_EQ(3u, VX_EvGetMaxReadContinusBlock(0, 10));
    EXPECT_EQ(7u, VX_EvGetMaxReadContinusBlock(3, 7));
}

TEST_F(EventFile, ReadBlockIsNoLargerThanTheStore) {
    g_VX_EventExt.EvLogHeader = {"", 4, 20, 0, 4, 0};
    EXPECT_EQ(4u, VX_EvGetMaxReadContinusBlock(0, 10));
}

TEST_F(EventFile, WriteBlockEndsBeforeTheLastSlot) {
    g_VX_EventExt.EvLogHeader.Capacity = 5;
    const auto block = [](HX_U32 end, HX_U32 count) {
        g_VX_EventExt.EvLogHeader.End = end;
        return VX_EvGetMaxWriteContinusBlock(count);
    };
    EXPECT_EQ(5u, block(0, 50));
    EXPECT_EQ(3u, block(0, 3));
    EXPECT_EQ(2u, block(3, 50));
    EXPECT_EQ(1u, block(4, 50));
    EXPECT_EQ(1u, block(5, 50));  // the last slot is a block of its own
    EXPECT_EQ(1u, block(0, 0));
}

TEST_F(EventFile, WriteBlockOfTheSmallestRingIsOne) {
    g_VX_EventExt.EvLogHeader.Capacity = 1;
    EXPECT_EQ(1u, VX_EvGetMaxWriteContinusBlock(50));
    g_VX_EventExt.EvLogHeader.End = 1;
    EXPECT_EQ(1u, VX_EvGetMaxWriteContinusBlock(50));
}

// ---- What is stored -----------------------------------------------------------------------------

TEST_F(EventFile, StoresAnEventOnce) {
    CheckIn(DiskEvents(1, 3));
    CheckIn(DiskEvents(2, 3));
    EXPECT_EQ(Range(1, 4), Numbers(Get(10, 0, 0).events));
}

TEST_F(EventFile, SkipsWithoutLeavingASlotFree) {
    CheckIn({MakeEvent(2, 1, 5), MakeEvent(2, 1, 5), MakeEvent(2, 1, 4), MakeEvent(2, 1, 6)});
    EXPECT_THAT(Numbers(Get(10, 0, 0).events), ElementsAre(5, 6));
    EXPECT_EQ(512u + 2 * 192, root_.Read(kEventFile).size());
}

TEST_F(EventFile, RemembersNumbersAdapterByAdapter) {
    hxfake::QueueEvents(0, DiskEvents(7, 1));
    hxfake::QueueEvents(3, DiskEvents(7, 1));
    VX_EvFile_CheckIn(4);
    EXPECT_THAT(Numbers(Get(10, 0, 0).events), ElementsAre(7, 7));
    EXPECT_THAT(g_VX_EventExt.EvSeqNo.SequenceNo, ElementsAre(7, 0, 0, 7));
}

TEST_F(EventFile, RemembersTheNumberOverARestart) {
    CheckIn(DiskEvents(9, 1));
    VX_EvShutdown();
    VX_EvInit();
    CheckIn(DiskEvents(8, 3));
    EXPECT_EQ(Range(9, 2), Numbers(Get(10, 0, 0).events));
}

TEST_F(EventFile, StoresAnEventWithoutANumberAndThenAnyOther) {
    CheckIn({MakeEvent(2, 1, 9), MakeEvent(2, 1, 0), MakeEvent(2, 1, 1), MakeEvent(2, 1, 1)});
    EXPECT_THAT(Numbers(Get(10, 0, 0).events), ElementsAre(9, 0, 1));
    EXPECT_EQ(1u, g_VX_EventExt.EvSeqNo.SequenceNo[0]);
}

TEST_F(EventFile, StoresAnAdapterFoundWhateverItsNumber) {
    CheckIn({MakeEvent(2, 1, 9), MakeEvent(0, 9, 3), MakeEvent(0, 9, 100), MakeEvent(2, 1, 10)});
    EXPECT_THAT(Numbers(Get(10, 0, 0).events), ElementsAre(9, 3, 100, 10));
    EXPECT_EQ(10u, g_VX_EventExt.EvSeqNo.SequenceNo[0]);
}

TEST_F(EventFile, StoresNothingOfAnAdapterBeyondTheFourth) {
    CheckIn(DiskEvents(1, 1));
    ASSERT_EQ(1, VX_EvFile_Load(kForUpdate));
    const Event event = MakeEvent(2, 1, 50);
    VX_EvFile_SaveEvents(4, &event, 1);
    VX_EvFile_Close();
    EXPECT_EQ(1u, g_VX_EventExt.EvLogHeader.NumOfEvent);
    EXPECT_EQ(704u, root_.Read(kEventFile).size());
}

// ---- Headers that lie --------------------------------------------------------------------------

TEST_F(EventFile, OfTheLargestCapacityIsReadBeyondFourGigabytes) {
    WriteHeader(10, 0xFFFFFFFF, 0xFFFFFFFF, 0, 0);  // slot 0xFFFFFFFF, then slot 0
    const std::string slot =
        std::string(8, '\0') + std::string(64, '\x22') + std::string(120, '\0');
    root_.Write(kEventFile, root_.Read(kEventFile) + std::string(400, '\0') + slot);
    const Page page = Get(3, 0, 0);
    ASSERT_EQ(3u, page.n);
    EXPECT_TRUE(IsZero(page.events[0]));
    EXPECT_EQ(0x22222222u, page.events[1].SequenceNo);
    EXPECT_TRUE(IsZero(page.events[2]));
}

TEST_F(EventFile, OfCapacityZeroIsOneSlot) {
    WriteHeader(0, 0, 0, 0, 0);
    CheckIn(DiskEvents(1, 3));
    EXPECT_EQ(704u, root_.Read(kEventFile).size());
    EXPECT_EQ(0u, StoredHeader().NumOfEvent);
    EXPECT_EQ(3u, StoredHeader().SeqStart);
    EXPECT_THAT(Get(10, 0, 0).events, IsEmpty());
}

TEST_F(EventFile, ThatClaimsMoreThanItsCapacityReadsNoMoreThanAsked) {
    WriteHeader(0xFFFFFFFF, 1, 0, 0, 0);
    std::vector<Event> events(2001);
    std::memset(&events[2000], 0x5A, sizeof(Event));
    HX_U32 n = 2000;
    HX_U32 s = 0;
    HX_U32 e = 0;
    VX_EvGet(&n, &s, &e, events.data());
    EXPECT_EQ(2000u, n);
    EXPECT_EQ(0x5A5A5A5Au, events[2000].SequenceNo);
    events.pop_back();
    EXPECT_THAT(events, Each(testing::Truly(IsZero)));
}

TEST_F(EventFile, IsWrittenFromItsStartWhenTheEndLiesBeyondTheRing) {
    WriteHeader(0, 5, 0, 6, 0);
    CheckIn(DiskEvents(1, 2));
    EXPECT_EQ(512u + 2 * 192, root_.Read(kEventFile).size());
    EXPECT_EQ(2u, StoredHeader().End);
    WriteHeader(0, 5, 0, 0xFFFFFFFF, 0);
    CheckIn(DiskEvents(3, 2));
    EXPECT_EQ(2u, StoredHeader().End);
}

// A damaged header lists one entry and lets the ring give up one for each of five events. What is
// in the file until the new header is written must list none, not nearly 2^32.
TEST_F(EventFile, GivesUpNoMoreEntriesThanItsHeaderLists) {
    WriteHeader(1, 10, 1, 0, 7);
    ASSERT_EQ(1, VX_EvFile_Load(kForUpdate));
    const std::vector<Event> events = DiskEvents(1, 5);
    VX_EvFile_SaveEvents(0, events.data(), 5);
    VX_EvFile_Close();
    const VX_EvLogHeader header = StoredHeader();
    EXPECT_EQ(0u, header.NumOfEvent);
    EXPECT_EQ(2u, header.Start);
    EXPECT_EQ(8u, header.SeqStart);
}

TEST_F(EventFile, IsReadInsideTheRingWhenTheStartLiesBeyondIt) {
    CheckIn(DiskEvents(1, 3));
    std::string file = root_.Read(kEventFile);
    file[36] = 3;  // capacity 3, four slots
    file[37] = 0;
    file.replace(40, 4, "\xFE\xFF\xFF\xFF");  // 0xFFFFFFFE modulo 4 is slot 2
    root_.Write(kEventFile, file);
    const Page page = Get(3, 0, 0);
    EXPECT_THAT(Numbers(page.events), ElementsAre(3, 0, 1));
}

// ---- Files that are none ------------------------------------------------------------------------

// Runs every operation on the store. What it does not do is what counts: block, crash, leak.
void UseStore() {
    const auto before = OpenDescriptors();
    hxfake::QueueEvents(0, DiskEvents(1, 2));
    VX_EvFile_CheckIn(1);
    HX_U32 n = 2;
    HX_U32 s = 0;
    HX_U32 e = 0;
    Event events[2];
    VX_EvGet(&n, &s, &e, events);
    VX_EvGetInfo(&s, &e);
    VX_HX_ChangeCounters counters;
    VX_EvGetChangeCounters(&counters);
    VX_EvFile_Reset();
    EXPECT_EQ(before, OpenDescriptors());
}

TEST_F(EventFile, ThatIsAPipeBlocksNobody) {
    ASSERT_EQ(0, mkfifo(root_.Path(kEventFile).c_str(), 0600));
    ASSERT_EQ(0, mkfifo(root_.Path(kSeqNoFile).c_str(), 0600));
    UseStore();
    EXPECT_TRUE(std::filesystem::is_fifo(root_.Path(kEventFile)));
}

TEST_F(EventFile, ThatIsAFolderStaysOne) {
    std::filesystem::create_directory(root_.Path(kEventFile));
    UseStore();
    EXPECT_TRUE(std::filesystem::is_directory(root_.Path(kEventFile)));
    EXPECT_FALSE(root_.Exists(kSeqNoFile));
}

// In a folder where others can put links to files that they may not write themselves.
class SharedFolder : public EventStore, public testing::WithParamInterface<const char*> {
protected:
    SharedFolder() {
        root_.Write("/real", kPrecious);
        chmod(root_.Path("/opt/kestrel/raid/db").c_str(), 01777);
    }
    void ExpectUntouched() const {
        UseStore();
        EXPECT_EQ(kPrecious, root_.Read("/real"));
    }

    const std::string kPrecious = std::string(600, '\0');  // no number is remembered in it
};

TEST_P(SharedFolder, HasNoStoreBehindASymbolicLink) {
    std::filesystem::create_symlink(root_.Path("/real"), root_.Path(GetParam()));
    ExpectUntouched();
}

TEST_P(SharedFolder, HasNoStoreInAFileOfTwoNames) {
    std::filesystem::create_hard_link(root_.Path("/real"), root_.Path(GetParam()));
    ExpectUntouched();
}

TEST_P(SharedFolder, HasAStoreOfItsOwnFiles) {
    CheckIn(DiskEvents(1, 2));
    CheckIn(DiskEvents(3, 2));
    EXPECT_EQ(Range(1, 4), Numbers(Get(4, 0, 0).events));
}

INSTANTIATE_TEST_SUITE_P(Files, SharedFolder, testing::Values(kEventFile, kSeqNoFile),
                         [](const auto& test) {
                             return test.param == kEventFile ? "Events" : "SequenceNumbers";
                         });

TEST_F(EventFile, BehindALinkOfItsOwnUserIsUsed) {
    std::filesystem::create_directory(root_.Path("/data"));
    std::filesystem::create_symlink("../../../../data/events", root_.Path(kEventFile));
    CheckIn(DiskEvents(1, 2));
    EXPECT_EQ(Range(1, 2), Numbers(Get(2, 0, 0).events));
    EXPECT_TRUE(std::filesystem::is_symlink(root_.Path(kEventFile)));
    EXPECT_TRUE(root_.Exists("/data/events"));
}

TEST_F(EventFile, ThatIsAFullDeviceLosesItsEvents) {
    Configure("Filename=\"/dev/full\"");
    UseStore();
    EXPECT_EQ(0u, Get(0, 0, 0).n);
}

TEST_F(EventFile, IsNotMadeWhenItsFolderIsMissing) {
    std::filesystem::remove(root_.Path("/opt/kestrel/raid/db"));
    UseStore();
    EXPECT_FALSE(root_.Exists("/opt/kestrel/raid/db"));
}

// A full disk cannot be had here, but a limit on the size of files refuses writes just so.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_;
};

TEST_F(EventFile, OnAFullDiskCountsEventsThatReadAsZeros) {
    {
        const SizeLimit limit(512);
        CheckIn(DiskEvents(1, 2));
    }
    EXPECT_EQ(2u, StoredHeader().NumOfEvent);
    EXPECT_THAT(Get(2, 0, 0).events, Each(testing::Truly(IsZero)));
    CheckIn(DiskEvents(3, 1));
    EXPECT_THAT(Numbers(Get(3, 0, 0).events), ElementsAre(0, 0, 3));
}

}  // namespace
