// Requests without memory. Every allocation of a request is made to fail, alone and with all that
// follow; each time the request ends in one of its documented ways and keeps no memory.
//
// The program is linked with --wrap for the allocation functions, so that what the library asks for
// passes through here, and what expat asks for as well: the library tells it whom to ask.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <cstddef>
#include <set>
#include <string>

#include "debug_log.h"
#include "hxfake.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "wrapped_allocations.h"

namespace {

// Which allocations fail, counted from 1 on. Counting stands still outside of a watched request.
class Memory {
public:
    bool Refuses() {
        if (!watching_) return false;
        ++asked_;
        const bool refuse = asked_ == first_ || (asked_ > first_ && all_that_follow_);
        refused_ = refused_ || refuse;
        return refuse;
    }
    void Taken(const void* block) {
        if (watching_ && block != nullptr) ++kept_;
    }
    void GivenBack(const void* block) {
        if (watching_ && block != nullptr) --kept_;
    }

    void Watch(int first, bool all_that_follow) {
        first_ = first;
        all_that_follow_ = all_that_follow;
        asked_ = 0;
        kept_ = 0;
        refused_ = false;
        watching_ = true;
    }
    void Stop() { watching_ = false; }

    int asked() const { return asked_; }       // allocations asked for
    int kept() const { return kept_; }         // blocks taken and not given back
    bool refused() const { return refused_; }  // whether one was refused at all

private:
    bool watching_ = false;
    int first_ = 0;
    bool all_that_follow_ = false;
    int asked_ = 0;
    int kept_ = 0;
    bool refused_ = false;
};

Memory memory;

}  // namespace

extern "C" {
void* __wrap_malloc(std::size_t size) {
    if (memory.Refuses()) return nullptr;
    void* const block = __real_malloc(size);
    memory.Taken(block);
    return block;
}
void* __wrap_calloc(std::size_t count, std::size_t size) {
    if (memory.Refuses()) return nullptr;
    void* const block = __real_calloc(count, size);
    memory.Taken(block);
    return block;
}
void* __wrap_realloc(void* block, std::size_t size) {
    if (memory.Refuses()) return nullptr;
    void* const moved = __real_realloc(block, size);
    if (moved != nullptr) {
        memory.GivenBack(block);
        memory.Taken(moved);
    }
    return moved;
}
void __wrap_free(void* block) {
    memory.GivenBack(block);
    __real_free(block);
}
int __wrap_vasprintf(char** text, const char* format, std::va_list args) {
    if (memory.Refuses()) return -1;
    const int length = __real_vasprintf(text, format, args);
    memory.Taken(length < 0 ? nullptr : *text);
    return length;
}
// The name that a fortified build calls it by.
int __wrap___vasprintf_chk(char** text, int flag, const char* format, std::va_list args) {
    if (memory.Refuses()) return -1;
    const int length = __real___vasprintf_chk(text, flag, format, args);
    memory.Taken(length < 0 ? nullptr : *text);
    return length;
}
}

namespace {

using testing::AnyOf;
using testing::ElementsAre;

constexpr char kGetInfo[] =
    "<HX_Adapter_GetInfo type=\"function\"><AdapterID>1</AdapterID></HX_Adapter_GetInfo>";
constexpr char kRefusedByTheController[] =
    "<HX_Adapter_GetInfo type=\"function\">\n"
    "  <RetVal type=\"U8\">9</RetVal>\n"
    "  <Count type=\"U8\">0</Count>\n"
    "</HX_Adapter_GetInfo>";

// As 0 or 1, ": ", and what the caller's buffer holds.
std::string Outcome(const Reply& reply) {
    return std::to_string(reply.ok) + ": " +
           (reply.text == kRefusedByTheController ? "the result" : reply.text);
}

class RequestWithoutMemory : public testing::Test {
protected:
    RequestWithoutMemory() {
        hxfake::Reset();
        hxfake::NoteCalls(false);
        hxfake::On<&HX_Adapter_GetInfo>().Always(9);
    }
    ~RequestWithoutMemory() override { hxfake::Reset(); }

    void TurnRequestLogOn() const {
        root.Write("/vexorapi.ini",
                   "<c><XmlWrapperLogConfig type=\"config\" InLogEnable=\"1\" OutLogEnable=\"1\""
                   " Filename=\"" +
                       root.Path("/requests.log") + "\"/></c>");
    }

    // Makes the n-th allocation fail for n = 1, 2, ... until a request asks for less than n, and
    // returns all outcomes.
    std::set<std::string> Outcomes(const std::string& command, bool all_that_follow) {
        std::set<std::string> outcomes;
        for (int first = 1;; ++first) {
            std::string untouched(1000, '~');
            std::string result = untouched;
            memory.Watch(first, all_that_follow);
            const int ok = vexorApi(command.c_str(), result.data(), 1000);
            memory.Stop();
            EXPECT_EQ(0, memory.kept()) << "allocation " << first;
            if (!memory.refused()) {
                allocations = memory.asked();
                EXPECT_EQ("1: the result", Outcome({ok, result.c_str()}));
                return outcomes;
            }
            outcomes.insert(Outcome({ok, result == untouched ? "untouched" : result.c_str()}));
        }
    }

    TemporaryRoot root;
    int allocations = 0;  // that a request asks for when none fails
};

TEST_F(RequestWithoutMemory, ReturnsZeroWhicheverAllocationFails) {
    EXPECT_THAT(Outcomes(kGetInfo, false), ElementsAre("0: ", "0: untouched"));
    EXPECT_GT(allocations, 2);
}

TEST_F(RequestWithoutMemory, ReturnsZeroFromWhicheverAllocationOnNothingIsLeft) {
    // Without its record the command is not parsed to its end either.
    EXPECT_THAT(Outcomes(kGetInfo, true), ElementsAre("0: untouched"));
}

TEST_F(RequestWithoutMemory, LosesALogLineRatherThanTheResult) {
    TurnRequestLogOn();
    EXPECT_THAT(Outcomes(kGetInfo, false), ElementsAre("0: ", "0: untouched", "1: the result"));
    Outcomes(kGetInfo, true);
}

TEST_F(RequestWithoutMemory, LosesADebugMessageRatherThanTheResult) {
    const DebugLog log(root);
    EXPECT_THAT(Outcomes(kGetInfo, false), ElementsAre("0: ", "0: untouched", "1: the result"));
    Outcomes(kGetInfo, true);
}

TEST_F(RequestWithoutMemory, SurvivesAMalformedCommand) {
    for (const bool all_that_follow : {false, true}) {
        for (int first = 1;; ++first) {
            char result[100] = "~";
            memory.Watch(first, all_that_follow);
            const int ok =
                vexorApi("<HX_Adapter_GetInfo type=\"function\"><a b=\"1\">x</c>", result, 100);
            memory.Stop();
            EXPECT_EQ(0, ok);
            EXPECT_STREQ("~", result);
            EXPECT_EQ(0, memory.kept()) << "allocation " << first;
            if (!memory.refused()) break;
        }
    }
}

TEST_F(RequestWithoutMemory, SurvivesAManagementFunction) {
    for (const bool all_that_follow : {false, true}) {
        for (int first = 1;; ++first) {
            char result[4000] = "~";
            memory.Watch(first, all_that_follow);
            const int ok = vexorApi("<VX_Module_GetInfo type=\"function\"/>", result, 4000);
            memory.Stop();
            EXPECT_EQ(0, memory.kept()) << "allocation " << first;
            if (!memory.refused()) break;
            EXPECT_THAT(std::to_string(ok) + result, AnyOf("0~", "0")) << "allocation " << first;
        }
    }
}

TEST_F(RequestWithoutMemory, SurvivesADeepCommandWithADocumentType) {
    std::string command = "<!DOCTYPE r [<!ENTITY e \"text\"><!ELEMENT a (b|c)*>]><r>";
    for (int i = 0; i < 50; ++i) command += "<a" + std::to_string(i) + " b=\"&e;\">&e;";
    for (int i = 50; i-- > 0;) command += "</a" + std::to_string(i) + ">";
    command += "</r>";
    for (int first = 1;; ++first) {
        char result[100] = "~";
        memory.Watch(first, false);
        EXPECT_EQ(0, vexorApi(command.c_str(), result, 100));
        memory.Stop();
        EXPECT_EQ(0, memory.kept()) << "allocation " << first;
        if (!memory.refused()) break;
    }
    EXPECT_GT(memory.asked(), 20);
}

TEST_F(RequestWithoutMemory, LogsNothingWithoutADocument) {
    TurnRequestLogOn();
    const DebugLog log(root);
    TurnRequestLogOn();
    char result[100] = "~";
    memory.Watch(1, true);
    EXPECT_EQ(0, vexorApi(kGetInfo, result, 100));
    memory.Stop();
    EXPECT_STREQ("~", result);
    EXPECT_EQ("", log.Text());
    EXPECT_FALSE(root.Exists("/requests.log"));
}

TEST_F(RequestWithoutMemory, LogsBothLinesWithoutARecord) {
    TurnRequestLogOn();
    // The record is the one allocation whose failure empties the result.
    for (int first = 1;; ++first) {
        root.Write("/requests.log", "");
        char result[1000] = "~";
        memory.Watch(first, false);
        const int ok = vexorApi(kGetInfo, result, 1000);
        memory.Stop();
        ASSERT_TRUE(memory.refused());
        if (ok != 0 || result[0] != '\0') continue;
        EXPECT_EQ("XMLCmd = " + std::string(kGetInfo) + "\nXMLRet = \n",
                  root.Read("/requests.log"));
        break;
    }
}

TEST_F(RequestWithoutMemory, TellsThatExpatHasNone) {
    const DebugLog log(root);
    // Without its parser a request has nothing to tell; once there is one, its error is expat's.
    std::set<std::string> told;
    for (int first = 1; first < 100; ++first) {
        root.Write("/debug.log", "");
        char result[100] = "~";
        memory.Watch(first, false);
        const int ok = vexorApi(kGetInfo, result, 100);
        memory.Stop();
        if (!memory.refused()) break;
        if (ok == 0 && result[0] == '~') {
            const std::string text = log.Text();
            told.insert(text.substr(text.rfind('\n') + 1));
        }
    }
    EXPECT_THAT(told, ElementsAre("", "XML_Error:out of memory at line 1"));
}

}  // namespace
