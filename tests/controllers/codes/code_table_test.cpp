// The codes as programs see them: the texts of events against the library's, which are its own.
#include "codes/code_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "codes/event.h"
#include "vexorapi/vxevent_text.h"

namespace {

using testing::IsEmpty;

// The key that the library writes for an event of that class and code.
std::string KeyOf(HX_U16 event_class, HX_U16 code, HX_U8 serial_length) {
    Event event{};
    event.Class = event_class;
    event.Code = code;
    event.SenseDataLength = serial_length;
    std::vector<char> line(kEventTextSize);
    VX_HX_EVT_Sprintf(&event, line.data());
    const std::string text = line.data();
    const std::size_t key = text.find("EVT_");
    return key == std::string::npos ? std::string() : text.substr(key, text.find('|', key) - key);
}

// "1.4 EVT_CODE_LD_DEGRADE"
std::string Line(HX_U16 event_class, HX_U16 code, const std::string& key) {
    return std::to_string(event_class) + '.' + std::to_string(code) + ' ' + key;
}

std::set<std::string> TextsOfLibrary() {
    std::set<std::string> lines;
    const auto add = [&](HX_U16 event_class, HX_U16 code) {
        for (const HX_U8 length : {HX_U8{0}, HX_U8{4}}) {
            const std::string key = KeyOf(event_class, code, length);
            if (key.starts_with(hxcodes::kEventKeyPrefix)) {
                lines.insert(Line(event_class, code, key));
            }
        }
    };
    for (HX_U16 event_class = 0; event_class < 32; ++event_class) {
        for (HX_U16 code = 0; code < 512; ++code) add(event_class, code);
        add(event_class, 65535);
    }
    return lines;
}

TEST(EventTexts, AreThoseOfTheLibraryAndNoOthers) {
    std::set<std::string> own;
    for (const hxcodes::EventText& text : hxcodes::OwnCodes().events) {
        own.insert(Line(text.event_class, text.code, text.key));
    }
    EXPECT_EQ(TextsOfLibrary(), own);
}

TEST(EventTexts, HaveOneKeyEach) {
    std::set<std::string> keys;
    for (const hxcodes::EventText& text : hxcodes::OwnCodes().events) {
        EXPECT_TRUE(keys.insert(text.key).second) << text.key;
    }
}

TEST(EventClasses, HaveTheLibrarysKeyForCodesWithoutText) {
    for (const hxcodes::EventClassRow& row : hxcodes::kEventClasses) {
        EXPECT_EQ(KeyOf(NumberOf(row.code), 500, 0), row.unknown_key) << row.name;
    }
    EXPECT_EQ(KeyOf(14, 0, 0), hxcodes::kUnknownClassKey);
}

TEST(EventTexts, OfAnActivityFollowTheRule) {
    const auto texts = hxcodes::OwnCodes().events;
    const auto text =
        std::ranges::find(texts, "EVT_CODE_LD_REBUILD_PROGRESS", &hxcodes::EventText::key);
    ASSERT_NE(text, texts.end());
    EXPECT_EQ(text->sentence, "The rebuild of virtual disk {object} is {2} percent done");
    EXPECT_EQ(text->event_class, 1);
    EXPECT_EQ(text->code, 76);
    EXPECT_EQ(text->severity, 2);
}

TEST(CodeLists, NameEveryListThatIsTheControllersOwn) {
    for (const hxcodes::CodeList& list : hxcodes::CodeLists()) {
        EXPECT_FALSE((hxcodes::OwnCodes().*list.names).empty()) << list.name;
        EXPECT_TRUE((hxcodes::NoCodes().*list.names).empty()) << list.name;
    }
    // What lies between the first list and the interface's are spans, one for each row.
    EXPECT_EQ(
        hxcodes::CodeLists().size() * sizeof(std::span<const hxcodes::Named>),
        offsetof(hxcodes::CodeTable, element_types) - offsetof(hxcodes::CodeTable, activities));
}

TEST(UnknownController, HasTheInterfacesNamesAlone) {
    const hxcodes::CodeTable& codes = hxcodes::NoCodes();
    EXPECT_EQ(hxcodes::NameOf(codes.levels, 0x11), "raid1e");
    EXPECT_EQ(hxcodes::NameOf(codes.severities, 6), "critical");
    EXPECT_THAT(codes.refusals, IsEmpty());
    EXPECT_THAT(codes.events, IsEmpty());
}

TEST(Refusals, TellWhatIsWrongAndInWhichWay) {
    const auto* const row = hxcodes::FindName(hxcodes::OwnCodes().refusals, "no_disk");
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->code, 205U);
    EXPECT_EQ(row->sentence, "The adapter has no disk with that ID.");
    EXPECT_EQ(row->fault, hxcodes::Fault::kNoObject);
}

}  // namespace
