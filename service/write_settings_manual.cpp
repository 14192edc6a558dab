// Writes hxraidsvc.conf(5) from the table that reads the file.
#include <cstdio>
#include <string>
#include <string_view>

#include "conditions/hxc_rows.h"
#include "service/generate/manual_text.h"
#include "service/hxs_paths.h"
#include "service/hxs_settings.h"
#include "service/hxs_sink_settings.h"

namespace {

constexpr char kHead[] = R"(.Dd November 22, 2026
.Dt HXRAIDSVC.CONF 5
.Os vexorapi
.Sh NAME
.Nm hxraidsvc.conf
.Nd settings of the event service
.Sh SYNOPSIS
.Pa %s
.Sh DESCRIPTION
The file is TOML and need not exist.
A key that is left out has its default.
A key that is not known, a value of another type and a value out of its limits
are errors:
the service does not start, and a running one that reads its settings again
keeps the old ones.
.Dl hxraidsvc --check-config
tells each error with its file and line.
.Pp
Durations are texts such as
.Qq 10s
or
.Qq 1m30s ;
their units are w, d, h, m, s and ms.
.Pp
The keys, with the tables that they stand in:
.Bl -tag -width Ds
)";

constexpr char kSinks[] = R"(.El
.Ss Sinks
A table
.Ic [sink.NAME]
makes a sink: a place to which alerts are sent, by a name of letters, digits,
.Ql -
and
.Ql _ .
There may be several.
An alert is a condition that is raised, gets worse or better, or is cleared.
All alerts of one round are sent to a sink together.
What a sink does not take is sent again, after 1, 2, 4 and more seconds, up to
10 minutes; alerts that may have arrived before are marked so.
The keys of such a table:
.Bl -tag -width Ds
)";

constexpr char kConditions[] = R"(.El
.Ss Conditions
The table
.Ic [conditions]
sets how grave a condition is on this machine:
.Qq critical ,
.Qq warning
or
.Qq info ;
.Qq off
leaves it out everywhere, and the first line of
.Dl vexorctl check
tells how many that hold are switched off.
A condition whose level is set here is told with
.Qq (level set here) .
.Xr vexorctl 1 ,
.Cm check
and
.Cm overview ,
read the table as the service does; where they may not read the file, they take
the levels that the service reports.
The keys, the codes of the conditions, by the level that they have when they are
left out:
.Bl -tag -width Ds
)";

constexpr char kTail[] = R"(.El
.Sh EXAMPLES
Check in twice a minute:
.Bd -literal -offset indent
[collect]
interval = "30s"
jitter = "2s"
.Ed
.Pp
A UPS protects the cache, and a missing spare is to be seen:
.Bd -literal -offset indent
[conditions]
CACHE_UNPROTECTED = "info"
SPARE_NONE = "warning"
.Ed
.Pp
Run a program for what is critical:
.Bd -literal -offset indent
[sink.pager]
kind = "command"
command = ["/usr/local/bin/page", "storage"]
level = "critical"
.Ed
.Pp
Mail what is wrong each day until it is mended, and write it to the journal:
.Bd -literal -offset indent
[sink.ops]
kind = "mail"
to = ["root", "storage@example.org"]
policy = "daily"

[sink.journal]
kind = "journal"
level = "info"
.Ed
.Pp
Post what is wrong to a server, signed:
.Bd -literal -offset indent
[sink.chat]
kind = "webhook"
url = "https://chat.example.org/hooks/storage"
secret_file = "/etc/hxraid/chat.secret"
.Ed
.Sh SEE ALSO
.Xr vexorapi.ini 5 ,
.Xr hxraidsvc 8
)";

struct LevelGroup {
    std::string_view title;
    hxconditions::Level level;
    bool is_fixed;
};
constexpr LevelGroup kLevelGroups[] = {
    {"Critical, whatever is set", hxconditions::Level::kCritical, true},
    {"Critical", hxconditions::Level::kCritical, false},
    {"Unknown, may hide something critical", hxconditions::Level::kUnknown, false},
    {"Warning", hxconditions::Level::kWarning, false},
    {"Unknown, hides at most a warning", hxconditions::Level::kMinorUnknown, false},
    {"Information", hxconditions::Level::kInfo, false},
};

void PrintConditions() {
    std::fputs(kConditions, stdout);
    for (const LevelGroup& group : kLevelGroups) {
        std::string codes;
        for (const hxconditions::Row& row : hxconditions::Rows()) {
            const bool is_fixed = !hxconditions::MayBeLowered(row);
            if (hxconditions::LevelOf(row) != group.level || is_fixed != group.is_fixed) continue;
            codes += (codes.empty() ? "" : ", ") + std::string(row.name);
        }
        std::printf(".It %s\n%s.\n", std::string(group.title).c_str(),
                    hxservice::ManualText(codes).c_str());
    }
}

}  // namespace

int main() {
    std::printf(kHead, std::string(hxservice::kConfigurationFile).c_str());
    for (const hxservice::SettingRow& row : hxservice::SettingRows()) {
        std::printf(".It Ic %s\n%s\n%s\n", std::string(row.key).c_str(),
                    hxservice::ManualText(hxservice::ValuesOf(row)).c_str(),
                    hxservice::ManualText(row.meaning).c_str());
    }
    std::fputs(kSinks, stdout);
    for (const hxservice::SinkRow& row : hxservice::SinkRows()) {
        const std::string of =
            row.of.empty() ? "" : ", for sinks of kind \"" + std::string(row.of) + "\"";
        std::printf(".It Ic %s\n%s\n%s\n", std::string(row.key).c_str(),
                    hxservice::ManualText("It is " + std::string(row.values) + of + ".").c_str(),
                    hxservice::ManualText(row.meaning).c_str());
    }
    PrintConditions();
    return std::fputs(kTail, stdout) < 0 ? 1 : 0;
}
