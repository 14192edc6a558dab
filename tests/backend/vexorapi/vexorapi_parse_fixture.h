// The parse of a text with handlers that note what they are called with.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "debug_log.h"
#include "support/temporary_root.h"
#include "vexorapi_parse.h"

inline std::string Times(int count, std::string_view text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

inline std::string Position(const XMLElement& elmt) {
    return std::to_string(elmt.Depth) + " " + elmt.DirName;
}

// What the function's handlers were called with, one line a call.
inline std::vector<std::string>* calls = nullptr;

inline void XMLCALL NoteStart(void* userData, const XML_Char* name, const XML_Char** atts) {
    std::string line = std::string("start ") + name;
    for (; *atts != nullptr; atts += 2) line += std::string(" ") + atts[0] + "=" + atts[1];
    calls->push_back(line + " at " + Position(*static_cast<XMLElement*>(userData)));
}

inline void XMLCALL NoteEnd(void* userData, const XML_Char* name) {
    const auto& elmt = *static_cast<XMLElement*>(userData);
    calls->push_back(std::string("end ") + name + " at " + Position(elmt) + " text " +
                     std::to_string(elmt.CharDataIndex) + " [" + elmt.CharDataBuf + "]");
}

inline void XMLCALL NoteText(void* userData, const XML_Char* s, int len) {
    calls->push_back("text [" + std::string(s, static_cast<std::size_t>(len)) + "] after " +
                     std::to_string(static_cast<XMLElement*>(userData)->CharDataIndex));
}

class Parse : public testing::Test {
protected:
    Parse() {
        calls = &handler_calls;
        ResetElement(elmt);
    }
    ~Parse() override {
        FreeRecord(elmt);
        calls = nullptr;
    }

    // Without type="function" at the root the handler slots stay as they are, so that handlers
    // installed beforehand see what a function's would.
    void InstallHandlers() {
        elmt.StartHandler = NoteStart;
        elmt.EndHandler = NoteEnd;
    }

    int Run(std::string_view text) {
        return RunExpat(text.data(), text.size(), &elmt, elmt.Guard,
                        {RA_StartElement, RA_EndElement, RA_CharacterDataHandler,
                         DeclarationWatch<XMLElement>::Doctype});
    }

    // The text that an element's end handler is given.
    std::string TextAtEnd(std::string_view document) {
        InstallHandlers();
        EXPECT_EQ(1, Run(document));
        return handler_calls.back();
    }

    const char* FunctionName() const { return static_cast<const char*>(elmt.Ext); }

    std::vector<std::string> handler_calls;
    XMLElement elmt;
};

class ParseLog : public Parse {
protected:
    TemporaryRoot root;
    DebugLog log{root};
};
