// hxraidsvc: the event service.
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "common/command_parser.h"
#include "common/exit_code.h"
#include "common/failure.h"
#include "common/out_of_memory.h"
#include "common/terminal_text.h"
#include "common/timestamp.h"
#include "conditions/hxc_state.h"
#include "service/hxs_collector.h"
#include "service/hxs_deliverer.h"
#include "service/hxs_journal.h"
#include "service/hxs_keeper.h"
#include "service/hxs_library_source.h"
#include "service/hxs_listener.h"
#include "service/hxs_lock.h"
#include "service/hxs_log.h"
#include "service/hxs_loop.h"
#include "service/hxs_manager.h"
#include "service/hxs_paths.h"
#include "service/hxs_settings.h"
#include "service/hxs_signals.h"
#include "service/hxs_sink_trial.h"
#include "service/hxs_socket.h"
#include "service/hxs_state_file.h"

namespace hxservice {

namespace {

using vexortools::Exit;
using vexortools::UsageError;

constexpr vexortools::ExitMeaning kExitMeanings[] = {
    {Exit::kDone, "done, or ended by a signal"},
    {Exit::kRefused, "--test-alert: a sink could not be reached"},
    {Exit::kUsage, "wrong usage, or settings that cannot be used"},
    {Exit::kUnavailable,
     "another service runs, a folder is missing, or --once could not collect the events"},
};

struct Words {
    bool once = false;
    bool foreground = false;
    bool check_config = false;
    bool test_alert = false;
    std::string sink;  // of --test-alert
    std::string config;
    std::optional<std::int64_t> now;  // seconds since 1970
};

// An installed service that is told another time would tell wrong ages, and end what still holds.
std::int64_t TimeOfTest(const std::string& text, bool is_once) {
    if (!is_once) throw UsageError("--now needs --once: the time of a service goes on by itself");
    if (UnderRoot("").empty()) {
        throw UsageError("--now needs VEXORAPI_ROOT: it is for tests, not for an installed system");
    }
    const auto time = std::chrono::floor<std::chrono::seconds>(vexortools::ParseTime(text));
    return time.time_since_epoch().count();
}

Words ParseWords(int argc, char** argv) {
    const vexortools::CommandParser parser(
        "hxraidsvc", "hxraidsvc " HXRAIDSVC_VERSION,
        "Moves the controllers' events into the event store and tells them in its log.",
        vexortools::ExitCodeHelp(kExitMeanings));
    Words words;
    const vexortools::Command& program = parser.Program();
    program.AddFlag("--once", words.once, "check in once and end");
    program.AddFlag("--foreground", words.foreground,
                    "write the lines of the log to standard error, too");
    program.AddFlag("--check-config", words.check_config, "check the settings file and end");
    program.AddFlag("--test-alert", words.test_alert,
                    "send a test through the sinks, or through SINK alone, and end");
    program.AddText("SINK", words.sink, "the sink to test; else all");
    program.AddText("--config", words.config,
                    "the settings file; else " + std::string(kConfigurationFile));
    std::string now;
    program.AddText("--now", now,
                    "with --once, below VEXORAPI_ROOT: the time for the conditions, for tests");
    parser.Parse({argv + 1, argv + argc});
    if (!now.empty()) words.now = TimeOfTest(now, words.once);
    if (words.check_config && (words.once || words.foreground)) {
        throw UsageError("--check-config starts no service; leave out --once and --foreground");
    }
    if (words.test_alert && (words.check_config || words.once || words.foreground)) {
        throw UsageError(
            "--test-alert starts no service; leave out --check-config, --once and --foreground");
    }
    if (!words.test_alert && !words.sink.empty()) {
        throw UsageError("a sink is named with --test-alert alone");
    }
    return words;
}

Settings ReadSettingsOf(const Words& words) {
    if (!words.config.empty()) return ReadSettings(words.config, Missing::kError);
    return ReadSettings(UnderRoot(kConfigurationFile), Missing::kDefaults);
}

int CheckConfig(const Words& words) {
    ReadSettingsOf(words);
    const std::string path = words.config.empty() ? UnderRoot(kConfigurationFile) : words.config;
    const bool is_there = access(path.c_str(), F_OK) == 0;
    std::printf("%s: %s\n", vexortools::Printable(path).c_str(),
                is_there ? "the settings can be used" : "not there; the defaults hold");
    return CodeOf(Exit::kDone);
}

// Beside a service that runs, too: nothing but the settings and the sinks is used.
int TestAlert(const Words& words) {
    const Settings settings = ReadSettingsOf(words);
    Signals signals;
    Journal journal(UnderRoot(kJournalSocket), UnderRoot(kSyslogSocket));
    Sinks sinks(journal);
    signals.WakeFor(sinks.Descriptor());
    bool is_good = true;
    TrySinks(settings.sinks, words.sink, sinks, signals, [&](const Trial& trial) {
        const std::string result = trial.error.empty() ? "delivered" : "failed: " + trial.error;
        std::printf("%s (%s): %s\n", trial.sink.c_str(), trial.kind.c_str(),
                    vexortools::Printable(result).c_str());
        std::fflush(stdout);
        is_good = is_good && trial.error.empty();
    });
    return CodeOf(is_good ? Exit::kDone : Exit::kRefused);
}

int Serve(const Words& words) {
    const Settings settings = ReadSettingsOf(words);
    const MissingFolder missing =
        words.once || words.foreground ? MissingFolder::kMakeBelowRoot : MissingFolder::kRefuse;
    for (const std::string_view folder : {kRunFolder, kStateFolder, kStoreFolder, kLogFolder}) {
        RequireFolder(folder, missing);
    }
    // Belongs to the node exporter, which need not be installed.
    if (missing == MissingFolder::kMakeBelowRoot) MakeBelowRoot(kMetricsFolder);
    Signals signals;
    if (words.now) signals.SetClocks(*words.now);
    const Lock lock(UnderRoot(kLockFile));
    Journal journal(UnderRoot(kJournalSocket), UnderRoot(kSyslogSocket));
    ServiceLog log(words.once || words.foreground, journal);
    StateFile state(UnderRoot(kStateFile));
    if (!state.Damage().empty()) log.Say(state.Damage());
    // What an earlier process has left there would be told for ever.
    if (!settings.metrics_textfile) unlink(UnderRoot(kMetricsFile).c_str());
    FileKeeper keeper(state, UnderRoot(kAlertsFile), UnderRoot(kStatusFile),
                      settings.metrics_textfile ? UnderRoot(kMetricsFile) : "", log);
    LibrarySource source;
    Systemd manager;
    Sinks sinks(journal);
    signals.WakeFor(sinks.Descriptor());
    std::optional<Socket> socket;
    if (!words.once) {
        socket.emplace(UnderRoot(kSocketFile));
        signals.WakeFor(socket->Descriptor());
    }
    std::optional<Listener> listener;
    if (!words.once && !settings.metrics_listen.empty()) {
        listener.emplace(settings.metrics_listen, log);
        signals.WakeFor(listener->Descriptor());
    }
    Saved saved = state.TakeSaved();
    // Rounds that are made one by one go on with the time that has passed since the last one.
    if (!words.once) hxconditions::NoteStart(saved.state);
    Loop loop(
        {source, signals, manager, keeper, log, sinks, socket ? &*socket : nullptr,
         listener ? &*listener : nullptr},
        settings, [&] { return ReadSettingsOf(words); }, std::move(saved), state.Damage());
    if (words.once) {
        return CodeOf(loop.RunOnce() == CheckIn::kDone ? Exit::kDone : Exit::kUnavailable);
    }
    log.Say("hxraidsvc " HXRAIDSVC_VERSION " has started");
    loop.Run();
    log.Say("hxraidsvc has ended");
    return CodeOf(Exit::kDone);
}

int Fail(Exit exit, const std::string& message) {
    std::string rest = message + "\n";
    while (!rest.empty()) {  // settings have a line for each error
        const std::size_t end = rest.find('\n');
        std::fprintf(stderr, "hxraidsvc: %s\n", vexortools::Printable(rest.substr(0, end)).c_str());
        rest.erase(0, end + 1);
    }
    return CodeOf(exit);
}

int Run(int argc, char** argv) {
    try {
        const Words words = ParseWords(argc, argv);
        if (words.check_config) return CheckConfig(words);
        return words.test_alert ? TestAlert(words) : Serve(words);
    } catch (const vexortools::HelpAsked& help) {
        std::fputs(help.text.c_str(), stdout);
        return CodeOf(Exit::kDone);
    } catch (const SettingsError& error) {
        return Fail(Exit::kUsage, error.what());
    } catch (const UsageError& failure) {
        return Fail(failure.exit, std::string(failure.what()) + " (see hxraidsvc --help)");
    } catch (const vexortools::Failure& failure) {
        return Fail(failure.exit, failure.what());
    } catch (const std::bad_alloc&) {
        vexortools::EndWithoutMemory();
    } catch (const std::exception& failure) {
        return Fail(Exit::kUnavailable, failure.what());
    }
}

}  // namespace

}  // namespace hxservice

int main(int argc, char** argv) { return hxservice::Run(argc, argv); }
