#include "model/support_bundle.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <utility>

#include "common/read_file.h"
#include "common/replace_file.h"
#include "model/event_store_file.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_session.h"
#include "model/run_program.h"
#include "model/tape_run.h"
#include "model/without_passwords.h"

namespace vexorctl {

namespace {

using vexortools::FileError;
using vexortools::FileKind;

constexpr std::chrono::seconds kLimit{120};  // of one command
constexpr std::size_t kMaxFile = std::size_t{256} << 20;
constexpr std::size_t kMaxLog = std::size_t{16} << 20;  // the newest bytes of a log
constexpr std::string_view kFolder = "vexorapi-support";
constexpr std::string_view kTape = "machine.tape", kContents = "contents.txt";

struct ListRow {
    std::string_view name;
    std::vector<std::string> words;
    int worst = 0;             // the highest exit code with which it says all
    bool asks_machine = true;  // and nothing that stands in files
};

std::vector<ListRow> Lists() {
    return {{"adapters", {"adapter", "list"}},
            {"enclosures", {"enclosure", "list"}},
            {"elements", {"enclosure", "elements"}},
            {"disks", {"disk", "list"}},
            {"blocks", {"disk", "blocks"}},
            {"virtual-disks", {"vd", "list"}},
            {"disk-groups", {"dg", "list"}},
            {"tasks", {"task", "list"}},
            {"batteries", {"battery", "list"}},
            {"check", {"check"}, 2},
            {"versions", {"config", "show"}, 0, false},
            {"events", {"event", "list", "--last", "1000"}, 0, false}};
}

std::string UnderRoot(const std::string& path) {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    return (root == nullptr ? "" : root) + path;
}

// Of what another program has said: without its name, which the part names already.
std::string FirstLine(const std::string& text) {
    constexpr std::string_view kName = "vexorctl: ";
    const std::size_t begin =
        std::min(text.find_first_not_of('\n'), text.size());  // gzip's is empty
    const std::string line = text.substr(begin, text.find('\n', begin) - begin);
    return line.starts_with(kName) ? line.substr(kName.size()) : line;
}

class Collection {
public:
    explicit Collection(bool anonymous) : anonymous_(anonymous) {
        folder_ = run_.folder() + "/" + std::string(kFolder);
        std::filesystem::create_directory(folder_);
        MakeTape(FileOf(kTape), anonymous);
        recording_ = run_.Recording(FileOf(kTape), anonymous);
    }

    void Collect() {
        for (const ListRow& list : Lists()) AddList(list);
        AddTape();
        if (anonymous_) AddAnonymousLists();
        AddFile("event-store.ev", EventStorePath(), Form::kBytes);
        AddFile("sequence-numbers.ev", UnderRoot("/opt/kestrel/raid/db/vx_hx_seqnum.ev"),
                Form::kBytes);
        AddFile("vexorapi.ini", ConfigurationPath(), Form::kText);
        AddFile("codes.json", UnderRoot("/etc/vexorapi/codes.json"), Form::kText);
        AddFile("hxraidsvc.conf", UnderRoot("/etc/hxraid/hxraidsvc.conf"), Form::kText);
        AddFile("service-status.json", UnderRoot("/run/hxraid/status.json"), Form::kText);
        AddFile("hxraidsvc.log", UnderRoot("/var/log/hxraidsvc.log"), Form::kLog);
        std::set<std::string> logs;
        for (const auto& [name, value] : ReadConfiguration()) {
            const bool is_log = name.ends_with("LogConfig.Filename") && !name.starts_with("Event");
            if (is_log && !value.empty()) logs.insert(value);
        }
        int number = 0;
        for (const std::string& log : logs) {
            AddFile("library-" + std::to_string(++number) + ".log", log, Form::kLog);
        }
        AddSystem();
        WriteContents();
    }

    // The archive that `tar` makes of it, whose list of files is read back.
    void Pack(const std::string& archive) const {
        Tar({"tar", "--create", "--gzip", "--file", archive, "--directory", run_.folder(),
             "--owner=0", "--group=0", "--numeric-owner", "--sort=name", std::string(kFolder)});
        Tar({"tar", "--list", "--gzip", "--file", archive});
        std::set<std::string> packed, wanted{std::string(kFolder) + "/"};
        const std::string text = TextOf(run_.folder() + "/tar.out", FileKind::kRegular);
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size());
            packed.insert(text.substr(at, end - at));
            at = end + 1;
        }
        for (const auto& each : std::filesystem::directory_iterator(folder_)) {
            wanted.insert(std::string(kFolder) + "/" + each.path().filename().string());
        }
        if (packed != wanted) {
            throw Failure(Exit::kUnavailable, "the archive has not what was packed into it");
        }
    }

    std::vector<BundlePart> parts() const { return parts_; }

private:
    enum class Form { kBytes, kText, kLog };

    std::string FileOf(std::string_view name) const { return folder_ + "/" + std::string(name); }

    static std::string TextOf(const std::string& path, FileKind kind) {
        return vexortools::ReadFile(path.c_str(), kind, kMaxFile);
    }

    BundlePart& Add(std::string_view name, std::string source) {
        return parts_.emplace_back(
            BundlePart{.name = std::string(name), .source = std::move(source)});
    }

    void Write(BundlePart& part, std::string_view text) const {
        vexortools::ReplaceFile(FileOf(part.name), text);
        part.bytes = text.size();
    }

    // Runs vexorctl itself, in a process of its own: what hangs or crashes there ends there.
    void RunList(const ListRow& list, const Variables& variables, BundlePart& part) const {
        const std::string errors = run_.folder() + "/errors";
        std::vector<std::string> words{std::filesystem::read_symlink("/proc/self/exe").string()};
        words.insert(words.end(), list.words.begin(), list.words.end());
        words.insert(words.end(), {"-o", "json"});
        const ProgramEnd end = RunProgram({.words = words,
                                           .environment = variables,
                                           .output = FileOf(part.name),
                                           .errors = errors,
                                           .limit = kLimit});
        part.bytes = std::filesystem::file_size(FileOf(part.name));
        if (end.timed_out) {
            part.reason = "it did not end within " + std::to_string(kLimit.count()) + " seconds";
        } else if (end.code > list.worst) {
            part.reason = FirstLine(TextOf(errors, FileKind::kRegular));
            if (part.reason.empty()) part.reason = "exit code " + std::to_string(end.code);
        }
        if (!part.reason.empty()) part.state = PartState::kUnread;
    }

    static std::string CommandOf(const ListRow& list) {
        std::string text = "vexorctl";
        for (const std::string& word : list.words) text += " " + word;
        return text;
    }

    void AddList(const ListRow& list) {
        BundlePart& part = Add(std::string(list.name) + ".json", CommandOf(list));
        if (anonymous_ && !list.asks_machine) {
            part.state = PartState::kLeftOut;
            return;
        }
        RunList(list, recording_, part);
        // Printed from the machine itself, and so not anonymous; what was recorded is printed
        // below.
        if (anonymous_) std::filesystem::remove(FileOf(part.name));
    }

    void AddTape() {
        BundlePart& part = Add(kTape, "the calls of these commands");
        part.bytes = std::filesystem::file_size(FileOf(kTape));
        part.reason = run_.Trouble();
        try {
            if (LoadTape(FileOf(kTape)).calls.empty()) part.reason = "nothing was recorded";
        } catch (const Failure& failure) {
            part.reason = failure.what();
        }
        if (!part.reason.empty()) part.state = PartState::kUnread;
    }

    // From the tape, without the files of the machine: the service's hold names.
    void AddAnonymousLists() {
        Variables variables = run_.Replaying(FileOf(kTape));
        variables.emplace_back("VEXORAPI_ROOT", run_.folder() + "/nothing");
        for (const ListRow& list : Lists()) {
            if (!list.asks_machine) continue;
            const std::string name = std::string(list.name) + ".json";
            const auto part = std::ranges::find(parts_, name, &BundlePart::name);
            std::string first = part->reason;
            RunList(list, variables, *part);
            // The reason that the machine gave is the cause, and may have names in it.
            if (!first.empty()) part->reason = "it could not be read whole";
        }
    }

    void AddFile(std::string_view name, const std::string& path, Form form) {
        BundlePart& part = Add(name, path);
        if (anonymous_) {
            part.state = PartState::kLeftOut;
            part.source.clear();
            return;
        }
        try {
            std::string text = TextOf(path, FileKind::kRegular);
            if (form == Form::kLog && text.size() > kMaxLog) {
                text = NewestOf(text, kMaxLog);
                part.reason = "the newest 16 MiB of it";
            }
            Write(part, form == Form::kBytes ? text : WithoutPasswords(text));
        } catch (const FileError& error) {
            const bool is_absent = error.error == ENOENT || error.error == ENOTDIR;
            part.state = is_absent ? PartState::kAbsent : PartState::kUnread;
            if (!is_absent) part.reason = error.what();
        }
    }

    void AddSystem() {
        BundlePart& part = Add("system.txt", "uname, /etc/os-release");
        utsname system{};
        uname(&system);
        std::string text = "vexorctl " VEXORCTL_VERSION "\nkernel " + std::string(system.sysname) +
                           " " + system.release + " " + system.version + " " + system.machine +
                           "\n";
        try {
            text += TextOf("/etc/os-release", FileKind::kRegular);
        } catch (const FileError& error) {
            part.state = PartState::kUnread;
            part.reason = std::string("/etc/os-release: ") + error.what();
        }
        Write(part, text);
    }

    void WriteContents() {
        std::string text;
        for (const BundlePart& part : parts_) {
            text += part.name + ": " + std::string(WordOf(part.state));
            if (!part.source.empty()) text += ", " + part.source;
            if (!part.reason.empty()) text += ": " + part.reason;
            text += "\n";
        }
        BundlePart& part = Add(kContents, "this list");
        Write(part, text);
    }

    void Tar(std::vector<std::string> words) const {
        const std::string errors = run_.folder() + "/errors";
        const ProgramEnd end = RunProgram({.words = std::move(words),
                                           .environment = {{"LC_ALL", "C"}},
                                           .output = run_.folder() + "/tar.out",
                                           .errors = errors});
        if (end.code != 0) {
            throw Failure(Exit::kUnavailable,
                          "tar: " + FirstLine(TextOf(errors, FileKind::kRegular)));
        }
    }

    bool anonymous_;
    TapeRun run_;
    std::string folder_;
    Variables recording_;
    std::vector<BundlePart> parts_;
};

struct PartRow {
    PartState state;
    std::string_view word;
};
constexpr PartRow kPartStates[] = {{PartState::kIncluded, "included"},
                                   {PartState::kAbsent, "absent"},
                                   {PartState::kLeftOut, "left_out"},
                                   {PartState::kUnread, "unread"}};

}  // namespace

std::string_view WordOf(PartState state) {
    return std::ranges::find(kPartStates, state, &PartRow::state)->word;
}

std::vector<BundlePart> WriteBundle(const std::string& path, bool anonymous, bool replace) {
    try {
        const auto refuse = [&] {
            throw Failure(Exit::kUsage, path + " is there already; --force replaces it");
        };
        if (!replace && access(path.c_str(), F_OK) == 0) refuse();
        const vexortools::NewFile file(path);
        Collection collection(anonymous);
        collection.Collect();
        collection.Pack(file.Path());
        // A file that is replaced would leave its mode to the new one.
        if (replace) std::filesystem::remove(path);
        try {
            file.Put(vexortools::Existing::kKeep, 0600);
        } catch (const FileError& error) {
            if (error.error == EEXIST) refuse();
            throw;
        }
        return collection.parts();
    } catch (const FileError& error) {
        const Exit exit = error.error == EACCES ? Exit::kNotPermitted : Exit::kUsage;
        throw Failure(exit, path + ": " + error.what());
    } catch (const std::filesystem::filesystem_error& error) {
        throw Failure(Exit::kUnavailable, error.code().message() + ": " + error.path1().string());
    }
}

}  // namespace vexorctl
