// The literal lifecycle of a request. Its result is written by the reference writer of the tests,
// which is as literal.
#include <expat.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "reference_writer.h"
#include "xml_rapi_function_list.h"
#include "yardsticks.h"

namespace {

struct Config {
    std::uint8_t log_commands;
    std::uint8_t log_results;
    char file_name[256];
};

struct Element {
    std::int16_t depth;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    XML_CharacterDataHandler text_handler;
    std::uint16_t array_width;
    char path[2048];
    std::uint16_t text_length;
    char text[2048];
    void* record;
};

// A function's name, then the record of any function: the largest is a page of 64 disk groups of
// 688 bytes behind its 16-byte header.
struct FunctionRecord {
    char name[64];
    union {
        struct {
            HX_U8 ret_val;
            HX_U8 adapter;
            HX_U16 disk;
        } spare;
        char largest[16 + 64 * 688];
    };
};

#define NAME(function) #function,
constexpr const char* kNames[] = {VENDOR_FUNCTIONS(NAME)};
#undef NAME
constexpr char kServed[] = "HX_PD_FreeHD2GlobalSpare";

[[gnu::noinline, gnu::format(printf, 1, 2)]] void DebugPrintf(const char* format, ...) {
    static bool enabled = false;
    static FILE* log = nullptr;
    if (!enabled) return;
    std::va_list args;
    va_start(args, format);
    std::vfprintf(log, format, args);
    va_end(args);
}

std::uint16_t ReadConfigFile(char* buffer, std::size_t size) {
    FILE* const file = std::fopen("/vexorapi.ini", "rb");
    if (file == nullptr) return 0;
    const std::size_t length = std::fread(buffer, 1, size, file);
    std::fclose(file);
    return static_cast<std::uint16_t>(length);
}

void LoadConfig(Config&) {
    char* const buffer = static_cast<char*>(std::malloc(65536));
    if (buffer == nullptr) return;
    if (ReadConfigFile(buffer, 65536) != 0) {
        std::fprintf(stderr, "/vexorapi.ini exists: requests are measured without it\n");
        std::exit(EXIT_FAILURE);
    }
    std::free(buffer);
}

void PrintAttributes(const XML_Char** atts) {
    DebugPrintf("[Atts]");
    for (; *atts != nullptr; atts += 2) DebugPrintf("%s:%s ", atts[0], atts[1]);
    DebugPrintf("\n");
}

void XMLCALL StartParameter(void*, const XML_Char*, const XML_Char** atts) {
    PrintAttributes(atts);
}
void XMLCALL EndParameter(void* context, const XML_Char* name) {
    Element& element = *static_cast<Element*>(context);
    auto& spare = static_cast<FunctionRecord*>(element.record)->spare;
    if (std::strcmp(name, kServed) == 0 || element.text_length == 0) return;
    const unsigned long number = std::strtoul(element.text, nullptr, 10);
    if (std::strcmp(name, "AdapterID") == 0) {
        spare.adapter = static_cast<HX_U8>(number);
    } else if (std::strcmp(name, "HD_ID") == 0) {
        spare.disk = static_cast<HX_U16>(number);
    }
}

bool SelectFunction(Element& element, const XML_Char* name) {
    for (const char* known : kNames) {
        if (std::strcmp(name, known) != 0) continue;
        element.start = StartParameter;
        element.end = EndParameter;
        return true;
    }
    return false;
}

const char* Attribute(const char* name, const XML_Char** atts) {
    for (; *atts != nullptr; atts += 2) {
        if (std::strcmp(atts[0], name) == 0) return atts[1];
    }
    return nullptr;
}

void XMLCALL StartElement(void* context, const XML_Char* name, const XML_Char** atts) {
    Element& element = *static_cast<Element*>(context);
    if (element.depth > 0) std::strcat(element.path, ".");
    std::strcat(element.path, name);
    element.array_width = 0;
    element.text_length = 0;
    std::memset(element.text, 0, sizeof element.text);
    DebugPrintf("Dir = %s\n", element.path);
    if (element.depth == 0) {
        const char* const type = Attribute("type", atts);
        if (type != nullptr && std::strcmp(type, "function") == 0) {
            element.start = nullptr;
            element.end = nullptr;
            element.text_handler = nullptr;
            if (SelectFunction(element, name)) {
                element.record = std::malloc(sizeof(FunctionRecord));
                std::memset(element.record, 0, sizeof(FunctionRecord));
                std::strcpy(static_cast<FunctionRecord*>(element.record)->name, name);
            }
        }
        if (element.start != nullptr) element.start(context, name, atts);
    } else if (element.depth <= 3 && element.start != nullptr) {
        element.start(context, name, atts);
    }
    ++element.depth;
}

void XMLCALL EndElement(void* context, const XML_Char* name) {
    Element& element = *static_cast<Element*>(context);
    --element.depth;
    DebugPrintf("Dir = %s\n", element.path);
    if (element.depth >= 1) {
        for (std::size_t at = std::strlen(element.path); at > 0; --at) {
            if (element.path[at - 1] != '.') continue;
            element.path[at - 1] = '\0';
            break;
        }
    } else {
        element.path[0] = '\0';
    }
    if (element.text_length != 0) DebugPrintf("[CD %d]:%s\n", element.text_length, element.text);
    if (element.depth == 0) {
        element.start = nullptr;
        element.end = nullptr;
        element.text_handler = nullptr;
    } else if (element.depth <= 3 && element.end != nullptr) {
        element.end(context, name);
    }
}

void XMLCALL CollectText(void* context, const XML_Char* text, int length) {
    Element& element = *static_cast<Element*>(context);
    std::memcpy(element.text + element.text_length, text, static_cast<std::size_t>(length));
    element.text_length = static_cast<std::uint16_t>(element.text_length + length);
}

bool Execute(Element& element, XMLWR_Doc* doc) {
    FunctionRecord& record = *static_cast<FunctionRecord*>(element.record);
    DebugPrintf("pFD->FuncName=%s\n\n", record.name);
    if (std::strcmp(record.name, kServed) != 0) return false;
    record.spare.ret_val = HX_PD_FreeHD2GlobalSpare(record.spare.adapter, record.spare.disk);
    reference::ElmtStartPrintf(doc, 0, record.name, " %s=\"%s\"", "type", "function");
    reference::ElmtNonArrayData(doc, "RetVal", "U8", "%u",
                                static_cast<unsigned>(record.spare.ret_val));
    reference::ElmtEnd(doc, 0, record.name);
    return true;
}

void Deliver(XMLWR_Doc* doc, char* result, std::uint32_t size) {
    if (doc->CurPos >= size) {
        doc->Buf[doc->CurPos] = '\0';
        DebugPrintf("Buffer too small\n %s\n", doc->Buf);
        return;
    }
    std::memcpy(result, doc->Buf, doc->CurPos - 1);
    result[doc->CurPos - 1] = '\0';
}

}  // namespace

int yardstick::LiteralRequest(const char* command, char* result, std::uint32_t size) {
    const std::size_t length = std::strlen(command);
    if (length == 0 || size == 0) return 0;
    auto* const doc = static_cast<XMLWR_Doc*>(std::malloc(sizeof(XMLWR_Doc)));
    if (doc == nullptr) return 0;
    Config config{};
    LoadConfig(config);

    Element element{};
    const XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetUserData(parser, &element);
    XML_SetElementHandler(parser, StartElement, EndElement);
    XML_SetCharacterDataHandler(parser, CollectText);
    int served = 0;
    const auto parsed = XML_Parse(parser, command, static_cast<int>(length), 1);
    XML_ParserFree(parser);
    if (parsed == XML_STATUS_OK) {
        result[0] = '\0';
        if (element.record != nullptr) {
            // Reset for each of the two executors, also when the first has taken the request.
            reference::Init(doc);
            if (Execute(element, doc)) {
                Deliver(doc, result, size);
                served = 1;
            }
            reference::Init(doc);
        }
    }
    std::free(element.record);
    std::free(doc);
    return served;
}
