#include "shell/present.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <tuple>
#include <utility>

#include "common/address.h"
#include "model/ask_controller.h"
#include "model/failure.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "output/streams.h"
#include "output/terminal_width.h"
#include "output/write_csv.h"
#include "output/write_json.h"
#include "output/write_table.h"
#include "output/write_xml.h"
#include "shell/nearest_word.h"

namespace vexorctl {

namespace {

std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        if (end != 0) parts.emplace_back(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    }
    return parts;
}

std::size_t ColumnOf(const Report& report, std::string_view key) {
    const auto found = std::ranges::find(report.columns, key, &ColumnInfo::key);
    if (found != report.columns.end()) {
        return static_cast<std::size_t>(found - report.columns.begin());
    }
    std::vector<std::string> keys;
    for (const ColumnInfo& column : report.columns) keys.emplace_back(column.key);
    throw UsageError("there is no column \"" + std::string(key) + "\"; the columns are " +
                     Joined(keys, ", ") + Meant(key, keys));
}

// What sorts before what: numbers by their value, everything else by its text.
auto SortKey(const ColumnInfo& column, const Cell& cell) {
    const bool by_text = IsText(column.kind) || IsTexts(column.kind);
    return std::tuple(cell.IsKnown(), cell.number, cell.ratio,
                      by_text ? cell.text + Joined(cell.texts, ",") : std::string(), cell.numbers);
}

// Addresses and names in the order in which people count: a0/pd2 before a0/pd10.
bool NaturallyLess(std::string_view one, std::string_view other) {
    const auto is_digit = [](char c) { return c >= '0' && c <= '9'; };
    while (!one.empty() && !other.empty()) {
        if (is_digit(one.front()) && is_digit(other.front())) {
            const auto number = [&](std::string_view& text) {
                text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
                std::size_t length = 0;
                while (length < text.size() && is_digit(text[length])) ++length;
                const std::string_view digits = text.substr(0, length);
                text.remove_prefix(length);
                return digits;
            };
            const std::string_view left = number(one);
            const std::string_view right = number(other);
            if (left.size() != right.size()) return left.size() < right.size();
            if (left != right) return left < right;
            continue;
        }
        if (one.front() != other.front()) return one.front() < other.front();
        one.remove_prefix(1);
        other.remove_prefix(1);
    }
    return one.size() < other.size();
}

bool CellLess(const ColumnInfo& column, const Cell& one, const Cell& other) {
    if (IsText(column.kind) && one.IsKnown() && other.IsKnown()) {
        return NaturallyLess(one.text, other.text);
    }
    return SortKey(column, one) < SortKey(column, other);
}

// "wide" is the table with all of its columns.
bool IsTable(const Style& style) { return style.format == "table" || style.format == "wide"; }

// The addresses that a target of this command means by naming an adapter: everything on it.
bool IsOn(std::string_view address, std::string_view owner) {
    return address.starts_with(owner) &&
           (address.size() == owner.size() || address[owner.size()] == '/');
}

// Nothing may follow a document on standard output; later failures are reported on standard error
// only.
bool document_printed = false;

void PrintDocument(const Report& report, const Style& style) {
    document_printed = true;
    std::string out;
    if (style.format == "json") {
        out = JsonDocument(report, style) + "\n";
    } else if (style.format == "xml") {
        out = XmlDocument(report, style);
    } else {
        PrintMore(report, style, true);
        for (const Fault& fault : report.faults) {
            if (style.format == "jsonl") out += JsonFaultLine(report.command, fault) + "\n";
        }
    }
    PrintText(out);
}

void SortRows(Report& report, const std::string& keys) {
    std::vector<std::pair<std::size_t, bool>> order;
    for (const std::string& key : Split(keys, ',')) {
        const bool reversed = key.starts_with('-');
        order.emplace_back(ColumnOf(report, std::string_view(key).substr(reversed ? 1 : 0)),
                           reversed);
    }
    std::ranges::stable_sort(report.rows, [&](const auto& one, const auto& other) {
        for (const auto& [i, reversed] : order) {
            const ColumnInfo& column = report.columns[i];
            if (CellLess(column, one[i], other[i])) return !reversed;
            if (CellLess(column, other[i], one[i])) return reversed;
        }
        return false;
    });
}

std::vector<std::size_t> NamedColumns(const Report& report, const std::string& keys) {
    std::vector<std::size_t> chosen;
    for (const std::string& key : Split(keys, ',')) chosen.push_back(ColumnOf(report, key));
    if (chosen.empty()) throw UsageError("--columns names no column");
    return chosen;
}

// The columns that are shown when none are named. A table has the same in every pipe, and as many
// as fit on a terminal.
std::vector<std::size_t> PlacedColumns(const Report& report, const Style& style, bool all) {
    if (!all && style.width != 0) return ColumnsThatFit(report, style);
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < report.columns.size(); ++i) {
        if (all || style.format != "table" || report.columns[i].place != Place::kWide) {
            chosen.push_back(i);
        }
    }
    return chosen;
}

// Marks the rows that the target names. False when there is none.
bool KeepNamed(const Report& report, const Selector& selector, std::vector<bool>& keep) {
    const bool by_address = selector.form == Selector::Form::kAddress;
    const std::string_view key = by_address                               ? "address"
                                 : selector.form == Selector::Form::kName ? "name"
                                                                          : "serial";
    const auto column = std::ranges::find(report.columns, key, &ColumnInfo::key);
    if (column == report.columns.end()) return false;
    const auto at = static_cast<std::size_t>(column - report.columns.begin());
    bool found = false;
    for (std::size_t i = 0; i < report.rows.size(); ++i) {
        const std::string& text = report.rows[i][at].text;
        const bool matches =
            by_address ? IsOn(text, selector.address.Text()) : text == selector.text;
        if (matches) keep[i] = found = true;
    }
    return found;
}

struct KindRow {
    ObjectKind kind;
    std::string_view noun;
    std::string_view verb;
};
constexpr KindRow kNounsOfKinds[] = {
    {ObjectKind::kAdapter, "adapter", "show"},     {ObjectKind::kDisk, "disk", "show"},
    {ObjectKind::kVirtualDisk, "vd", "show"},      {ObjectKind::kDiskGroup, "dg", "show"},
    {ObjectKind::kEnclosure, "enclosure", "list"}, {ObjectKind::kElement, "enclosure", "elements"},
};

// Why nothing is shown for a target: the address of something else, or a name that comes near.
std::string WhyAbsent(const Report& report, std::string_view noun, const Selector& selector) {
    const std::string list = "; see vexorctl " + std::string(noun) + " list";
    if (selector.form == Selector::Form::kAddress) {
        const auto* const row =
            std::ranges::find(kNounsOfKinds, selector.address.kind, &KindRow::kind);
        if (row->noun != noun) {
            return "this is the address of " + NameWithArticle(row->kind) + "; see vexorctl " +
                   std::string(row->noun) + " " + std::string(row->verb) + " " + selector.typed;
        }
    }
    std::string message = "there is no such " + std::string(noun) + list;
    if (selector.form == Selector::Form::kAddress) return message;
    const bool by_name = selector.form == Selector::Form::kName;
    const auto column = std::ranges::find(
        report.columns, by_name ? std::string_view("name") : "serial", &ColumnInfo::key);
    if (column == report.columns.end()) return message;
    std::vector<std::string> texts;
    for (const std::vector<Cell>& row : report.rows) {
        texts.push_back(row[static_cast<std::size_t>(column - report.columns.begin())].text);
    }
    return message + Meant(selector.text, texts);
}

// An adapter without such objects is an empty list, and one that is not there has its fault
// already.
bool IsFaultWhenAbsent(Controller& controller, const Selector& selector) {
    if (selector.form != Selector::Form::kAddress) return true;
    const std::vector<unsigned>& adapters = controller.Adapters();
    return selector.address.kind != ObjectKind::kAdapter &&
           std::ranges::find(adapters, selector.address.adapter) != adapters.end();
}

}  // namespace

void ReportFaults(const std::vector<Fault>& faults) {
    for (const Fault& fault : faults) {
        std::string subject = fault.address;
        if (!fault.function.empty()) {
            subject.append(subject.empty() ? "" : ": ").append(fault.function);
        }
        ReportFailure(subject, fault.message);
    }
}

Style StyleOf(const Invocation& invocation, std::string_view otherwise) {
    Style style;
    const std::string* const format = invocation.Get("--output");
    style.format = format == nullptr ? otherwise : std::string_view(*format);
    if (style.format == "table") style.width = TerminalWidth().value_or(0);
    style.header = !invocation.Has("--no-header");
    style.formulas = !invocation.Has("--no-formulas");
    style.bytes = invocation.Has("--bytes");
    style.si = invocation.Has("--si");
    style.utc = invocation.Has("--utc");
    const char* const no_colour = std::getenv("NO_COLOR");
    style.colour = (no_colour == nullptr || *no_colour == '\0') && isatty(STDOUT_FILENO) == 1;
    return style;
}

void Arrange(const Invocation& invocation, const Style& style, Report& report) {
    if (const std::string* const keys = invocation.Get("--sort")) SortRows(report, *keys);
    const std::string* const keys = invocation.Get("--columns");
    const std::vector<std::size_t> chosen = keys != nullptr && *keys != "all"
                                                ? NamedColumns(report, *keys)
                                                : PlacedColumns(report, style, keys != nullptr);
    report.partial = keys != nullptr && *keys != "all";
    KeepColumns(report, chosen);
}

void Print(const Report& report, const Style& style) {
    PrintDocument(report, style);
    ReportFaults(report.faults);
}

void PrintEarlyEnd(const Invocation& invocation, const Fault& fault) {
    const Style style = StyleOf(invocation, "table");
    const bool is_document = style.format == "json" || style.format == "xml";
    if (!is_document && style.format != "jsonl") return;
    if (is_document && document_printed) return;
    PrintDocument({invocation.row().Name(), {}, {}, {fault}}, style);
}

bool CanContinue(const Style& style) { return style.format != "json" && style.format != "xml"; }

void PrintMore(const Report& report, const Style& style, bool first) {
    std::string out;
    const bool header = first && style.header;
    if (style.format == "jsonl") {
        for (std::size_t row = 0; row < report.rows.size(); ++row) {
            out += JsonLine(report, row, style) + "\n";
        }
    } else if (style.format == "csv") {
        WriteCsv(report, style, header, out);
    } else if (style.format == "list") {
        WriteList(report, style, first, out);
    } else {
        WriteTable(report, style, header, out);
    }
    PrintText(out);
}

void SelectAdapters(Invocation& invocation) {
    std::vector<unsigned> adapters;
    if (const auto adapter = invocation.Number("--adapter", 254)) {
        adapters.push_back(static_cast<unsigned>(*adapter));
    }
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        // A name or a number may be on any adapter, unless --adapter says on which.
        if (selector.form != Selector::Form::kAddress) {
            if (!invocation.Has("--adapter")) return;
            continue;
        }
        adapters.push_back(selector.address.adapter);
    }
    if (!adapters.empty()) invocation.controller().Select(adapters);
}

Exit Present(Invocation& invocation, Report report, std::string_view format) {
    report.command = invocation.row().Name();
    const Style style = StyleOf(invocation, format);
    Arrange(invocation, style, report);
    report.faults = invocation.controller().faults();
    Print(report, style);
    return invocation.controller().exit();
}

PiecewiseReport::PiecewiseReport(Invocation& invocation)
    : invocation_(invocation),
      style_(StyleOf(invocation, "table")),
      is_whole_(!CanContinue(style_) || invocation.Get("--sort") != nullptr || style_.width != 0) {}

void PiecewiseReport::Add(Report piece) {
    // Nothing stands before the first row of a list.
    const bool is_begun = !piece.rows.empty() || style_.format != "list";
    if (is_whole_) {
        if (first_) {
            whole_ = std::move(piece);
        } else {
            std::ranges::move(piece.rows, std::back_inserter(whole_.rows));
        }
    } else {
        Arrange(invocation_, style_, piece);
        if (IsTable(style_)) {
            table_.Add(piece, style_);
        } else {
            PrintMore(piece, style_, first_);
        }
    }
    first_ = first_ && !is_begun;
}

Exit PiecewiseReport::End() {
    Controller& controller = invocation_.controller();
    if (is_whole_) return Present(invocation_, std::move(whole_));
    if (IsTable(style_)) table_.Write(style_, style_.header, PrintText);
    if (style_.format == "jsonl") {
        for (const Fault& fault : controller.faults()) {
            PrintText(JsonFaultLine(invocation_.row().Name(), fault) + "\n");
        }
    }
    ReportFaults(controller.faults());
    return controller.exit();
}

Exit Show(Invocation& invocation, Report report, std::string_view format) {
    if (format.empty()) format = invocation.row().verb == "show" ? "list" : "table";
    if (invocation.targets().empty()) return Present(invocation, std::move(report), format);
    Controller& controller = invocation.controller();
    std::vector<bool> keep(report.rows.size(), false);
    for (const std::string& target : invocation.targets()) {
        const Selector selector = ParseSelector(target);
        if (KeepNamed(report, selector, keep) || !IsFaultWhenAbsent(controller, selector)) continue;
        std::string message = WhyAbsent(report, invocation.row().noun, selector);
        controller.Note({.address = target, .name = "no_object", .message = std::move(message)},
                        Exit::kNoObject);
    }
    std::vector<std::vector<Cell>> kept;
    for (std::size_t i = 0; i < report.rows.size(); ++i) {
        if (keep[i]) kept.push_back(std::move(report.rows[i]));
    }
    report.rows = std::move(kept);
    return Present(invocation, std::move(report), format);
}

}  // namespace vexorctl
