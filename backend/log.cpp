// The service log: one file at a fixed path, open only while a line is written.
#include "log.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "append_file.h"
#include "root_path.h"

namespace {

constexpr char kServiceLog[] = "/var/log/hxraidsvc.log";

// In asctime's form, so that readers can parse every line of the log in the same way.
constexpr char kUnknownTime[kTimeTextSize] = "Thu Jan  1 00:00:00 1970\n";

constinit int file = -1;  // the open log, -1 between lines
constinit char now_text[kTimeTextSize] = {};

}  // namespace

bool GetNow(std::tm& now) {
    // localtime and asctime share static storage with the process that loaded the library; only
    // their re-entrant forms leave it alone. localtime_r need not look at TZ by itself.
    tzset();
    const std::time_t seconds = std::time(nullptr);
    return localtime_r(&seconds, &now) != nullptr;
}

const char* TimeToStr(const std::tm& time, char (&text)[kTimeTextSize]) {
    if (asctime_r(&time, text) == nullptr) std::memcpy(text, kUnknownTime, sizeof text);
    return text;
}

const char* NowToStr() {
    std::tm now;
    return GetNow(now) ? TimeToStr(now, now_text) : kUnknownTime;
}

int InitLog() noexcept {
    CloseLog();  // the caller may have left it open
    char path[kRootPathSize];
    if (RootPath(path, kServiceLog) == nullptr) return 1;
    file = OpenForAppend(path).Release();
    return file < 0 ? 1 : 0;
}

int CloseLog() noexcept {
    if (file < 0) return 1;
    const int failed = close(file);
    file = -1;
    return failed == 0 ? 0 : 1;
}

int LogPrintf(const char* fmt, ...) noexcept {
    std::va_list args;
    va_start(args, fmt);
    HeapBlock<char> message;
    const int length = FormatWhole(message, fmt, args);
    va_end(args);
    if (length < 0) return 0;

    const char* const now = NowToStr();
    const int stamp_length = static_cast<int>(std::strlen(now)) - 1;  // without its line end
    char* stamped = nullptr;
    const int line_length = asprintf(&stamped, "%.*s: %s", stamp_length, now, message.get());
    if (line_length < 0) return 0;
    const HeapBlock<char> line(stamped);

    if (InitLog() == 0) {
        AppendBytes(file, line.get(), static_cast<std::size_t>(line_length));
        CloseLog();
    }
    return length;
}
