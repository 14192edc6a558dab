#include "record_names.h"

#include <string_view>

namespace {

bool AreEqual(const Element& one, const Element& other) {
    if (one.type != other.type || one.children.size() != other.children.size()) return false;
    for (std::size_t i = 0; i < one.children.size(); ++i) {
        const Element& a = one.children[i];
        const Element& b = other.children[i];
        if (a.name != b.name || a.type != b.type) return false;
    }
    return true;
}

}  // namespace

std::string RecordTypeName(const Element& record) {
    return record.type.substr(std::string_view("struct ").size());
}

const std::string& RecordNames::NameOf(const Element& record) {
    int same = 1;
    for (const auto& [name, known] : records_) {
        if (AreEqual(known, record)) return name;
        if (known.type == record.type) ++same;
    }
    std::string name = RecordTypeName(record);
    if (same > 1) name += "_" + std::to_string(same);
    records_.emplace_back(std::move(name), record);
    return records_.back().first;
}
