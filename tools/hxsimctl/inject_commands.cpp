#include "inject_commands.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <ostream>

#include "adapter_functions.h"  // made of hxraid.h when hxsimctl is built
#include "codes/status.h"
#include "common/number.h"
#include "common/terminal_text.h"

namespace hxsimctl {

namespace {

using hxsim::Injection;
using hxsim::Machine;
using vexortools::Command;
using vexortools::ParseNumber;

// The words of the command, as typed.
struct InjectWords {
    std::string call, code, times = "0", after = "0", adapter;
    bool hostile = false;
};

std::string CallOf(const std::string& word) {
    const auto* const end = std::end(kAdapterFunctions);
    if (word.empty() || std::ranges::find(kAdapterFunctions, word) != end) return word;
    throw UsageError('"' + word +
                     "\" is no function of the library that can be hit; write one of hxraid.h "
                     "that takes an AdapterID, such as HX_LD_GetInfo");
}

Injection InjectionOf(const InjectWords& words) {
    if (words.hostile == !words.code.empty()) {
        throw UsageError(
            words.hostile ? "--hostile and --code exclude each other; a hostile call is answered"
                          : "neither --code nor --hostile is given; one says what a call answers");
    }
    Injection injection;
    injection.call = CallOf(words.call);
    injection.hostile = words.hostile;
    if (!words.hostile) {
        injection.code = static_cast<HX_U8>(ParseNumber(words.code, 255, "code of a refusal"));
        if (injection.code == HX_SUCCESS) {
            throw UsageError("code 0 is success; write a code from 1 to 255");
        }
    }
    constexpr std::uint64_t kMostCalls = 1000000000;
    injection.times =
        static_cast<HX_U32>(ParseNumber(words.times, kMostCalls, "number of calls to hit"));
    injection.after =
        static_cast<HX_U32>(ParseNumber(words.after, kMostCalls, "number of calls to let through"));
    if (!words.adapter.empty()) {
        injection.adapter = static_cast<HX_U8>(ParseNumber(words.adapter, 254, "adapter"));
    }
    return injection;
}

void Add(Driver& driver, const Injection& injection) {
    driver.Change([&](Machine& machine, hxsim::Time) {
        if (injection.adapter != HX_ALL_ADAPTERS && injection.adapter >= machine.adapters.size()) {
            throw NoObject("--adapter " + std::to_string(injection.adapter) + ": the machine has " +
                           std::to_string(machine.adapters.size()) + " adapters, numbered from 0");
        }
        Injection numbered = injection;
        numbered.id = machine.injections.empty() ? 1 : machine.injections.back().id + 1;
        machine.injections.push_back(numbered);
    });
}

std::string LineOf(const Injection& injection) {
    std::string line = std::to_string(injection.id) + ": " +
                       (injection.call.empty() ? "every call" : injection.call);
    if (injection.adapter != HX_ALL_ADAPTERS) line += " of a" + std::to_string(injection.adapter);
    if (injection.hostile) {
        line += " answers as broken firmware does";
    } else {
        const hxcodes::StatusRow* const refusal =
            hxcodes::FindCode(hxcodes::kRefusals, injection.code);
        line += " is refused with " + std::to_string(injection.code);
        if (refusal != nullptr) line += " (" + std::string(refusal->name) + ')';
    }
    line += injection.times == 0 ? ", always" : ", " + std::to_string(injection.times) + " times";
    if (injection.after != 0) line += ", after " + std::to_string(injection.after) + " more";
    return line;
}

void AddClear(const Command& inject, Action& action) {
    const Command clear = inject.AddCommand("clear", "Take one out of the way, or all");
    const auto number = std::make_shared<std::string>();
    clear.AddText("NUMBER", *number, "as inject list shows it; all when left out");
    clear.WhenTyped([number, &action] {
        const bool all = number->empty();
        const auto id =
            all ? HX_U32{0}
                : static_cast<HX_U32>(ParseNumber(*number, UINT32_MAX, "number of an injection"));
        action = [all, id](Driver& driver) {
            driver.Change([&](Machine& machine, hxsim::Time) {
                const auto gone = std::erase_if(machine.injections, [&](const Injection& each) {
                    return all || each.id == id;
                });
                if (!all && gone == 0) {
                    throw NoObject("no injection has number " + std::to_string(id) +
                                   "; hxsimctl inject list shows them");
                }
            });
        };
    });
}

}  // namespace

void AddInjectCommands(const Command& app, Action& action) {
    const Command inject =
        app.AddCommand("inject", "Put a fault in the way of the library's calls");
    inject.RequireCommands(0, 1);
    const auto words = std::make_shared<InjectWords>();
    inject.AddText("--call", words->call, "the function that is hit; every one when left out");
    inject.AddText("--code", words->code, "with which it is refused");
    inject.AddFlag("--hostile", words->hostile, "it answers as broken firmware does");
    inject.AddText("--times", words->times, "calls that are hit; all of them when left out");
    inject.AddText("--after", words->after, "calls that are let through before");
    inject.AddText("--adapter", words->adapter, "number of the adapter; all when left out");

    inject.AddCommand("list", "Show what is in the way").WhenTyped([&action] {
        action = [](Driver& driver) {
            for (const Injection& each : driver.Current().injections) {
                driver.Out() << vexortools::Printable(LineOf(each)) << '\n';
            }
        };
    });
    AddClear(inject, action);
    inject.WhenTyped([inject, words, &action] {
        if (inject.CommandTyped()) return;
        const Injection injection = InjectionOf(*words);
        action = [injection](Driver& driver) { Add(driver, injection); };
    });
}

}  // namespace hxsimctl
