// The rows of the management functions' records, in the order in which they are written.
#pragma once

#include <algorithm>

#include "vxevent_text.h"
#include "xml_rapi_rows.h"
#include "xml_vxapi.h"

inline constexpr Record kVerInfo{
    "struct VX_VER_INFO",
    Col("Major", kU32, &VX_VER_INFO::Major),
    Col("Minor", kU32, &VX_VER_INFO::Minor),
    Col("OEM", kU32, &VX_VER_INFO::OEM),
    Col("Build", kU32, &VX_VER_INFO::Build),
};

// Front ends read them in this order, which is not that of the file.
inline constexpr Record kChangeCounters{
    "struct VX_HX_ChangeCounters",
    Col("Whatever_Change", kU32, &VX_HX_ChangeCounters::Whatever_Change),
    Col("Adapter_Change", kU32, &VX_HX_ChangeCounters::Adapter_Change),
    Col("LD_Change", kU32, &VX_HX_ChangeCounters::LD_Change),
    Col("HD_Change", kU32, &VX_HX_ChangeCounters::HD_Change),
    Col("PM_Change", kU32, &VX_HX_ChangeCounters::PM_Change),
    Col("Expander_Change", kU32, &VX_HX_ChangeCounters::Expander_Change),
    Col("MDD_Change", kU32, &VX_HX_ChangeCounters::MDD_Change),
    Col("BSL_Change", kU32, &VX_HX_ChangeCounters::BSL_Change),
    Col("SAS_Change", kU32, &VX_HX_ChangeCounters::SAS_Change),
    Col("ENCL_Change", kU32, &VX_HX_ChangeCounters::ENCL_Change),
    Col("BAT_Change", kU32, &VX_HX_ChangeCounters::BAT_Change),
    Col("FLASH_Change", kU32, &VX_HX_ChangeCounters::FLASH_Change),
    Col("CACHE_Change", kU32, &VX_HX_ChangeCounters::CACHE_Change),
    Col("MISC_Change", kU32, &VX_HX_ChangeCounters::MISC_Change),
    Col("ARRAY_Change", kU32, &VX_HX_ChangeCounters::ARRAY_Change),
};

// The valid part of the sense data; the element is left out when there is none. Its width differs
// by event, so the row's value is the whole element.
struct SenseDataRow {
    using Of = Event;
    static constexpr std::size_t kWidth = sizeof(Event::SenseData);

    static HX_U32 Width(const Event& event) {
        return std::min<HX_U32>(event.SenseDataLength, sizeof event.SenseData);
    }

    constexpr void Head(LiteralSink&, int) const {}
    constexpr void Tail(LiteralSink&, int) const {}
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kOpen<depth>.size() + kItems<depth>.size() + kClose<depth>.size() + 2 +
               sizeof(Event::SenseData) * 4 + kDigitSlack;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const Event& event) const {
        if (event.SenseDataLength == 0) return at;
        const HX_U32 width = Width(event);
        at = PutDecimal(PutLiteral(at, kOpen<depth>), width);
        at = PutLiteral(at, kItems<depth>);
        for (HX_U32 i = 0; i < width; ++i) {
            at = PutDecimal(at, event.SenseData[i]);
            *at++ = ' ';
        }
        return PutLiteral(at - 1, kClose<depth>);
    }
    void WriteExact(XMLWR_Doc* doc, const Event& event) const {
        if (event.SenseDataLength == 0) return;
        const HX_U32 width = Width(event);
        XML_RA_ElmtStartArrayData(doc, "SenseData", "U8", width);
        XMLWR_PrintTabs(doc);
        for (HX_U32 i = 0; i < width; ++i) {
            XMLWR_ElmtCharData(doc, kNoIndent | kNoNewLine, i + 1 < width ? "%u " : "%u",
                               event.SenseData[i]);
        }
        XMLWR_PrintNewLine(doc);
        XMLWR_ElmtEnd(doc, 0, "SenseData");
    }

private:
    template <int depth>
    static constexpr auto kOpen = MakeLiteral([](LiteralSink& sink) {
        sink.Indent(depth);
        sink.Put("<SenseData type=\"U8\" width=\"");
    });
    template <int depth>
    static constexpr auto kItems = MakeLiteral([](LiteralSink& sink) {
        sink.Put("\">\n");
        sink.Indent(depth + 1);
    });
    template <int depth>
    static constexpr auto kClose = MakeLiteral([](LiteralSink& sink) {
        sink.Put("\n");
        sink.Indent(depth);
        sink.Put("</SenseData>\n");
    });
};

// The event's text, its line end included, rendered into the document.
struct EventTextRow {
    using Of = Event;
    static constexpr std::size_t kWidth = 0;

    constexpr void Head(LiteralSink& sink, int depth) const {
        sink.Indent(depth);
        sink.Put("<Event type=\"string\">");
    }
    constexpr void Tail(LiteralSink& sink, int) const { sink.Put("</Event>\n"); }
    template <int depth>
    constexpr std::size_t ValueBound() const {
        return kLongestEventText;
    }
    template <int depth>
    [[gnu::always_inline]] char* Put(char* at, const Event& event) const {
        return at + VX_HX_EVT_Sprintf(&event, at);
    }
    void WriteExact(XMLWR_Doc* doc, const Event& event) const {
        char text[kEventTextSize];
        VX_HX_EVT_Sprintf(&event, text);
        XML_RA_ElmtNonArrayData(doc, "Event", "string", "%s", text);
    }
};

// The controller's own sequence number is left out: events are counted by the store's.
inline constexpr Record kEvent{
    "struct Event",
    Without(&Event::SequenceNo, &Event::Reserved2),
    Col("Class", kU16, &Event::Class),
    Col("Code", kU16, &Event::Code),
    Col("TimeStamp", kU32, &Event::TimeStamp),
    Col("DeviceID", kU16, &Event::DeviceID),
    Col("Severity", kU8, &Event::Severity),
    Col("AdapterID", kU8, &Event::AdapterID),
    Col("Params", kU32, &Event::Params),
    Col("SenseDataLength", kU8, &Event::SenseDataLength),
    SenseDataRow{},
    EventTextRow{},
};
