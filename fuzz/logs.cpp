// Messages to the logs, with texts and file names that are the fuzzer's, and the event service's
// version file.
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>

#include "backend/vexorapi/fresh_debug_log.h"
#include "input.h"
#include "log.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "vexorapi.h"
#include "vexorapi_version.h"

namespace {

// What the version file's bytes mean, from its format alone: fields end with dots, the last one
// with the file; 50 characters of each count, and 0xFF never does.
struct Versions {
    long long major = 100, minor = 101, oem = 102, build = 0;
};

long long NumberOf(const std::string& field) {
    std::string text;
    for (const char c : field) {
        if (static_cast<unsigned char>(c) != 0xFF && text.size() < 50) text += c;
    }
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return std::min<long long>(std::max<long long>(number, INT_MIN), INT_MAX);
}

Versions VersionsOf(const std::string& text) {
    Versions versions;
    long long* const fields[] = {&versions.major, &versions.minor, &versions.oem};
    std::size_t from = 0;
    for (std::size_t field = 0;; ++field) {
        const std::size_t dot = text.find('.', from);
        if (dot == std::string::npos) break;
        if (field < 3) *fields[field] = NumberOf(text.substr(from, dot - from));
        from = dot + 1;
    }
    versions.build = NumberOf(text.substr(from));
    return versions;
}

const char* ReadVersion(const TemporaryRoot& root, const std::string& text) {
    root.Write("/hxraidver.dat", text);
    STORE_KEY(HXRAIDSVC, 100, 101, 102, 103);
    getEventSvcVersion();
    const Versions expected = VersionsOf(text);
    const bool equal = eventSvcVersionMajor == expected.major &&
                       eventSvcVersionMinor == expected.minor &&
                       eventSvcVersionOEM == expected.oem && eventSvcVersionBuild == expected.build;
    return equal ? nullptr : "the version was read as another one";
}

// A name inside the temporary folder, whatever the fuzzer says.
std::string SafeName(const std::string& name) {
    std::string safe;
    for (const char c : name) safe += c == '/' || c == '\0' ? '_' : c;
    return "/" + safe;
}

const char* WriteMessages(const TemporaryRoot& root, Input& input) {
    const FreshDebugLog fresh;
    const std::string name = root.Path(SafeName(input.Until(0)));
    const std::string text = input.Until(0);
    const auto length = static_cast<int>(text.size());

    std::error_code ignored;
    std::filesystem::remove(name, ignored);
    DBG_Ext.Flags = 1;
    DBG_Ext.Cfg.LogEnable = 1;
    const bool taken = VX_DBG_Init(name.c_str()) == 1;
    if (taken != (name.size() < sizeof DBG_Ext.FileName))
        return "a name was taken, or not, wrongly";
    for (int times = 1; times <= 2 && taken; ++times) {
        if (VX_DBG_Printf("%s", text.c_str()) != length) return "the characters were miscounted";
    }
    if (DBG_Ext.FOut != -1) return "the debug log was left open";
    if (VX_DBG_PrintFile(name.c_str(), "<%s>", text.c_str()) != length + 2) {
        return "the characters of a named file were miscounted";
    }
    const std::string file = name.substr(root.Path("").size());
    const std::string expected = (taken ? text + text : "") + "<" + text + ">";
    // A name that is too long for the system, or that names a folder, has no file.
    if (std::filesystem::is_regular_file(name, ignored)) {
        if (root.Read(file) != expected) return "the messages stand otherwise in the file";
        std::filesystem::remove(name, ignored);
    }

    root.Write("/var/log/hxraidsvc.log", "");
    if (LogPrintf("%s", text.c_str()) != length) return "the service log miscounted";
    const std::string line = root.Read("/var/log/hxraidsvc.log");
    if (line.size() != 26 + text.size() || line.substr(24, 2) != ": " || line.substr(26) != text) {
        return "the service log's line is another one";
    }
    return nullptr;
}

}  // namespace

const char* FuzzLogs(const std::uint8_t* data, std::size_t size) {
    static const TemporaryRoot root;
    Input input(data, size);
    if (input.U8() % 2 == 0) return ReadVersion(root, input.Rest());
    return WriteMessages(root, input);
}
