// The library as the commands see it: ask one function, read one list, with what went wrong kept
// beside what was found.
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/controller_codes.h"
#include "model/exit_code.h"
#include "model/fault.h"
#include "model/library_record.h"
#include "model/library_session.h"
#include "model/result_tree.h"
#include "model/sightings.h"

namespace vexorctl {

/// A command: the function, and its parameters with their values, in order.
struct Command {
    std::string_view function;
    std::vector<std::pair<std::string_view, std::string>> values{};
};

/// One parameter of function F with its value.
template <class F>
struct Argument {
    Argument(Parameter<F> parameter, std::string text)
        : name(parameter.name), value(std::move(text)) {}
    Argument(Parameter<F> parameter, std::integral auto number)
        : name(parameter.name), value(std::to_string(number)) {}
    std::string_view name;
    std::string value;
};

/// A command for function F, which takes F's own parameters only.
template <class F>
struct Request : Command {
    Request(std::initializer_list<Argument<F>> arguments = {}) {
        function = F::kName;
        for (const Argument<F>& argument : arguments) Add(argument);
    }
    void Add(const Argument<F>& argument) { values.emplace_back(argument.name, argument.value); }
};

/// The command's text, as it is sent.
std::string CommandText(const Command& command);

struct Answer {
    Exit exit = Exit::kDone;
    std::uint64_t status = 0;  // RetVal, where it is a status
    Value result;
    std::string complaint;  // why it is not kDone, as a sentence
};

/// The answer of function F.
template <class F>
struct AnswerTo : Answer {
    View<typename F::Result> view() const { return {&result, Presence::kThere}; }
    template <class Field>
    auto operator[](Field field) const {
        return view()[field];
    }
};

/// The status of a result, its RetVal. 0 for a function that has no status; null where the status
/// is missing.
std::optional<std::uint64_t> StatusOf(const Value& result);

/// A paged list of the library: its function, the element of one item, and how an item's ID is
/// read.
template <class Item>
struct ListSource {
    std::string_view function;
    std::string_view item;
    std::optional<std::uint64_t> (*id)(const View<Item>&);
};

template <class Result, class Item>
constexpr ListSource<Item> ListOf(ListField<Result, Item> items,
                                  std::optional<std::uint64_t> (*id)(const View<Item>&)) {
    return {Result::Function::kName, items.name, id};
}

/// An item of a list with its ID.
template <class Item>
struct Listed {
    std::uint64_t id;
    Record<Item> record;
};

/// What was read of a list.
template <class Item>
struct List {
    std::vector<Listed<Item>> items;
    Presence presence = Presence::kThere;  // kUnknown when it is not whole

    /// Moves the item with that ID out of the list. A missing item is kNotOffered where the whole
    /// list is, otherwise kUnknown: a complete list should have had it.
    Record<Item> Take(std::uint64_t id) {
        for (Listed<Item>& each : items) {
            if (each.id == id && each.record.IsThere()) return std::move(each.record);
        }
        return Record<Item>(presence == Presence::kNotOffered ? presence : Presence::kUnknown);
    }
};

class Controller {
public:
    Controller() = default;

    /// Takes the codes of a controller that is not ours from this file, which is read at once.
    void UseCodesFile(std::string path);

    /// What the codes of the controller mean. Throws Failure and Unavailable for a file of codes
    /// that cannot be used.
    const ControllerCodes& codes();

    /// The library, which is initialised by the first call.
    Session& session();

    /// Sends one command and reads its result. Never throws for what the controller says.
    Answer Ask(const Command& command);
    template <class F>
    AnswerTo<F> Ask(const Request<F>& request) {
        return {Ask(static_cast<const Command&>(request))};
    }

    /// Like Ask, but a failure is noted as a fault of `address` and null is returned.
    template <class F>
    std::optional<AnswerTo<F>> Get(std::string_view address, const Request<F>& request) {
        AnswerTo<F> answer = Ask(request);
        if (answer.exit == Exit::kDone) return answer;
        NoteAnswer(address, F::kName, answer);
        return std::nullopt;
    }

    /// What went wrong, as documents tell it: the function, the code and its name.
    Fault FaultOf(const Command& command, const Answer& answer);

    /// All items of a paged list, in the order of the controller. A page that did not fit or cannot
    /// be parsed is asked for again in smaller ones, down to single items. An item that cannot be
    /// parsed even so, or that has no ID, is left out and noted as a fault, and the list goes on
    /// behind it. Any other failure is noted too and ends the list.
    template <class Item>
    List<Item> ReadList(unsigned adapter, const ListSource<Item>& source) {
        List<Item> list;
        const auto id_of = [&](const Value& item) {
            return source.id(View<Item>(&item, Presence::kThere));
        };
        RawList raw = ReadRawList({.adapter = adapter,
                                   .address = "a" + std::to_string(adapter),
                                   .function = source.function,
                                   .item = source.item,
                                   .id_of = id_of});
        list.presence = raw.presence;
        for (auto& [id, value] : raw.items) {
            list.items.push_back({id, Record<Item>(std::move(value))});
        }
        return list;
    }

    /// The numbers of the adapters there are.
    const std::vector<unsigned>& Adapters();

    /// The adapters that the last Select chose; all of them when none was.
    const std::vector<unsigned>& Selected();

    /// Forgets the adapters and what was noted, so that a program that runs for long asks anew.
    void BeginLook() {
        adapters_.reset();
        selected_.reset();
        faults_.clear();
        exit_ = Exit::kDone;
    }

    /// Restricts Selected to these; one that is not there becomes a fault with Exit::kNoObject.
    void Select(const std::vector<unsigned>& adapters);

    /// What a selected adapter lacks, a battery say, is an answer from now on and no fault: the
    /// adapter was asked for everything that it has.
    void AcceptAbsences() { chosen_ = false; }

    /// From here on every object that is loaded is noted in sightings(): a change is planned.
    void RememberSightings() { sightings_.emplace(); }
    /// Null when nothing is to be remembered.
    Sightings* sightings() { return sightings_ ? &*sightings_ : nullptr; }

    /// Notes what went wrong with one object.
    void Note(Fault fault, Exit exit);

    /// Notes an answer that is not kDone as a fault of `address`, unless it is that the adapter has
    /// no such function and nobody asked for that adapter.
    void NoteAnswer(std::string_view address, std::string_view function, const Answer& answer);

    std::vector<Fault>& faults() { return faults_; }
    Exit exit() const { return exit_; }

    /// Takes back what was noted since there were `faults` and the exit was `exit`. Returns the
    /// first of what is taken back.
    std::optional<Fault> TakeBack(std::size_t faults, Exit exit);

private:
    struct RawList {
        std::vector<std::pair<std::uint64_t, Value>> items;
        Presence presence = Presence::kThere;
    };
    using IdReader = std::function<std::optional<std::uint64_t>(const Value&)>;

    struct RawSource {
        unsigned adapter;
        std::string address;  // the adapter's
        std::string_view function;
        std::string_view item;
        IdReader id_of;
    };

    RawList ReadRawList(const RawSource& source);
    void TakeItems(const RawSource& source, std::uint64_t index, Value& result, RawList& list);
    void NoteBrokenItem(const RawSource& source, std::uint64_t index, const Answer& answer);
    void RefuseIfNotOpen();
    void NoteLeftOut(const RawSource& source, const std::string& item, const std::string& reason);

    std::optional<Session> session_;
    std::optional<std::string> codes_path_;
    std::optional<ControllerCodes> codes_;
    std::optional<std::vector<unsigned>> adapters_;
    std::optional<std::vector<unsigned>> selected_;
    std::optional<Sightings> sightings_;
    bool chosen_ = false;  // by the user: then a function that an adapter lacks is a fault
    std::vector<Fault> faults_;
    Exit exit_ = Exit::kDone;
};

}  // namespace vexorctl
