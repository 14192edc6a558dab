#include "output/cell.h"

#include <utility>

#include "codes/named.h"

namespace vexorctl {

namespace {

constexpr std::uint64_t kSectorBytes = 512;

}  // namespace

Cell Unknown() { return {}; }

Cell TextCell(std::string text) {
    Cell cell;
    cell.known = true;
    cell.text = std::move(text);
    return cell;
}

Cell NumberCell(std::uint64_t number) {
    Cell cell;
    cell.known = true;
    cell.number = number;
    return cell;
}

Cell SectorsCell(std::uint64_t sectors) { return NumberCell(sectors * kSectorBytes); }

Cell RatioCell(double ratio) {
    Cell cell;
    cell.known = true;
    cell.ratio = ratio;
    return cell;
}

Cell CodeCell(std::span<const hxcodes::Named> names, std::uint64_t code) {
    Cell cell = NumberCell(code);
    cell.text = hxcodes::NameOf(names, static_cast<HX_U32>(code));
    return cell;
}

Cell BitsCell(std::span<const hxcodes::Named> names, std::uint64_t bits) {
    Cell cell = NumberCell(bits);
    for (unsigned bit = 0; bit < 64; ++bit) {
        const std::uint64_t mask = std::uint64_t{1} << bit;
        if ((bits & mask) == 0) continue;
        const std::string_view name =
            bit < 32 ? hxcodes::NameOf(names, static_cast<HX_U32>(mask)) : std::string_view();
        cell.texts.push_back(name.empty() ? std::to_string(mask) : std::string(name));
    }
    return cell;
}

Cell TextsCell(std::vector<std::string> texts) {
    Cell cell;
    cell.known = true;
    cell.texts = std::move(texts);
    return cell;
}

Cell NumbersCell(std::vector<std::uint64_t> numbers) {
    Cell cell;
    cell.known = true;
    cell.numbers = std::move(numbers);
    return cell;
}

}  // namespace vexorctl
