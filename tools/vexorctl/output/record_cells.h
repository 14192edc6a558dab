// Cells from the library's records. A field that its record does not have is unknown; the fields of
// a record that the adapter does not offer are none.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library_fields.h"
#include "model/library_record.h"
#include "output/cell.h"

namespace vexorctl {

/// None() where the record is not offered, otherwise what `make` makes.
template <class Record, class Make>
Cell IfOffered(const Record& record, Make make) {
    return record.presence() == Presence::kNotOffered ? None() : make();
}

/// Of a field of any kind, as it stands.
template <class Record, class R>
Cell FieldCell(const Record& record, NumberField<R> field) {
    return IfOffered(record, [&] { return NumberCell(record[field]); });
}
template <class Record, class R>
Cell FieldCell(const Record& record, TextField<R> field) {
    return IfOffered(record, [&] { return TextCell(record[field]); });
}
template <class Record, class R>
Cell FieldCell(const Record& record, NumbersField<R> field) {
    return IfOffered(record, [&] { return NumbersCell(record[field]); });
}
template <class Record, class R>
Cell SectorsAt(const Record& record, NumberField<R> field) {
    return IfOffered(record, [&] { return SectorsCell(record[field]); });
}
template <class Record, class R>
Cell PercentAt(const Record& record, NumberField<R> field) {
    return IfOffered(record, [&] { return PercentCell(record[field]); });
}
/// How far an activity is; None() while there is none, unknown when that is not known.
template <class Record, class R>
Cell ProgressAt(const Record& record, NumberField<R> activity, NumberField<R> percent) {
    return IfOffered(record, [&] {
        const auto kind = record[activity];
        if (!kind) return Unknown();
        return *kind == 0 ? None() : PercentCell(record[percent]);
    });
}
/// The number in a smaller unit: `factor` of those make one of the field's.
template <class Record, class R>
Cell ScaledAt(const Record& record, NumberField<R> field, std::uint64_t factor) {
    Cell cell = FieldCell(record, field);
    cell.number *= factor;
    return cell;
}

/// Bytes as hexadecimal digits, two each.
std::string HexBytes(const std::vector<std::uint64_t>& bytes);

template <class Record, class R>
Cell HexAt(const Record& record, NumbersField<R> field) {
    return IfOffered(record, [&] {
        const auto bytes = record[field];
        return bytes ? TextCell(HexBytes(*bytes)) : Unknown();
    });
}

/// "4.1.0.1350"; null where a part of it is unknown.
std::optional<std::string> VersionText(const View<fields::Version_Info>& version);
std::optional<std::string> VersionText(const View<fields::VX_VER_INFO>& version);

}  // namespace vexorctl
