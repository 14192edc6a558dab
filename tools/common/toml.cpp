#include "common/toml.h"

#include <algorithm>
#include <utility>

#include <toml++/toml.h>  // IWYU pragma: keep (its parts are not included one by one)

namespace vexortools {

namespace {

unsigned LineOf(const toml::node& node) { return static_cast<unsigned>(node.source().begin.line); }

TomlValue ValueOf(std::string key, const toml::node& node) {
    TomlValue value{std::move(key), LineOf(node), OtherTomlValue{}};
    if (const auto* const flag = node.as_boolean()) {
        value.value = flag->get();
    } else if (const auto* const integer = node.as_integer()) {
        value.value = std::int64_t{integer->get()};
    } else if (const auto* const number = node.as_floating_point()) {
        value.value = number->get();
    } else if (const auto* const text = node.as_string()) {
        value.value = text->get();
    } else if (const auto* const array = node.as_array()) {
        const bool is_texts = std::all_of(array->begin(), array->end(),
                                          [](const toml::node& each) { return each.is_string(); });
        if (!is_texts) return value;
        std::vector<std::string> texts;
        for (const toml::node& each : *array) texts.push_back(each.as_string()->get());
        value.value = std::move(texts);
    }
    return value;
}

void Flatten(const std::string& prefix, const toml::table& table, std::vector<TomlValue>& values) {
    for (const auto& [name, node] : table) {
        std::string key = prefix + std::string(name.str());
        const toml::table* const inner = node.as_table();
        if (inner == nullptr) {
            values.push_back(ValueOf(std::move(key), node));
        } else if (inner->empty()) {
            values.push_back({std::move(key), LineOf(node), EmptyTomlTable{}});
        } else {
            Flatten(key + ".", *inner, values);
        }
    }
}

}  // namespace

std::vector<TomlValue> ParseToml(std::string_view text) {
    std::vector<TomlValue> values;
    try {
        Flatten("", toml::parse(text), values);
    } catch (const toml::parse_error& error) {
        throw TomlError(static_cast<unsigned>(error.source().begin.line),
                        std::string(error.description()));
    }
    std::ranges::stable_sort(values, {}, &TomlValue::line);
    return values;
}

}  // namespace vexortools
