// The names under which generated documents describe the records of results.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "describe.h"

/// "LD_Info" of "struct LD_Info".
std::string RecordTypeName(const Element& record);

/// The records, each once, in the order in which they were named. Some have the same type name and
/// differ in their fields: from the second one on, the name has a number.
class RecordNames {
public:
    const std::string& NameOf(const Element& record);

    std::size_t size() const { return records_.size(); }
    /// The name and the record. The reference lasts until the next record is named.
    const std::pair<std::string, Element>& operator[](std::size_t i) const { return records_[i]; }

private:
    std::vector<std::pair<std::string, Element>> records_;
};
