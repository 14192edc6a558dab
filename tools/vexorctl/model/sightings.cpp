#include "model/sightings.h"

#include <utility>

#include "common/size.h"

namespace vexorctl {

namespace {

constexpr std::string_view kUnknownFact = "unknown";

void AppendText(std::string& text, const Value& value) {
    text.append(value.name).append("=").append(value.text).append(";");
    for (const Value& child : value.children) AppendText(text, child);
}

const Sighting* Find(const std::map<std::string, Sighting>& sightings, const std::string& object) {
    const auto found = sightings.find(object);
    return found == sightings.end() ? nullptr : &found->second;
}

// Both have the same facts in the same order.
std::string DifferenceOf(const std::string& object, const Sighting& then, const Sighting& now) {
    std::string text;
    for (std::size_t i = 0; i < then.facts.size(); ++i) {
        const Fact& was = then.facts[i];
        const Fact& is = now.facts[i];
        if (was.text == is.text) continue;
        text.append(text.empty() ? object + ": its " : ", its ").append(was.label);
        if (was.is_shown) {
            text.append(" was ").append(was.text).append(" and is ").append(is.text);
        } else {
            text.append(" have changed");
        }
    }
    return text;
}

}  // namespace

Fact TextFact(std::string_view label, const std::optional<std::string>& text) {
    return {label, text ? "\"" + *text + "\"" : std::string(kUnknownFact)};
}

Fact NumberFact(std::string_view label, std::optional<std::uint64_t> number) {
    return {label, number ? std::to_string(*number) : std::string(kUnknownFact)};
}

Fact NumbersFact(std::string_view label, const std::optional<std::vector<std::uint64_t>>& numbers) {
    if (!numbers) return {label, std::string(kUnknownFact)};
    std::string text;
    for (const std::uint64_t number : *numbers) {
        text.append(text.empty() ? "" : " ").append(std::to_string(number));
    }
    return {label, text.empty() ? "none" : text};
}

Fact SizeFact(std::string_view label, std::optional<std::uint64_t> sectors) {
    return {label, sectors ? std::to_string(*sectors * vexortools::kSectorBytes) + " bytes"
                           : std::string(kUnknownFact)};
}

Fact CodeFact(std::string_view label, std::optional<std::uint64_t> code,
              std::span<const hxcodes::Named> names) {
    if (!code) return {label, std::string(kUnknownFact)};
    const std::string_view name = hxcodes::NameOf(names, *code);
    return {label, name.empty() ? std::to_string(*code) : std::string(name)};
}

Fact SettingsFact(const Value& record) {
    Fact fact{"settings", {}, false};
    AppendText(fact.text, record);
    return fact;
}

void Sightings::Note(const std::string& object, Sighting sighting) {
    (again_ ? *again_ : first_).emplace(object, std::move(sighting));
}

void Sightings::LookAgain() { again_.emplace(); }

const Sighting* Sightings::First(const std::string& object) const { return Find(first_, object); }

std::string Sightings::Difference(const std::string& object) const {
    const Sighting* const then = First(object);
    const Sighting* const now = again_ ? Find(*again_, object) : nullptr;
    if (now == nullptr) return object + " is not there any more";
    if (then == nullptr) return object + " has come";
    return DifferenceOf(object, *then, *now);
}

std::string Sightings::DifferenceFrom(const std::string& object, const Sighting& before) const {
    const Sighting* const now = First(object);
    if (now == nullptr) return object + " is not there any more";
    return DifferenceOf(object, before, *now);
}

std::set<std::string> Sightings::Objects(std::string_view prefix) const {
    std::set<std::string> objects;
    const auto add = [&](const std::map<std::string, Sighting>& sightings) {
        for (const auto& [object, sighting] : sightings) {
            if (object.starts_with(prefix)) objects.insert(object);
        }
    };
    add(first_);
    if (again_) add(*again_);
    return objects;
}

}  // namespace vexorctl
