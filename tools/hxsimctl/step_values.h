// The words of a scenario's step and its values: disks=0,1,2 size=100GiB.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace hxsimctl {

using Words = std::vector<std::string>;

/// Throws UsageError, which shows `form`, when there are fewer words.
void RequireWords(const Words& words, std::size_t least, const std::string& form);

/// Throws UsageError when there are more words.
void RequireNoMore(const Words& words, std::size_t most);

/// The name=value words of a step.
class StepValues {
public:
    /// Reads the words from index `first` on. Throws UsageError for an unknown or repeated name.
    StepValues(const Words& words, std::size_t first, const std::vector<std::string_view>& known);

    bool Has(const std::string& name) const { return values_.contains(name); }

    /// Empty when it is not given.
    std::string Text(const std::string& name) const;

    /// The parts between commas; empty when it is not given.
    Words List(const std::string& name) const;

    /// Throws UsageError for anything but a number up to `most`.
    std::uint64_t Number(const std::string& name, std::uint64_t most,
                         std::uint64_t otherwise) const;

private:
    std::map<std::string, std::string> values_;
};

}  // namespace hxsimctl
