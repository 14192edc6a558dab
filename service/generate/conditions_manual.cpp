#include "service/generate/conditions_manual.h"

#include <cctype>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "conditions/hxc_rows.h"
#include "service/generate/manual_text.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;

constexpr std::string_view kTop =
    R"(.\" Written by write_service_files from the table of conditions.
.Dd November 22, 2026
.Dt HXRAID-CONDITIONS 7
.Os vexorapi
.Sh NAME
.Nm hxraid-conditions
.Nd what can be wrong with a machine's RAID controllers
.Sh DESCRIPTION
.Xr hxraidsvc 8
and the command check of
.Xr vexorctl 1
tell what is wrong as conditions.
Each has a code, an object and a level.
.Bl -tag -width Ds
.It critical
Data cannot be reached, is lost, or is lost with the next failure.
.It warning
Somebody has to act, but not at once.
.It unknown
Something cannot be read, so that nobody knows whether it is well.
.It info
Nothing has to be done.
.El
.Pp
Conditions are in the order of their gravity here, as they are wherever
several are shown.
Words in capitals in a next step, such as
.Ar LOST ,
stand for what the condition names in that place;
.Ar A
is the address of its object.
.Sh CONDITIONS
)";

constexpr std::string_view kEnd = R"(.Sh SEE ALSO
.Xr vexorctl 1 ,
.Xr hxraidsvc.conf 5 ,
.Xr hxraidsvc 8
)";

// In the order of hxc::Kind.
constexpr const char* kKinds[] = {
    "the machine",
    "an adapter",
    "a virtual disk",
    "a disk group",
    "a disk",
    "an enclosure",
    "an element of an enclosure",
    "a battery",
    "the event store",
    "the service",
    "a sink",
};
static_assert(std::size(kKinds) == static_cast<std::size_t>(hxc::Kind::kSink) + 1);

// "Replace {lost}": "Replace LOST".
std::string InCapitals(std::string_view text) {
    std::string capitals;
    bool is_placeholder = false;
    for (const char each : text) {
        if (each == '{' || each == '}') {
            is_placeholder = each == '{';
        } else if (is_placeholder) {
            capitals += static_cast<char>(std::toupper(static_cast<unsigned char>(each)));
        } else {
            capitals += each;
        }
    }
    return capitals;
}

std::string Sentence(std::string_view text) {
    std::string sentence = InCapitals(text);
    if (!sentence.empty()) {
        sentence[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(sentence[0])));
    }
    if (!sentence.ends_with('.')) sentence += '.';
    return ManualText(sentence) + "\n";
}

void AddItem(std::string& page, std::string_view title, std::string_view text) {
    if (!text.empty()) page += ".It " + std::string(title) + "\n" + Sentence(text);
}

std::string SectionOf(const hxc::Row& row) {
    std::string page = ".Ss " + std::string(row.name) + "\n" + Sentence(row.meaning);
    page += ".Bl -tag -width Ds\n.It Level\n" + std::string(hxc::NameOf(hxc::LevelOf(row))) +
            ", of " + kKinds[static_cast<std::size_t>(row.kind)] + "\n";
    AddItem(page, "Raised by", row.raised_by);
    AddItem(page, "Cleared by", row.cleared_by);
    AddItem(page, "Next step", row.next_step);
    if (!row.command.empty()) page += ".Dl " + InCapitals(row.command) + "\n";
    return page + ".El\n";
}

}  // namespace

std::string ConditionsManual() {
    std::string page(kTop);
    for (const hxc::Row& row : hxc::Rows()) page += SectionOf(row);
    return page.append(kEnd);
}

}  // namespace hxservice
