// Scrapes of the metrics by HTTP: what is answered, and that nobody can hold the service.
#include "service/hxs_listener.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <array>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "descriptor.h"
#include "service/hxs_scrape.h"
#include "service/scripted_source.h"

namespace {

using hxservice::Listener;
using hxservice::MetricFormat;
using hxservice::OpenMetricsOf;
using hxservice::ParseScrape;
using std::chrono::seconds;

constexpr char kMetrics[] =
    "# HELP hxraid_a What it is.\n"
    "# TYPE hxraid_a gauge\n"
    "hxraid_a{x=\"_total \"} 0.25\n"
    "# HELP hxraid_b_total Another.\n"
    "# TYPE hxraid_b_total counter\n"
    "hxraid_b_total 3\n";
constexpr char kGet[] = "GET /metrics HTTP/1.1\r\nHost: localhost\r\n\r\n";

TEST(ServiceScrape, IsOfTheMetricsByGetOrHeadAlone) {
    struct Case {
        const char* head;
        unsigned status;
    };
    constexpr Case kCases[] = {
        {"GET /metrics HTTP/1.1\r\n", 200},
        {"HEAD /metrics HTTP/1.0\r\n", 200},
        {"GET /metrics?x=1 HTTP/1.1\r\n", 200},
        {"GET / HTTP/1.1\r\n", 404},
        {"GET /metrics/ HTTP/1.1\r\n", 404},
        {"GET /../metrics HTTP/1.1\r\n", 404},
        {"POST /metrics HTTP/1.1\r\n", 405},
        {"get /metrics HTTP/1.1\r\n", 405},
        {"GET /metrics HTTP/2.0\r\n", 400},
        {"GET /metrics\r\n", 400},
        {"GET  /metrics HTTP/1.1\r\n", 400},
        {"\r\n", 400},
        {"", 400},
        {"\x16\x03\x01 x y\r\n", 400},
    };
    for (const Case& each : kCases) {
        EXPECT_EQ(ParseScrape(each.head).status, each.status) << each.head;
    }
    EXPECT_TRUE(ParseScrape("HEAD /metrics HTTP/1.1\r\n").is_head);
}

TEST(ServiceScrape, IsAnsweredInTheFormatThatIsWantedMost) {
    struct Case {
        const char* accept;
        MetricFormat format;
    };
    using enum MetricFormat;
    constexpr Case kCases[] = {
        {"application/openmetrics-text;version=1.0.0,application/openmetrics-text;version=0.0.1;"
         "q=0.75,text/plain;version=0.0.4;q=0.5,*/*;q=0.1",
         kOpenMetrics},
        {"Application/OpenMetrics-Text", kOpenMetrics},
        {"text/plain;version=0.0.4;q=1,*/*;q=0.1", kPrometheus},
        {"text/plain, application/openmetrics-text;q=0.5", kPrometheus},
        {"application/openmetrics-text;q=0", kPrometheus},
        {"application/openmetrics-text;q=none", kPrometheus},
        {"*/*", kPrometheus},
        {"", kPrometheus},
    };
    for (const Case& each : kCases) {
        const std::string head =
            std::string("GET /metrics HTTP/1.1\r\nHost: x\r\nACCEPT: ") + each.accept + "\r\n\r\n";
        EXPECT_EQ(ParseScrape(head).format, each.format) << each.accept;
    }
}

TEST(ServiceScrape, InOpenMetricsNamesCountersWithoutTheirSuffixAndHasAnEnd) {
    EXPECT_EQ(OpenMetricsOf(kMetrics),
              "# HELP hxraid_a What it is.\n"
              "# TYPE hxraid_a gauge\n"
              "hxraid_a{x=\"_total \"} 0.25\n"
              "# HELP hxraid_b Another.\n"
              "# TYPE hxraid_b counter\n"
              "hxraid_b_total 3\n"
              "# EOF\n");
    EXPECT_EQ(OpenMetricsOf(""), "# EOF\n");
}

TEST(ServiceListenAddress, IsOfThisMachineAlone) {
    for (const char* good : {"127.0.0.1:9834", "127.1.2.3:1", "[::1]:65535", "systemd"}) {
        EXPECT_EQ(hxservice::WhyNoListenAddress(good), std::nullopt) << good;
    }
    for (const char* bad :
         {"", "9834", ":9834", "0.0.0.0:9834", "[::]:9834", "192.0.2.1:9834", "localhost:9834",
          "127.0.0.1:", "127.0.0.1:65536", "127.0.0.1:-1", "127.0.0.1:9834x", "::1:9834"}) {
        EXPECT_NE(hxservice::WhyNoListenAddress(bad), std::nullopt) << bad;
    }
}

class ServiceListener : public testing::Test {
protected:
    // A connection, which the listener has not accepted yet.
    Descriptor Connected() const {
        Descriptor made(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<in_port_t>(listener.Port()));
        EXPECT_EQ(connect(made.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
        return made;
    }
    static void Send(const Descriptor& to, const std::string& text) {
        EXPECT_EQ(send(to.Get(), text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
    }
    // What arrives until the listener closes the connection.
    std::string Received(const Descriptor& from) {
        std::string text;
        for (;;) {
            Serve();
            pollfd ready{from.Get(), POLLIN, 0};
            if (poll(&ready, 1, 10) == 0) continue;
            std::array<char, 65536> bytes{};
            const ssize_t count = recv(from.Get(), bytes.data(), bytes.size(), 0);
            if (count <= 0) return text;
            text.append(bytes.data(), static_cast<std::size_t>(count));
        }
    }
    std::string Ask(const std::string& request) {
        const Descriptor connection = Connected();
        Send(connection, request);
        return Received(connection);
    }
    void Serve() { listener.Serve(now); }
    // Until the listener has seen what was sent to it.
    void ServeWhatIsThere() {
        pollfd ready{listener.Descriptor(), POLLIN, 0};
        EXPECT_EQ(poll(&ready, 1, 60000), 1);
        Serve();
    }

    KeptLog log;
    Listener listener{"127.0.0.1:0", log};
    vexortools::Duration now{0};
};

TEST_F(ServiceListener, AnswersWithTheLastMetrics) {
    listener.Publish("old 1\n");
    listener.Publish(kMetrics);
    EXPECT_EQ(Ask(kGet),
              "HTTP/1.1 200 OK\r\nContent-Type: text/plain; version=0.0.4; charset=utf-8\r\n"
              "Content-Length: 155\r\nConnection: close\r\n\r\n" +
                  std::string(kMetrics));
    EXPECT_EQ(Ask("HEAD /metrics HTTP/1.1\r\nAccept: application/openmetrics-text\r\n\r\n"),
              "HTTP/1.1 200 OK\r\nContent-Type: application/openmetrics-text; version=1.0.0; "
              "charset=utf-8\r\nContent-Length: 149\r\nConnection: close\r\n\r\n");
    EXPECT_TRUE(Ask("GET /metrics HTTP/1.0\nAccept: application/openmetrics-text\n\n")
                    .ends_with("\nhxraid_b_total 3\n# EOF\n"));
    EXPECT_EQ(listener.Due(), std::nullopt);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(ServiceListener, RefusesEverythingElse) {
    listener.Publish(kMetrics);
    EXPECT_EQ(Ask("DELETE /metrics HTTP/1.1\r\n\r\n"),
              "HTTP/1.1 405 Method Not Allowed\r\nAllow: GET, HEAD\r\n"
              "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 19\r\n"
              "Connection: close\r\n\r\nMethod Not Allowed\n");
    EXPECT_TRUE(Ask("GET /status HTTP/1.1\r\n\r\n").starts_with("HTTP/1.1 404 Not Found\r\n"));
    EXPECT_TRUE(Ask("nonsense\n\n").starts_with("HTTP/1.1 400 Bad Request\r\n"));
}

TEST_F(ServiceListener, TakesNoRequestWithoutEnd) {
    listener.Publish(kMetrics);
    EXPECT_TRUE(Ask("GET /metrics HTTP/1.1\r\nX: " + std::string(Listener::kLongestRequest, 'x'))
                    .starts_with("HTTP/1.1 431 "));
}

TEST_F(ServiceListener, SendsMuchToOneWhoReadsSlowly) {
    std::string much = "# HELP hxraid_a ";
    much += std::string(8000000, 'x') + "\n";
    listener.Publish(much);
    const std::string answer = Ask(kGet);
    EXPECT_TRUE(answer.ends_with("\r\n\r\n" + much));
}

// Each byte comes in time for the next one, but not all of them for the whole.
TEST_F(ServiceListener, EndsAConnectionThatTakesTooLongInAll) {
    listener.Publish(kMetrics);
    const Descriptor slow = Connected();
    ServeWhatIsThere();
    EXPECT_EQ(listener.Due(), seconds(5));
    for (int second = 1; second <= 4; ++second) {
        now = seconds(second);
        Send(slow, "G");
        ServeWhatIsThere();
        EXPECT_EQ(listener.Due(), seconds(5));
    }
    now = seconds(5);
    EXPECT_EQ(Received(slow), "");
    EXPECT_EQ(listener.Due(), std::nullopt);
}

TEST_F(ServiceListener, TakesSoManyConnectionsAndThenNoMoreUntilOneEnds) {
    listener.Publish(kMetrics);
    std::vector<Descriptor> idle;
    for (std::size_t count = 0; count < Listener::kMostConnections; ++count) {
        idle.push_back(Connected());
        ServeWhatIsThere();
    }
    EXPECT_EQ(Received(Connected()), "");
    idle.pop_back();
    ServeWhatIsThere();
    EXPECT_TRUE(Ask(kGet).starts_with("HTTP/1.1 200 OK\r\n"));
}

TEST_F(ServiceListener, SaysThatItsAddressIsTakenAndTriesAgain) {
    listener.Publish(kMetrics);
    const std::string address = "127.0.0.1:" + std::to_string(listener.Port());
    Listener second(address, log);
    second.Publish(kMetrics);
    second.Publish(kMetrics);
    EXPECT_EQ(log.lines, std::vector<std::string>{"the metrics cannot be asked for at " + address +
                                                  ": Address already in use"});
    EXPECT_EQ(second.Port(), 0U);
}

TEST_F(ServiceListener, SaysThatSystemdHasOpenedNoSocket) {
    Listener of_systemd("systemd", log);
    of_systemd.Publish(kMetrics);
    EXPECT_EQ(log.lines, std::vector<std::string>{"the metrics cannot be asked for at systemd: "
                                                  "systemd has opened no socket: No such file or "
                                                  "directory"});
}

}  // namespace
