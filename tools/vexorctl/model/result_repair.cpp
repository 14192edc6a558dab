#include "model/result_repair.h"

#include <algorithm>
#include <array>

#include "common/utf8.h"

namespace vexorctl {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kCdata = "<![CDATA[";
constexpr std::string_view kCdataEnd = "]]>";
constexpr std::string_view kWhite = " \t\r\n";
constexpr auto kNowhere = std::string_view::npos;

void AppendAllowed(std::string& out, std::string_view text) {
    while (!text.empty()) {
        const vexortools::Utf8Character character = vexortools::TakeUtf8(text);
        const char32_t code = character.code;
        const bool is_blank = code == '\t' || code == '\n' || code == '\r';
        const bool is_allowed =
            character.is_valid && code != 0xFFFE && code != 0xFFFF && (code >= ' ' || is_blank);
        out += is_allowed ? character.bytes : kReplacement;
    }
}

// A reference at the start of the text may be the library's own writing.
bool BeginsWithReference(std::string_view text) {
    constexpr std::array<std::string_view, 5> kReferences{"&amp;", "&lt;", "&gt;", "&quot;",
                                                          "&apos;"};
    return std::ranges::any_of(kReferences,
                               [&](std::string_view each) { return text.starts_with(each); });
}

void AppendPlain(std::string& out, std::string_view text) {
    while (!text.empty()) {
        const std::size_t special = std::min(text.find_first_of("&<>"), text.size());
        AppendAllowed(out, text.substr(0, special));
        text.remove_prefix(special);
        if (text.empty()) return;
        if (text.front() == '&') out += BeginsWithReference(text) ? "&" : "&amp;";
        if (text.front() == '<') out += "&lt;";
        if (text.front() == '>') out += "&gt;";
        text.remove_prefix(1);
    }
}

void AppendCdata(std::string& out, std::string_view text) {
    out += kCdata;
    for (std::size_t end; (end = text.find(kCdataEnd)) != kNowhere;) {
        AppendAllowed(out, text.substr(0, end));
        out += "]]]]><![CDATA[>";
        text.remove_prefix(end + kCdataEnd.size());
    }
    AppendAllowed(out, text);
    out += kCdataEnd;
}

// Where the text ends that `closing` closes: behind it comes the next tag and nothing else. A text
// that holds a closing tag of its own is not ended by it.
std::size_t EndOfText(std::string_view rest, const std::string& closing) {
    for (std::size_t at = 0; (at = rest.find(closing, at)) != kNowhere; ++at) {
        const std::size_t next = rest.find_first_not_of(kWhite, at + closing.size());
        if (next == kNowhere || rest[next] == '<') return at;
    }
    return kNowhere;
}

std::string_view NameIn(std::string_view tag) {
    return tag.substr(1, std::min(tag.find_first_of(" \t\r\n/>"), tag.size()) - 1);
}

}  // namespace

std::string Repaired(std::string_view result) {
    std::string out;
    while (!result.empty()) {
        // What stands before a tag is blank, or numbers.
        const std::size_t start = std::min(result.find('<'), result.size());
        AppendPlain(out, result.substr(0, start));
        result.remove_prefix(start);
        const std::size_t end = result.find('>');
        if (end == kNowhere) break;
        const std::string_view tag = result.substr(0, end + 1);
        AppendAllowed(out, tag);
        result.remove_prefix(tag.size());
        if (tag.starts_with("</") || tag.starts_with("<!") || tag.ends_with("/>")) continue;
        const std::string closing = "</" + std::string(NameIn(tag)) + ">";
        if (result.starts_with(kCdata)) {
            const std::string_view text = result.substr(kCdata.size());
            const std::size_t length = EndOfText(text, std::string(kCdataEnd) + closing);
            if (length == kNowhere) break;
            AppendCdata(out, text.substr(0, length));
            result = text.substr(length + kCdataEnd.size());
        } else if (tag.find("type=\"string\"") != kNowhere) {
            const std::size_t length = EndOfText(result, closing);
            if (length == kNowhere) break;
            AppendPlain(out, result.substr(0, length));
            result.remove_prefix(length);
        }
    }
    return out += result;
}

}  // namespace vexorctl
