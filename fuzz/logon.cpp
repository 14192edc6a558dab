// Logon and groups with user, shadow and group databases that are the fuzzer's.
#include <crypt.h>

#include <cstring>
#include <string>

#include "input.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "xml_rapi_user.h"

namespace {

// Methods that cost seconds on purpose. The database is root's own, so that none is refused.
bool IsCostly(const std::string& shadow) {
    for (const char* const mark : {"rounds", "$y$", "$gy$", "$7$", "$2", "$md5", "$sha1", "$sm3"}) {
        if (shadow.find(mark) != std::string::npos) return true;
    }
    return false;
}

// Whether the shadow database has a hash of the password in a line that begins with the name.
bool HasPassword(const std::string& shadow, const std::string& name, const std::string& password) {
    const std::string begin = name + ":";
    for (std::size_t at = 0; at < shadow.size();) {
        const std::size_t end = std::min(shadow.find('\n', at), shadow.size());
        std::string line = shadow.substr(at, end - at);
        line.erase(0, line.find_first_not_of(" \t\r\v\f"));
        at = end + 1;
        if (!line.starts_with(begin)) continue;
        const std::string hash =
            line.substr(begin.size(), line.find(':', begin.size()) - begin.size());
        crypt_data work{};
        const char* const made = crypt_r(password.c_str(), hash.c_str(), &work);
        if (made != nullptr && *made != '*' && hash == made) return true;
    }
    return false;
}

}  // namespace

const char* FuzzLogon(const std::uint8_t* data, std::size_t size) {
    static const TemporaryRoot root;
    Input input(data, size);
    const std::string name = input.Until(0).substr(0, 200);
    const std::string password = input.Until(0).substr(0, 200);
    const std::string users = input.Until(0);
    const std::string shadow = input.Until(0);
    const std::string groups = input.Rest();
    if (IsCostly(shadow)) return nullptr;
    root.Write("/etc/passwd", users);
    root.Write("/etc/shadow", shadow);
    root.Write("/etc/group", groups);

    // Fields of a record; a text that fills one has no NUL in it.
    HX_U8 name_field[kUserTextSize]{};
    HX_U8 password_field[kUserTextSize]{};
    std::memcpy(name_field, name.data(), std::min(name.size(), sizeof name_field));
    std::memcpy(password_field, password.data(), std::min(password.size(), sizeof password_field));
    const bool whole_name = name.size() < sizeof name_field && !name.empty();

    UserGroup group{};
    const HX_BOOLEAN code =
        HX_LogonUser(name_field, nullptr, password_field, 0, 0, nullptr, &group);
    if (code != 0 && code != 2 && code != 3) return "the logon has an undocumented code";
    if (group != AdminUser && group != ValidUser && group != UnknownUser) return "no such group";
    if (code == 2 && group != UnknownUser) return "a user without an entry has a group";
    if (code != 2 && (!whole_name || shadow.find(name) == std::string::npos)) {
        return "an entry was found that the database does not have";
    }
    if (code == 0 &&
        (password.size() >= sizeof password_field || !HasPassword(shadow, name, password))) {
        return "a wrong password was taken";
    }
    const bool listed = groups.find(name) != std::string::npos;
    if (group == AdminUser && name != "root" && !listed) return "a stranger is an administrator";

    UserGroup by_group{};
    const HX_BOOLEAN found = HX_GetUserGroup(name_field, nullptr, &by_group);
    if (found > 1) return "the group has an undocumented code";
    if (found == 1 && by_group != UnknownUser) return "a host without the group has members of it";
    if (by_group != UnknownUser && (!whole_name || users.find(name) == std::string::npos)) {
        return "a user was found that the database does not have";
    }
    if (by_group == AdminUser && name != "root" && !listed) return "a stranger is an administrator";
    return nullptr;
}
