// Users: logon and groups against the host's user, shadow and group databases. Under a root prefix
// the databases are the files below that root, so that a test brings its own users.
#include "xml_rapi_user.h"

#include <crypt.h>
#include <grp.h>
#include <pwd.h>
#include <shadow.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "descriptor.h"
#include "heap_block.h"
#include "read_file.h"
#include "root_path.h"
#include "xml_rapi_text.h"

namespace {

constexpr char kAdministrator[] = "root";       // this user is always an administrator
constexpr char kAdministratorGroup[] = "root";  // its listed members are administrators

constexpr HX_BOOLEAN kNoShadowEntry = 2;
constexpr HX_BOOLEAN kWrongPassword = 3;

// The databases: for each the system's lookup by name, the reading of the file that can stand in
// for it, and where an entry keeps its name. Lookup and reading return 0 or an error number.

struct ShadowDatabase {
    using Entry = spwd;
    static constexpr char kFile[] = "/etc/shadow";
    static constexpr auto kName = &spwd::sp_namp;
    static int Find(const char* name, spwd* entry, char* texts, std::size_t room, spwd** found) {
        return getspnam_r(name, entry, texts, room, found);
    }
    static int Next(std::FILE* file, spwd* entry, char* texts, std::size_t room, spwd** found) {
        return fgetspent_r(file, entry, texts, room, found);
    }
};

struct UserDatabase {
    using Entry = passwd;
    static constexpr char kFile[] = "/etc/passwd";
    static constexpr auto kName = &passwd::pw_name;
    static int Find(const char* name, passwd* entry, char* texts, std::size_t room,
                    passwd** found) {
        return getpwnam_r(name, entry, texts, room, found);
    }
    static int Next(std::FILE* file, passwd* entry, char* texts, std::size_t room, passwd** found) {
        return fgetpwent_r(file, entry, texts, room, found);
    }
};

struct GroupDatabase {
    using Entry = group;
    static constexpr char kFile[] = "/etc/group";
    static constexpr auto kName = &group::gr_name;
    static int Find(const char* name, group* entry, char* texts, std::size_t room, group** found) {
        return getgrnam_r(name, entry, texts, room, found);
    }
    static int Next(std::FILE* file, group* entry, char* texts, std::size_t room, group** found) {
        return fgetgrent_r(file, entry, texts, room, found);
    }
};

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File OpenDatabase(const char* path) {
    Descriptor descriptor = OpenForRead(path);
    if (!descriptor.IsOpen()) return nullptr;
    File file(fdopen(descriptor.Get(), "r"));
    if (file != nullptr) static_cast<void>(descriptor.Release());  // the stream's from here on
    return file;
}

// Finds the first entry of that name, as the system's lookup does. Each search starts at the
// beginning of the file, because a read with too little room may have consumed the line.
template <class Database>
int FindInFile(std::FILE* file, const char* name, typename Database::Entry* entry, char* texts,
               std::size_t room, typename Database::Entry** found) {
    std::rewind(file);
    for (;;) {
        const int error = Database::Next(file, entry, texts, room, found);
        if (error != 0) return error;
        if (std::strcmp(entry->*Database::kName, name) == 0) return 0;
    }
}

// Room for the texts of one entry: enough for a group of some fifty thousand members. An entry that
// needs more counts as missing.
constexpr std::size_t kFirstRoom = 1024;
constexpr std::size_t kMostRoom = std::size_t{1} << 20;

// One search in a database. It owns the entry found, and its texts, which can hold a hash.
template <class Database>
class Search {
public:
    using Entry = typename Database::Entry;

    Search() = default;
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    /// The entry called `name`, which lives as long as the search; null when there is none,
    /// whatever the reason.
    const Entry* Find(const char* name) {
        char path[kRootPathSize];
        if (RootPath(path, Database::kFile) == nullptr) return nullptr;
        const bool own_root = std::strcmp(path, Database::kFile) != 0;
        errno = 0;
        const File file = own_root ? OpenDatabase(path) : nullptr;
        if (own_root && file == nullptr) return Nothing(errno);
        for (std::size_t room = kFirstRoom; room <= kMostRoom; room *= 2) {
            texts_ = MakeSecretBlock<char>(room);
            if (texts_ == nullptr) return Nothing(ENOMEM);
            Entry* found = nullptr;
            const int error = own_root ? FindInFile<Database>(file.get(), name, &entry_,
                                                              texts_.get(), room, &found)
                                       : Database::Find(name, &entry_, texts_.get(), room, &found);
            if (error != ERANGE) return error == 0 ? found : Nothing(error);
        }
        return nullptr;
    }

    /// Whether nothing was found for lack of memory: there may be such an entry.
    bool LackedMemory() const { return lacked_memory_; }

private:
    const Entry* Nothing(int error) {
        lacked_memory_ = error == ENOMEM;
        return nullptr;
    }

    bool lacked_memory_ = false;
    Entry entry_{};
    SecretBlock<char> texts_;
};

// The answer of a user function.
struct Answer {
    HX_BOOLEAN code;
    UserGroup group;
    bool seen = true;  // false: the group may be wrong for lack of memory
};

// The group of an existing user, with code 0; UnknownUser when the host has no administrators'
// group. Only listed members count, not users with that primary group.
Answer GroupOf(const char* user) {
    if (std::strcmp(user, kAdministrator) == 0) return {0, AdminUser};
    Search<GroupDatabase> search;
    const group* const administrators = search.Find(kAdministratorGroup);
    if (administrators == nullptr) return {0, UnknownUser, !search.LackedMemory()};
    for (char* const* member = administrators->gr_mem; *member != nullptr; ++member) {
        if (std::strcmp(*member, user) == 0) return {0, AdminUser};
    }
    return {0, ValidUser};
}

bool IsPassword(const char* password, const char* stored_hash) {
    // crypt's working memory holds the password and values derived from it. It takes 32 KiB and
    // more, too much for a thread's stack.
    const auto data = MakeSecretBlock<crypt_data>();
    if (data == nullptr) return false;
    const char* const hash = crypt_r(password, stored_hash, data.get());
    // For an entry that is no hash (locked or empty) crypt returns null or a text that begins with
    // an asterisk, which no hash does. That text could equal the entry, so refuse it first.
    if (hash == nullptr || *hash == '*') return false;
    return std::strcmp(hash, stored_hash) == 0;
}

Answer LogOn(const HX_U8* name, const HX_U8* given_password) {
    const char* const user = WholeText(name, kUserTextSize);
    if (user == nullptr || *user == '\0') return {kNoShadowEntry, UnknownUser};
    Search<ShadowDatabase> search;
    const spwd* const entry = search.Find(user);
    if (entry == nullptr) return {kNoShadowEntry, UnknownUser};
    Answer answer = GroupOf(user);
    const char* const password = WholeText(given_password, kUserTextSize);
    const bool right = password != nullptr && IsPassword(password, entry->sp_pwdp);
    answer.code = right ? HX_SUCCESS : kWrongPassword;
    return answer;
}

Answer LookUpGroup(const HX_U8* name) {
    const char* const user = WholeText(name, kUserTextSize);
    if (user == nullptr || *user == '\0') return {0, UnknownUser};
    Search<UserDatabase> search;
    if (search.Find(user) == nullptr) return {0, UnknownUser, !search.LackedMemory()};
    Answer answer = GroupOf(user);
    answer.code = answer.group == UnknownUser ? 1 : 0;
    return answer;
}

const HX_U8* Field(const char (&field)[kUserTextSize]) {
    return reinterpret_cast<const HX_U8*>(field);
}

HX_BOOLEAN Tell(const Answer& answer, UserGroup* group) {
    *group = answer.group;
    return answer.code;
}

}  // namespace

bool AnswerLogon(VX_LogonUser& record) {
    const Answer answer = LogOn(Field(record.lpszUsername), Field(record.lpszPassword));
    record.RetVal = Tell(answer, &record.UG);
    return answer.seen;
}

bool AnswerUserGroup(VX_GetUserGroup& record) {
    const Answer answer = LookUpGroup(Field(record.lpszUsername));
    record.RetVal = Tell(answer, &record.UG);
    return answer.seen;
}

HX_BOOLEAN HX_LogonUser(HX_U8* lpszUsername, HX_U8*, HX_U8* lpszPassword, HX_U32, HX_U32, void*,
                        UserGroup* UG) {
    return Tell(LogOn(lpszUsername, lpszPassword), UG);
}

HX_BOOLEAN HX_GetUserGroup(HX_U8* lpszUsername, HX_U8*, UserGroup* UG) {
    return Tell(LookUpGroup(lpszUsername), UG);
}

HX_BOOLEAN HX_GetUserName(HX_U8* username, HX_U32, HX_U8*, HX_U32) {
    std::memcpy(username, kAdministrator, sizeof kAdministrator);
    return 0;
}
