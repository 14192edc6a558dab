#include "step_values.h"

#include <algorithm>

#include "code_names.h"
#include "common/number.h"
#include "failure.h"

namespace hxsimctl {

void RequireWords(const Words& words, std::size_t least, const std::string& form) {
    if (words.size() < least) throw UsageError("write " + form);
}

void RequireNoMore(const Words& words, std::size_t most) {
    if (words.size() > most) {
        throw UsageError('"' + words[most] + "\" is one word too many; leave it out");
    }
}

StepValues::StepValues(const Words& words, std::size_t first,
                       const std::vector<std::string_view>& known) {
    for (std::size_t i = first; i < words.size(); ++i) {
        const std::size_t equals = words[i].find('=');
        const std::string name = words[i].substr(0, equals);
        if (equals == std::string::npos ||
            std::ranges::find(known, std::string_view(name)) == known.end()) {
            std::vector<std::string> forms;
            forms.reserve(known.size());
            for (const std::string_view each : known) forms.push_back(std::string(each) + '=');
            throw UsageError('"' + words[i] + "\" is nothing that can be set; take one of " +
                             ListOf({forms.begin(), forms.end()}));
        }
        if (!values_.emplace(name, words[i].substr(equals + 1)).second) {
            throw UsageError(name + " is given twice");
        }
    }
}

std::string StepValues::Text(const std::string& name) const {
    const auto found = values_.find(name);
    return found == values_.end() ? "" : found->second;
}

Words StepValues::List(const std::string& name) const {
    Words parts;
    if (!Has(name)) return parts;
    const std::string text = Text(name);
    std::size_t from = 0;
    while (from <= text.size()) {
        const std::size_t end = std::min(text.find(',', from), text.size());
        parts.push_back(text.substr(from, end - from));
        from = end + 1;
    }
    return parts;
}

std::uint64_t StepValues::Number(const std::string& name, std::uint64_t most,
                                 std::uint64_t otherwise) const {
    if (!Has(name)) return otherwise;
    return vexortools::ParseNumber(Text(name), most, "value of " + name);
}

}  // namespace hxsimctl
