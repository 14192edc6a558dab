// A temporary folder that stands in for "/" during one test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

/// Makes an empty folder, points VEXORAPI_ROOT at it, and removes it with all it holds at the end.
class TemporaryRoot {
public:
    TemporaryRoot() {
        std::string pattern = std::filesystem::temp_directory_path() / "vexorapi-test-XXXXXX";
        path_ = mkdtemp(pattern.data());
        setenv("VEXORAPI_ROOT", path_.c_str(), 1);
    }
    ~TemporaryRoot() {
        unsetenv("VEXORAPI_ROOT");
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryRoot(const TemporaryRoot&) = delete;
    TemporaryRoot& operator=(const TemporaryRoot&) = delete;

    /// The path of `name` ("/vexorapi.ini") inside the folder.
    std::string Path(std::string_view name) const { return path_.string() + std::string(name); }

    void Write(std::string_view name, std::string_view bytes) const {
        const std::filesystem::path file = Path(name);
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
    }

    /// The file's bytes; empty when it does not exist.
    std::string Read(std::string_view name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    bool Exists(std::string_view name) const { return std::filesystem::exists(Path(name)); }

private:
    std::filesystem::path path_;
};
