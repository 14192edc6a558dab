// What holds for every vendor function, over the rows: its request's children reach the controller,
// its calls are made in order, and its result is the expected one, byte for byte.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cctype>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "hxfake.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "vxevent_golden.h"
#include "xml_rapi_functions_rows.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::SizeIs;

const std::vector<FunctionRow>& Rows() {
    static const std::vector<FunctionRow> rows = [] {
        std::vector<FunctionRow> all;
        for (auto* const some : {AdapterRows, DiskRows, VirtualDiskRows, DiskGroupRows}) {
            std::ranges::move(some(), std::back_inserter(all));
        }
        return all;
    }();
    return rows;
}

std::string RowName(const testing::TestParamInfo<const FunctionRow*>& at) { return at.param->name; }

template <class Wanted>
std::vector<const FunctionRow*> RowsThat(Wanted wanted) {
    std::vector<const FunctionRow*> rows;
    for (const FunctionRow& row : Rows()) {
        if (wanted(row)) rows.push_back(&row);
    }
    return rows;
}

// ---- what a child holds ------------------------------------------------------------------------

// A child's text and the bytes that it becomes.
struct Value {
    std::string text;
    std::string bytes;
};

std::size_t Width(Holds kind) {
    switch (kind) {
        case Holds::U8:
            return 1;
        case Holds::U16:
            return 2;
        case Holds::U32:
            return 4;
        case Holds::U64:
            return 8;
        case Holds::U8x8:
            return 8;
        case Holds::Text16:
            return 16;
        case Holds::U16x128:
            return 256;
    }
    return 0;
}

std::string LittleEndian(std::uint64_t number, std::size_t width) {
    std::string bytes;
    for (std::size_t i = 0; i < width; ++i) bytes += static_cast<char>(number >> 8 * i & 255);
    return bytes;
}

std::uint64_t Number(const std::string& bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

// `count` numbers of `width` bytes from `first` on, `plus` more in the text than in the bytes.
Value Numbers(unsigned count, std::size_t width, unsigned first, unsigned plus = 0) {
    Value value;
    for (unsigned i = first; i < first + count; ++i) {
        value.text += (i == first ? "" : " ") + std::to_string(i + plus);
        value.bytes += LittleEndian(i, width);
    }
    return value;
}

// Values whose bytes are 1, 2, 3 and so on over all children of a request.
std::vector<Value> DistinctValues(const FunctionRow& row) {
    std::vector<Value> values;
    unsigned next = 1;
    for (const Child& child : row.children) {
        const std::size_t width = Width(child.kind);
        Value value;
        if (child.value != 0) {
            value = {std::to_string(child.value), LittleEndian(child.value, width)};
        } else if (child.kind == Holds::Text16) {
            value = {"fifteen letters", std::string("fifteen letters\0", 16)};
        } else if (child.kind == Holds::U8x8) {
            value = Numbers(8, 1, next);
            next += 8;
        } else if (child.kind == Holds::U16x128) {
            value = Numbers(128, 2, 1000);
        } else {
            while (value.bytes.size() < width) value.bytes += static_cast<char>(next++);
            value.text = std::to_string(Number(value.bytes));
        }
        values.push_back(value);
    }
    return values;
}

// Numbers that need more bits than their field has, and arrays and texts that are too long for it.
// A 32-bit or 64-bit number that is too long is the number scanner's affair; here it is the
// largest.
Value TooMuch(Holds kind) {
    switch (kind) {
        case Holds::U8:
            return {"259", "\x03"};
        case Holds::U16:
            return {"65539", std::string("\x03\0", 2)};
        case Holds::U32:
            return {"4294967295", "\xFF\xFF\xFF\xFF"};
        case Holds::U64:
            return {"18446744073709551615", std::string(8, '\xFF')};
        case Holds::Text16:
            return {"sixteen letters!", std::string("sixteen letters\0", 16)};
        case Holds::U8x8: {
            Value value = Numbers(8, 1, 60, 256);
            value.text += " 99 98";
            return value;
        }
        case Holds::U16x128: {
            Value value = Numbers(128, 2, 3, 65536);
            value.text += " 99 98";
            return value;
        }
    }
    return {};
}
std::vector<Value> TooMuchEverywhere(const FunctionRow& row) {
    std::vector<Value> values;
    for (const Child& child : row.children) values.push_back(TooMuch(child.kind));
    return values;
}

std::vector<Value> Nothing(const FunctionRow& row) {
    std::vector<Value> values;
    for (const Child& child : row.children) {
        values.push_back({"", std::string(Width(child.kind), '\0')});
    }
    return values;
}

// ---- the request -------------------------------------------------------------------------------

// The children in the order of the row, one element each; `attributes` stands in their start tags.
std::string Elements(const FunctionRow& row, const std::vector<Value>& values,
                     const std::string& attributes = "") {
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string name = row.children[i].name;
        text += "<" + name + attributes + ">" + values[i].text + "</" + name + ">";
    }
    return text;
}

std::string Backwards(const FunctionRow& row, const std::vector<Value>& values) {
    std::string text;
    for (std::size_t i = values.size(); i-- > 0;) {
        const std::string name = row.children[i].name;
        text += "<" + name + ">" + values[i].text + "</" + name + ">";
    }
    return text;
}

// The line with the children's numbers in it.
std::string Filled(const std::string& line, const FunctionRow& row,
                   const std::vector<Value>& values) {
    std::string filled;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] != '$') {
            filled += line[at++];
            continue;
        }
        const std::size_t from = ++at;
        while (at < line.size() && (std::isalnum(line[at]) != 0 || line[at] == '_')) ++at;
        const std::string name = line.substr(from, at - from);
        const auto child = std::ranges::find(row.children, name, &Child::name);
        if (child == row.children.end()) return line + ": the row has no child " + name;
        const auto index = static_cast<std::size_t>(child - row.children.begin());
        filled += std::to_string(Number(values[index].bytes));
    }
    return filled;
}

// The record that the controller is to be handed.
std::string RecordWith(const FunctionRow& row, const std::vector<Value>& values) {
    std::string record(row.record.size, '\0');
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (row.children[i].at != kInLine) {
            record.replace(row.children[i].at, values[i].bytes.size(), values[i].bytes);
        }
    }
    for (const std::size_t at : row.record.ff) record[at] = '\xFF';
    return record;
}

testing::AssertionResult SameRecord(const std::string& expected, const std::string& record) {
    const auto [at, in] = std::ranges::mismatch(expected, record);
    if (at == expected.end() && in == record.end()) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << record.size() << " bytes instead of " << expected.size()
           << ", the first difference at offset " << at - expected.begin();
}

class Function : public testing::TestWithParam<const FunctionRow*> {
protected:
    Function() : row(*GetParam()) {
        // Memory that nobody has written is not zero by chance.
        mallopt(M_PERTURB, 0xA5);
        hxfake::Reset();
        row.answer();
        if (row.record.watch) row.record.watch();
    }
    ~Function() override {
        hxfake::Reset();
        mallopt(M_PERTURB, 0);
    }

    Reply Ask(const std::string& children) const {
        hxfake::ForgetCalls();
        Handed().clear();
        return Send("<" + std::string(row.name) + " type=\"function\">" + children + "</" +
                    row.name + ">");
    }

    // The controller has been asked what the row says, with these values.
    void ExpectAsked(const std::vector<Value>& values) const {
        std::vector<std::string> lines;
        for (const std::string& call : row.calls) lines.push_back(Filled(call, row, values));
        EXPECT_THAT(hxfake::Calls(), ElementsAreArray(lines));
        EXPECT_TRUE(SameRecord(RecordWith(row, values), Handed()));
    }
    void ExpectAskedWithoutChildren() const {
        if (row.calls_without.empty()) {
            ExpectAsked(Nothing(row));
        } else {
            EXPECT_THAT(hxfake::Calls(), ElementsAreArray(row.calls_without));
        }
    }

    const FunctionRow& row;
    TemporaryRoot root;
};

TEST_P(Function, HandsItsChildrenToTheController) {
    const std::vector<Value> values = DistinctValues(row);
    EXPECT_EQ(1, Ask(Elements(row, values)).ok);
    ExpectAsked(values);
}

TEST_P(Function, HandsZerosForChildrenThatAreAbsent) {
    EXPECT_EQ(1, Ask("").ok);
    ExpectAskedWithoutChildren();
}

TEST_P(Function, HandsEachChildOverByItself) {
    const std::vector<Value> all = DistinctValues(row);
    for (std::size_t i = 0; i < all.size(); ++i) {
        SCOPED_TRACE(row.children[i].name);
        std::vector<Value> values = Nothing(row);
        for (std::size_t k = 0; k < all.size(); ++k) {
            // A child with a value of its own is one without which there is no call.
            if (k == i || row.children[k].value != 0) values[k] = all[k];
        }
        Ask(Elements(row, values));
        ExpectAsked(values);
    }
}

TEST_P(Function, CutsWhatIsTooMuchForAField) {
    const std::vector<Value> values = TooMuchEverywhere(row);
    Ask(Elements(row, values));
    ExpectAsked(values);
}

TEST_P(Function, TakesItsChildrenHoweverTheyAreWritten) {
    const std::vector<Value> values = DistinctValues(row);
    const std::string children = Elements(row, values);
    const std::pair<const char*, std::string> ways[] = {
        {"backwards", Backwards(row, values)},
        {"with attributes", Elements(row, values, " type=\"U64\" width=\"3\"")},
        {"twice, the last one decides", Elements(row, TooMuchEverywhere(row)) + children},
        {"then once more, empty", children + Elements(row, Nothing(row))},
        {"among unknown ones", "<a>1</a>" + children + "<RetVal>9</RetVal><Count>9</Count>"},
        {"on the second level", "<a>" + children + "</a>"},
        {"on the third level", "<a><b>" + children + "</b></a>"},
        {"within an element of the function's name",
         "<" + std::string(row.name) + ">" + children + "</" + row.name + ">"},
    };
    for (const auto& [way, command] : ways) {
        SCOPED_TRACE(way);
        Ask(command);
        ExpectAsked(values);
    }
}

TEST_P(Function, TakesNothingElse) {
    const std::vector<Value> values = DistinctValues(row);
    const std::string name = row.name;
    std::string other_case;
    for (const Child& child : row.children) {
        std::string element = child.name;
        element[0] = static_cast<char>(element[0] ^ 0x20);
        other_case += "<" + element + ">3</" + element + ">";
    }
    const std::pair<const char*, std::string> others[] = {
        {"empty children", Elements(row, Nothing(row))},
        {"children on the fourth level", "<a><b><c>" + Elements(row, values) + "</c></b></a>"},
        {"children whose first letter is of the other case", other_case},
        {"an element of the function's name", "<" + name + ">3</" + name + ">"},
        {"text of the function element", "3"},
    };
    for (const auto& [what, command] : others) {
        SCOPED_TRACE(what);
        Ask(command);
        ExpectAskedWithoutChildren();
    }
}

TEST_P(Function, WritesItsResult) {
    const Reply reply = Ask(Elements(row, DistinctValues(row)));
    EXPECT_EQ(1, reply.ok);
    EXPECT_EQ(GoldenText("functions/" + std::string(row.name) + ".xml"), reply.text + "\n");
}

INSTANTIATE_TEST_SUITE_P(All, Function,
                         testing::ValuesIn(RowsThat([](const FunctionRow&) { return true; })),
                         RowName);

// ---- arrays ------------------------------------------------------------------------------------

class FunctionWithArray : public Function {};

TEST_P(FunctionWithArray, KeepsThePlacesBehindTheLastNumber) {
    std::vector<Value> values = DistinctValues(row);
    const std::string all = Elements(row, values);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Holds kind = row.children[i].kind;
        if (kind == Holds::U8x8 || kind == Holds::U16x128) {
            Value& value = values[i];
            value.text = "7, 8\nnine -9";
            const std::string three =
                kind == Holds::U8x8 ? Numbers(3, 1, 7).bytes : Numbers(3, 2, 7).bytes;
            value.bytes.replace(0, three.size(), three);
        }
    }
    Ask(all + Elements(row, values));
    ExpectAsked(values);
}

INSTANTIATE_TEST_SUITE_P(Arrays, FunctionWithArray,
                         testing::ValuesIn(RowsThat([](const FunctionRow& row) {
                             return std::ranges::any_of(row.children, [](const Child& child) {
                                 return child.kind == Holds::U8x8 || child.kind == Holds::U16x128;
                             });
                         })),
                         RowName);

// ---- codes -------------------------------------------------------------------------------------

class FunctionWithCode : public Function {};

TEST_P(FunctionWithCode, WritesTheControllersCodeAsItIs) {
    for (const int code : {1, 44, 255}) {
        row.refuse(static_cast<HX_U8>(code));
        const Reply reply = Ask(Elements(row, DistinctValues(row)));
        const std::string head = "<" + std::string(row.name) +
                                 " type=\"function\">\n"
                                 "  <RetVal type=\"U8\">" +
                                 std::to_string(code) + "</RetVal>\n";
        EXPECT_EQ(1, reply.ok);
        EXPECT_EQ(head, reply.text.substr(0, head.size()));
        if (row.status_only) {
            EXPECT_EQ("</" + std::string(row.name) + ">", reply.text.substr(head.size()));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Codes, FunctionWithCode,
                         testing::ValuesIn(RowsThat([](const FunctionRow& row) {
                             return static_cast<bool>(row.refuse);
                         })),
                         RowName);

// ---- the rows ----------------------------------------------------------------------------------

TEST(FunctionRows, AreSeventyOfTheSeventyFive) {
    // The other five are the users' and the flash images'.
    EXPECT_THAT(Rows(), SizeIs(70));
}

TEST(FunctionRows, HoldThirtyNineThatAnswerWithTheirStatusAlone) {
    // HX_Flash_Option is the fortieth.
    EXPECT_THAT(RowsThat([](const FunctionRow& row) { return row.status_only; }), SizeIs(39));
}

TEST(FunctionRows, AskEveryAdapterInFourCases) {
    const TemporaryRoot root;
    std::vector<std::string> functions;
    for (const FunctionRow& row : Rows()) {
        hxfake::Reset();
        hxfake::On<&HX_Adapter_GetCount>().Always(1);
        const std::string name = row.name;
        Send("<" + name + " type=\"function\"><AdapterID>255</AdapterID>" +
             "<numRequested>1</numRequested></" + name + ">");
        if (hxfake::On<&HX_Adapter_GetCount>().CallCount() > 1) functions.push_back(name);
    }
    hxfake::Reset();
    EXPECT_THAT(functions, ElementsAre("HX_Adapter_GetInfo", "HX_Adapter_GetConfig",
                                       "HX_ENC_GetElementInfo", "HX_ENC_GetElementConfig"));
}

// ---- names that no row has ---------------------------------------------------------------------

class UnknownFunction : public testing::TestWithParam<const char*> {
protected:
    TemporaryRoot root;
};

TEST_P(UnknownFunction, IsNotAnswered) {
    hxfake::Reset();
    const Reply reply = Send("<" + std::string(GetParam()) + " type=\"function\"/>");
    EXPECT_EQ(0, reply.ok);
    EXPECT_EQ("", reply.text);
    EXPECT_THAT(hxfake::Calls(), SizeIs(0));
}

// The first two have records, and their names are the controller library's.
INSTANTIATE_TEST_SUITE_P(Names, UnknownFunction,
                         testing::Values("HX_PD_HDMPCheck", "HX_CreateOrModify_DG",
                                         "HX_api_version", "HX_LD_GETINFO", "HX_LD_GetInfo2",
                                         "LD_GetInfo"));

}  // namespace
