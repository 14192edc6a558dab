// The writer against the reference writer: the same calls give the same bytes wherever the cursor
// stands, above all over the last 6000 bytes of the buffer, where pieces begin to be dropped.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

#include "XMLWriter.h"
#include "XMLWriter_document.h"
#include "reference_writer.h"

namespace {

constexpr std::uint32_t kPositions = 6000;

// The real document and the reference's, side by side.
struct Pair {
    Document real;
    Document reference;

    void Place(std::uint32_t room, std::int16_t depth) const {
        for (const Document* doc : {&real, &reference}) {
            doc->LeaveRoom(room);
            XMLWR_Doc* const it = *doc;
            it->Depth = depth;
            std::memset(it->Buf + it->CurPos, '#', kCapacity + 1 - it->CurPos);
        }
    }

    // Same depth, same cursor, same bytes from `from` on and in the 64 bytes before it.
    testing::AssertionResult SameFrom(std::uint32_t from) const {
        if (real->Depth != reference->Depth) {
            return testing::AssertionFailure()
                   << "depth " << real->Depth << " instead of " << reference->Depth;
        }
        if (real->CurPos != reference->CurPos) {
            return testing::AssertionFailure()
                   << "cursor " << real->CurPos << " instead of " << reference->CurPos;
        }
        const std::uint32_t first = from < 64 ? 0 : from - 64;
        if (real.Text(first) != reference.Text(first)) {
            return testing::AssertionFailure() << "text\n"
                                               << real.Text(from) << "\ninstead of\n"
                                               << reference.Text(from);
        }
        return testing::AssertionSuccess();
    }
};

// ---- any calls, in any order -------------------------------------------------------------------

enum class Kind {
    Start,
    CharData,
    Number,
    End,
    Tabs,
    NewLine,
    Sprintf,
    MemCpy,
    CopyOnly,
    NoAdvance,
    kCount
};

struct Call {
    Kind kind{};
    HX_U16 flags{};
    std::string name;
    std::string text;
    unsigned number{};
};

class Dice {
public:
    explicit Dice(std::uint32_t seed) : engine_(seed * 2654435761u + 1) {}

    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(engine_() % limit);
    }

    std::string Text(std::uint32_t longest) {
        std::string text(Below(longest + 1), ' ');
        for (char& byte : text) byte = static_cast<char>('!' + Below(90));
        return text;
    }

    Call Roll() {
        Call call;
        call.kind = static_cast<Kind>(Below(static_cast<std::uint32_t>(Kind::kCount)));
        call.flags = static_cast<HX_U16>(Below(8));
        // Mostly short, now and then as long as a piece may be or longer.
        const bool rare = Below(40) == 0;
        call.name = Text(rare ? 1100 : 20);
        call.text = Text(rare ? 600 : 40);
        if (call.kind == Kind::Sprintf && rare) call.text = Text(1100);
        if (call.kind == Kind::MemCpy && rare) call.text = Text(3000);
        call.number = Below(0xFFFFFFFF) >> Below(32);
        return call;
    }

private:
    std::minstd_rand engine_;
};

// The two writers, function by function.
struct Real {
    static constexpr auto ElmtStartPrintf = XMLWR_ElmtStartPrintf;
    static constexpr auto ElmtCharData = XMLWR_ElmtCharData;
    static constexpr auto ElmtEnd = XMLWR_ElmtEnd;
    static constexpr auto PrintTabs = XMLWR_PrintTabs;
    static constexpr auto PrintNewLine = XMLWR_PrintNewLine;
    static constexpr auto Sprintf = XMLWR_Sprintf;
    static constexpr auto MemCpy = XMLWR_MemCpy;
    static constexpr auto AddCurPos = XMLWR_AddCurPos;
};
struct Reference {
    static constexpr auto ElmtStartPrintf = reference::ElmtStartPrintf;
    static constexpr auto ElmtCharData = reference::ElmtCharData;
    static constexpr auto ElmtEnd = reference::ElmtEnd;
    static constexpr auto PrintTabs = reference::PrintTabs;
    static constexpr auto PrintNewLine = reference::PrintNewLine;
    static constexpr auto Sprintf = reference::Sprintf;
    static constexpr auto MemCpy = reference::MemCpy;
    static constexpr auto AddCurPos = reference::AddCurPos;
};

template <class Writer>
int Apply(XMLWR_Doc* doc, const Call& call) {
    const char* const name = call.name.c_str();
    const char* const text = call.text.c_str();
    const auto length = static_cast<HX_U16>(call.text.size());
    int result = 0;
    switch (call.kind) {
        case Kind::Start:
            return Writer::ElmtStartPrintf(doc, call.flags, name, " %s=\"%u\"", text, call.number);
        case Kind::CharData:
            return Writer::ElmtCharData(doc, call.flags, "%s", text);
        case Kind::Number:
            return Writer::ElmtCharData(doc, call.flags, "%u ", call.number);
        case Kind::End:
            return Writer::ElmtEnd(doc, call.flags, name);
        case Kind::Tabs:
            Writer::PrintTabs(doc);
            return 0;
        case Kind::NewLine:
            Writer::PrintNewLine(doc);
            return 0;
        case Kind::Sprintf:
            result = Writer::Sprintf(doc, doc->Buf + doc->CurPos, "%s%u", text, call.number);
            Writer::AddCurPos(doc, result);
            return result;
        case Kind::MemCpy:
            result = Writer::MemCpy(doc, text, length);
            Writer::AddCurPos(doc, result);
            return result;
        case Kind::CopyOnly:
            return Writer::MemCpy(doc, text, length);
        case Kind::NoAdvance:
            Writer::AddCurPos(doc, -1);
            return 0;
        case Kind::kCount:
            break;
    }
    return -1;
}

TEST(XMLWriterAgainstReference, RandomCallsAgreeAtEachOfTheLastPositions) {
    const Pair docs;
    for (std::uint32_t room = 0; room <= kPositions; ++room) {
        Dice dice(room);
        docs.Place(room, static_cast<std::int16_t>(static_cast<int>(dice.Below(9)) - 2));
        for (int i = 0; i < 20; ++i) {
            const Call call = dice.Roll();
            ASSERT_EQ(Apply<Reference>(docs.reference, call), Apply<Real>(docs.real, call))
                << "room " << room << ", call " << i;
            ASSERT_TRUE(docs.SameFrom(kCapacity - room)) << "room " << room << ", call " << i;
        }
    }
}

TEST(XMLWriterAgainstReference, RandomCallsAgreeFromAnEmptyDocumentUntilNothingFits) {
    for (std::uint32_t seed = 0; seed < 4; ++seed) {
        const Pair docs;
        XMLWR_Init(docs.real);
        reference::Init(docs.reference);
        Dice dice(seed + 100000);
        for (int i = 0; i < 40000 && docs.reference->CurPos < kCapacity; ++i) {
            const Call call = dice.Roll();
            // The walk through the levels would end below the root for ever, or indent by a page.
            if (docs.reference->Depth <= 0 && call.kind == Kind::End) continue;
            if (docs.reference->Depth > 40 && call.kind == Kind::Start) continue;
            ASSERT_EQ(Apply<Reference>(docs.reference, call), Apply<Real>(docs.real, call))
                << "seed " << seed << ", call " << i;
        }
        ASSERT_GT(docs.reference->CurPos, kCapacity - 100) << "seed " << seed;
        ASSERT_TRUE(docs.SameFrom(0)) << "seed " << seed;
    }
}

}  // namespace
