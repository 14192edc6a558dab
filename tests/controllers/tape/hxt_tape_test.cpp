#include "tape/hxt_tape.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace hxtape {
namespace {

constexpr char kHead[] = "vexorapi-tape 1\nrecorded 1700000000\nanonymous no\n";

std::string ComplaintAbout(const std::string& text) {
    try {
        ParseTape(text);
    } catch (const TapeError& error) {
        return error.what();
    }
    return "none";
}

TEST(ATape, IsReadAsItWasWritten) {
    const TapeCall call{"HX_LD_Delete", std::string("\0\x05\0\xff", 4), 207, "gone"};
    const std::string text = HeadText(1700000000, true) + LineOf(call);
    EXPECT_EQ(
        "vexorapi-tape 1\nrecorded 1700000000\nanonymous yes\n"
        "call HX_LD_Delete 000500ff 207 676f6e65\n",
        text);
    EXPECT_EQ((Tape{1700000000, true, {call}}), ParseTape(text));
}

TEST(ATape, WritesNoBytesAsADash) {
    const TapeCall call{"HX_API_Initialize", "", 0, ""};
    EXPECT_EQ("call HX_API_Initialize - 0 -\n", LineOf(call));
    EXPECT_EQ(call, ParseTape(kHead + LineOf(call)).calls.at(0));
}

struct Broken {
    const char* text;  // behind the head
    const char* complaint;
};
constexpr Broken kBroken[] = {
    {"call HX_LD_Delete 00 0 -", "line 4 has no end"},
    {"\n", "line 4 does not begin with \"call \""},
    {"call HX_LD_Delete 00 0\n", "line 4 has fewer fields than a call"},
    {"call HX_LD_Delete 0 0 -\n", "line 4 has bytes that are cut"},
    {"call HX_LD_Delete  0 -\n", "line 4 has bytes that are cut"},
    {"call HX_LD_Delete 0G 0 -\n", "line 4 has bytes that are no hexadecimal digits"},
    {"call HX_LD_Delete 0A 0 -\n", "line 4 has bytes that are no hexadecimal digits"},
    {"call HX_LD_Delete 00 256 -\n", "line 4 has a number that is none or too large"},
    {"call HX_LD_Delete 00 -1 -\n", "line 4 has a number that is none or too large"},
    {"call system 00 0 -\n", "line 4 names no function of a controller library"},
    {"call HX_LD_Delete 00 0 - -\n", "line 4 has bytes that are cut"},
};

TEST(ATape, ThatIsBrokenIsRefusedWithItsLine) {
    for (const Broken& each : kBroken) {
        EXPECT_EQ(each.complaint, ComplaintAbout(std::string(kHead) + each.text)) << each.text;
    }
    EXPECT_EQ("none", ComplaintAbout(kHead));
    EXPECT_EQ("it is no tape", ComplaintAbout(""));
    EXPECT_EQ("it is no tape", ComplaintAbout("<xml/>\n"));
    EXPECT_EQ("it is a tape of another version than 1", ComplaintAbout("vexorapi-tape 2\n"));
    EXPECT_EQ("line 2 is missing", ComplaintAbout("vexorapi-tape 1\n"));
    EXPECT_EQ("line 3 says neither yes nor no",
              ComplaintAbout("vexorapi-tape 1\nrecorded 0\nanonymous perhaps\n"));
}

// One to three bytes of the text changed, left out or put in.
std::string Damaged(std::string text, const std::string& characters, std::mt19937& random) {
    for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) {
        const std::size_t at = random() % text.size();
        switch (random() % 3) {
            case 0:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 1:
                text.erase(at, 1 + random() % 4);
                break;
            default:
                text.insert(at, 1, characters[random() % characters.size()]);
                break;
        }
    }
    return text;
}

TEST(ATape, OfAnyBytesIsReadOrRefused) {
    const std::string sound = std::string(kHead) + "call HX_LD_Delete 000500ff 207 676f6e65\n" +
                              "call HX_API_Initialize - 0 -\n";
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same inputs every time
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string complaint = ComplaintAbout(Damaged(sound, sound, random));
        EXPECT_NE("", complaint);
        if (complaint != "none") ++refused;
    }
    EXPECT_GT(refused, 10000);
}

TEST(ATape, ThatIsNoRegularFileIsRefused) {
    EXPECT_THROW(ReadTape("/dev/null"), TapeError);
    EXPECT_THROW(ReadTape("/"), TapeError);
    EXPECT_THROW(ReadTape("/nonexistent/tape"), TapeError);
}

}  // namespace
}  // namespace hxtape
