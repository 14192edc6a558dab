#include "vexorapi_result.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "Zend/zend_smart_str.h"
#include "vexorapi_errors.h"
#include "vexorapi_utf8.h"
#include "zend_exceptions.h"

namespace vexorapi_php {

namespace {

constexpr auto kNowhere = std::string_view::npos;
constexpr std::string_view kCdata = "<![CDATA[";
constexpr std::string_view kCdataEnd = "]]>";
constexpr std::string_view kWhite = " \t\r\n";
constexpr const char* kCut = "it was cut";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// By the places of the rows among Rows(). Interned for the whole process, and read only afterwards.
std::vector<zend_string*>& Keys() {
    static std::vector<zend_string*> keys;
    return keys;
}

bool IsWhite(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Texts are data from controllers and disks, whose bytes the library writes as they are: what is no
// character of XML becomes U+FFFD, because htmlspecialchars() and json_encode() take UTF-8 alone.
void AppendHarmless(smart_str& out, std::string_view text) {
    while (!text.empty()) {
        const Utf8Character character = FirstCharacter(text);
        if (character.is_allowed) {
            smart_str_appendl(&out, text.data(), character.length);
        } else {
            smart_str_appendl(&out, kReplacement.data(), kReplacement.size());
        }
        text.remove_prefix(character.length);
    }
}

// Most texts hold nothing but plain characters.
bool IsPlain(std::string_view text, bool is_cdata) {
    return std::ranges::all_of(
        text, [&](char c) { return c >= ' ' && c <= '~' && (c != '&' || is_cdata); });
}

struct Reference {
    std::string_view text;
    char character;
};
constexpr std::array<Reference, 5> kReferences = {{
    {"&amp;", '&'},
    {"&lt;", '<'},
    {"&gt;", '>'},
    {"&quot;", '"'},
    {"&apos;", '\''},
}};

// Outside CDATA, a reference may be the library's own writing.
void AppendBare(smart_str& out, std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('&'), text.size());
        AppendHarmless(out, text.substr(0, end));
        text.remove_prefix(end);
        if (text.empty()) return;
        const auto* const found = std::ranges::find_if(
            kReferences, [&](const Reference& each) { return text.starts_with(each.text); });
        const bool is_reference = found != kReferences.end();
        smart_str_appendc(&out, is_reference ? found->character : '&');
        text.remove_prefix(is_reference ? found->text.size() : 1);
    }
}

zend_string* MakeText(std::string_view text, bool is_cdata) {
    if (IsPlain(text, is_cdata)) return zend_string_init(text.data(), text.size(), false);
    smart_str out = {};
    if (is_cdata) {
        AppendHarmless(out, text);
    } else {
        AppendBare(out, text);
    }
    return smart_str_extract(&out);
}

// Reads a result from its start to its end. Whatever is not as it should be ends the reading:
// problem() says what.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    const char* problem() const { return problem_; }
    const char* missing() const { return missing_; }

    // What is inside the root.
    bool ReadRoot(std::size_t shape, zval* array) {
        std::string_view name;
        return Open(name) && ReadRecord(shape, name, array);
    }

private:
    bool Fail(const char* problem) {
        if (problem_ == nullptr) problem_ = problem;
        return false;
    }

    void SkipWhite() {
        std::size_t length = 0;
        while (length < rest_.size() && IsWhite(rest_[length])) ++length;
        rest_.remove_prefix(length);
    }

    // Takes a start tag.
    bool Open(std::string_view& name) {
        SkipWhite();
        const std::size_t end = rest_.find('>');
        if (end == kNowhere || !rest_.starts_with('<')) return Fail(kCut);
        const std::string_view tag = rest_.substr(1, end - 1);
        name = tag.substr(0, tag.find(' '));
        rest_.remove_prefix(end + 1);
        return true;
    }

    bool IsClosing(std::string_view name) const {
        // Most tags are start tags: one character tells.
        if (rest_.size() < name.size() + 3 || rest_[1] != '/') return false;
        return rest_[0] == '<' && rest_.substr(2, name.size()) == name &&
               rest_[2 + name.size()] == '>';
    }

    bool Close(std::string_view name) {
        SkipWhite();
        if (!IsClosing(name)) return Fail(kCut);
        rest_.remove_prefix(name.size() + 3);
        return true;
    }

    // The start tag was read; the end tag is read here.
    bool ReadRecord(std::size_t shape, std::string_view name, zval* array) {
        const Shape rows = shapes_[shape];
        array_init_size(array, static_cast<std::uint32_t>(rows.count));
        // Elements come in the order of their rows: the next one is nearly always that of the next
        // row.
        std::size_t expected = 0;
        for (;;) {
            SkipWhite();
            if (IsClosing(name)) break;
            std::string_view element;
            if (!Open(element)) return false;
            const std::size_t row = FindRow(rows, element, expected);
            if (row == rows.count) {
                if (!Skip(element)) return false;
                continue;
            }
            // Behind all rows before it, no row has a value yet.
            const bool is_new = row >= expected;
            if (!ReadRow(rows.first + row, element, is_new, Z_ARRVAL_P(array))) return false;
            expected = MayRepeat(rows_[rows.first + row].kind) ? row : row + 1;
        }
        return Close(name) && Complete(rows, Z_ARRVAL_P(array));
    }

    static bool MayRepeat(Row::Kind kind) {
        return kind == Row::Kind::kList || kind == Row::Kind::kPorts;
    }

    static bool IsOf(const Row& row, std::string_view element) {
        if (row.kind != Row::Kind::kPorts) return element == row.name;
        return element.starts_with(row.name) && element.size() > row.name.size() &&
               std::ranges::all_of(element.substr(row.name.size()), IsDigit);
    }

    std::size_t FindRow(Shape rows, std::string_view element, std::size_t expected) const {
        for (std::size_t row = expected; row < rows.count; ++row) {
            if (IsOf(rows_[rows.first + row], element)) return row;
        }
        for (std::size_t row = 0; row < expected; ++row) {
            if (IsOf(rows_[rows.first + row], element)) return row;
        }
        return rows.count;
    }

    // With `is_new`, the row has no value yet, unless it may have several.
    bool ReadRow(std::size_t row, std::string_view element, bool is_new, HashTable* array) {
        zval value;
        ZVAL_UNDEF(&value);
        if (!ReadValue(rows_[row], element, &value)) {
            zval_ptr_dtor(&value);
            return false;
        }
        if (MayRepeat(rows_[row].kind)) {
            AppendTo(array, keys_[row], &value);
        } else if (is_new) {
            zend_hash_add_new(array, keys_[row], &value);
        } else if (zend_hash_add(array, keys_[row], &value) == nullptr) {
            zval_ptr_dtor(&value);  // the first one counts
        }
        return true;
    }

    static void AppendTo(HashTable* array, zend_string* key, zval* value) {
        zval* list = zend_hash_find_known_hash(array, key);
        if (list == nullptr) {
            zval empty;
            array_init(&empty);
            list = zend_hash_add_new(array, key, &empty);
        }
        zend_hash_next_index_insert_new(Z_ARRVAL_P(list), value);
    }

    bool ReadValue(const Row& row, std::string_view element, zval* value) {
        switch (row.kind) {
            case Row::Kind::kNumber:
            case Row::Kind::kFlag:
            case Row::Kind::kHexadecimal:
                return ReadNumber(row.kind, value) && Close(element);
            case Row::Kind::kNumbers:
            case Row::Kind::kBytes:
            case Row::Kind::kPorts:
                return ReadNumbers(value) && Close(element);
            case Row::Kind::kText:
                return ReadText(element, value);
            case Row::Kind::kRecord:
            case Row::Kind::kList:
                return ReadRecord(row.shape, element, value);
        }
        return false;
    }

    bool ReadNumber(Row::Kind kind, zval* value) {
        zend_long number = 0;
        const zend_ulong base = kind == Row::Kind::kHexadecimal ? 16 : 10;
        if (!TakeNumber(base, number)) return false;
        if (kind == Row::Kind::kFlag) {
            ZVAL_BOOL(value, number != 0);
        } else {
            ZVAL_LONG(value, number);
        }
        return true;
    }

    static int ValueOf(char c) {
        if (IsDigit(c)) return c - '0';
        return c >= 'a' && c <= 'f' ? c - 'a' + 10 : 16;
    }

    bool TakeNumber(zend_ulong base, zend_long& number) {
        // Fewer digits always fit; dividing for each of them would take most of the time.
        constexpr std::size_t kSafeDigits = 15;
        zend_ulong sum = 0;
        std::size_t length = 0;
        for (; length < rest_.size(); ++length) {
            const auto digit = static_cast<zend_ulong>(ValueOf(rest_[length]));
            if (digit >= base) break;
            const bool is_too_large = length >= kSafeDigits &&
                                      sum > (static_cast<zend_ulong>(ZEND_LONG_MAX) - digit) / base;
            if (is_too_large) return Fail("a number is larger than an int of PHP");
            sum = base * sum + digit;
        }
        if (length == 0) return Fail("a number is missing");
        rest_.remove_prefix(length);
        number = static_cast<zend_long>(sum);
        return true;
    }

    bool ReadNumbers(zval* value) {
        array_init(value);
        zend_hash_real_init_packed(Z_ARRVAL_P(value));
        for (;;) {
            SkipWhite();
            if (rest_.starts_with('<')) return true;
            zend_long number = 0;
            if (!TakeNumber(10, number)) return false;
            zval item;
            ZVAL_LONG(&item, number);
            zend_hash_next_index_insert_new(Z_ARRVAL_P(value), &item);
        }
    }

    // Where the text ends that `closing` and the end tag close: behind them comes the next tag and
    // nothing else. A text that holds a closing tag of its own is not ended by it.
    std::size_t EndOfText(std::string_view closing, std::string_view element) const {
        for (std::size_t at = 0; (at = rest_.find(closing, at)) != kNowhere; ++at) {
            std::string_view behind = rest_.substr(at + closing.size());
            if (!behind.starts_with(element)) continue;
            behind.remove_prefix(element.size());
            if (!behind.starts_with('>')) continue;
            const std::size_t next = behind.find_first_not_of(kWhite, 1);
            if (next == kNowhere || behind[next] == '<') return at;
        }
        return kNowhere;
    }

    bool ReadText(std::string_view element, zval* value) {
        const bool is_cdata = rest_.starts_with(kCdata);
        if (is_cdata) rest_.remove_prefix(kCdata.size());
        const std::size_t length = EndOfText(is_cdata ? "]]></" : "</", element);
        if (length == kNowhere) return Fail(kCut);
        ZVAL_STR(value, MakeText(rest_.substr(0, length), is_cdata));
        rest_.remove_prefix(length + (is_cdata ? kCdataEnd.size() : 0));
        return Close(element);
    }

    // An element of a later library, whose start tag was read.
    bool Skip(std::string_view element) {
        for (unsigned depth = 1; depth != 0;) {
            rest_.remove_prefix(std::min(rest_.find('<'), rest_.size()));
            if (rest_.starts_with(kCdata)) {
                const std::size_t end = rest_.find(kCdataEnd);
                if (end == kNowhere) return Fail(kCut);
                rest_.remove_prefix(end + kCdataEnd.size());
                continue;
            }
            const bool is_end = rest_.starts_with("</");
            std::string_view name;
            if (!Open(name)) return false;
            if (name == element) ++depth;
            if (is_end && name.substr(1) == element) --depth;
        }
        return true;
    }

    // A row without an element is an empty list, or its value is unknown.
    bool Complete(Shape rows, HashTable* array) {
        if (zend_hash_num_elements(array) == rows.count) return true;
        for (std::size_t i = rows.first; i < rows.first + rows.count; ++i) {
            if (zend_hash_find_known_hash(array, keys_[i]) != nullptr) continue;
            switch (rows_[i].kind) {
                case Row::Kind::kList:
                case Row::Kind::kPorts:
                case Row::Kind::kBytes: {
                    zval empty;
                    ZVAL_EMPTY_ARRAY(&empty);
                    zend_hash_add_new(array, keys_[i], &empty);
                    break;
                }
                case Row::Kind::kNumber:
                case Row::Kind::kHexadecimal:
                case Row::Kind::kFlag:
                case Row::Kind::kText:
                case Row::Kind::kNumbers:
                case Row::Kind::kRecord:
                    missing_ = rows_[i].name.data();
                    return Fail("an element is missing");
            }
        }
        return true;
    }

    const std::span<const Row> rows_ = Rows();
    const std::span<const Shape> shapes_ = Shapes();
    zend_string* const* const keys_ = Keys().data();
    std::string_view rest_;
    const char* problem_ = nullptr;
    const char* missing_ = nullptr;
};

}  // namespace

void MakeKeys() {
    for (const Row& row : Rows()) {
        Keys().push_back(zend_string_init_interned(row.name.data(), row.name.size(), true));
    }
}

zend_long StatusOf(std::string_view result) {
    constexpr std::string_view kStatus = "<RetVal type=\"U8\">";
    std::size_t at = result.find(kStatus);
    if (at == kNowhere) return -1;
    at += kStatus.size();
    zend_long status = 0;
    const std::size_t first = at;
    while (at < result.size() && at < first + 3 && IsDigit(result[at])) {
        status = 10 * status + (result[at++] - '0');
    }
    return at == first ? -1 : status;
}

bool ReadResult(const Function& function, std::string_view result, zval* array) {
    Reader reader(result);
    ZVAL_UNDEF(array);
    if (reader.ReadRoot(function.shape, array)) return true;
    zval_ptr_dtor(array);
    ZVAL_UNDEF(array);
    if (reader.missing() != nullptr) {
        zend_throw_exception_ex(Exceptions().unreadable, 0, "%s: the result has no %s",
                                function.name, reader.missing());
    } else if (reader.problem() == kCut) {
        zend_throw_exception_ex(Exceptions().does_not_fit, 0,
                                "%s: the result was cut or is broken; ask for fewer records",
                                function.name);
    } else {
        zend_throw_exception_ex(Exceptions().unreadable, 0, "%s: %s", function.name,
                                reader.problem());
    }
    return false;
}

}  // namespace vexorapi_php
