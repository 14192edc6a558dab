#include "service/hxs_scrape.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdlib>
#include <iterator>

namespace hxservice {

namespace {

struct StatusRow {
    unsigned status;
    const char* reason;
};
constexpr StatusRow kStatuses[] = {
    {200, "OK"},
    {400, "Bad Request"},
    {404, "Not Found"},
    {405, "Method Not Allowed"},
    {431, "Request Header Fields Too Large"},
    {503, "Service Unavailable"},
};

constexpr std::string_view kBlanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// The text before the separator; `text` is what follows it.
std::string_view Cut(std::string_view& text, char separator) {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](unsigned char each) {
        return static_cast<char>(std::tolower(each));
    });
    return lower;
}

// How much a media type is wanted, from 0 to 1; 0 when the header does not name it.
double WeightOf(std::string_view accept, std::string_view type) {
    double weight = 0;
    while (!accept.empty()) {
        std::string_view range = Cut(accept, ',');
        if (Lower(Trimmed(Cut(range, ';'))) != type) continue;
        double of_this = 1;
        while (!range.empty()) {
            const std::string parameter = Lower(Trimmed(Cut(range, ';')));
            if (parameter.starts_with("q=")) of_this = std::strtod(parameter.c_str() + 2, nullptr);
        }
        weight = std::max(weight, of_this);
    }
    return weight;
}

MetricFormat FormatOf(std::string_view accept) {
    const double open = WeightOf(accept, "application/openmetrics-text");
    return open > 0 && open >= WeightOf(accept, "text/plain") ? MetricFormat::kOpenMetrics
                                                              : MetricFormat::kPrometheus;
}

}  // namespace

Scrape ParseScrape(std::string_view head) {
    Scrape scrape;
    std::string_view line = Trimmed(Cut(head, '\n'));
    const std::string_view method = Cut(line, ' ');
    const std::string_view target = Cut(line, ' ');
    scrape.is_head = method == "HEAD";
    if (target.empty() || (line != "HTTP/1.1" && line != "HTTP/1.0")) {
        scrape.status = 400;
    } else if (method != "GET" && method != "HEAD") {
        scrape.status = 405;
    } else if (target.substr(0, target.find('?')) != "/metrics") {
        scrape.status = 404;
    }
    while (!head.empty()) {
        std::string_view header = Cut(head, '\n');
        if (Lower(Cut(header, ':')) == "accept") scrape.format = FormatOf(header);
    }
    return scrape;
}

std::string ReasonOf(unsigned status) {
    const auto* const row = std::ranges::find(kStatuses, status, &StatusRow::status);
    return row == std::end(kStatuses) ? "Error" : row->reason;
}

std::string HeadOf(const Scrape& scrape, std::size_t bytes) {
    std::string head =
        "HTTP/1.1 " + std::to_string(scrape.status) + " " + ReasonOf(scrape.status) + "\r\n";
    if (scrape.status == 405) head += "Allow: GET, HEAD\r\n";
    head += "Content-Type: ";
    if (scrape.status != 200) {
        head += "text/plain; charset=utf-8";
    } else if (scrape.format == MetricFormat::kOpenMetrics) {
        head += "application/openmetrics-text; version=1.0.0; charset=utf-8";
    } else {
        head += "text/plain; version=0.0.4; charset=utf-8";
    }
    return head + "\r\nContent-Length: " + std::to_string(bytes) + "\r\nConnection: close\r\n\r\n";
}

std::string OpenMetricsOf(std::string_view text) {
    constexpr std::string_view kSuffix = "_total";
    std::string open;
    open.reserve(text.size() + 16);
    while (!text.empty()) {
        const std::string_view line = Cut(text, '\n');
        std::string_view rest = line;
        if (line.starts_with("# ")) {
            rest.remove_prefix(2);
            const std::string_view keyword = Cut(rest, ' ');
            std::string_view name = Cut(rest, ' ');
            if (name.ends_with(kSuffix)) name.remove_suffix(kSuffix.size());
            open.append("# ").append(keyword).append(" ").append(name).append(" ").append(rest);
        } else {
            open += line;
        }
        open += '\n';
    }
    return open + "# EOF\n";
}

}  // namespace hxservice
