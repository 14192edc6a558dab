// What one look at the machine finds besides what the table of conditions takes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace hxservice {

/// Versions are empty where they are not told.
struct AdapterFacts {
    unsigned number = 0;
    std::string firmware, driver, bios;
};

struct DiskFacts {
    unsigned adapter = 0;
    unsigned id = 0;
    std::string model, firmware;
};

/// A change counter of the library: any difference means a change.
struct ChangeCounter {
    std::string name;
    std::optional<std::uint64_t> count;
};

struct Facts {
    std::vector<AdapterFacts> adapters;
    std::vector<DiskFacts> disks;
    std::vector<ChangeCounter> counters;
};

}  // namespace hxservice
