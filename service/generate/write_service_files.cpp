// Writes the files of the tree that are made from the service's tables.
//
// usage: write_service_files schema | alerts | recordings | dashboard | catalogue | conditions
#include <cstdio>
#include <string>
#include <string_view>

#include "service/generate/alert_rules.h"
#include "service/generate/conditions_manual.h"
#include "service/generate/dashboard.h"
#include "service/generate/journal_catalogue.h"
#include "service/generate/status_schema.h"

namespace {

struct FileRow {
    std::string_view word;
    std::string (*text)();
};
constexpr FileRow kFiles[] = {
    {"schema", hxservice::StatusSchema},        {"alerts", hxservice::AlertRules},
    {"recordings", hxservice::RecordingRules},  {"dashboard", hxservice::Dashboard},
    {"catalogue", hxservice::JournalCatalogue}, {"conditions", hxservice::ConditionsManual},
};

}  // namespace

int main(int argc, char** argv) {
    for (const FileRow& file : kFiles) {
        if (argc != 2 || file.word != argv[1]) continue;
        return std::fputs(file.text().c_str(), stdout) < 0 ? 1 : 0;
    }
    std::fputs("usage: write_service_files", stderr);
    const char* between = " ";
    for (const FileRow& file : kFiles) {
        std::fprintf(stderr, "%s%s", between, std::string(file.word).c_str());
        between = " | ";
    }
    std::fputs("\n", stderr);
    return 2;
}
