// Scenarios: what is none is refused with file and line; what is one runs on a small machine, which
// keeps its rules whatever happens.
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include "driver.h"
#include "model/hxsim_invariants.h"
#include "scenario_reader.h"
#include "scenario_runner.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "topology/hxsim_topology.h"

namespace {

constexpr std::size_t kMostLines = 40;  // that are run

// A new machine in the file that the library opens, too.
std::string NewMachine() {
    static const TemporaryRoot root;
    static const std::string path = root.Path("/state.db");
    setenv("HXSIM_STATE", path.c_str(), 1);
    for (const char* const end : {"", "-wal", "-shm"}) std::filesystem::remove(path + end);
    constexpr hxsim::Time kNow = 1'700'000'000'000;
    hxsim::Store::Create(path, hxsim::MakeMachine(hxsim::BuiltInTopology("small"), 1, kNow));
    return path;
}

const char* Run(hxsimctl::Scenario scenario) {
    if (scenario.lines.size() > kMostLines) scenario.lines.resize(kMostLines);
    std::ostringstream out;
    hxsimctl::Driver driver(NewMachine(), out);
    try {
        hxsimctl::RunScenario(driver, scenario, true);
    } catch (const hxsimctl::Failure& failure) {
        const std::string_view reason = failure.what();
        if (reason.empty()) return "a step failed without a reason";
        if (!reason.starts_with("story:")) return "a failure does not name its line";
        if (reason.find("breaks a rule") != std::string_view::npos)
            return "a step has broken a rule";
    }
    return hxsim::Check(driver.Current()).empty() ? nullptr : "the machine breaks a rule";
}

}  // namespace

const char* FuzzScenario(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    hxsimctl::Scenario scenario;
    try {
        scenario = hxsimctl::ReadScenario("story", text);
    } catch (const hxsimctl::UsageError& error) {
        return std::string_view(error.what()).starts_with("story:") ? nullptr : "no line was named";
    }
    for (const hxsimctl::Line& line : scenario.lines) {
        if (line.number == 0 || line.number > size + 1) return "a step has no such line";
    }
    return Run(std::move(scenario));
}
