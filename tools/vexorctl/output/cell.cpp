#include "output/cell.h"

#include <cstddef>
#include <utility>

#include "codes/named.h"
#include "common/size.h"

namespace vexorctl {

namespace {

Cell Known() {
    Cell cell;
    cell.state = Cell::State::kKnown;
    return cell;
}

std::vector<std::string> NamesOfBits(std::span<const hxcodes::Named> names, std::uint64_t bits) {
    std::vector<std::string> texts;
    for (unsigned bit = 0; bit < 64; ++bit) {
        const std::uint64_t mask = std::uint64_t{1} << bit;
        if ((bits & mask) == 0) continue;
        const std::string_view name = hxcodes::NameOf(names, mask);
        texts.push_back(name.empty() ? std::to_string(mask) : std::string(name));
    }
    return texts;
}

}  // namespace

Cell Unknown() { return {}; }

Cell None() {
    Cell cell;
    cell.state = Cell::State::kNone;
    return cell;
}

Cell TextCell(std::optional<std::string> text) {
    if (!text) return Unknown();
    if (text->empty()) return None();
    Cell cell = Known();
    cell.text = *std::move(text);
    return cell;
}

Cell NumberCell(std::optional<std::uint64_t> number) {
    if (!number) return Unknown();
    Cell cell = Known();
    cell.number = *number;
    return cell;
}

Cell SectorsCell(std::optional<std::uint64_t> sectors) {
    return sectors ? NumberCell(*sectors * vexortools::kSectorBytes) : Unknown();
}

Cell PercentCell(std::optional<std::uint64_t> percent) {
    if (!percent) return Unknown();
    Cell cell = Known();
    cell.ratio = static_cast<double>(*percent) / 100;
    return cell;
}

Cell TextsCell(std::optional<std::vector<std::string>> texts) {
    if (!texts) return Unknown();
    Cell cell = Known();
    cell.texts = *std::move(texts);
    return cell;
}

Cell NumbersCell(std::optional<std::vector<std::uint64_t>> numbers) {
    if (!numbers) return Unknown();
    Cell cell = Known();
    cell.numbers = *std::move(numbers);
    return cell;
}

Cell ItemsCell(std::vector<std::vector<Cell>> items) {
    Cell cell = Known();
    cell.items = std::move(items);
    return cell;
}

Cell CodeCell(std::span<const hxcodes::Named> names, std::uint64_t code) {
    Cell cell = NumberCell(code);
    cell.text = hxcodes::NameOf(names, code);
    return cell;
}

void NameCodes(const ColumnInfo& column, const hxcodes::CodeTable& codes, Cell& cell) {
    for (std::vector<Cell>& item : cell.items) {
        for (std::size_t i = 0; i < item.size(); ++i) NameCodes(column.parts[i], codes, item[i]);
    }
    if (column.names == nullptr || !cell.IsKnown()) return;
    const std::span<const hxcodes::Named> names = codes.*column.names;
    if (column.kind == Kind::kBits) {
        cell.texts = NamesOfBits(names, cell.number);
    } else {
        cell.text = hxcodes::NameOf(names, cell.number);
    }
}

}  // namespace vexorctl
