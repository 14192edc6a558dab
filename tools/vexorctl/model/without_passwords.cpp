#include "model/without_passwords.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace vexorctl {

namespace {

constexpr std::string_view kStars = "***";
// How lines of the library's debug log begin: an element that starts or ends, and, when the command
// has been read, the function that it calls.
constexpr std::string_view kTracedElement = "Dir = ";
constexpr std::string_view kTracedFunction = "pFD->FuncName=";
constexpr std::string_view kWords[] = {"password", "passwd", "secret", "token"};

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return lower;
}

bool SaysPassword(std::string_view lower) {
    return std::ranges::any_of(
        kWords, [&](std::string_view word) { return lower.find(word) != std::string_view::npos; });
}

// What is between the brackets that begin at `at`; nothing when they do not end.
std::string_view TagAt(std::string_view lower, std::size_t at) {
    const std::size_t end = lower.find('>', at);
    return end == std::string_view::npos ? std::string_view() : lower.substr(at + 1, end - at - 1);
}

bool IsEndTag(std::string_view tag) { return tag.starts_with('/') && SaysPassword(tag); }

// The first end tag of a password behind the place; the end of the text without one.
std::size_t FindEndTag(std::string_view lower, std::size_t from) {
    for (std::size_t at = lower.find('<', from); at != std::string_view::npos;
         at = lower.find('<', at + 1)) {
        if (IsEndTag(TagAt(lower, at))) return at;
    }
    return lower.size();
}

std::string WithoutElements(std::string_view text) {
    const std::string lower = LowerCase(text);
    std::string out;
    std::size_t from = 0;  // what is before it has been taken over
    for (std::size_t at = lower.find('<'); at != std::string::npos; at = lower.find('<', at)) {
        const std::string_view tag = TagAt(lower, at);
        if (IsEndTag(tag)) {
            // Its start tag was cut off.
            out = kStars;
            from = at;
        } else if (!tag.ends_with('/') &&
                   SaysPassword(tag.substr(0, tag.find_first_of(" \t\r\n")))) {
            const std::size_t value = at + tag.size() + 2;
            out.append(text.substr(from, value - from)).append(kStars);
            from = FindEndTag(lower, value);
            at = from;
            if (at == lower.size()) break;
        }
        at = std::max(at + 1, std::min(lower.find('>', at), lower.size()));
    }
    return out.append(text.substr(std::min(from, text.size())));
}

// The line with its end.
std::string WithoutValue(std::string_view line) {
    const std::size_t sign = line.find_first_of("=:");
    if (sign == std::string_view::npos || line.find('<') != std::string_view::npos) {
        return std::string(line);
    }
    if (!SaysPassword(LowerCase(line.substr(0, sign)))) return std::string(line);
    return std::string(line.substr(0, sign + 1))
        .append(" ")
        .append(kStars)
        .append(line.ends_with('\n') ? "\n" : "");
}

}  // namespace

std::string WithoutPasswords(std::string_view text) {
    const std::string elements = WithoutElements(text);
    std::string out;
    bool is_hidden = false;
    for (std::string_view rest = elements; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end);
        is_hidden = is_hidden && !line.starts_with(kTracedFunction);
        if (is_hidden) continue;
        out += WithoutValue(line);
        if (line.starts_with(kTracedElement) && SaysPassword(LowerCase(line))) {
            out.append(kStars).append("\n");
            is_hidden = true;
        }
    }
    return out;
}

std::string NewestOf(std::string_view log, std::size_t most) {
    if (log.size() <= most) return std::string(log);
    log.remove_prefix(log.size() - most);
    const std::string next_request = "\n" + std::string(kTracedFunction);
    const std::size_t at = log.find(next_request);
    if (at != std::string_view::npos) return std::string(log.substr(at + 1));
    return log.find(kTracedElement) == std::string_view::npos ? std::string(log) : std::string();
}

}  // namespace vexorctl
