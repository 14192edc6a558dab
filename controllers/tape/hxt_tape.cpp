#include "tape/hxt_tape.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>

#include "descriptor.h"

namespace hxtape {
namespace {

constexpr std::string_view kMagic = "vexorapi-tape 1";
constexpr std::string_view kOtherVersion = "vexorapi-tape ";
constexpr std::string_view kRecorded = "recorded ", kAnonymous = "anonymous ", kCall = "call ";
constexpr std::string_view kNothing = "-";
constexpr std::size_t kLongestName = 64;
constexpr char kDigits[] = "0123456789abcdef";

// Takes line after line; every line ends with a line end, so that one that was cut is noticed.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }

    std::string_view Next() {
        ++number_;
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) Fail(AtEnd() ? "is missing" : "has no end");
        const std::string_view line = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return line;
    }

    std::string_view NextAfter(std::string_view word) {
        const std::string_view line = Next();
        if (!line.starts_with(word)) Fail("does not begin with \"" + std::string(word) + "\"");
        return line.substr(word.size());
    }

    [[noreturn]] void Fail(const std::string& what) const {
        throw TapeError("line " + std::to_string(number_) + " " + what);
    }

private:
    std::string_view rest_;
    std::size_t number_ = 0;
};

template <class Number>
Number NumberOf(const Lines& lines, std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        lines.Fail("has a number that is none or too large");
    }
    return value;
}

std::string_view TakeWord(const Lines& lines, std::string_view& rest) {
    const std::size_t blank = rest.find(' ');
    if (blank == std::string_view::npos) lines.Fail("has fewer fields than a call");
    const std::string_view word = rest.substr(0, blank);
    rest.remove_prefix(blank + 1);
    return word;
}

std::string BytesOf(const Lines& lines, std::string_view digits) {
    std::string bytes;
    if (digits == kNothing) return bytes;
    if (digits.empty() || digits.size() % 2 != 0) lines.Fail("has bytes that are cut");
    bytes.reserve(digits.size() / 2);
    int high = -1;
    for (const char digit : digits) {
        const char* const found = digit == '\0' ? nullptr : std::strchr(kDigits, digit);
        if (found == nullptr) lines.Fail("has bytes that are no hexadecimal digits");
        const int value = static_cast<int>(found - kDigits);
        if (high < 0) {
            high = value;
        } else {
            bytes += static_cast<char>(high * 16 + value);
            high = -1;
        }
    }
    return bytes;
}

bool IsName(std::string_view text) {
    return text.starts_with("HX_") && text.size() <= kLongestName &&
           std::ranges::all_of(text, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '_';
           });
}

TapeCall CallOf(const Lines& lines, std::string_view rest) {
    TapeCall call;
    const std::string_view name = TakeWord(lines, rest);
    if (!IsName(name)) lines.Fail("names no function of a controller library");
    call.function = name;
    call.request = BytesOf(lines, TakeWord(lines, rest));
    call.status = NumberOf<std::uint8_t>(lines, TakeWord(lines, rest));
    call.answer = BytesOf(lines, rest);
    return call;
}

}  // namespace

std::string HexOf(std::string_view bytes) {
    if (bytes.empty()) return std::string(kNothing);
    std::string text;
    text.reserve(2 * bytes.size());
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

std::string HeadText(std::int64_t recorded, bool anonymous) {
    std::string text(kMagic);
    text.append("\n").append(kRecorded).append(std::to_string(recorded)).append("\n");
    return text.append(kAnonymous).append(anonymous ? "yes\n" : "no\n");
}

std::string LineOf(const TapeCall& call) {
    return std::string(kCall) + call.function + " " + HexOf(call.request) + " " +
           std::to_string(call.status) + " " + HexOf(call.answer) + "\n";
}

Tape ParseTape(std::string_view text) {
    Lines lines(text);
    Tape tape;
    const std::string_view first = text.substr(0, text.find('\n'));
    if (!first.starts_with(kOtherVersion)) throw TapeError("it is no tape");
    if (lines.Next() != kMagic) throw TapeError("it is a tape of another version than 1");
    tape.recorded = NumberOf<std::int64_t>(lines, lines.NextAfter(kRecorded));
    const std::string_view anonymous = lines.NextAfter(kAnonymous);
    if (anonymous != "yes" && anonymous != "no") lines.Fail("says neither yes nor no");
    tape.anonymous = anonymous == "yes";
    while (!lines.AtEnd()) {
        const std::string_view rest = lines.NextAfter(kCall);
        tape.calls.push_back(CallOf(lines, rest));
    }
    return tape;
}

Tape ReadTape(const std::string& path) {
    // Never waits, as it would for a FIFO.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) throw TapeError(std::strerror(errno));
    if (!S_ISREG(status.st_mode)) throw TapeError("it is not a regular file");
    std::string text;
    for (;;) {
        constexpr std::size_t kPiece = 65536;
        const std::size_t before = text.size();
        if (before > kMaxTape) throw TapeError("it is larger than 256 MiB");
        text.resize(before + kPiece);
        const ssize_t count = read(file.Get(), text.data() + before, kPiece);
        if (count < 0 && errno != EINTR) throw TapeError(std::strerror(errno));
        text.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0) return ParseTape(text);
    }
}

}  // namespace hxtape
