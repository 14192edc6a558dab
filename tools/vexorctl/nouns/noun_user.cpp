// vexorctl user ...
#include <termios.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/interrupt.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl::user_noun {

namespace {

struct User {
    std::optional<std::string> name;
    std::optional<std::string> domain;
    std::optional<std::string> group;
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
    return Present(invocation, Tabulated(invocation, kColumns, std::vector<User>{std::move(user)}));
}

// The user that was named, or whoever runs the command.
User UserOf(Invocation& invocation) {
    using Function = calls::HX_GetUserName;
    if (!invocation.targets().empty()) {
        return {invocation.targets().front(), invocation.Get("--domain", ""), {}};
    }
    const auto answer = invocation.controller().Ask(Request<Function>{});
    const auto name = answer[Function::Result::UserName];
    if (answer.exit != Exit::kDone || !name) {
        throw Failure(Exit::kNoObject,
                      "your user name cannot be had" +
                          (answer.complaint.empty() ? "" : ": " + answer.complaint));
    }
    return {name, answer[Function::Result::DomainName], {}};
}

Exit ShowUser(Invocation& invocation) {
    using Function = calls::HX_GetUserGroup;
    User user = UserOf(invocation);
    const std::string name = user.name.value_or("");
    const auto answer = invocation.controller().Ask(Request<Function>{
        {Function::lpszUsername, name}, {Function::lpszDomain, user.domain.value_or("")}});
    if (answer.exit == Exit::kUndelivered) throw Failure(answer.exit, answer.complaint);
    if (answer.exit != Exit::kDone) {
        throw Failure(Exit::kRefused,
                      "the group of \"" + name +
                          "\" cannot be told: this host has no group of administrators (code " +
                          std::to_string(answer.status) + ")");
    }
    user.group = answer[Function::Result::UserGroup];
    // The library reports success for a user that does not exist.
    if (user.group == "UnknownUser") {
        throw Failure(Exit::kNoObject, "there is no user \"" + name + "\"");
    }
    return PresentUser(invocation, std::move(user));
}

// Switches the echo of a terminal off while a password is typed, and restores its settings in any
// case.
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
    const WatchingInterrupts watching;
    if (isatty(STDIN_FILENO) == 1) std::fputs("Password: ", stderr);
    std::string password;
    char c;
    while (watching.Read(c) && c != '\n') {
        password += c;
        if (password.size() > kMaxPassword) throw UsageError("the password is too long");
    }
    if (isatty(STDIN_FILENO) == 1) std::fputc('\n', stderr);
    if (Interrupted()) throw Failure(Exit::kInterrupted, "interrupted");
    return password;
}

Exit LogOn(Invocation& invocation) {
    using Function = calls::HX_LogonUser;
    const std::string& name = invocation.targets().front();
    const std::string domain = invocation.Get("--domain", "");
    const auto answer =
        invocation.controller().Ask(Request<Function>{{Function::lpszUsername, name},
                                                      {Function::lpszDomain, domain},
                                                      {Function::lpszPassword, ReadPassword()}});
    if (answer.exit == Exit::kUndelivered) throw Failure(answer.exit, answer.complaint);
    if (answer.exit != Exit::kDone) {
        throw Failure(Exit::kNotPermitted, "\"" + name +
                                               "\" may not log on: wrong password, "
                                               "or no such user (code " +
                                               std::to_string(answer.status) + ")");
    }
    return PresentUser(invocation, {name, domain, answer[Function::Result::UserGroup]});
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
     .functions = kNamesOf<calls::HX_GetUserName, calls::HX_GetUserGroup>,
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
     .functions = kNamesOf<calls::HX_LogonUser>,
     .examples = {"vexorctl user logon admin <password",
                  "vexorctl user logon admin -o json <password"},
     .run = LogOn,
     .columns = Columns,
     .note = "The password is asked for, or read from standard input; it is never an argument, "
             "where others could see it."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::user_noun
