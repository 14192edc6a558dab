#include "model/command_lint.h"

#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>

#include "common/nearest_name.h"
#include "common/terminal_text.h"
#include "model/xml_text.h"

namespace vexorctl {

namespace {

using enum LintFinding::Kind;
using vexortools::NearestName;

// What the library keeps of the text between two tags, and how deep below the root it looks for
// children.
constexpr std::size_t kTextKept = 2047;
constexpr std::size_t kHandledLevels = 3;
// The text of a result, and the most records that one request asks for: the number is signed.
constexpr std::size_t kResultRoom = 524287;
constexpr std::uint64_t kMostRequested = 32767;

struct KindRow {
    LintFinding::Kind kind;
    std::string_view key;
};
constexpr KindRow kKinds[] = {
    {kMalformed, "malformed"},
    {kDeclined, "declined"},
    {kUnknownChild, "unknown-child"},
    {kTooDeep, "too-deep"},
    {kStrayText, "stray-text"},
    {kNested, "nested"},
    {kRepeated, "repeated"},
    {kEmpty, "empty"},
    {kNoNumber, "no-number"},
    {kNotANumber, "not-a-number"},
    {kNumberCut, "number-cut"},
    {kNumbersLeftOut, "numbers-left-out"},
    {kTextCut, "text-cut"},
    {kTextRefused, "text-refused"},
    {kNothingListed, "nothing-listed"},
    {kListCut, "list-cut"},
};

std::string Quoted(std::string_view text) {
    constexpr std::size_t kShown = 40;
    std::string shown = vexortools::Printable(text.substr(0, kShown));
    return "\"" + shown + (text.size() > kShown ? "..." : "") + "\"";
}

std::string Count(std::size_t count, const char* one) {
    return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool IsBlankText(std::string_view text) { return std::ranges::all_of(text, IsBlank); }
std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A number as the library reads it, and whether it was more than its field holds.
struct ScannedNumber {
    std::string_view digits;
    std::uint64_t stored;
    bool cut;
};

// Every run of digits is a number; one that does not fit 32 bits, or 64 where the field has them,
// counts as the largest that does, and then its low bits are stored.
ScannedNumber Scan(std::string_view digits, unsigned bits) {
    const std::uint64_t widest = bits > 32 ? UINT64_MAX : UINT32_MAX;
    std::uint64_t value = 0;
    bool saturated = false;
    for (const char digit : digits) {
        const auto next = static_cast<std::uint64_t>(digit - '0');
        if (saturated || value > (widest - next) / 10) {
            saturated = true;
        } else {
            value = 10 * value + next;
        }
    }
    if (saturated) value = widest;
    const std::uint64_t most = bits >= 64 ? UINT64_MAX : (std::uint64_t{1} << bits) - 1;
    return {digits, value & most, saturated || value > most};
}

class Linter {
public:
    Linter(std::span<const FunctionRow> functions, std::vector<LintFinding>& findings)
        : functions_(functions), findings_(findings) {}

    void Start(unsigned long line, std::string_view name, bool is_function) {
        if (open_.empty()) {
            StartRoot(line, name, is_function);
        } else {
            if (function_ != nullptr && !IsBlankText(loose_)) ReportLoose(open_.back().line);
            open_.back().has_children = true;
        }
        open_.push_back({.name = std::string(name), .line = line});
        text_.clear();
        loose_.clear();
    }

    void End() {
        const Open element = std::move(open_.back());
        open_.pop_back();
        if (function_ == nullptr) return;
        if (open_.empty()) {
            if (!IsBlankText(loose_)) ReportLoose(element.line);
            CheckList(element);
            return;
        }
        EndChild(element);
        loose_.clear();
    }

    void Text(std::string_view text) {
        text_ += text;
        loose_ += text;
    }

private:
    struct Open {
        std::string name;
        unsigned long line;
        bool has_children = false;
    };

    void Report(LintFinding::Kind kind, unsigned long line, std::string_view element,
                std::string sentence) {
        findings_.push_back(
            {kind, line, std::string(element.substr(0, kLongestName)), std::move(sentence)});
    }

    void StartRoot(unsigned long line, std::string_view name, bool is_function) {
        const auto found = std::ranges::find(functions_, name, &FunctionRow::name);
        if (!is_function) {
            Report(kDeclined, line, name, "the attribute type=\"function\" is missing");
            return;
        }
        if (found == functions_.end()) {
            std::vector<std::string_view> names;
            for (const FunctionRow& each : functions_) names.push_back(each.name);
            const std::string_view nearest = NearestName(name, names);
            Report(kDeclined, line, name,
                   "no function is named so" +
                       (nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?"));
            return;
        }
        function_ = &*found;
    }

    void ReportLoose(unsigned long line) {
        Report(kStrayText, line, open_.empty() ? function_->name : open_.back().name,
               "the text " + Quoted(Trimmed(loose_)) + " stands in no parameter and is ignored");
    }

    void EndChild(const Open& element) {
        const std::size_t depth = open_.size();
        if (depth > kHandledLevels) {
            Report(kTooDeep, element.line, element.name,
                   "stands " + std::to_string(depth) + " levels below the root and is ignored");
            return;
        }
        const auto field = std::ranges::find(function_->fields, element.name, &FieldRow::name);
        if (field == function_->fields.end()) {
            ReportUnknown(element);
            return;
        }
        if (depth > 1) {
            Report(kNested, element.line, element.name,
                   "stands within " + open_.back().name + "; it counts all the same");
        }
        if (element.has_children) {
            Report(kNested, element.line, element.name,
                   "holds other elements; what follows the last one's start tag counts");
        }
        CheckValue(*field, element);
    }

    void ReportUnknown(const Open& element) {
        std::vector<std::string_view> names;
        for (const FieldRow& each : function_->fields) names.push_back(each.name);
        const std::string_view nearest = NearestName(element.name, names);
        Report(kUnknownChild, element.line, element.name,
               "is no parameter of " + std::string(function_->name) + " and is ignored" +
                   (nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?"));
    }

    void CheckValue(const FieldRow& field, const Open& element) {
        const bool comes_again = std::ranges::find(seen_, &field) != seen_.end();
        if (text_.empty()) {
            Report(kEmpty, element.line, element.name,
                   comes_again ? "is empty; what came before stays"
                               : "is empty; the field stays as if it were not there");
            return;
        }
        if (comes_again) {
            Report(kRepeated, element.line, element.name,
                   "comes again; what came before is overwritten");
        }
        seen_.push_back(&field);
        const std::string_view kept = std::string_view(text_).substr(0, kTextKept);
        const bool is_text =
            field.kind == FieldRow::Kind::kText || field.kind == FieldRow::Kind::kWholeText;
        if (is_text) {
            CheckText(field, element);
        } else {
            if (kept.size() < text_.size()) {
                Report(kTextCut, element.line, element.name,
                       "has " + Count(text_.size(), "character") + "; the first " +
                           std::to_string(kTextKept) + " are looked at");
            }
            CheckNumbers(field, element, kept);
        }
    }

    void CheckText(const FieldRow& field, const Open& element) {
        if (text_.size() <= field.count) return;
        const std::string sizes = "has " + Count(text_.size(), "byte") + "; the field holds " +
                                  std::to_string(field.count);
        if (field.kind == FieldRow::Kind::kWholeText) {
            Report(kTextRefused, element.line, element.name,
                   sizes + ", and a longer text is refused");
        } else {
            Report(kTextCut, element.line, element.name, sizes + ", and the rest is cut off");
        }
    }

    void CheckNumbers(const FieldRow& field, const Open& element, std::string_view text) {
        std::vector<ScannedNumber> numbers;
        bool others = false;  // characters that are neither digits nor between numbers
        for (std::size_t at = 0; at < text.size();) {
            if (!IsDigit(text[at])) {
                others |= !IsBlank(text[at]) && text[at] != ',';
                ++at;
                continue;
            }
            std::size_t end = at;
            while (end < text.size() && IsDigit(text[end])) ++end;
            numbers.push_back(Scan(text.substr(at, end - at), field.bits));
            at = end;
        }
        if (numbers.empty()) {
            Report(kNoNumber, element.line, element.name,
                   Quoted(text) + " holds no digit; the field stays as it was");
            return;
        }
        const std::size_t read = std::min(numbers.size(), field.count);
        if (others) {
            std::string list;
            for (std::size_t i = 0; i < std::min<std::size_t>(read, 8); ++i) {
                list += (i == 0 ? "" : " ") + std::to_string(numbers[i].stored);
            }
            if (read > 8) list += " ...";
            Report(kNotANumber, element.line, element.name, Quoted(text) + " is read as " + list);
        }
        for (std::size_t i = 0; i < read; ++i) {
            if (!numbers[i].cut) continue;
            Report(kNumberCut, element.line, element.name,
                   Quoted(numbers[i].digits) + " does not fit " + std::to_string(field.bits) +
                       " bits; it is cut to " + std::to_string(numbers[i].stored));
        }
        if (numbers.size() > read) {
            Report(kNumbersLeftOut, element.line, element.name,
                   "holds " + Count(numbers.size(), "number") + "; the first " +
                       (read == 1 ? "one counts" : std::to_string(read) + " count"));
        }
        if (field.name == function_->wanted_field) wanted_ = numbers.front().stored;
    }

    // A list that ends early is well-formed, and nothing in it says that records are missing.
    void CheckList(const Open& root) {
        if (function_->least_record == 0) return;
        if (function_->is_paged && wanted_ > kMostRequested) {
            Report(kNothingListed, root.line, function_->wanted_field,
                   std::to_string(wanted_) + " records or more than " +
                       std::to_string(kMostRequested) + " list nothing");
            return;
        }
        const std::uint64_t fit = kResultRoom / function_->least_record;
        if (wanted_ > fit) {
            Report(kListCut, root.line, function_->wanted_field,
                   "at most " + std::to_string(fit) + " records fit in a result; of " +
                       std::to_string(wanted_) + " the rest would be left out");
        }
    }

    std::span<const FunctionRow> functions_;
    std::vector<LintFinding>& findings_;
    const FunctionRow* function_ = nullptr;
    std::vector<Open> open_;             // from the root inwards
    std::string text_;                   // since the last start tag, as the library keeps it
    std::string loose_;                  // since the last tag of either kind
    std::vector<const FieldRow*> seen_;  // those that have got a value
    std::uint64_t wanted_ = 0;           // records that the command asks for
};

// The parser is C: nothing may be thrown through it.
struct Driver {
    XML_Parser parser;
    Linter& linter;
    bool out_of_memory = false;

    template <class Work>
    void Run(Work work) {
        if (out_of_memory) return;
        try {
            work();
        } catch (const std::bad_alloc&) {
            out_of_memory = true;
            XML_StopParser(parser, XML_FALSE);
        }
    }
};

void LintStart(void* user_data, const XML_Char* name, const XML_Char** atts) {
    Driver& driver = *static_cast<Driver*>(user_data);
    driver.Run([&] {
        bool is_function = false;
        for (; *atts != nullptr; atts += 2) {
            is_function |=
                std::strcmp(atts[0], "type") == 0 && std::strcmp(atts[1], "function") == 0;
        }
        driver.linter.Start(XML_GetCurrentLineNumber(driver.parser), name, is_function);
    });
}

void LintEnd(void* user_data, const XML_Char*) {
    Driver& driver = *static_cast<Driver*>(user_data);
    driver.Run([&] { driver.linter.End(); });
}

void LintText(void* user_data, const XML_Char* text, int length) {
    Driver& driver = *static_cast<Driver*>(user_data);
    driver.Run([&] { driver.linter.Text({text, static_cast<std::size_t>(length)}); });
}

// What keeps the library from parsing the text at all.
std::vector<LintFinding> Unparsable(std::string_view text) {
    if (text.empty()) return {{kMalformed, 1, "", "the command is empty"}};
    if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
        const auto line = 1 + std::ranges::count(text.substr(0, nul), '\n');
        return {{kMalformed, static_cast<unsigned long>(line), "",
                 "there is a NUL byte, where the library stops reading"}};
    }
    const XmlInspection inspection = InspectXml(text);
    if (inspection.well_formed) return {};
    if (inspection.too_many_declarations) {
        return {{kMalformed, 1, "",
                 "the document type has more than " + std::to_string(kMaxDeclarations) +
                     " declarations"}};
    }
    return {{kMalformed, inspection.line, "", inspection.reason}};
}

}  // namespace

std::string_view KeyOf(LintFinding::Kind kind) {
    return std::ranges::find(kKinds, kind, &KindRow::kind)->key;
}

bool IsFatal(LintFinding::Kind kind) { return kind == kMalformed || kind == kDeclined; }

std::vector<LintFinding> LintCommand(std::string_view text,
                                     std::span<const FunctionRow> functions) {
    std::vector<LintFinding> findings = Unparsable(text);
    if (!findings.empty()) return findings;
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    Linter linter(functions, findings);
    Driver driver{parser.get(), linter};
    XML_SetUserData(parser.get(), &driver);
    XML_SetElementHandler(parser.get(), LintStart, LintEnd);
    XML_SetCharacterDataHandler(parser.get(), LintText);
    const XML_Status status =
        XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
    // Inspected before, so that only memory can be short.
    if (driver.out_of_memory || status != XML_STATUS_OK) throw std::bad_alloc();
    std::ranges::stable_sort(findings, {}, &LintFinding::line);
    return findings;
}

}  // namespace vexorctl
