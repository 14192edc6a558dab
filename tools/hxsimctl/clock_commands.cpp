#include "clock_commands.h"

#include <memory>
#include <variant>

#include "common/number.h"
#include "common/timestamp.h"
#include "show_machine.h"
#include "virtual_time.h"

namespace hxsimctl {

namespace {

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

void AddClockCommands(CLI::App& app, Action& action) {
    CLI::App* const clock = app.add_subcommand("clock", "Show or set the machine's clock");
    clock->require_subcommand(1);
    clock->add_subcommand("show", "Show the time and how fast it passes")->callback([&action] {
        action = [](Driver& driver) {
            const hxsim::Clock set = driver.Current().clock;
            ShowClock(set, driver.Now(), driver.Out());
        };
    });
    clock->add_subcommand("freeze", "Let it stand still")->callback([&action] {
        action = [](Driver& driver) { driver.SetClock(0); };
    });

    CLI::App* const advance = clock->add_subcommand("advance", "Let time pass at once");
    const auto duration = std::make_shared<std::string>();
    advance
        ->add_option("DURATION", *duration,
                     "such as 2h30m, 10s or 1d; or until when, such as 2027-01-31T12:00:00Z")
        ->required();
    advance->callback([duration, &action] { action = ParseAdvance(*duration); });

    CLI::App* const speed = clock->add_subcommand("speed", "Set how fast it goes");
    const auto times = std::make_shared<std::string>();
    speed->add_option("TIMES", *times, "as fast as real time; 1 is its speed")->required();
    speed->callback([times, &action] {
        constexpr std::uint64_t kFastest = 1000000;
        const auto number = static_cast<std::int64_t>(
            vexortools::ParseNumber(*times, kFastest, "speed of a clock"));
        action = [number](Driver& driver) { driver.SetClock(number); };
    });
}

}  // namespace hxsimctl
