// The text of every event: one line of time, key, severity and numbers. Each text is one row,
// except those of a virtual disk's activities, which follow a rule. The compiler converts the rows
// to templates, so that rendering copies pieces of fixed size instead of parsing a format.
#include "vxevent_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <iterator>
#include <span>
#include <string_view>

#include "XMLWriter_digits.h"

// Never defined: a row that comes to call one of these does not compile, and the compiler's message
// names the reason.
void LiteralIsTooLong();
void ConversionIsUnknown();
void ConversionsAndArgsDiffer();
void CodesMustAscend();

namespace {

enum class Arg : std::uint8_t {
    None,
    Class,
    Code,
    AdapterID,
    DeviceID,
    SequenceNo,
    P0,
    P1,
    P2,
    P3,
    Serial,  // SenseData as text
};
using enum Arg;  // so that a row stays on one line

struct EventText {
    HX_U16 code;
    // The whole text; its first "%s" takes the severity name. "%d" is always signed.
    const char* form;
    std::array<Arg, 5> args{};  // what the other conversions take, in order
};

// ---- Rows -------------------------------------------------------------------------------------

constexpr std::string_view kSeverityNames[] = {
    "[UNKNOWN]", "[OTHER]", "[INFO]", "[WARNING]", "[MINOR]", "[MAJOR]", "[CRITICAL]", "[FATAL]",
};
static_assert(std::size(kSeverityNames) == 8);

constexpr EventText kAdapterTexts[] = {
    {0, "EVT_CODE_SMART_FROM_OFF_TO_ON|%s|%d| ", {AdapterID}},
    {1, "EVT_CODE_SMART_FROM_ON_TO_OFF|%s|%d| ", {AdapterID}},
    {2, "EVT_CODE_ALARM_TURN_ON|%s|%d| ", {AdapterID}},
    {3, "EVT_CODE_ALARM_TURN_OFF|%s|%d| ", {AdapterID}},
    {4, "EVT_CODE_AUTO_REBUILD_ON|%s|%d| ", {AdapterID}},
    {5, "EVT_CODE_AUTO_REBUILD_OFF|%s|%d| ", {AdapterID}},
    {6, "EVT_CODE_HD_MP_RATE_CHANGE|%s|%d| ", {AdapterID}},
    {7, "EVT_CODE_COPY_BACK_ON|%s|%d| ", {AdapterID}},
    {8, "EVT_CODE_COPY_BACK_OFF|%s|%d| ", {AdapterID}},
};

constexpr EventText kVirtualDiskTexts[] = {
    {0, "EVT_CODE_LD_OFFLINE|%s|%d| ", {DeviceID}},
    {1, "EVT_CODE_LD_ONLINE|%s|%d| ", {DeviceID}},
    {2, "EVT_CODE_LD_CREATE|%s|%d| ", {DeviceID}},
    {3, "EVT_CODE_LD_DELETE|%s|%d| ", {DeviceID}},
    {4, "EVT_CODE_LD_DEGRADE|%s|%d| ", {DeviceID}},
    {5, "EVT_CODE_LD_PARTIALLYOPTIMAL|%s|%d| ", {DeviceID}},
    {6, "EVT_CODE_LD_CACHE_MODE_CHANGE|%s|%d| ", {DeviceID}},
    {7, "EVT_CODE_LD_FIXED|%s|%d| ", {DeviceID}},
    {8, "EVT_CODE_LD_FOUND_ERROR|%s|%d| ", {DeviceID}},
    {9, "EVT_CODE_LD_IMPORTED|%s|%d|%d", {DeviceID, P0}},
    // The only progress text with a blank at its end: it takes the place of the rule's below.
    {76, "EVT_CODE_LD_REBUILD_PROGRESS|%s|%d|%d ", {DeviceID, P0}},
};

// The background activities of a virtual disk: code 20 + 10 * activity + step.
constexpr HX_U16 kFirstActivityCode = 20;
constexpr HX_U16 kCodesPerActivity = 10;
constexpr std::string_view kActivityKey = "EVT_CODE_LD_";
constexpr std::string_view kActivities[] = {
    "CHECK_",     "FIX_",     "INIT_QUICK_", "INIT_BACK_",
    "INIT_FORE_", "REBUILD_", "MIGRATION_",  "COPYBACK_",
};
constexpr EventText kSteps[] = {
    {0, "START|%s|%d| ", {DeviceID}},         {1, "RESTART|%s|%d| ", {DeviceID}},
    {2, "PAUSE|%s|%d| ", {DeviceID}},         {3, "RESUME|%s|%d| ", {DeviceID}},
    {4, "ABORT|%s|%d| ", {DeviceID}},         {5, "COMPLETE|%s|%d| ", {DeviceID}},
    {6, "PROGRESS|%s|%d|%d", {DeviceID, P0}}, {7, "ERROR|%s|%d| ", {DeviceID}},
    {8, "AUTO_PAUSED|%s|%d| ", {DeviceID}},   {9, "AUTO_RESUME|%s|%d| ", {DeviceID}},
};
static_assert(std::size(kSteps) == kCodesPerActivity);

constexpr EventText kHardDiskTexts[] = {
    {0, "EVT_CODE_HD_OFFLINE|%s|%d| ", {DeviceID}},
    {1, "EVT_CODE_HD_ONLINE|%s|%d| ", {DeviceID}},
    {2, "EVT_CODE_HD_SETDOWN|%s|%d| ", {DeviceID}},
    {3, "EVT_CODE_HD_TIMEOUT|%s|%d| ", {DeviceID}},
    {4, "EVT_CODE_HD_RW_ERROR|%s|%d| ", {DeviceID}},
    {5, "EVT_CODE_HD_SMART|%s|%d| ", {DeviceID}},
    {6, "EVT_CODE_HD_ERROR_FIXED|%s|%d| ", {DeviceID}},
    {9, "EVT_CODE_HD_ASSIGN_SPARE|%s|%d| ", {DeviceID}},
    {10, "EVT_CODE_HD_REMOVE_SPARE|%s|%d| ", {DeviceID}},
    {11, "EVT_CODE_HD_SMART_THRESHOLD_OVER|%s|%d| ", {DeviceID}},
    {12, "EVT_CODE_HD_SMART_POLLING_FAIL|%s|%d| ", {DeviceID}},
    {13, "EVT_CODE_BAD_BLOCK_TBL_80_FULL|%s|%d| ", {DeviceID}},
    {14, "EVT_CODE_BAD_BLOCK_TBL_FULL|%s|%d| ", {DeviceID}},
    {15, "EVT_CODE_BAD_BLOCK_REASSIGNED|%s|%d| ", {DeviceID}},
    {16, "EVT_CODE_HD_CACHE_MODE_CHANGE|%s|%d| ", {DeviceID}},
    {17, "EVT_CODE_HD_MP_START|%s|%d| ", {DeviceID}},
    {18, "EVT_CODE_HD_MP_RESTART|%s|%d| ", {DeviceID}},
    {19, "EVT_CODE_HD_MP_PAUSE|%s|%d| ", {DeviceID}},
    {20, "EVT_CODE_HD_MP_RESUME|%s|%d| ", {DeviceID}},
    {21, "EVT_CODE_HD_MP_ABORT|%s|%d| ", {DeviceID}},
    {22, "EVT_CODE_HD_MP_COMPLETE|%s|%d| ", {DeviceID}},
    {23, "EVT_CODE_HD_MP_PROGRESS|%s|%d|%d| ", {DeviceID, P0}},
    {24, "EVT_CODE_HD_MP_ERROR|%s|%d| ", {DeviceID}},
    {25, "EVT_CODE_HD_MP_AUTO_PAUSED|%s|%d| ", {DeviceID}},
    {26, "EVT_CODE_HD_MP_AUTO_RESUME|%s|%d| ", {DeviceID}},
    {36, "EVT_CODE_HD_SC_ERROR|%s|%d|%x|%08x|%08x|%08x| ", {DeviceID, P0, P1, P2, P3}},
    {37, "EVT_CODE_HD_RCT_ADD|%s|%d|%08x|%08x|%d|%08x ", {DeviceID, P0, P1, P2, P3}},
    {38, "EVT_CODE_HD_RCT_REMOVE|%s|%d|%08x|%08x|%d|%08x ", {DeviceID, P0, P1, P2, P3}},
    {54, "EVT_CODE_HD_SETFREE|%s|%d| ", {DeviceID}},
};

constexpr EventText kExpanderTexts[] = {
    {0, "EVT_CODE_EXPANDER_PLUG_IN|%s|%d| ", {DeviceID}},
    {1, "EVT_CODE_EXPANDER_PLUG_OUT|%s|%d| ", {DeviceID}},
};

constexpr EventText kBatteryTexts[] = {
    {0, "EVT_CODE_BAT_PRESENT|%s| "},
    {1, "EVT_CODE_BAT_NOT_PRESENT|%s| "},
    {2, "EVT_CODE_BAT_NEW_BAT_DETECTED|%s| "},
    {3, "EVT_CODE_BAT_NEED_REPLACE|%s| "},
    {4, "EVT_CODE_BAT_REPLACED|%s| "},
    {5, "EVT_CODE_BAT_REMOVED|%s| "},
    {6, "EVT_CODE_BAT_RELEARN_STARTED|%s| "},
    {7, "EVT_CODE_BAT_RELEARN_IN_PGRS|%s| "},
    {8, "EVT_CODE_BAT_RELEARN_COMPLETED|%s| "},
    {9, "EVT_CODE_BAT_RELEARN_TIMED_OUT|%s| "},
    {10, "EVT_CODE_BAT_RELEARN_PENDING|%s| "},
    {11, "EVT_CODE_BAT_RELEARN_POSTPONED|%s| "},
    {12, "EVT_CODE_BAT_START_IN_4_DAYS|%s| "},
    {13, "EVT_CODE_BAT_START_IN_2_DAYS|%s| "},
    {14, "EVT_CODE_BAT_START_IN_1_DAY|%s| "},
    {15, "EVT_CODE_BAT_START_IN_5_HOURS|%s| "},
    {16, "EVT_CODE_BAT_DISCHARGING|%s| "},
    {17, "EVT_CODE_BAT_STARTED_CHARGING|%s| "},
    {18, "EVT_CODE_BAT_CHARGE_CMPLT|%s| "},
    {19, "EVT_CODE_BAT_CHARGER_PROBLEM_DETECTED|%s| "},
    {20, "EVT_CODE_BAT_CAPACITY_BELOW_THRESHOLD|%s| "},
    {21, "EVT_CODE_BAT_CAPACITY_ABOVE_THRESHOLD|%s| "},
    {22, "EVT_CODE_BAT_TEMP_IS_LOW|%s| "},
    {23, "EVT_CODE_BAT_TEMP_IS_NORMAL|%s| "},
    {24, "EVT_CODE_BAT_TEMP_IS_HIGH|%s| "},
    {25, "EVT_CODE_BAT_VOLTAGE_LOW|%s| "},
    {26, "EVT_CODE_BAT_VOLTAGE_NORMAL|%s| "},
    {27, "EVT_CODE_BAT_VOLTAGE_HIGH|%s| "},
    {28, "EVT_CODE_BAT_FORCE_WRITE_THROUGH|%s| "},
    {29, "EVT_CODE_BAT_SAFE_TO_USE_WRITE_BACK|%s| "},
};

constexpr EventText kMiscTexts[] = {
    {1, "EVT_CODE_MISC_CHANGE_BACK_ACTIVITY_RATE|%s|%d| ", {P0}},
    // The key is spelt MUTLI; front ends look it up by that spelling.
    {5, "EVT_CODE_MISC_MUTLI_BIT_ECC_ERR|%s|%d|%0X|%d ", {P0, P1, P2}},
    {6, "EVT_CODE_MISC_SINGLE_BIT_ECC_ERR|%s|%d| ", {P0}},
    {7, "EVT_CODE_MISC_GET_SHUTDOWN_CMD|%s| | "},
    {16, "EVT_CODE_MISC_PD_MISSING_FROM_CONFIG_AT_BOOT|%s|%d| ", {DeviceID}},
    {17, "EVT_CODE_MISC_VD_MISSING_DRIVES|%s|%d| ", {DeviceID}},
    {18, "EVT_CODE_MISC_VD_MISSING_AT_BOOT|%s|%d| ", {DeviceID}},
    {19, "EVT_CODE_MISC_PREVIOUS_CONFIG_MISSING_AT_BOOT|%s| | "},
    {20, "EVT_CODE_MISC_PD_TOO_SMALL_FOR_AUTOREBUILD|%s|%d| ", {DeviceID}},
    {21, "EVT_CODE_MISC_PD_TOO_SMALL_FOR_COPYBACK|%s|%d| ", {DeviceID}},
    {22, "EVT_CODE_MISC_CHANGE_SYNC_RATE|%s|%d| ", {P0}},
    {23, "EVT_CODE_MISC_CHANGE_INIT_RATE|%s|%d| ", {P0}},
    {24, "EVT_CODE_MISC_CHANGE_REBUILD_RATE|%s|%d| ", {P0}},
    {25, "EVT_CODE_MISC_CHANGE_MIGRATION_RATE|%s|%d| ", {P0}},
    {26, "EVT_CODE_MISC_CHANGE_COPYBACK_RATE|%s|%d| ", {P0}},
    {27, "EVT_CODE_MISC_CHANGE_MP_RATE|%s|%d| ", {P0}},
};

constexpr EventText kArrayTexts[] = {
    {0, "EVT_CODE_ARRAY_CREATE|%s|%d| ", {DeviceID}},
    {1, "EVT_CODE_ARRAY_DELETE|%s|%d| ", {DeviceID}},
};

// Texts that depend on more than the code; ChooseText selects them.
constexpr EventText kAdapterFound{9, "EVT_CODE_ADAPTER_FOUND|%s|%d|%s| ", {AdapterID, Serial}};
constexpr EventText kAdapterFoundNoSerial{
    9, "EVT_CODE_ADAPTER_FOUND_NO_SERIAL|%s|%d| ", {AdapterID}};
constexpr EventText kEventError{65535, "EVT_CODE_EVT_ERR|%s|%d|%d| ", {SequenceNo, P2}};
constexpr EventText kInconsistentLba64{
    100, "EVT_CODE_LD_INCONSISTENT_LBA|%s|%d|%08x%08x ", {DeviceID, P0, P1}};
constexpr EventText kInconsistentLba32{
    100, "EVT_CODE_LD_INCONSISTENT_LBA|%s|%d|%08x ", {DeviceID, P1}};

// The texts of codes that a class does not list. Some classes have no text at all: front ends show
// the numbers of such an event.
constexpr EventText kUnknownAdapter{0, "EVT_Unknown_Adpt| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownVirtualDisk{0, "EVT_Unknown_LD| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownHardDisk{0, "EVT_Unknown_HD| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownExpander{0, "EVT_Unknown_EXPANDER| |%d| ", {Code}};
constexpr EventText kUnknownSas{0, "EVT_Unknown_SAS| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownEnclosure{0, "EVT_Unknown_ENCL| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownBattery{0, "EVT_Unknown_BAT| |%d| ", {Code}};
constexpr EventText kUnknownFlash{0, "EVT_Unknown_FLASH| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownCache{0, "EVT_Unknown_CACHE| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownMisc{0, "EVT_Unknown_MISC| |%d|%d", {Code, DeviceID}};
constexpr EventText kUnknownClass{0, "EVT_Unknown| |%d|%d", {Class, AdapterID}};
constexpr EventText kNoText{0, ""};

// Stands for a time that has no calendar date.
constexpr std::string_view kNoTime = "??? ??? ?? ??:??:?? ????";

// ---- Templates: parsed rows ---------------------------------------------------------------------

enum class Form : std::uint8_t { Decimal, Hex, HexPadded, HexUpper, Text };

// A conversion and the few characters before it. The value is read without a branch: four bytes of
// the event at `offset`, masked to the field's width.
struct Part {
    char before[4];
    HX_U32 mask;
    std::uint8_t offset;
    std::uint8_t before_length;
    Form form;
};

// Members are copied with fixed sizes; the lengths tell how many bytes count. Aligned, so that
// indexing the list needs no multiplication.
struct alignas(16) Template {
    char key[48];  // up to the first conversion
    std::uint8_t key_length;
    bool severity;  // its name follows the key
    std::uint8_t part_count;
    std::uint8_t after_length;
    char after[8];  // behind the last conversion, with the line end; zeros follow
    Part parts[5];
};

template <std::size_t n>
constexpr std::uint8_t CopyLiteral(char (&to)[n], std::string_view text) {
    if (text.size() > n) LiteralIsTooLong();
    std::copy(text.begin(), text.end(), to);
    return static_cast<std::uint8_t>(text.size());
}

// Removes a conversion from the front of `form`.
constexpr Form TakeForm(std::string_view& form) {
    constexpr struct {
        std::string_view text;
        Form form;
    } kConversions[] = {
        {"%d", Form::Decimal},   {"%x", Form::Hex},  {"%08x", Form::HexPadded},
        {"%0X", Form::HexUpper}, {"%s", Form::Text},
    };
    for (const auto& conversion : kConversions) {
        if (!form.starts_with(conversion.text)) continue;
        form.remove_prefix(conversion.text.size());
        return conversion.form;
    }
    ConversionIsUnknown();
    return Form::Decimal;
}

constexpr std::string_view TakeLiteral(std::string_view& form) {
    const std::string_view literal = form.substr(0, std::min(form.find('%'), form.size()));
    form.remove_prefix(literal.size());
    return literal;
}

struct Field {
    std::uint8_t offset;  // within Event
    HX_U32 mask;          // what its width can hold
};

consteval Field FieldOf(Arg arg) {
    switch (arg) {
        case Class:
            return {offsetof(Event, Class), 0xFFFF};
        case Code:
            return {offsetof(Event, Code), 0xFFFF};
        case AdapterID:
            return {offsetof(Event, AdapterID), 0xFF};
        case DeviceID:
            return {offsetof(Event, DeviceID), 0xFFFF};
        case SequenceNo:
            return {offsetof(Event, SequenceNo), 0xFFFFFFFF};
        case P0:
            return {offsetof(Event, Params[0]), 0xFFFFFFFF};
        case P1:
            return {offsetof(Event, Params[1]), 0xFFFFFFFF};
        case P2:
            return {offsetof(Event, Params[2]), 0xFFFFFFFF};
        case P3:
            return {offsetof(Event, Params[3]), 0xFFFFFFFF};
        case Serial:
            return {offsetof(Event, SenseData), 0};
        case None:
            break;
    }
    ConversionsAndArgsDiffer();
    return {};
}

consteval Template TakeApart(std::string_view form, const std::array<Arg, 5>& args) {
    Template result{};
    result.key_length = CopyLiteral(result.key, TakeLiteral(form));
    if (form.starts_with("%s")) {
        result.severity = true;
        form.remove_prefix(2);
    }
    for (const Arg arg : args) {
        if (arg == None) break;
        Part& part = result.parts[result.part_count++];
        part.before_length = CopyLiteral(part.before, TakeLiteral(form));
        part.form = TakeForm(form);
        part.offset = FieldOf(arg).offset;
        part.mask = FieldOf(arg).mask;
    }
    result.after_length = CopyLiteral(result.after, TakeLiteral(form));
    if (!form.empty()) ConversionsAndArgsDiffer();
    result.after[result.after_length++] = '\n';
    if (result.after_length >= sizeof result.after) LiteralIsTooLong();
    return result;
}

consteval Template TakeApart(const EventText& row) { return TakeApart(row.form, row.args); }

consteval Template TakeApartActivity(std::size_t activity, const EventText& step) {
    std::array<char, 64> form{};
    char* end = form.data();
    for (const std::string_view text :
         {kActivityKey, kActivities[activity], std::string_view(step.form)}) {
        end = std::copy(text.begin(), text.end(), end);
    }
    return TakeApart({form.data(), end}, step.args);
}

// The templates of one class, and which of them a code selects. Number 0 is for codes that are not
// listed.
constexpr std::size_t kCodes = 128;
template <std::size_t n>
struct ClassTexts {
    std::array<Template, 1 + n> templates;
    std::array<std::uint8_t, kCodes> by_code;
};

template <std::size_t n>
consteval void AddRows(ClassTexts<n>& texts, std::size_t first, std::span<const EventText> rows) {
    int last = -1;
    for (const EventText& row : rows) {
        if (row.code <= last) CodesMustAscend();
        last = row.code;
        texts.by_code[row.code] = static_cast<std::uint8_t>(first);
        texts.templates[first++] = TakeApart(row);
    }
}

template <std::size_t n>
consteval ClassTexts<n> MakeClass(const EventText& unknown, const EventText (&rows)[n]) {
    ClassTexts<n> texts{};
    texts.templates[0] = TakeApart(unknown);
    AddRows(texts, 1, rows);
    return texts;
}

consteval ClassTexts<0> MakeClass(const EventText& unknown) { return {{TakeApart(unknown)}, {}}; }

consteval auto MakeVirtualDisks() {
    constexpr std::size_t kByRule = std::size(kActivities) * std::size(kSteps);
    ClassTexts<kByRule + std::size(kVirtualDiskTexts)> texts{};
    texts.templates[0] = TakeApart(kUnknownVirtualDisk);
    std::size_t at = 1;
    for (std::size_t activity = 0; activity < std::size(kActivities); ++activity) {
        for (const EventText& step : kSteps) {
            const std::size_t code = kFirstActivityCode + kCodesPerActivity * activity + step.code;
            texts.by_code[code] = static_cast<std::uint8_t>(at);
            texts.templates[at++] = TakeApartActivity(activity, step);
        }
    }
    AddRows(texts, at, kVirtualDiskTexts);
    return texts;
}

constexpr auto kAdapters = MakeClass(kUnknownAdapter, kAdapterTexts);
constexpr auto kVirtualDisks = MakeVirtualDisks();
constexpr auto kHardDisks = MakeClass(kUnknownHardDisk, kHardDiskTexts);
constexpr auto kExpanders = MakeClass(kUnknownExpander, kExpanderTexts);
constexpr auto kSas = MakeClass(kUnknownSas);
constexpr auto kEnclosures = MakeClass(kUnknownEnclosure);
constexpr auto kBatteries = MakeClass(kUnknownBattery, kBatteryTexts);
constexpr auto kFlash = MakeClass(kUnknownFlash);
constexpr auto kCache = MakeClass(kUnknownCache);
constexpr auto kMisc = MakeClass(kUnknownMisc, kMiscTexts);
constexpr auto kArrays = MakeClass(kNoText, kArrayTexts);
constexpr auto kTextless = MakeClass(kNoText);
constexpr auto kUnknown = MakeClass(kUnknownClass);

struct ClassView {
    const Template* templates;
    const std::uint8_t* by_code;
};
template <std::size_t n>
consteval ClassView View(const ClassTexts<n>& texts) {
    return {texts.templates.data(), texts.by_code.data()};
}
constexpr ClassView kClasses[] = {
    View(kAdapters),      //  0
    View(kVirtualDisks),  //  1
    View(kHardDisks),     //  2
    View(kTextless),      //  3
    View(kExpanders),     //  4
    View(kTextless),      //  5
    View(kTextless),      //  6
    View(kSas),           //  7
    View(kEnclosures),    //  8
    View(kBatteries),     //  9
    View(kFlash),         // 10
    View(kCache),         // 11
    View(kMisc),          // 12
    View(kArrays),        // 13
    View(kUnknown),       // 14 and above
};
constexpr HX_U16 kUnknownClassNumber = std::size(kClasses) - 1;

constexpr HX_U16 kAdapterClass = 0;
constexpr HX_U16 kVirtualDiskClass = 1;

constexpr Template kAdapterFoundTemplate = TakeApart(kAdapterFound);
constexpr Template kAdapterFoundNoSerialTemplate = TakeApart(kAdapterFoundNoSerial);
constexpr Template kEventErrorTemplate = TakeApart(kEventError);
constexpr Template kInconsistentLba64Template = TakeApart(kInconsistentLba64);
constexpr Template kInconsistentLba32Template = TakeApart(kInconsistentLba32);

bool IsAdapterFound(const Event& event) {
    return event.Class == kAdapterClass && event.Code == kAdapterFound.code;
}

const Template& ChooseText(const Event& event) {
    if (event.Class == kAdapterClass) {
        if (event.Code == kAdapterFound.code) {
            return event.SenseDataLength > 0 ? kAdapterFoundTemplate
                                             : kAdapterFoundNoSerialTemplate;
        }
        if (event.Code == kEventError.code) return kEventErrorTemplate;
    } else if (event.Class == kVirtualDiskClass && event.Code == kInconsistentLba64.code) {
        return event.Params[0] != 0 ? kInconsistentLba64Template : kInconsistentLba32Template;
    }
    const ClassView& texts = kClasses[std::min(event.Class, kUnknownClassNumber)];
    return texts.templates[event.Code < kCodes ? texts.by_code[event.Code] : 0];
}

// How long the texts can get --------------------------------------------------------------------

constexpr std::size_t kTimeLength = kNoTime.size();

constexpr std::size_t LongestValue(const Part& part) {
    if (part.form == Form::Text) return sizeof(Event::SenseData);
    if (part.form != Form::Decimal) return 8;
    return part.mask == 0xFF ? 3 : part.mask == 0xFFFF ? 5 : 11;  // 32 bits are signed
}

constexpr std::size_t LongestText(const Template& text) {
    std::size_t length = std::size_t{text.key_length} + text.after_length;
    if (text.severity)
        length += std::ranges::max(kSeverityNames, {}, &std::string_view::size).size();
    for (std::size_t i = 0; i < text.part_count; ++i) {
        length += text.parts[i].before_length + LongestValue(text.parts[i]);
    }
    return length;
}

consteval bool AllFit() {
    // After the values, spilled digits and then the whole field `after`, including line end and
    // NUL, are written.
    constexpr std::size_t kBehindValues = std::max(kDigitSlack, sizeof Template::after);
    const auto fits = [](const Template& text) {
        const std::size_t to_values = kTimeLength + 1 + LongestText(text) - text.after_length;
        return to_values + kBehindValues <= kLongestEventText;
    };
    const auto all_fit = [&](const auto& texts) {
        return std::ranges::all_of(texts.templates, fits);
    };
    return all_fit(kAdapters) && all_fit(kVirtualDisks) && all_fit(kHardDisks) &&
           all_fit(kExpanders) && all_fit(kSas) && all_fit(kEnclosures) && all_fit(kBatteries) &&
           all_fit(kFlash) && all_fit(kCache) && all_fit(kMisc) && all_fit(kArrays) &&
           all_fit(kTextless) && all_fit(kUnknown) && fits(kAdapterFoundTemplate) &&
           fits(kAdapterFoundNoSerialTemplate) && fits(kEventErrorTemplate) &&
           fits(kInconsistentLba64Template) && fits(kInconsistentLba32Template);
}
static_assert(AllFit(), "no text passes what kLongestEventText promises");
static_assert(kTimeLength + 1 + sizeof(Template::key) <= kLongestEventText);

// ---- Rendering ----------------------------------------------------------------------------------

// Copied as a whole; later writes overwrite the padding.
struct PaddedName {
    char text[15];
    std::uint8_t length;
};
static_assert(sizeof(PaddedName) == 16);
// Every level above the last has the name of the first, which is "unknown".
constexpr std::size_t kHighestLevel = std::size(kSeverityNames) - 1;
consteval auto PadSeverityNames() {
    std::array<PaddedName, kHighestLevel + 2> names{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string_view name = kSeverityNames[i <= kHighestLevel ? i : 0];
        names[i].length = CopyLiteral(names[i].text, name);
    }
    return names;
}
constexpr auto kSeverities = PadSeverityNames();

template <std::size_t n>
char* PutFixed(char* at, const char (&text)[n], std::uint8_t length) {
    std::memcpy(at, text, n);
    return at + length;
}

HX_U32 ValueOf(const Event& event, const Part& part) {
    HX_U32 value;
    std::memcpy(&value, reinterpret_cast<const char*>(&event) + part.offset, sizeof value);
    return value & part.mask;
}

char* PutSigned(char* at, HX_U32 value) {
    if (static_cast<HX_I32>(value) < 0) {
        *at++ = '-';
        value = 0 - value;
    }
    return PutDecimal(at, value);
}

// The two digits of each byte value, the first in the low byte.
consteval std::array<std::uint16_t, 256> MakeHexPairs() {
    constexpr char kDigits[] = "0123456789abcdef";
    std::array<std::uint16_t, 256> pairs{};
    for (std::size_t byte = 0; byte < pairs.size(); ++byte) {
        pairs[byte] = static_cast<std::uint16_t>(kDigits[byte >> 4] | kDigits[byte & 15] << 8);
    }
    return pairs;
}
constexpr std::array<std::uint16_t, 256> kHexPairs = MakeHexPairs();

char* PutPair(char* at, HX_U32 byte) {
    std::memcpy(at, &kHexPairs[byte], 2);
    return at + 2;
}

char* PutPadded(char* at, HX_U32 value) {
    at = PutPair(at, value >> 24);
    at = PutPair(at, value >> 16 & 0xFF);
    at = PutPair(at, value >> 8 & 0xFF);
    return PutPair(at, value & 0xFF);
}

// Writes without leading zeros: writes all eight digits and moves the significant ones to the
// front.
char* PutUnpadded(char* at, HX_U32 value, bool upper) {
    PutPadded(at, value);
    std::uint64_t digits;
    std::memcpy(&digits, at, sizeof digits);
    if (upper) digits &= ~((digits & 0x4040404040404040) >> 1);
    const int length = (35 - std::countl_zero(value | 1)) / 4;
    digits >>= 8 * (8 - length);
    std::memcpy(at, &digits, sizeof digits);
    return at + length;
}

[[gnu::noinline]] char* PutSerial(char* at, const Event& event) {
    const std::size_t length =
        strnlen(reinterpret_cast<const char*>(event.SenseData), sizeof event.SenseData);
    std::memcpy(at, event.SenseData, length);
    return at + length;
}

// Everything but decimal numbers, which nearly all conversions are.
[[gnu::noinline]] char* PutRarePart(char* at, const Part& part, const Event& event) {
    const HX_U32 value = ValueOf(event, part);
    switch (part.form) {
        case Form::Hex:
            return PutUnpadded(at, value, false);
        case Form::HexPadded:
            return PutPadded(at, value);
        case Form::HexUpper:
            return PutUnpadded(at, value, true);
        case Form::Decimal:
        case Form::Text:
            break;
    }
    return PutSerial(at, event);
}

// Writes the rest of the line, including its end and a NUL. Returns the line's end.
char* PutMessage(char* at, const Template& text, const Event& event) {
    at = PutFixed(at, text.key, text.key_length);
    if (text.severity) {
        const PaddedName& name =
            kSeverities[std::min(std::size_t{event.Severity}, kHighestLevel + 1)];
        std::memcpy(at, &name, sizeof name);
        at += name.length;
    }
    const Part* const end = text.parts + text.part_count;
    for (const Part* part = text.parts; part != end; ++part) {
        at = PutFixed(at, part->before, part->before_length);
        at = part->form == Form::Decimal ? PutSigned(at, ValueOf(event, *part))
                                         : PutRarePart(at, *part, event);
    }
    return PutFixed(at, text.after, text.after_length);
}

// Two digits with a leading zero: the last two of three.
[[gnu::always_inline]] inline void PutTwo(char* at, unsigned number) {
    std::memcpy(at, reinterpret_cast<const char*>(&kInnerDigits[number]) + 1, 2);
}

// Four characters each.
constexpr char kDays[] = "Sun Mon Tue Wed Thu Fri Sat ";
constexpr char kMonths[] = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec ";

struct Date {
    unsigned weekday;  // 0: Sunday
    unsigned month;    // 0: January
    unsigned day, year;
};

// Writes the date of a text of kTimeLength characters in asctime's form, without line end. The
// places of the clock get arbitrary bytes, which the clock overwrites.
void PutDate(char* at, const Date& date) {
    std::memcpy(at, kDays + 4 * date.weekday, 4);
    std::memcpy(at + 4, kMonths + 4 * date.month, 4);
    PutTwo(at + 8, date.day);
    if (date.day < 10) at[8] = ' ';
    std::memcpy(at + 10, " 00:00:00 ", 10);
    PutTwo(at + 20, date.year / 100);
    PutTwo(at + 22, date.year % 100);
}

[[gnu::always_inline]] inline void PutClock(char* at, unsigned hour, unsigned minute,
                                            unsigned second) {
    PutTwo(at + 11, hour);
    PutTwo(at + 14, minute);
    PutTwo(at + 17, second);
}

// Computes a date with plain Gregorian arithmetic, which suffices because a 32-bit time ends in
// 2106.
Date DateOf(HX_U32 days) {
    constexpr HX_U32 kDaysToEpoch = 719468;  // from 1 March of the year 0, when leap days come last
    constexpr HX_U32 kDaysPerCentury4 = 146097;  // four centuries
    constexpr HX_U32 kDaysPerYear4 = 1461;       // four years
    const HX_U32 quarter_days = 4 * (days + kDaysToEpoch) + 3;
    const HX_U32 century = quarter_days / kDaysPerCentury4;
    const HX_U32 in_century = (quarter_days % kDaysPerCentury4) | 3;
    const HX_U32 year_of_century = in_century / kDaysPerYear4;
    const HX_U32 day_of_year = in_century % kDaysPerYear4 / 4;
    // Months from March on have 30.6 days; 2141 / 65536 is their inverse, exact over one year.
    const HX_U32 scaled = 2141 * day_of_year + 197913;
    const HX_U32 month_from_march = scaled >> 16;  // 3 to 14
    const bool next_year = month_from_march > 12;
    return {
        .weekday = (days + 4) % 7,
        .month = month_from_march - (next_year ? 13 : 1),
        .day = (scaled & 0xFFFF) / 2141 + 1,
        .year = 100 * century + year_of_century + (next_year ? 1 : 0),
    };
}

// Caches the last written date: events are ordered by time, so the next one is mostly of the same
// day.
struct DayText {
    HX_U32 begin;                // in seconds since 1970
    HX_U32 length;               // in seconds; the last of all days ends with the 32 bits
    char text[kTimeLength + 2];  // with a blank behind it, as in an event's line
};
constexpr HX_U32 kSecondsPerDay = 86400;
constinit DayText last_day{0, kSecondsPerDay, "Thu Jan  1 00:00:00 1970 "};

[[gnu::noinline]] void RememberDay(HX_U32 day) {
    last_day.begin = day * kSecondsPerDay;
    last_day.length = std::min(UINT32_MAX - last_day.begin + 1, kSecondsPerDay);
    PutDate(last_day.text, DateOf(day));
}

// These two write the time and the blank behind it.
[[gnu::always_inline]] inline char* PutUtcTime(char* at, HX_U32 seconds) {
    // For a time before the day's beginning the difference wraps around to a large number.
    if (seconds - last_day.begin >= last_day.length) RememberDay(seconds / kSecondsPerDay);
    const HX_U32 of_day = seconds - last_day.begin;
    std::memcpy(at, last_day.text, kTimeLength + 1);
    PutClock(at, of_day / 3600, of_day / 60 % 60, of_day % 60);
    return at + kTimeLength + 1;
}

[[gnu::noinline]] char* PutLocalTime(char* at, HX_U32 seconds) {
    const std::time_t time = seconds;
    static_assert(sizeof time == 8, "times from 2^31 on are the same on both word sizes");
    std::tm local;
    // localtime_r keeps the zone that the process first saw; localtime, which shares its storage
    // with the process, does not.
    tzset();
    at = PutTimeText(at, localtime_r(&time, &local));
    *at++ = ' ';
    return at;
}

}  // namespace

char* PutTimeText(char* at, const std::tm* time) {
    if (time == nullptr || time->tm_year < -1900 || time->tm_year > 9999 - 1900) {
        return std::copy(kNoTime.begin(), kNoTime.end(), at);
    }
    const auto field = [](int value) { return static_cast<unsigned>(value); };
    PutDate(at, {.weekday = field(time->tm_wday),
                 .month = field(time->tm_mon),
                 .day = field(time->tm_mday),
                 .year = field(time->tm_year + 1900)});
    PutClock(at, field(time->tm_hour), field(time->tm_min), field(time->tm_sec));
    return at + kTimeLength;
}

int VX_HX_EVT_Sprintf(const Event* pevent, char* MsgBuf) {
    // Only the adapter-found event is shown in local time: it dates a start of the machine.
    char* at = IsAdapterFound(*pevent) ? PutLocalTime(MsgBuf, pevent->TimeStamp)
                                       : PutUtcTime(MsgBuf, pevent->TimeStamp);
    at = PutMessage(at, ChooseText(*pevent), *pevent);
    return static_cast<int>(at - MsgBuf);
}
