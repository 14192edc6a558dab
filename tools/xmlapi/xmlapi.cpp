// xmlapi DIR: writes DIR/xml-api.md and DIR/vexorapi-results.rng.
// xmlapi --check DIR: writes nothing; exits 1 and names the file when one of them is out of date.
#include <crypt.h>

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
#include "relaxng.h"
#include "root_path.h"
#include "vexorapi.h"
#include "vxevent.h"

namespace {

namespace fs = std::filesystem;

// A folder that stands in for "/" while the examples run: an administrator "root" whose password is
// "secret", and a BIOS image.
class ExampleRoot {
public:
    ExampleRoot() {
        std::string pattern = fs::temp_directory_path() / "xmlapi-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = pattern;
        setenv("VEXORAPI_ROOT", path_.c_str(), 1);
        fs::create_directory(path_ / "etc");
        Write("etc/passwd", "root:x:0:0:root:/root:/bin/sh\n");
        Write("etc/group", "root:x:0:\n");
        Write("etc/shadow",
              std::string("root:") + crypt("secret", "$5$rounds=1000$vexorapi$") + ":1::::::\n");
        // Version 3.1.0 build 12 in ASCII digits; the virtual controller's own subsystem.
        std::string image(64, '\0');
        image.replace(6, 8, std::string("3\0001\0000\00012", 8));
        image.replace(32, 4, "\xc0\xfa\x04\x04");
        Write("bios.rom", image);
        // Example commands name the image by a path without a folder.
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
    void Write(const char* name, const std::string& bytes) const {
        std::ofstream(path_ / name, std::ios::binary) << bytes;
    }
    fs::path path_;
};

// Puts two events into the store: their times do not change from one run to the next.
void StoreExampleEvents() {
    Event created{};
    created.Class = 1;
    created.Code = 2;
    created.TimeStamp = 1750000000;
    created.Severity = 2;
    created.SequenceNo = 1;
    Event disk_error = created;
    disk_error.Class = 2;
    disk_error.Code = 4;
    disk_error.TimeStamp += 60;
    disk_error.DeviceID = 5;
    disk_error.Severity = 3;
    disk_error.SequenceNo = 2;
    disk_error.SenseDataLength = 8;
    disk_error.SenseData[0] = 0x70;  // SCSI sense data in fixed format: a medium error
    disk_error.SenseData[2] = 0x03;
    const Event events[] = {created, disk_error};
    char path[kRootPathSize];
    if (RootPath(path, "/opt/kestrel/raid/db/vx_hx_raid.ev") == nullptr) return;
    fs::create_directories(fs::path(path).parent_path());
    if (VX_EvFile_Create(path) == 0) throw std::runtime_error("cannot make an event store");
    VX_EvFilter(events, 2);
    VX_EvFile_SaveEvents(0, events, 2);
    VX_EvFile_SaveHeader();
    VX_EvFile_Close();
}

void RunExamples(std::vector<Chapter>& chapters) {
    const ExampleRoot root;
    std::string result(VEXORAPI_MAX_RESULT, '\0');
    // A machine in memory is a new one each time that the library is opened, so that no example
    // shows what another one has done.
    setenv("HXSIM_STATE", ":memory:", 1);
    vexorApiInit();
    StoreExampleEvents();
    vexorApiShutdown();
    for (Chapter& chapter : chapters) {
        for (const FunctionText& function : chapter.functions) {
            const std::string command = ExampleCommand(function);
            vexorApiInit();
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
    RunExamples(chapters);
    const std::pair<const char*, std::string> files[] = {
        {"xml-api.md", Markdown(chapters)},
        {"vexorapi-results.rng", RelaxNg(chapters)},
    };
    for (const auto& [name, text] : files) {
        const fs::path path = folder / name;
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
