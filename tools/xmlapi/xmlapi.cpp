// xmlapi DIR: writes DIR/xml-api.md and DIR/vexorapi-results.rng, and beside DIR what the bindings
// know of the functions.
// xmlapi --check DIR: writes nothing; exits 1 and names the file when one of them is out of date.
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "chapter.h"
#include "describe.h"
#include "markdown.h"
#include "php_tables.h"
#include "python.h"
#include "relaxng.h"
#include "root_path.h"
#include "vexorapi.h"
#include "vxevent.h"

namespace {

namespace fs = std::filesystem;

// A temporary folder that replaces "/" and the top of the tree while the examples run.
class ExampleRoot {
public:
    explicit ExampleRoot(const fs::path& examples) {
        std::string pattern = fs::temp_directory_path() / "xmlapi-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = pattern;
        setenv("VEXORAPI_ROOT", path_.c_str(), 1);
        fs::copy(examples / "root", path_, fs::copy_options::recursive);
        // Example commands name files relative to the top of the tree.
        fs::create_directory_symlink(examples, path_ / "examples");
        fs::current_path(path_);
    }
    ~ExampleRoot() {
        std::error_code ignored;
        fs::current_path("/", ignored);
        fs::remove_all(path_, ignored);
    }
    ExampleRoot(const ExampleRoot&) = delete;
    ExampleRoot& operator=(const ExampleRoot&) = delete;

private:
    fs::path path_;
};

// Puts the two events of docs/event-store.md into the store, since their times are the same in
// every run.
void StoreExampleEvents() {
    Event created{};
    created.Class = 1;
    created.Code = 2;
    created.TimeStamp = 1700000000;
    created.DeviceID = 3;
    created.Severity = 2;
    created.SequenceNo = 7;
    Event sense_code = created;
    sense_code.Class = 2;
    sense_code.Code = 36;
    sense_code.TimeStamp += 1;
    sense_code.DeviceID = 17;
    sense_code.Severity = 6;
    sense_code.SequenceNo = 8;
    sense_code.Params[0] = 0x28;
    sense_code.Params[1] = 0x12345678;
    sense_code.Params[3] = 0xFFFFFFFF;
    sense_code.SenseDataLength = 3;
    sense_code.SenseData[0] = 0x70;  // SCSI sense data in fixed format: an illegal request
    sense_code.SenseData[2] = 0x05;
    const Event events[] = {created, sense_code};
    const Event behind[2] = {};  // what a check-in counts besides
    char path[kRootPathSize];
    if (RootPath(path, "/opt/kestrel/raid/db/vx_hx_raid.ev") == nullptr) return;
    fs::create_directories(fs::path(path).parent_path());
    if (VX_EvFile_Create(path) == 0) throw std::runtime_error("cannot make an event store");
    VX_EvFilter(events, 2);
    VX_EvFilter(behind, 2);
    VX_EvFile_SaveEvents(0, events, 2);
    VX_EvFile_SaveHeader();
    VX_EvFile_Close();
}

// The machine of an example, as HXSIM_STATE names it. Opening the library creates
// a new machine in memory, so that examples do not affect each other.
void ChooseMachine(const FunctionText& function) {
    const std::string topology = TopologyFor(function);
    setenv("HXSIM_STATE", topology.empty() ? ":memory:" : "machine.db", 1);
    if (topology.empty()) return;
    const fs::path hxsimctl = fs::read_symlink("/proc/self/exe").parent_path() / "hxsimctl";
    const std::string command = "'" + hxsimctl.string() + "' init --force --topology " + topology;
    if (std::system(command.c_str()) != 0) throw std::runtime_error("failed: " + command);
}

// Runs the commands that prepare an example's machine.
void RequireDone(const std::string& command, std::string& result) {
    if (vexorApi(command.c_str(), result.data(), VEXORAPI_MAX_RESULT) != 1 ||
        result.find("<RetVal type=\"U8\">0<") == std::string::npos) {
        // Up to the NUL behind the result.
        const char* const answer = result.data();
        throw std::runtime_error("before an example, this failed:\n" + command + answer);
    }
}

void RunExamples(std::vector<Chapter>& chapters, const fs::path& examples) {
    const ExampleRoot root(examples);
    std::string result(VEXORAPI_MAX_RESULT, '\0');
    setenv("HXSIM_STATE", ":memory:", 1);
    vexorApiInit();
    StoreExampleEvents();
    vexorApiShutdown();
    for (Chapter& chapter : chapters) {
        for (const FunctionText& function : chapter.functions) {
            const std::string command = ExampleCommand(function);
            ChooseMachine(function);
            vexorApiInit();
            for (const std::string& before : CommandsBefore(function)) {
                RequireDone(before, result);
            }
            const int ok = vexorApi(command.c_str(), result.data(), VEXORAPI_MAX_RESULT);
            vexorApiShutdown();
            if (ok != 1) {
                throw std::runtime_error("the example of " + function.name + " was declined");
            }
            chapter.results.emplace_back(result.c_str());
        }
    }
}

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

int Run(const fs::path& folder, bool check) {
    std::vector<Chapter> chapters = {
        {"The controller's functions", DescribeFunctions(), {}},
        {"The management functions", DescribeManagement(), {}},
    };
    RunExamples(chapters, folder.parent_path() / "examples");
    const fs::path python = folder.parent_path() / "bindings/python/vexorapi";
    const Python sources = PythonSources(chapters);
    const std::pair<fs::path, std::string> files[] = {
        {folder / "xml-api.md", Markdown(chapters)},
        {folder / "vexorapi-results.rng", RelaxNg(chapters)},
        {python / "records.py", sources.records},
        {python / "functions.py", sources.functions},
        {folder.parent_path() / "bindings/php/vexorapi_functions.cpp", PhpFunctions(chapters)},
    };
    for (const auto& [path, text] : files) {
        if (!check) {
            if (!(std::ofstream(path, std::ios::binary) << text)) {
                throw std::runtime_error("cannot write " + path.string());
            }
        } else if (ReadFile(path) != text) {
            std::cerr << "xmlapi: " << path.string()
                      << " is out of date; write it anew with: xmlapi " << folder.string() << "\n";
            return 1;
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const bool check = argc == 3 && std::string_view(argv[1]) == "--check";
    if (argc != 2 && !check) {
        std::cerr << "usage: xmlapi [--check] DIR\n";
        return 2;
    }
    try {
        return Run(fs::absolute(argv[argc - 1]), check);
    } catch (const std::exception& error) {
        std::cerr << "xmlapi: " << error.what() << "\n";
        return 1;
    }
}
