// vexorctl user ...
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

struct User {
    std::string name;
    std::string domain;
    std::string group;
};

using enum Kind;
using enum Place;

constexpr Column<User> kColumns[] = {
    {{"name", "USER", kText, kTable, "The name"}, [](const User& it) { return TextCell(it.name); }},
    {{"domain", "DOMAIN", kText, kTable, "The domain or host of the account"},
     [](const User& it) { return TextCell(it.domain); }},
    {{"group", "GROUP", kText, kTable, "The group, which tells what the user may do"},
     [](const User& it) { return TextCell(it.group); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit PresentUser(Invocation& invocation, User user) {
    Report report;
    Tabulate(report, kColumns, std::vector<User>{std::move(user)});
    return Present(invocation, std::move(report), "table");
}

Exit ShowUser(Invocation& invocation) {
    Controller& controller = invocation.controller();
    User user;
    if (invocation.targets().empty()) {
        const Answer answer = controller.Ask({"HX_GetUserName", {}});
        if (answer.exit != Exit::kDone) {
            throw Failure(Exit::kNoObject, "your user name cannot be had: " + answer.complaint);
        }
        user.name = answer.result.Text("UserName");
        user.domain = answer.result.Text("DomainName");
    } else {
        user.name = invocation.targets().front();
        user.domain = invocation.Get("--domain", "");
    }
    const Answer group = controller.Ask(
        {"HX_GetUserGroup", {{"lpszUsername", user.name}, {"lpszDomain", user.domain}}});
    if (group.exit == Exit::kUndelivered) throw Failure(group.exit, group.complaint);
    if (group.exit != Exit::kDone) {
        throw Failure(Exit::kRefused,
                      "the group of \"" + user.name +
                          "\" cannot be told: this host has no group of administrators (code " +
                          std::to_string(group.status) + ")");
    }
    user.group = group.result.Text("UserGroup");
    // A success all the same, for the library.
    if (user.group == "UnknownUser") {
        throw Failure(Exit::kNoObject, "there is no user \"" + user.name + "\"");
    }
    return PresentUser(invocation, std::move(user));
}

// A terminal shows nothing of a password; its settings come back whatever happens.
class Silence {
public:
    Silence() : quiet_(tcgetattr(STDIN_FILENO, &before_) == 0) {
        if (!quiet_) return;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~Silence() {
        if (quiet_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    termios before_{};
    bool quiet_;
};

constexpr std::size_t kMaxPassword = 127;

std::string ReadPassword() {
    const Silence silence;
    if (isatty(STDIN_FILENO) == 1) std::fputs("Password: ", stderr);
    std::string password;
    char c;
    while (read(STDIN_FILENO, &c, 1) == 1 && c != '\n') {
        password += c;
        if (password.size() > kMaxPassword) throw UsageError("the password is too long");
    }
    if (isatty(STDIN_FILENO) == 1) std::fputc('\n', stderr);
    return password;
}

Exit LogOn(Invocation& invocation) {
    User user{invocation.targets().front(), invocation.Get("--domain", ""), ""};
    const Answer answer = invocation.controller().Ask({"HX_LogonUser",
                                                       {{"lpszUsername", user.name},
                                                        {"lpszDomain", user.domain},
                                                        {"lpszPassword", ReadPassword()}}});
    if (answer.exit == Exit::kUndelivered) throw Failure(answer.exit, answer.complaint);
    if (answer.exit != Exit::kDone) {
        throw Failure(Exit::kNotPermitted, "\"" + user.name +
                                               "\" may not log on: wrong password, "
                                               "or no such user (code " +
                                               std::to_string(answer.status) + ")");
    }
    user.group = answer.result.Text("UserGroup");
    return PresentUser(invocation, std::move(user));
}

constexpr OptionRow kOptions[] = {{"--domain", "DOMAIN", "The domain or host of the account"}};

constexpr CommandRow kCommands[] = {
    {.noun = "user",
     .verb = "show",
     .summary = "Show your own user, or another, and its group",
     .target = Target::kText,
     .arity = Arity::kOptional,
     .target_name = "NAME",
     .options = kOptions,
     .functions = "HX_GetUserName HX_GetUserGroup",
     .examples = {"vexorctl user show root", "vexorctl user show root -o json"},
     .run = ShowUser,
     .columns = Columns},
    {.noun = "user",
     .verb = "logon",
     .summary = "Check a user's password and tell the group",
     .target = Target::kText,
     .arity = Arity::kOne,
     .target_name = "NAME",
     .options = kOptions,
     .functions = "HX_LogonUser",
     .examples = {"vexorctl user logon admin <password",
                  "vexorctl user logon admin -o json <password"},
     .run = LogOn,
     .columns = Columns,
     .note = "The password is asked for, or read from standard input; it is never an argument, "
             "where others could see it."},
};

}  // namespace

std::span<const CommandRow> UserCommands() { return kCommands; }

}  // namespace vexorctl
