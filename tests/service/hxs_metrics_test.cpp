// The metrics: which series there are, and that no name makes a text that cannot be read.
#include "service/hxs_metrics.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "service/hxs_metric_text.h"

namespace {

using hxconditions::Query;
using hxservice::MetricText;
using hxservice::MetricType;

constexpr unsigned kTemperature = 4;  // a type of element

TEST(ServiceMetricText, WritesAMetricWithItsSeries) {
    MetricText text;
    text.Begin("hxraid_a", MetricType::kGauge, "What it is.");
    text.Add({{"x", "1"}, {"y", "b"}}, 0.25);
    text.Add({}, 824633720832);
    text.Begin("hxraid_b_total", MetricType::kCounter, "Another.");
    text.Add({}, 3);
    EXPECT_EQ(text.Take(),
              "# HELP hxraid_a What it is.\n"
              "# TYPE hxraid_a gauge\n"
              "hxraid_a{x=\"1\",y=\"b\"} 0.25\n"
              "hxraid_a 824633720832\n"
              "# HELP hxraid_b_total Another.\n"
              "# TYPE hxraid_b_total counter\n"
              "hxraid_b_total 3\n");
}

TEST(ServiceMetricText, EscapesLabelsAndReplacesWhatIsNoText) {
    MetricText text;
    text.Begin("hxraid_a", MetricType::kGauge, "It.");
    text.Add({{"x", "a\"b\\c\nd\xFF"}}, 1);
    EXPECT_TRUE(text.Take().ends_with("\nhxraid_a{x=\"a\\\"b\\\\c\\nd\xEF\xBF\xBD\"} 1\n"));
}

TEST(ServiceMetricText, WritesNoSeriesTwiceAndNoMetricWithoutSeries) {
    MetricText text;
    text.Begin("hxraid_a", MetricType::kGauge, "It.");
    text.Add({{"x", "1"}}, 1);
    text.Add({{"x", "1"}}, 2);
    text.Add({{"x", "\xFE"}}, 1);
    text.Add({{"x", "\xFF"}}, 2);  // the same once it is text
    text.Begin("hxraid_b", MetricType::kGauge, "Never seen.");
    EXPECT_EQ(text.Take(),
              "# HELP hxraid_a It.\n"
              "# TYPE hxraid_a gauge\n"
              "hxraid_a{x=\"1\"} 1\n"
              "hxraid_a{x=\"\xEF\xBF\xBD\"} 1\n");
}

class ServiceMetrics : public testing::Test {
protected:
    ServiceMetrics() {
        answers.machine.result = Query::Result::kRead;
        hxconditions::Adapter& adapter = answers.adapters.emplace_back();
        adapter.serial = "VC1";
        for (Query* query : {&adapter.info, &adapter.virtual_disks_query, &adapter.disks_query,
                             &adapter.enclosures_query, &adapter.battery_query}) {
            query->result = Query::Result::kRead;
        }
        for (unsigned id = 4; id < 7; ++id) {
            hxconditions::Disk& disk = adapter.disks.emplace_back();
            disk.id = id;
            disk.status = id == 5 ? 0xA4 : 0x05;
            disk.sectors = 1000;
        }
        hxconditions::VirtualDisk& data = adapter.virtual_disks.emplace_back();
        data.name = "DATA";
        data.sectors = 2000;
        data.level = 5;
        data.state = 4;
        for (unsigned id = 4; id < 7; ++id) {
            data.members.push_back({.disk = id, .state = id == 5 ? 5U : 1U, .sectors = 1000});
        }
    }

    hxconditions::Adapter& Adapter() { return answers.adapters[0]; }

    std::string Text() const {
        return hxservice::MetricsText({.written_at = 1795000000,
                                       .looked_at = 1794999990,
                                       .interval = std::chrono::seconds(10),
                                       .is_once = false,
                                       .version = "7.8.9",
                                       .collection = "fine",
                                       .is_collecting = true,
                                       .store = {.first = 2, .next = 5},
                                       .work = {.rounds = 4,
                                                .looks = 2,
                                                .in_rounds = std::chrono::milliseconds(500),
                                                .last_round = std::chrono::milliseconds(125)},
                                       .overview = overview,
                                       .counts = counts,
                                       .answers = answers,
                                       .facts = facts,
                                       .tasks = tasks,
                                       .events = events,
                                       .sinks = sinks});
    }
    bool Has(const std::string& series) const {
        return ("\n" + Text()).find("\n" + series + "\n") != std::string::npos;
    }
    bool HasMetric(const std::string& name) const {
        return Text().find("# TYPE " + name + " ") != std::string::npos;
    }

    hxconditions::Overview overview;
    hxconditions::Counts counts;
    hxconditions::Answers answers;
    hxservice::Facts facts;
    std::vector<hxservice::RunningTask> tasks;
    hxservice::EventTally events;
    std::map<std::string, hxservice::SinkQueue> sinks;
};

TEST_F(ServiceMetrics, TellTheServiceAndItsRounds) {
    for (const char* series :
         {"hxraid_build_info{version=\"7.8.9\"} 1", "hxraid_snapshot_timestamp_seconds 1795000000",
          "hxraid_look_timestamp_seconds 1794999990", "hxraid_round_interval_seconds 10",
          "hxraid_collecting 1", "hxraid_rounds_total 4", "hxraid_round_seconds_total 0.5",
          "hxraid_last_round_seconds 0.125", "hxraid_looks_total 2", "hxraid_event_store_first 2",
          "hxraid_event_store_next 5", "hxraid_events_lost_total 0",
          "hxraid_conditions{severity=\"critical\"} 0", "hxraid_conditions{severity=\"info\"} 0",
          "hxraid_alerts_active 0", "hxraid_collect_success{adapter=\"\",query=\"machine\"} 1",
          "hxraid_collect_success{adapter=\"0\",query=\"disks\"} 1"}) {
        EXPECT_TRUE(Has(series)) << series;
    }
}

TEST_F(ServiceMetrics, TellTheStateOfAVirtualDiskAndWhatItSurvives) {
    const std::string labels = "{adapter=\"0\",object=\"a0/vd0\"";
    for (const std::string& series :
         {"hxraid_virtual_disk_info" + labels + ",name=\"DATA\",level=\"raid5\"} 1",
          "hxraid_virtual_disk_state" + labels + ",state=\"degraded\"} 1",
          "hxraid_virtual_disk_state" + labels + ",state=\"optimal\"} 0",
          "hxraid_virtual_disk_survives" + labels + "} 0",
          "hxraid_virtual_disk_disks_required" + labels + "} 3",
          "hxraid_virtual_disk_disks_active" + labels + "} 2",
          "hxraid_virtual_disk_size_bytes" + labels + "} 1024000"}) {
        EXPECT_TRUE(Has(series)) << series;
    }
    EXPECT_TRUE(Has("hxraid_disk_state{adapter=\"0\",object=\"a0/pd5\",state=\"failed\"} 1"));
}

TEST_F(ServiceMetrics, OfWhatCouldNotBeReadAreAbsent) {
    EXPECT_TRUE(HasMetric("hxraid_disk_size_bytes"));
    EXPECT_FALSE(HasMetric("hxraid_disk_smart_alarm"));
    Adapter().disks_query.result = Query::Result::kFailed;
    EXPECT_FALSE(HasMetric("hxraid_disk_size_bytes"));
    EXPECT_FALSE(HasMetric("hxraid_disk_state"));
    EXPECT_FALSE(HasMetric("hxraid_virtual_disk_disks_active"));
    EXPECT_TRUE(Has("hxraid_collect_success{adapter=\"0\",query=\"disks\"} 0"));
    EXPECT_TRUE(HasMetric("hxraid_virtual_disk_state"));
    answers.machine.result = Query::Result::kFailed;
    EXPECT_FALSE(HasMetric("hxraid_virtual_disk_state"));
    EXPECT_TRUE(Has("hxraid_collect_success{adapter=\"\",query=\"machine\"} 0"));
}

TEST_F(ServiceMetrics, OfThingsThatAreListedTwiceAreThereOnce) {
    Adapter().disks.push_back(Adapter().disks[0]);
    Adapter().disks.back().sectors = 77;
    answers.adapters.push_back(Adapter());
    const std::string text = Text();
    const std::string series = "hxraid_disk_size_bytes{adapter=\"0\",object=\"a0/pd4\"} ";
    EXPECT_EQ(text.find(series), text.rfind(series));
    EXPECT_TRUE(Has(series + "512000"));
}

TEST_F(ServiceMetrics, OfAConditionThatCannotBeSeenNowStayWithAMark) {
    hxconditions::Condition& head = overview.heads.emplace_back();
    head.code = hxconditions::Code::kVdNoRedundancy;
    head.level = hxconditions::Level::kCritical;
    head.object.kind = hxconditions::Kind::kVirtualDisk;
    head.object.adapter = 0;
    head.object.address = "a0/vd0";
    head.since = 1794000000;
    head.is_stale = true;
    hxconditions::Condition& cause = head.folded.emplace_back();
    cause.code = hxconditions::Code::kDiskFailed;
    cause.level = hxconditions::Level::kWarning;
    cause.object.adapter = 0;
    cause.object.address = "a0/pd5";
    overview.critical = 1;
    const std::string labels =
        "{code=\"VD_NO_REDUNDANCY\",severity=\"critical\",adapter=\"0\",object=\"a0/vd0\"} ";
    for (const std::string& series :
         {"hxraid_condition" + labels + "1", "hxraid_condition_stale" + labels + "1",
          "hxraid_condition_since_timestamp_seconds" + labels + "1794000000",
          "hxraid_condition_acknowledged" + labels + "0",
          "hxraid_condition_silenced" + labels + "0",
          std::string("hxraid_condition_folded{code=\"DISK_FAILED\",severity=\"warning\","
                      "adapter=\"0\",object=\"a0/pd5\",into=\"a0/vd0\"} 1"),
          std::string("hxraid_conditions{severity=\"critical\"} 1"),
          std::string("hxraid_alerts_active 1")}) {
        EXPECT_TRUE(Has(series)) << series;
    }
    head.acknowledged.emplace();
    EXPECT_TRUE(Has("hxraid_alerts_active 0"));
}

TEST_F(ServiceMetrics, TellRatiosBatteriesSensorsAndTasks) {
    hxconditions::Battery& battery = Adapter().battery.emplace();
    battery.status = 0x05;
    battery.percent = 96;
    battery.celsius = 29;
    battery.millivolts = 3950;
    battery.capacity_mah = 1000;
    Adapter().enclosures.push_back({.id = 1, .logical_id = "", .elements = {}});
    hxconditions::Element& sensor = Adapter().enclosures[0].elements.emplace_back();
    sensor.id = 5;
    sensor.type = kTemperature;
    sensor.status = 1;
    sensor.reading = 27;
    hxservice::RunningTask& task = tasks.emplace_back();
    task.object.adapter = 0;
    task.object.address = "a0/vd0";
    task.activity = {.kind = 6, .state = 2, .percent = 29, .seconds_left = {}};
    for (const char* series :
         {"hxraid_battery_charge_ratio{adapter=\"0\",object=\"a0\"} 0.96",
          "hxraid_battery_celsius{adapter=\"0\",object=\"a0\"} 29",
          "hxraid_battery_volts{adapter=\"0\",object=\"a0\"} 3.95",
          "hxraid_battery_capacity_coulombs{adapter=\"0\",object=\"a0\"} 3600",
          "hxraid_battery_state{adapter=\"0\",object=\"a0\",state=\"present\"} 1",
          "hxraid_battery_state{adapter=\"0\",object=\"a0\",state=\"charging\"} 0",
          "hxraid_element_celsius{adapter=\"0\",object=\"a0/enc1/el5\",type=\"temperature\"} 27",
          "hxraid_task_progress_ratio{adapter=\"0\",object=\"a0/vd0\",activity=\"rebuild\"} 0.29",
          "hxraid_task_running{adapter=\"0\",object=\"a0/vd0\",activity=\"rebuild\"} 0"}) {
        EXPECT_TRUE(Has(series)) << series;
    }
    EXPECT_FALSE(HasMetric("hxraid_task_left_seconds"));
    EXPECT_FALSE(HasMetric("hxraid_element_rpm"));
}

TEST_F(ServiceMetrics, CountEventsByClassAndSeverityAndWhatWasLost) {
    hxservice::StoredEvent event;
    event.severity = "major";
    event.event.event_class = 2;
    events.Count(event);
    events.Count(event);
    event.event.event_class = 99;
    events.Count(event);
    events.Lose(12);
    for (const char* series : {"hxraid_events_total{class=\"disk\",severity=\"major\"} 2",
                               "hxraid_events_total{class=\"99\",severity=\"major\"} 1",
                               "hxraid_events_lost_total 12"}) {
        EXPECT_TRUE(Has(series)) << series;
    }
}

TEST_F(ServiceMetrics, TellDeliveries) {
    answers.service.sinks = {
        {.name = "mail", .is_failing = true, .error = "", .waiting = 3, .given_up = 1}};
    EXPECT_TRUE(Has("hxraid_sink_failing{sink=\"mail\"} 1"));
    EXPECT_TRUE(Has("hxraid_sink_waiting{sink=\"mail\"} 3"));
    EXPECT_TRUE(Has("hxraid_sink_given_up{sink=\"mail\"} 1"));
    sinks["mail"].delivered_letters = 5;
    sinks["mail"].failed_letters = 2;
    EXPECT_TRUE(Has("hxraid_alert_deliveries_total{sink=\"mail\",result=\"delivered\"} 5"));
    EXPECT_TRUE(Has("hxraid_alert_deliveries_total{sink=\"mail\",result=\"failed\"} 2"));
}

}  // namespace
