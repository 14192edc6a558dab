// The text of an event whose every byte is the fuzzer's.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "input.h"
#include "targets.h"
#include "vxevent_text.h"

namespace {

constexpr char kUntouched = '~' + 1;  // no text has it

// "Thu Jan  1 00:00:00 1970", a blank, and the key with its values.
const char* LookAt(std::string_view text, const Event& event) {
    if (text.size() < 26 || text.back() != '\n') return "the text is not a line with a time";
    const std::string_view line = text.substr(0, text.size() - 1);
    // Only an adapter's serial number, which is the controller's, can bring anything else.
    const bool has_serial = event.Class == 0 && event.Code == 9 && event.SenseDataLength > 0;
    const auto is_plain = [](char c) { return c >= ' ' && c <= '~'; };
    if (!has_serial && !std::ranges::all_of(line, is_plain)) return "the text has odd characters";
    if (line[24] != ' ') return "no blank stands behind the time";
    const std::string_view key = line.substr(25);
    const bool silent = event.Class == 3 || event.Class == 5 || event.Class == 6;
    if (silent != key.empty() && event.Class != 13) return "a class has a text, or none, wrongly";
    if (!key.empty() && !key.starts_with("EVT_")) return "the key does not begin as keys do";
    return nullptr;
}

}  // namespace

const char* FuzzEventText(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    while (!input.IsEmpty()) {
        const std::string bytes = input.Bytes(sizeof(Event));
        Event event{};
        std::memcpy(&event, bytes.data(), bytes.size());
        char text[kEventTextSize];
        std::fill_n(text, sizeof text, kUntouched);
        const int length = VX_HX_EVT_Sprintf(&event, text);
        if (length < 0 || static_cast<std::size_t>(length) >= kLongestEventText) {
            return "the text is longer than any";
        }
        if (std::strlen(text) != static_cast<std::size_t>(length)) return "the length is wrong";
        const auto is_untouched = [](char c) { return c == kUntouched; };
        if (!std::all_of(text + kLongestEventText, text + sizeof text, is_untouched)) {
            return "the text was written behind its room";
        }
        char again[kEventTextSize];
        if (VX_HX_EVT_Sprintf(&event, again) != length || std::strcmp(text, again) != 0) {
            return "the same event has two texts";
        }
        if (const char* const wrong = LookAt({text, static_cast<std::size_t>(length)}, event)) {
            return wrong;
        }
    }
    return nullptr;
}
