// The library's records with names that the compiler knows. A field is read by a constant of
// library_fields.h, which the build writes from the library's own rows, so a field that is
// misspelt, renamed or of another record does not compile. A field that a result does not have is
// unknown: it is never 0 or empty instead.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/result_tree.h"

namespace vexorctl {

// The fields of record R, by what they hold.
template <class R>
struct NumberField {
    std::string_view name;
};
template <class R>
struct NumbersField {
    std::string_view name;
};
template <class R>
struct TextField {
    std::string_view name;
};
template <class R, class Inner>
struct RecordField {
    std::string_view name;
};
template <class R, class Item>
struct ListField {
    std::string_view name;
};

/// A parameter of function F.
template <class F>
struct Parameter {
    std::string_view name;
};

/// The names of functions.
template <class... F>
inline constexpr std::string_view kNamesOf[] = {F::kName...};

/// Whether a record is there, and if not, why.
enum class Presence {
    kThere,
    kNotOffered,  // its adapter does not have the function that tells it: there is nothing to know
    kUnknown,     // it should be there and could not be had
};

template <class R>
class Record;

/// A record R inside a result that somebody else keeps.
template <class R>
class View {
public:
    View(const Value* value, Presence presence) : value_(value), presence_(presence) {}

    bool IsThere() const { return value_ != nullptr; }
    Presence presence() const { return presence_; }

    std::optional<std::uint64_t> operator[](NumberField<R> field) const {
        const Value* const value = Find(field.name);
        return value == nullptr ? std::nullopt : value->Number();
    }
    std::optional<std::vector<std::uint64_t>> operator[](NumbersField<R> field) const {
        const Value* const value = Find(field.name);
        return value == nullptr ? std::nullopt : value->Numbers();
    }
    std::optional<std::string> operator[](TextField<R> field) const {
        const Value* const value = Find(field.name);
        return value == nullptr ? std::nullopt : std::optional(value->text);
    }
    template <class Inner>
    View<Inner> operator[](RecordField<R, Inner> field) const {
        const Value* const value = Find(field.name);
        const Presence absent = IsThere() ? Presence::kUnknown : presence_;
        return {value, value == nullptr ? absent : Presence::kThere};
    }
    template <class Item>
    std::vector<Record<Item>> operator[](ListField<R, Item> field) const;

private:
    const Value* Find(std::string_view name) const {
        return value_ == nullptr ? nullptr : value_->Find(name);
    }

    const Value* value_;
    Presence presence_;
};

/// A record R of one's own. By itself it is unknown.
template <class R>
class Record {
public:
    Record() = default;
    explicit Record(Presence absent) : presence_(absent) {}
    explicit Record(Value value) : value_(std::move(value)), presence_(Presence::kThere) {}

    bool IsThere() const { return presence_ == Presence::kThere; }
    Presence presence() const { return presence_; }
    View<R> view() const { return {IsThere() ? &value_ : nullptr, presence_}; }
    /// The fields as they came, by their names.
    const Value& value() const { return value_; }

    template <class Field>
    auto operator[](Field field) const {
        return view()[field];
    }

private:
    Value value_;
    Presence presence_ = Presence::kUnknown;
};

template <class R>
template <class Item>
std::vector<Record<Item>> View<R>::operator[](ListField<R, Item> field) const {
    std::vector<Record<Item>> items;
    if (value_ == nullptr) return items;
    for (const Value& child : value_->children) {
        if (child.name == field.name) items.emplace_back(child);
    }
    return items;
}

/// The first of the items of a list, which has one at most; unknown when it has none.
template <class Item>
Record<Item> First(std::vector<Record<Item>> items) {
    return items.empty() ? Record<Item>() : std::move(items.front());
}

/// The first `count` numbers; unknown when either is, or when there are not so many.
inline std::optional<std::vector<std::uint64_t>> FirstNumbers(
    std::optional<std::vector<std::uint64_t>> numbers, std::optional<std::uint64_t> count) {
    if (!numbers || !count || *count > numbers->size()) return std::nullopt;
    numbers->resize(static_cast<std::size_t>(*count));
    return numbers;
}

}  // namespace vexorctl
