// What the sinks write and answer: mails, entries of the journal, webhooks.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "conditions/hxc_rows.h"
#include "descriptor.h"
#include "service/hxs_deliverer.h"
#include "service/hxs_journal.h"
#include "service/hxs_journal_entries.h"
#include "service/hxs_sink_mail.h"
#include "service/hxs_sink_webhook.h"
#include "support/temporary_root.h"

namespace {

using hxservice::EntriesOf;
using hxservice::Journal;
using hxservice::JournalDatagram;
using hxservice::JournalEntry;
using hxservice::Letter;
using hxservice::MailText;
using hxservice::Notice;
using hxservice::Priority;
using hxservice::SinkSettings;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr std::int64_t kTime = 1795475825;  // 2026-11-23 23:17:05 UTC

SinkSettings MailSink() {
    SinkSettings sink;
    sink.name = "ops";
    sink.kind = hxservice::SinkKind::kMail;
    sink.to = {"root", "ops@example.org"};
    return sink;
}

Letter LetterWith(const std::string& subject, const std::string& body) {
    Letter letter;
    letter.sink = "ops";
    letter.host = "host1";
    letter.subject = subject;
    letter.body = body;
    letter.at = kTime;
    letter.id = "3-4-00000000000000aa";
    return letter;
}

TEST(MailSink, WritesAllHeaders) {
    EXPECT_EQ(MailText(MailSink(), LetterWith("[CRITICAL] host1: a0/pd5 failed", "One.\n")),
              "To: root,\n ops@example.org\n"
              "Subject: [CRITICAL] host1: a0/pd5 failed\n"
              "Date: Mon, 23 Nov 2026 23:17:05 +0000\n"
              "Message-ID: <hxraid.3-4-00000000000000aa@host1>\n"
              "Auto-Submitted: auto-generated\n"
              "MIME-Version: 1.0\n"
              "Content-Type: text/plain; charset=UTF-8\n"
              "Content-Transfer-Encoding: quoted-printable\n\n"
              "One.\n");
}

TEST(MailSink, NamesTheSenderOfTheSettings) {
    SinkSettings sink = MailSink();
    sink.from = "raid@example.org";
    EXPECT_THAT(MailText(sink, LetterWith("s", "b")), StartsWith("From: raid@example.org\nTo: "));
    EXPECT_EQ(
        hxservice::MailJob(sink, LetterWith("s", "b")).words,
        (std::vector<std::string>{"/usr/sbin/sendmail", "-t", "-oi", "-f", "raid@example.org"}));
}

TEST(MailSink, LetsNoNameAddAHeader) {
    Letter letter = LetterWith("x\nBcc: evil@example.org\r\n\r\nbody", "b");
    letter.host = "a>\nBcc: evil@example.org";
    const std::string text = MailText(MailSink(), letter);
    EXPECT_THAT(text, Not(HasSubstr("\nBcc:")));
    EXPECT_THAT(text, HasSubstr("\nSubject: x?Bcc: evil@example.org????body\n"));
    EXPECT_THAT(text, HasSubstr("@a--Bcc--evil-example.org>\n"));
}

TEST(MailSink, EncodesASubjectThatIsLongOrNotAscii) {
    EXPECT_THAT(MailText(MailSink(), LetterWith("Größe", "")),
                HasSubstr("\nSubject: =?UTF-8?B?R3LDtsOfZQ==?=\n"));
    EXPECT_THAT(MailText(MailSink(), LetterWith("=?UTF-8?Q?x?=", "")),
                HasSubstr("\nSubject: =?UTF-8?B?PT9VVEYtOD9RP3g/PQ==?=\n"));
    EXPECT_THAT(MailText(MailSink(), LetterWith(std::string(66, 'a'), "")),
                HasSubstr("\nSubject: " + std::string(66, 'a') + "\n"));
    const std::string text = MailText(MailSink(), LetterWith(std::string(67, 'a'), ""));
    EXPECT_THAT(text, HasSubstr("?=\n =?UTF-8?B?"));
}

TEST(MailSink, BreaksNoCharacterBetweenTwoEncodedWords) {
    std::string subject = "a";
    for (int count = 0; count < 40; ++count) subject += "ö";
    const std::string text = MailText(MailSink(), LetterWith(subject, ""));
    // 1 + 22 * 2 bytes fit into the first word.
    EXPECT_THAT(text,
                HasSubstr("Subject: =?UTF-8?B?YcO2w7bDtsO2w7bDtsO2w7bDtsO2w7bDtsO2w7bDtsO2w7bD"
                          "tsO2w7bDtsO2?=\n"));
}

TEST(MailSink, WritesABodyInShortLinesOfAscii) {
    const std::string body = "a = ö \n.\n" + std::string(100, 'x') + "\n";
    const std::string text = MailText(MailSink(), LetterWith("s", body));
    EXPECT_THAT(text, HasSubstr("\n\na =3D =C3=B6=20\n=2E\n" + std::string(75, 'x') + "=\n" +
                                std::string(25, 'x') + "\n"));
}

TEST(MailSink, TakesAddressesThatCannotBeAnythingElse) {
    for (const char* good : {"root", "a.b+c@example.org", "x@[not-this"}) {
        EXPECT_EQ(hxservice::IsMailAddress(good), std::strchr(good, '[') == nullptr) << good;
    }
    for (const char* bad : {"", "-f", "a b", "a,b", "a\nBcc: x", "\"a\"", "<a@b>", "ö@b", "a:b"}) {
        EXPECT_FALSE(hxservice::IsMailAddress(bad)) << bad;
    }
}

// What its program writes when a delivery has failed.
TEST(WebhookAnswer, TellsWhenAndWhetherItMayBeSentAgain) {
    const auto end_of = [](const std::string& output) {
        hxservice::JobEnd end{"hook", true, "ended with exit status 1", output};
        hxservice::TakeWebhookAnswer(end);
        return end;
    };
    hxservice::JobEnd end =
        end_of("{\"error\":\"the receiver answered 429\",\"refused\":false,\"wait_s\":120}\n");
    EXPECT_EQ(end.error, "the receiver answered 429");
    EXPECT_EQ(end.wait, std::chrono::seconds(120));
    EXPECT_FALSE(end.is_refused);
    end = end_of("{\"error\":\"the receiver answered 403\",\"refused\":true,\"wait_s\":0}\n");
    EXPECT_EQ(end.wait, std::chrono::seconds(0));
    EXPECT_TRUE(end.is_refused);
    // A receiver cannot put alerts off for ever.
    EXPECT_EQ(end_of("{\"error\":\"x\",\"wait_s\":9999999}").wait, std::chrono::hours(1));
    EXPECT_EQ(end_of("{\"error\":\"x\",\"wait_s\":-5}").wait, std::chrono::seconds(0));
    end = end_of("no JSON");
    EXPECT_EQ(end.error, "ended with exit status 1");
    EXPECT_EQ(end.output, "no JSON");
}

TEST(JournalEntries, AreWrittenAsTheJournalReadsThem) {
    const JournalEntry entry{.priority = Priority::kWarning,
                             .message = "m\nn",
                             .message_id = "0123",
                             .fields = {{"ADAPTER", "0"}, {"NAME", "a\nb"}}};
    using namespace std::string_literals;
    EXPECT_EQ(JournalDatagram(entry),
              "MESSAGE=m?n\nPRIORITY=4\nSYSLOG_IDENTIFIER=hxraidsvc\nMESSAGE_ID=0123\n"
              "ADAPTER=0\nNAME\n\3\0\0\0\0\0\0\0a\nb\n"s);
}

TEST(JournalEntries, OfEventsHaveTheirNumbers) {
    hxservice::StoredEvent event;
    event.number = 14;
    event.severity = "major";
    event.text = "Disk a0/pd5 failed";
    event.event.adapter = 0;
    event.event.event_class = 2;
    event.event.code = 0xFFFF;
    event.event.device = 5;
    EXPECT_EQ(JournalDatagram(hxservice::EntryOf(event)),
              "MESSAGE=Disk a0/pd5 failed\nPRIORITY=3\nSYSLOG_IDENTIFIER=hxraidsvc\n"
              "MESSAGE_ID=8f1c6a5e0d2b4c739ae4b7d10002ffff\nADAPTER=0\nCLASS=2\nCODE=65535\n"
              "SEVERITY=major\nDEVICE=5\nSEQUENCE=14\n");
}

hxconditions::Message FailedDisk(hxconditions::Change change) {
    hxconditions::Message message;
    message.change = change;
    message.condition.code = hxconditions::Code::kVdNoRedundancy;
    message.condition.level = hxconditions::Level::kCritical;
    message.condition.object.kind = hxconditions::Kind::kVirtualDisk;
    message.condition.object.address = "a0/vd0";
    message.condition.object.name = "DATA";
    message.condition.object.identity = "vd 0 0 DATA";
    message.condition.sentence = "DATA (a0/vd0) has no redundancy left";
    message.condition.next_step = "Replace the lost disk";
    message.condition.command = {"vexorctl", "disk", "locate", "a0/pd5"};
    message.condition.since = kTime;
    message.condition.event = {.adapter = 0, .sequence = 14, .event_class = 1, .code = 4};
    return message;
}

Letter LetterOfChange(hxconditions::Change change) {
    const hxconditions::Message message = FailedDisk(change);
    const Notice notice{
        1, "key", hxservice::NoticeText(message, hxconditions::NameOf(change), "host1", false)};
    return hxservice::LetterOf({.sink = "journal", .host = "host1", .at = kTime}, {notice}, {}, {});
}

TEST(JournalEntries, OfAlertsHaveTheFieldsOfTheCondition) {
    const std::vector<JournalEntry> entries =
        EntriesOf(LetterOfChange(hxconditions::Change::kRaised));
    ASSERT_EQ(entries.size(), 1U);
    const std::string text = JournalDatagram(entries[0]);
    for (const char* line :
         {"MESSAGE=DATA (a0/vd0) has no redundancy left\n", "PRIORITY=2\n",
          "MESSAGE_ID=0d7b3d61ea216cc1f9b6ad5051f170d8\n", "HXRAID_CODE=VD_NO_REDUNDANCY\n",
          "HXRAID_LEVEL=critical\n", "HXRAID_CHANGE=raised\n", "HXRAID_OBJECT=a0/vd0\n",
          "HXRAID_NAME=DATA\n",
          "HXRAID_NEXT_STEP=Replace the lost disk: vexorctl disk locate a0/pd5\n",
          "HXRAID_SINCE=2026-11-23T23:17:05Z\n", "ADAPTER=0\n", "CLASS=1\n", "CODE=4\n",
          "SEQUENCE=14\n", "SEVERITY=critical\n"}) {
        EXPECT_THAT(text, HasSubstr(line));
    }
}

TEST(JournalEntries, OfAClearHaveTheirOwnIdAndPriority) {
    const std::vector<JournalEntry> entries =
        EntriesOf(LetterOfChange(hxconditions::Change::kCleared));
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].priority, Priority::kNotice);
    EXPECT_EQ(entries[0].message, "cleared: DATA (a0/vd0) has no redundancy left");
    EXPECT_EQ(entries[0].message_id, "78c7527b95e0e7c2defe46559887815f");
}

TEST(Letters, HaveOneIdHoweverOftenTheyAreSent) {
    const auto id_of = [](std::vector<Notice> notices, unsigned attempt) {
        return hxservice::LetterOf(
                   {.sink = "a", .host = "h", .at = kTime + attempt, .attempt = attempt}, notices,
                   {}, {})
            .id;
    };
    const std::vector<Notice> two{{7, "k", "{\"code\":\"A\"}"}, {8, "k", "{\"code\":\"B\"}"}};
    EXPECT_EQ(id_of(two, 1), id_of(two, 2));
    EXPECT_THAT(id_of(two, 1), StartsWith("7-8-"));
    EXPECT_NE(id_of({two[0]}, 1), id_of(two, 1));
    EXPECT_NE(id_of({{7, "k", "{\"code\":\"A\"}"}}, 1), id_of({{7, "k", "{\"code\":\"B\"}"}}, 1));
}

// A datagram socket at the path, as the journal and syslog have.
Descriptor Listening(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    Descriptor made(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    EXPECT_EQ(bind(made.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return made;
}

std::string Received(const Descriptor& listening) {
    std::string text(65536, '\0');
    const ssize_t count = recv(listening.Get(), text.data(), text.size(), 0);
    text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    return text;
}

const JournalEntry kEntry{.message = "hello", .message_id = "0123"};

TEST(JournalSocket, GetsEntriesAlsoWhenItIsMadeAnew) {
    const TemporaryRoot root;
    Journal journal(root.Path("/journal"), root.Path("/log"));
    for (int round = 0; round < 2; ++round) {
        const Descriptor listening = Listening(root.Path("/journal"));
        EXPECT_EQ(journal.Send(kEntry), "");
        EXPECT_EQ(Received(listening), JournalDatagram(kEntry));
        unlink(root.Path("/journal").c_str());
    }
}

TEST(JournalSocket, ThatIsNotThereLeavesItToSyslog) {
    const TemporaryRoot root;
    Journal journal(root.Path("/journal"), root.Path("/log"));
    EXPECT_THAT(journal.Send(kEntry), StartsWith("there is neither a journal nor a syslog: "));
    const Descriptor listening = Listening(root.Path("/log"));
    EXPECT_EQ(journal.Send(kEntry), "");
    const std::string line = Received(listening);
    EXPECT_THAT(line, StartsWith("<30>"));
    EXPECT_THAT(line, testing::EndsWith(" hxraidsvc[" + std::to_string(getpid()) + "]: hello"));
}

TEST(JournalSocket, ThatNobodyReadsStopsNothing) {
    const TemporaryRoot root;
    Journal journal(root.Path("/journal"), root.Path("/log"));
    const Descriptor listening = Listening(root.Path("/journal"));
    std::string error;
    for (int count = 0; count < 100000 && error.empty(); ++count) error = journal.Send(kEntry);
    EXPECT_THAT(error, HasSubstr("the journal cannot be written: "));
    while (!Received(listening).empty()) {
    }
    EXPECT_EQ(journal.Send(kEntry), "");
}

TEST(JournalIds, AreUnlikeEachOther) {
    std::set<std::string_view> ids{hxservice::kTestMessageId};
    for (const hxconditions::Row& row : hxconditions::Rows()) {
        EXPECT_TRUE(ids.insert(row.message_id).second) << row.name;
        EXPECT_TRUE(ids.insert(row.clear_id).second) << row.name;
    }
    EXPECT_FALSE(ids.contains(hxservice::EventMessageId(1, 4)));
}

}  // namespace
