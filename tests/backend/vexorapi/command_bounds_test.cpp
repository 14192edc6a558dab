// What one command of up to 1 MiB may cost, whatever it holds: 64 MiB of memory, a block asked for
// per byte, so many bytes of the debug log, so many calls of the controller; and no descriptor and
// no byte left over. Time is not measured: what a command could make more of than its own length is
// counted.
//
// The program is linked with --wrap for the allocation functions, so that what the library asks for
// passes through here, and what expat asks for as well: the library tells it whom to ask.
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>

#include "debug_log.h"
#include "hxfake.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "wrapped_allocations.h"

namespace {

// What has been taken since the start, and not given back.
struct Memory {
    std::size_t held = 0;
    std::size_t most = 0;  // held at once
    std::size_t asked = 0;

    void Take(void* block) {
        if (block == nullptr) return;
        ++asked;
        held += malloc_usable_size(block);
        most = std::max(most, held);
    }
    void GiveBack(void* block) {
        if (block != nullptr) held -= malloc_usable_size(block);
    }
};

Memory memory;

}  // namespace

extern "C" {
void* __wrap_malloc(std::size_t size) {
    void* const block = __real_malloc(size);
    memory.Take(block);
    return block;
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    void* const block = __real_calloc(count, size);
    memory.Take(block);
    return block;
}
void* __wrap_realloc(void* block, std::size_t size) {
    const std::size_t before = block == nullptr ? 0 : malloc_usable_size(block);
    void* const moved = __real_realloc(block, size);
    if (moved == nullptr) return nullptr;
    // While it is moved, both may be there.
    memory.Take(moved);
    memory.held -= before;
    return moved;
}
void __wrap_free(void* block) {
    memory.GiveBack(block);
    __real_free(block);
}
int __wrap_vasprintf(char** text, const char* format, std::va_list args) {
    const int length = __real_vasprintf(text, format, args);
    if (length >= 0) memory.Take(*text);
    return length;
}
// The name that a fortified build calls it by.
int __wrap___vasprintf_chk(char** text, int flag, const char* format, std::va_list args) {
    const int length = __real___vasprintf_chk(text, flag, format, args);
    if (length >= 0) memory.Take(*text);
    return length;
}
}

namespace {

constexpr std::size_t kWholeSize = std::size_t{1} << 20;
// With the debug log each message opens and closes its file, so that the commands are smaller;
// large enough all the same to fill what one request may write.
constexpr std::size_t kLoggedSize = kWholeSize / 8;
std::size_t command_size = 0;  // of the commands that are made
constexpr std::size_t kMostMemory = std::size_t{64} << 20;

// As often as it fits between the two, and blanks behind it.
std::string Filled(const std::string& begin, std::string_view middle, const std::string& end) {
    std::string command = begin;
    while (command.size() + middle.size() + end.size() <= command_size) command += middle;
    command += end;
    command.resize(command_size, ' ');
    return command;
}

std::string Within(const std::string& function, std::string_view middle) {
    return Filled("<" + function + " type=\"function\">", middle, "</" + function + ">");
}

std::string Nested(std::size_t levels) {
    std::string command = "<HX_LD_Create type=\"function\">";
    for (std::size_t i = 0; i < levels; ++i) command += "<a>";
    for (std::size_t i = 0; i < levels; ++i) command += "</a>";
    command += "</HX_LD_Create>";
    command.resize(command_size, ' ');
    return command;
}

// Elements of different names, each within the one before until there is no room for their ends.
std::string NestedNames() {
    std::string begin = "<HX_LD_Create type=\"function\">";
    std::string end = "</HX_LD_Create>";
    for (int i = 0; begin.size() + end.size() < command_size / 4; ++i) {
        const std::string name = "n" + std::to_string(i);
        begin += "<" + name + ">";
        end.insert(0, "</" + name + ">");
    }
    return Filled(begin, "<a/>", end);
}

std::string DifferentAttributes() {
    std::string command = "<HX_LD_Create type=\"function\"";
    for (int i = 0; command.size() < command_size - 40; ++i) {
        command += " a" + std::to_string(i) + "=\"\"";
    }
    command += "></HX_LD_Create>";
    command.resize(command_size, ' ');
    return command;
}

// Each attribute is a new one of a new element, which a parser keeps until the end.
std::string AttributesOfManyElements() {
    std::string command = "<HX_LD_Create type=\"function\">";
    for (int i = 0; command.size() < command_size - 60; ++i) {
        const std::string name = "e" + std::to_string(i);
        command += "<" + name + " a" + std::to_string(i) + "=\"\"/>";
    }
    command += "</HX_LD_Create>";
    command.resize(command_size, ' ');
    return command;
}

// As much as entities can be made to expand before the parser's own bound.
std::string Entities(int declarations, std::string_view references) {
    std::string command = "<!DOCTYPE r [<!ENTITY e0 \"0123456789\">";
    for (int i = 1; i < declarations; ++i) {
        const std::string before = "&e" + std::to_string(i - 1) + ";";
        command += "<!ENTITY e" + std::to_string(i) + " \"" + before + before + "\">";
    }
    command += "]>";
    return Filled(command + "<HX_LD_Create type=\"function\"><Name>", references,
                  "</Name></HX_LD_Create>");
}

struct Case {
    const char* name;
    std::string (*make)();
};
void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }

const Case kCases[] = {
    {"Blanks", [] { return Filled("", " ", "<HX_Adapter_GetCount type=\"function\"/>"); }},
    {"LineEnds", [] { return Within("HX_LD_Create", "\n"); }},
    {"DeepNesting", [] { return Nested((command_size - 100) / 7); }},
    {"DeepNestingOfDifferentNames", NestedNames},
    {"NeverClosed", [] { return Filled("<HX_LD_Create type=\"function\">", "<a>", ""); }},
    {"EmptyElements", [] { return Within("HX_LD_Create", "<a/>"); }},
    {"DottedElements", [] { return Within("HX_LD_Create", "<a.b/>"); }},
    {"ElementsOfLongNames",
     [] { return Within("HX_LD_Create", "<" + std::string(3000, 'n') + "/>"); }},
    {"OneName",
     [] { return Filled("<HX_LD_Create type=\"function\"><", "n", "/></HX_LD_Create>"); }},
    {"ParametersOfACreation",
     [] { return Within("HX_LD_Create", "<RaidMode>5</RaidMode><Name>n</Name>"); }},
    {"ParametersWithTypes",
     [] {
         return Within("HX_Adapter_SetConfig",
                       "<AlarmOn type=\"U8\">1</AlarmOn><BGARate type=\"U8\">60</BGARate>");
     }},
    {"ListsOfNumbers",
     [] { return Within("HX_LD_Create", "<HDIDs width=\"8\">1 2 3 4 5 6 7 8</HDIDs>"); }},
    {"OneListOfNumbers",
     [] {
         return Filled("<HX_LD_Create type=\"function\"><HDIDs>", "1 ", "</HDIDs></HX_LD_Create>");
     }},
    {"OneNumber",
     [] {
         return Filled("<HX_LD_Create type=\"function\"><AdapterID>", "9",
                       "</AdapterID></HX_LD_Create>");
     }},
    {"OneText",
     [] {
         return Filled("<HX_LD_Create type=\"function\"><Name>", "x", "</Name></HX_LD_Create>");
     }},
    {"TextOfReferences",
     [] {
         return Filled("<HX_LD_Create type=\"function\"><Name>", "&lt;", "</Name></HX_LD_Create>");
     }},
    {"TextInPieces", [] { return Within("HX_LD_Create", "x<!---->"); }},
    {"Sections", [] { return Within("HX_LD_Create", "<![CDATA[x]]>"); }},
    {"Instructions", [] { return Within("HX_LD_Create", "<?p x?>"); }},
    {"OneComment",
     [] { return Filled("<HX_LD_Create type=\"function\"><!--", "x", "--></HX_LD_Create>"); }},
    {"Attributes", [] { return Within("HX_LD_Create", "<a b=\"\" c=\"\" d=\"\"/>"); }},
    {"OneAttribute",
     [] { return Filled("<HX_LD_Create type=\"function\" a=\"", "x", "\"></HX_LD_Create>"); }},
    {"DifferentAttributes", DifferentAttributes},
    {"AttributesOfManyElements", AttributesOfManyElements},
    {"Entities", [] { return Entities(12, "&e11;"); }},
    {"NestedEntities", [] { return Entities(200, "&e199;"); }},
    {"LongEntity",
     [] {
         return Filled("<!DOCTYPE r [<!ENTITY e \"", "x",
                       "\">]><HX_LD_Create type=\"function\">&e;&e;&e;&e;&e;</HX_LD_Create>");
     }},
    {"EventQueries", [] { return Within("VX_HX_EVT_GetEvents", "<n>4294967295</n><s>0</s>"); }},
    {"Passwords", [] { return Within("HX_LogonUser", "<lpszPassword>p</lpszPassword>"); }},
    {"QuickCreations", [] { return Within("HX_LD_QuickCreate", "<AdapterID>0</AdapterID>"); }},
    {"ListsOfDisks",
     [] {
         return Within("HX_PD_GetHDInfo",
                       "<requestType>1</requestType><numRequested>65535</numRequested>");
     }},
    {"UnknownFunction", [] { return Within("HX_LD_Undo", "<a/>"); }},
    {"NoXml", [] { return std::string(command_size, '<'); }},
};

std::ptrdiff_t Descriptors() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return std::distance(begin(files), end(files));
}

class AnyCommand : public testing::TestWithParam<Case> {
protected:
    AnyCommand() {
        hxfake::Reset();
        // Lists that never end, of disks that could all be used.
        hxfake::On<&HX_PD_GetHDRaidStatus>().Always([](HX_U8, HD_RAID_Status_Request* request) {
            request->header.numReturned = HX_MAX_HDS;
            for (HX_U16 disk = 0; disk < HX_MAX_HDS; ++disk)
                request->hdRaidStatus[disk].HDID = disk;
            return HX_U8{HX_SUCCESS};
        });
        hxfake::On<&HX_BLK_GetInfo>().Always([this](HX_U8, Info_Request* request) {
            ++calls_;
            request->header.numReturned = 1;
            request->header.nextStartingIndex = 1;
            return HX_U8{HX_SUCCESS};
        });
        hxfake::NoteCalls(false);
    }
    ~AnyCommand() override { hxfake::Reset(); }

    // Sends the command and holds everything that it costs against its bounds.
    void ExpectBounded(std::size_t size) {
        command_size = size;
        const std::string command = GetParam().make();
        ASSERT_EQ(command_size, command.size());
        const std::ptrdiff_t descriptors = Descriptors();
        std::string result(VEXORAPI_MAX_RESULT, '\0');
        memory = {};
        vexorApi(command.c_str(), result.data(), VEXORAPI_MAX_RESULT);
        const Memory cost = memory;
        RecordProperty("most_memory", static_cast<int>(cost.most));
        RecordProperty("blocks", static_cast<int>(cost.asked));
        EXPECT_EQ(0U, cost.held);
        EXPECT_LE(cost.most, kMostMemory);
        // A block for each message: four of the shortest element that there is.
        constexpr std::size_t kOfAnyCommand = 200;
        EXPECT_LE(cost.asked, command_size + kOfAnyCommand);
        EXPECT_EQ(descriptors, Descriptors());
        EXPECT_LE(calls_, 65536U + HX_MAX_HDS);
    }

    const TemporaryRoot root_;
    std::size_t calls_ = 0;  // for a page of blocks
};

TEST_P(AnyCommand, IsBounded) { ExpectBounded(kWholeSize); }

TEST_P(AnyCommand, IsBoundedWhileEverythingIsLogged) {
    const DebugLog log(root_);
    root_.Write("/vexorapi.ini",
                "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"1\" OutLogEnable=\"1\""
                " Filename=\"" +
                    root_.Path("/requests.log") + "\"/></c>");
    ExpectBounded(kLoggedSize);
    constexpr std::size_t kLastLine = 200;
    EXPECT_LE(log.Text().size(), kMostTraced + kLastLine);
    EXPECT_LE(root_.Read("/requests.log").size(), command_size + VEXORAPI_MAX_RESULT + kLastLine);
}

INSTANTIATE_TEST_SUITE_P(Commands, AnyCommand, testing::ValuesIn(kCases),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
