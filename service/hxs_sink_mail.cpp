#include "service/hxs_sink_mail.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <ctime>

#include "common/terminal_text.h"
#include "common/utf8.h"
#include "service/hxs_sink_command.h"

namespace hxservice {

namespace {

constexpr std::size_t kLongestAddress = 254;
// Lines of a mail have at most 78 characters, of which "Subject: " takes some.
constexpr std::size_t kLongestPlainSubject = 66;
// In Base64 with its frame an encoded word has at most 75 characters.
constexpr std::size_t kEncodedAtOnce = 45;
constexpr std::size_t kLongestBodyLine = 76;

bool IsPlain(char letter) { return letter >= ' ' && letter <= '~'; }

std::string Base64(std::string_view bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t begin = 0; begin < bytes.size(); begin += 3) {
        const std::string_view three = bytes.substr(begin, 3);
        std::uint32_t bits = 0;
        for (std::size_t index = 0; index < 3; ++index) {
            bits =
                bits << 8 | (index < three.size() ? static_cast<unsigned char>(three[index]) : 0U);
        }
        for (std::size_t digit = 0; digit < 4; ++digit) {
            const std::uint32_t value = bits >> (18 - 6 * digit) & 0x3F;
            text += digit <= three.size() ? kDigits[value] : '=';
        }
    }
    return text;
}

// As RFC 2047 has it. A text that looks like an encoded word is encoded, too.
std::string EncodedSubject(const std::string& subject) {
    std::string text = vexortools::ValidUtf8(vexortools::Printable(subject));
    const bool is_plain = std::ranges::all_of(text, IsPlain) &&
                          text.find("=?") == std::string::npos &&
                          text.size() <= kLongestPlainSubject;
    if (is_plain) return text;
    std::string encoded;
    std::string word;
    const auto finish = [&] {
        if (word.empty()) return;
        encoded += (encoded.empty() ? "=?UTF-8?B?" : "\n =?UTF-8?B?") + Base64(word) + "?=";
        word.clear();
    };
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t before = rest.size();
        const std::string_view from = rest;
        vexortools::TakeUtf8(rest);
        const std::string_view character = from.substr(0, before - rest.size());
        if (word.size() + character.size() > kEncodedAtOnce) finish();
        word += character;
    }
    finish();
    return encoded;
}

// As RFC 2045 has it: a body of any bytes in short lines of ASCII.
std::string QuotedPrintable(std::string_view body) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    std::size_t column = 0;
    for (std::size_t index = 0; index < body.size(); ++index) {
        const char letter = body[index];
        if (letter == '\n') {
            text += '\n';
            column = 0;
            continue;
        }
        const bool ends_line = index + 1 == body.size() || body[index + 1] == '\n';
        // A line of one dot ends what sendmail reads where -oi is not known.
        const bool is_itself = IsPlain(letter) && letter != '=' && !(letter == ' ' && ends_line) &&
                               !(letter == '.' && column == 0);
        std::string written(1, letter);
        if (!is_itself) {
            const auto byte = static_cast<unsigned char>(letter);
            written = {'=', kDigits[byte >> 4], kDigits[byte & 0xF]};
        }
        if (column + written.size() >= kLongestBodyLine) {
            text += "=\n";
            column = 0;
        }
        text += written;
        column += written.size();
    }
    return text;
}

// Names of the days and months are English in every locale.
std::string MailDate(std::int64_t since_1970) {
    constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto time = static_cast<std::time_t>(since_1970);
    tm date{};
    gmtime_r(&time, &date);
    std::array<char, 32> rest{};
    std::strftime(rest.data(), rest.size(), " %Y %H:%M:%S +0000", &date);
    return std::string(kDays[date.tm_wday]) + ", " + std::to_string(date.tm_mday) + " " +
           kMonths[date.tm_mon] + rest.data();
}

// What may stand in a Message-ID behind the @.
std::string HostPart(const std::string& host) {
    std::string part;
    for (const char letter : host) {
        const bool is_kept = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                             (letter >= '0' && letter <= '9') || letter == '-' || letter == '.';
        part += is_kept ? letter : '-';
    }
    return part.empty() || part.front() == '.' || part.back() == '.' ? "localhost" : part;
}

}  // namespace

bool IsMailAddress(std::string_view text) {
    constexpr std::string_view kSpecial = "()<>[]:;\\,\"";
    return !text.empty() && text.size() <= kLongestAddress && text.front() != '-' &&
           std::ranges::all_of(text, [&](char letter) {
               return letter > ' ' && letter <= '~' && kSpecial.find(letter) == std::string::npos;
           });
}

std::string MailText(const SinkSettings& sink, const Letter& letter) {
    std::string text;
    if (!sink.from.empty()) text += "From: " + sink.from + "\n";
    text += "To: ";
    for (const std::string& each : sink.to)
        text += (&each == &sink.to.front() ? "" : ",\n ") + each;
    text += "\nSubject: " + EncodedSubject(letter.subject) + "\n";
    text += "Date: " + MailDate(letter.at) + "\n";
    text += "Message-ID: <hxraid." + letter.id + "@" + HostPart(letter.host) + ">\n";
    text += "Auto-Submitted: auto-generated\n";
    text += "MIME-Version: 1.0\n";
    text += "Content-Type: text/plain; charset=UTF-8\n";
    text += "Content-Transfer-Encoding: quoted-printable\n\n";
    return text + QuotedPrintable(letter.body);
}

Job MailJob(const SinkSettings& sink, const Letter& letter) {
    Job job{.words = {sink.program, "-t", "-oi"},
            .environment = EnvironmentOf(letter),
            .input = MailText(sink, letter),
            .limit = sink.limit,
            .may_leave_processes = true};
    if (!sink.from.empty()) {
        job.words.emplace_back("-f");
        job.words.push_back(sink.from);
    }
    return job;
}

}  // namespace hxservice
