// Addresses as people read them: "a0/pd4-8" for five disks.
#pragma once

#include <string>
#include <vector>

namespace vexorctl {

/// Whether all of them are addresses of objects on adapters.
bool AreAddresses(const std::vector<std::string>& texts);

/// The addresses in their order; neighbours whose numbers follow each other as one range, and what
/// is of the same kind on the same adapter without its beginning again: "a0/pd0,4-8,a1/pd0".
std::string AddressRanges(const std::vector<std::string>& addresses);

}  // namespace vexorctl
