#include "common/terminal_text.h"

#include <locale.h>
#include <wchar.h>

#include <algorithm>

#include "common/utf8.h"

namespace vexortools {

namespace {

// Selects the C library's built-in C.UTF-8 character table for wcwidth while an object is alive,
// whatever the locale is: terminals show UTF-8 even without LANG. The table is loaded for the first
// character beyond ASCII only, so that a service that writes none does without its memory.
class CharacterTable {
public:
    CharacterTable() = default;
    ~CharacterTable() {
        if (former_ != nullptr) uselocale(former_);
    }
    CharacterTable(const CharacterTable&) = delete;
    CharacterTable& operator=(const CharacterTable&) = delete;

    /// The columns of a character; -1 for an unprintable one. Without the table only ASCII is
    /// printable.
    int WidthOf(char32_t code) {
        constexpr char32_t kAfterAscii = 0x80;
        if (code == 0) return 0;
        if (code < kAfterAscii) return code >= ' ' && code != 0x7F ? 1 : -1;
        if (former_ == nullptr) former_ = uselocale(Table());
        return wcwidth(static_cast<wchar_t>(code));
    }

private:
    static locale_t Table() {
        static const locale_t table = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
        return table;  // null leaves the locale as it is
    }

    locale_t former_ = nullptr;  // null: the table is not selected
};

// Invisible characters, and characters that change the text around them.
struct Range {
    char32_t first;
    char32_t last;
};
constexpr Range kTricks[] = {
    {0x0000, 0x0000},    // NUL
    {0x061C, 0x061C},    // Arabic letter mark: direction
    {0x180E, 0x180E},    // Mongolian vowel separator: invisible
    {0x200B, 0x200B},    // zero width space
    {0x200E, 0x200F},    // marks of direction
    {0x202A, 0x202E},    // embeddings and overrides of direction
    {0x2060, 0x2064},    // word joiner and invisible operators
    {0x2066, 0x206F},    // isolates of direction, and deprecated characters
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFF9, 0xFFFB},    // annotations
    {0xE0000, 0xE007F},  // tags
};

bool IsTrick(char32_t code) {
    return std::ranges::any_of(
        kTricks, [code](const Range& range) { return code >= range.first && code <= range.last; });
}

}  // namespace

std::string Printable(std::string_view text) {
    CharacterTable table;
    std::string printable;
    printable.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character character = TakeUtf8(text);
        const bool is_harmless =
            character.is_valid && table.WidthOf(character.code) >= 0 && !IsTrick(character.code);
        printable += is_harmless ? character.bytes : std::string_view("?");
    }
    return printable;
}

std::size_t DisplayWidth(std::string_view text) {
    CharacterTable table;
    std::size_t width = 0;
    while (!text.empty()) {
        const Utf8Character character = TakeUtf8(text);
        const int columns = character.is_valid ? table.WidthOf(character.code) : -1;
        // Printable() replaces an unprintable character by one "?".
        width += columns < 0 ? 1 : static_cast<std::size_t>(columns);
    }
    return width;
}

}  // namespace vexortools
