#include "service/generate/journal_catalogue.h"

#include <set>
#include <string_view>

#include "codes/code_table.h"
#include "codes/event_class.h"
#include "conditions/hxc_event_codes.h"
#include "conditions/hxc_rows.h"
#include "service/hxs_journal_entries.h"

namespace hxservice {

namespace {

constexpr char kCatalogueHead[] =
    "# Texts for journalctl -x: what each MESSAGE_ID of hxraidsvc means. It is the table of these\n"
    "# numbers, too: they never change. Those of events end with class and code, 4 digits each.\n"
    "# Written by write_service_files from the tables of conditions and of events.\n";
// journalctl puts the fields of an entry in the place of such names.
constexpr std::string_view kObject = "@HXRAID_OBJECT@";

std::string Lines(std::string_view text) {
    constexpr std::size_t kMostColumns = 78;
    std::string lines;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (column != 0 && column + 1 + word.size() > kMostColumns) {
            lines += '\n';
            column = 0;
        }
        if (column != 0) lines += ' ';
        column += (column != 0 ? 1 : 0) + word.size();
        lines += word;
    }
    return lines + "\n";
}

std::string EntryText(std::string_view id, const std::string& subject, const std::string& body) {
    return "\n-- " + std::string(id) + "\nSubject: " + subject +
           "\nDefined-By: hxraidsvc\nSupport: man:hxraidsvc(8)\nDocumentation: "
           "man:vexorctl(1)\n\n" +
           body;
}

std::string ConditionEntries(const hxconditions::Row& row) {
    const std::string name(row.name);
    const std::string cleared_by(row.cleared_by);
    std::string raised = Lines(row.meaning);
    if (!row.next_step.empty()) raised += "\nWhat to do: @HXRAID_NEXT_STEP@\n";
    raised += "\n" + Lines("It ends by: " + cleared_by + ".");
    return EntryText(
               row.message_id,
               name + " (" + std::string(NameOf(LevelOf(row))) + ") of " + std::string(kObject),
               raised) +
           EntryText(row.clear_id, name + " of " + std::string(kObject) + " is over",
                     Lines("What was wrong has ended: " + cleared_by + "."));
}

// {object} and {1} are those of the entry; other numbers stand in its message alone.
std::string EventSentence(std::string_view text) {
    std::string sentence;
    while (!text.empty()) {
        const std::size_t open = text.find('{');
        const std::size_t close = text.find('}', open);
        sentence += text.substr(0, open);
        if (open == std::string_view::npos || close == std::string_view::npos) break;
        const std::string_view name = text.substr(open + 1, close - open - 1);
        sentence += name == "object" ? "@DEVICE@ of adapter @ADAPTER@" : "...";
        text.remove_prefix(close + 1);
    }
    return sentence;
}

std::string EventEntry(const hxcodes::EventText& event) {
    hxconditions::Event kind;
    kind.event_class = event.event_class;
    kind.code = event.code;
    std::string body = Lines("A controller has told this event, " + event.key + ", of adapter " +
                             "@ADAPTER@. The service looks at the machine when events come; " +
                             "what is wrong then is told by vexorctl check.");
    for (const hxconditions::Code code :
         hxconditions::CodesIn(hxconditions::CodesOf(kind).raises)) {
        const hxconditions::Row& row = hxconditions::RowOf(code);
        body +=
            "\n" + Lines("It may start " + std::string(row.name) + ". " + std::string(row.meaning));
    }
    const std::string_view class_name =
        hxcodes::NameOf(hxcodes::kEventClassNames, event.event_class);
    return EntryText(
        EventMessageId(event.event_class, event.code),
        "Event of class " + std::string(class_name) + ": " + EventSentence(event.sentence), body);
}

}  // namespace

std::string JournalCatalogue() {
    std::string text = kCatalogueHead;
    for (const hxconditions::Row& row : hxconditions::Rows()) text += ConditionEntries(row);
    std::set<std::string> told;
    for (const hxcodes::EventText& event : hxcodes::OwnCodes().events) {
        // Some have several texts.
        const std::string id = EventMessageId(event.event_class, event.code);
        if (told.insert(id).second) text += EventEntry(event);
    }
    return text + EntryText(kTestMessageId, "The sink journal was tried",
                            Lines("Somebody has tried the sinks of alerts by hxraidsvc "
                                  "--test-alert or vexorctl alert test. Nothing is wrong."));
}

}  // namespace hxservice
