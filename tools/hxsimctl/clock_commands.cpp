#include "clock_commands.h"

#include <memory>
#include <variant>

#include "common/number.h"
#include "common/timestamp.h"
#include "show_machine.h"
#include "virtual_time.h"

namespace hxsimctl {

namespace {

using vexortools::Command;
using vexortools::Duration;
using vexortools::Timestamp;

void AdvanceBy(Driver& driver, hxsim::Time forward) {
    driver.SetClock(driver.Current().clock.speed, forward);
}

void AdvanceTo(Driver& driver, hxsim::Time time) {
    const hxsim::Time now = driver.Now();
    if (time < now) {
        throw Refused("it is " + TimeText(now) +
                      " already, and time does not go back; write a later time");
    }
    AdvanceBy(driver, time - now);
}

// A duration lets so much time pass, a time lets it pass until then.
Action ParseAdvance(const std::string& word) {
    const std::variant<Duration, Timestamp> typed = vexortools::ParseDurationOrTime(word);
    if (const auto* const duration = std::get_if<Duration>(&typed)) {
        return [forward = TimeSpanOf(*duration)](Driver& driver) { AdvanceBy(driver, forward); };
    }
    const hxsim::Time time = std::get<Timestamp>(typed).time_since_epoch().count();
    return [time](Driver& driver) { AdvanceTo(driver, time); };
}

}  // namespace

void AddClockCommands(const Command& app, Action& action) {
    const Command clock = app.AddCommand("clock", "Show or set the machine's clock");
    clock.RequireCommands(1, 1);
    clock.AddCommand("show", "Show the time and how fast it passes").WhenTyped([&action] {
        action = [](Driver& driver) {
            const hxsim::Clock set = driver.Current().clock;
            ShowClock(set, driver.Now(), driver.Out());
        };
    });
    clock.AddCommand("freeze", "Let it stand still").WhenTyped([&action] {
        action = [](Driver& driver) { driver.SetClock(0); };
    });

    const Command advance = clock.AddCommand("advance", "Let time pass at once");
    const auto duration = std::make_shared<std::string>();
    advance.AddRequiredText(
        "DURATION", *duration,
        "such as 2h30m, 10s or 1d; or until when, such as 2027-01-31T12:00:00Z");
    advance.WhenTyped([duration, &action] { action = ParseAdvance(*duration); });

    const Command speed = clock.AddCommand("speed", "Set how fast it goes");
    const auto times = std::make_shared<std::string>();
    speed.AddRequiredText("TIMES", *times, "as fast as real time; 1 is its speed");
    speed.WhenTyped([times, &action] {
        constexpr std::uint64_t kFastest = 1000000;
        const auto number = static_cast<std::int64_t>(
            vexortools::ParseNumber(*times, kFastest, "speed of a clock"));
        action = [number](Driver& driver) { driver.SetClock(number); };
    });
}

}  // namespace hxsimctl
