// The debug log, and messages to files of other names. Every message opens its file, appends and
// closes it; those of a parse do so together.
#include "vx_dbg.h"

#include <unistd.h>

#include <cstdarg>
#include <cstring>

#include "append_file.h"

constinit VX_DBG_Ext DBG_Ext{.Flags = 0, .FileName = {}, .FOut = -1, .Cfg = {}};

namespace {

constexpr std::uint32_t kSectionLoaded = 1;  // of Flags

// Messages to the name "stderr" are dropped: no file of that name is opened, and the standard error
// stream is not used.
bool IsStderr(const char* filename) { return std::strcmp(filename, "stderr") == 0; }

// Whether `filename` names a log. A name that is too long for its field does not, because a
// truncated name would be another file's.
bool IsLogName(const char* filename) {
    return filename != nullptr && filename[0] != '\0' &&
           strnlen(filename, sizeof DBG_Ext.FileName) < sizeof DBG_Ext.FileName;
}

// memmove, because a caller may pass the log's own name.
void SetLogName(const char* filename) {
    std::memmove(DBG_Ext.FileName, filename, std::strlen(filename) + 1);
}

Descriptor OpenMessageFile(const char* filename) {
    return IsStderr(filename) ? Descriptor() : OpenForAppend(filename);
}

void Append(int descriptor, const char* text) {
    // A text ends at its first NUL, even one from "%c" in the middle.
    if (descriptor >= 0) AppendBytes(descriptor, text, std::strlen(text));
}

// The line in the debug log when the rest of a request is left out.
constexpr char kLeftOut[] =
    "The request's further messages are left out: it has filled the 16777216 bytes that one "
    "request may write to the debug log.\n";
static_assert(kMostTraced == 16777216);

// Formats a message and passes it to `take`. Returns its length, or 0 when formatting fails.
template <class Take>
[[gnu::format(printf, 1, 0)]] int Format(const char* fmt, std::va_list args, const Take& take) {
    HeapBlock<char> text;
    const int length = FormatWhole(text, fmt, args);
    if (length < 0) return 0;
    take(text.get());
    return length;
}

// Messages of a parse that are not in the log yet.
struct Gathered {
    bool active;
    std::size_t length;
    char text[65536];
};
constinit Gathered gathered{};

void WriteToLog(const char* text, std::size_t length) {
    DBG_Ext.FOut = OpenMessageFile(DBG_Ext.FileName).Release();
    if (DBG_Ext.FOut >= 0) AppendBytes(DBG_Ext.FOut, text, length);
    VX_DBG_Shutdown();
}

void WriteGathered() {
    if (gathered.length == 0) return;
    WriteToLog(gathered.text, gathered.length);
    gathered.length = 0;
}

void AppendToLog(const char* text) {
    if (RequestTraces::AreFull()) return;
    // A text ends at its first NUL, even one from "%c" in the middle.
    if (!RequestTraces::Take(std::strlen(text))) text = kLeftOut;
    const std::size_t length = std::strlen(text);
    if (length > sizeof gathered.text - gathered.length) WriteGathered();
    if (!gathered.active || length > sizeof gathered.text) {
        WriteToLog(text, length);
        return;
    }
    std::memcpy(gathered.text + gathered.length, text, length);
    gathered.length += length;
}

}  // namespace

GatheredTraces::GatheredTraces() { gathered.active = true; }

GatheredTraces::~GatheredTraces() {
    gathered.active = false;
    WriteGathered();
}

int VX_DBG_Init(const char* filename) noexcept {
    if ((DBG_Ext.Flags & kSectionLoaded) == 0) {
        DBG_Ext.Flags |= kSectionLoaded;
        DBG_Ext.Cfg = {};
        VX_CfgLoad(&DBG_Ext.Cfg, "DebugLogConfig");
    }
    if (IsLogName(filename)) {
        SetLogName(filename);
    } else if (IsLogName(DBG_Ext.Cfg.Filename)) {
        SetLogName(DBG_Ext.Cfg.Filename);
    }
    if (!VX_DBG_On()) return 0;
    if (!IsStderr(DBG_Ext.FileName)) TruncateFile(DBG_Ext.FileName);
    return 1;
}

int VX_DBG_Printf(const char* fmt, ...) noexcept {
    if (!VX_DBG_On()) return 0;
    std::va_list args;
    va_start(args, fmt);
    const int length = Format(fmt, args, AppendToLog);
    va_end(args);
    return length;
}

int VX_DBG_PrintFile(const char* filename, const char* fmt, ...) noexcept {
    std::va_list args;
    va_start(args, fmt);
    const int length = Format(fmt, args, [filename](const char* text) {
        if (filename != nullptr) Append(OpenMessageFile(filename).Get(), text);
    });
    va_end(args);
    return length;
}

void VX_DBG_Shutdown(void) noexcept {
    if (DBG_Ext.FOut >= 0) close(DBG_Ext.FOut);
    DBG_Ext.FOut = -1;
}
