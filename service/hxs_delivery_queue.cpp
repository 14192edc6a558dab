#include "service/hxs_delivery_queue.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace hxservice {

namespace {

using hxsqlite::Connection;
using hxsqlite::Statement;
using QueueJson = nlohmann::json;

std::string TextOfSink(const SinkQueue& sink) {
    QueueJson json;
    json["known"] = QueueJson::object();
    for (const auto& [key, known] : sink.known) {
        json["known"][key] = {{"code", known.code},          {"address", known.address},
                              {"count", known.count},        {"explained", known.explained},
                              {"told", known.told},          {"repeats", known.repeats},
                              {"delivered", known.delivered}};
    }
    json["given_up"] = sink.given_up;
    json["failures"] = sink.failures;
    json["delivered_letters"] = sink.delivered_letters;
    json["failed_letters"] = sink.failed_letters;
    json["error"] = sink.error;
    json["failing_since"] = sink.failing_since ? QueueJson(*sink.failing_since) : QueueJson();
    json["maybe_sent"] = sink.maybe_sent;
    json["attempts"] = sink.attempts;
    return json.dump(-1, ' ', false, QueueJson::error_handler_t::replace);
}

SinkQueue SinkOfText(std::string_view text) {
    const QueueJson json = QueueJson::parse(text);
    SinkQueue sink;
    for (const auto& [key, known] : json.at("known").items()) {
        sink.known[key] = {.code = known.at("code"),
                           .address = known.at("address"),
                           .count = known.at("count"),
                           .explained = known.at("explained"),
                           .told = known.at("told"),
                           .repeats = known.at("repeats"),
                           .delivered = known.at("delivered")};
    }
    sink.given_up = json.at("given_up");
    sink.failures = json.at("failures");
    // Not in a file from before they were counted.
    sink.delivered_letters = json.value("delivered_letters", std::uint64_t{0});
    sink.failed_letters = json.value("failed_letters", std::uint64_t{0});
    sink.error = json.at("error");
    if (!json.at("failing_since").is_null()) sink.failing_since = json.at("failing_since");
    sink.maybe_sent = json.at("maybe_sent");
    sink.attempts = json.at("attempts");
    return sink;
}

using Place = std::pair<std::string, std::uint64_t>;  // sink, number

std::set<Place> SavedPlaces(const Connection& connection) {
    std::set<Place> places;
    Statement select = connection.Prepare("SELECT sink, number FROM alert_queue");
    while (select.Step()) {
        places.emplace(select.Bytes(0), static_cast<std::uint64_t>(select.Integer(1)));
    }
    return places;
}

// Notices never change, so only those that are new or gone are written.
void SaveQueues(const Connection& connection, const Outbox& outbox) {
    std::set<Place> saved = SavedPlaces(connection);
    Statement insert = connection.Prepare("INSERT INTO alert_queue VALUES (?, ?, ?, ?)");
    for (const auto& [name, sink] : outbox.sinks) {
        for (const Notice& notice : sink.waiting) {
            if (saved.erase({name, notice.number}) != 0) continue;
            insert.BindText(1, name);
            insert.Bind(2, static_cast<std::int64_t>(notice.number));
            insert.BindText(3, notice.key);
            insert.BindText(4, notice.text);
            insert.Run();
        }
    }
    Statement remove = connection.Prepare("DELETE FROM alert_queue WHERE sink = ? AND number = ?");
    for (const auto& [name, number] : saved) {
        remove.BindText(1, name);
        remove.Bind(2, static_cast<std::int64_t>(number));
        remove.Run();
    }
}

// Entries never change; the oldest go.
void SaveHistory(const Connection& connection, const std::vector<HistoryEntry>& history) {
    if (history.empty()) {
        connection.Execute("DELETE FROM alert_history");
        return;
    }
    const std::int64_t last = connection.Number("SELECT ifnull(max(number), 0) FROM alert_history");
    connection.Execute("DELETE FROM alert_history WHERE number < " +
                       std::to_string(history.front().number));
    Statement insert = connection.Prepare("INSERT INTO alert_history VALUES (?, ?)");
    for (const HistoryEntry& entry : history) {
        if (static_cast<std::int64_t>(entry.number) <= last) continue;
        insert.Bind(1, static_cast<std::int64_t>(entry.number));
        insert.BindText(2, entry.text);
        insert.Run();
    }
}

}  // namespace

void MakeOutboxTables(const Connection& connection) {
    connection.Execute(
        "CREATE TABLE IF NOT EXISTS alert_sinks (name TEXT PRIMARY KEY, value TEXT NOT NULL);"
        "CREATE TABLE IF NOT EXISTS alert_queue (sink TEXT, number INTEGER, key TEXT NOT NULL, "
        "value TEXT NOT NULL, PRIMARY KEY (sink, number));"
        "CREATE TABLE IF NOT EXISTS alert_history (number INTEGER PRIMARY KEY, value TEXT NOT "
        "NULL)");
}

Outbox LoadOutbox(const Connection& connection, const std::string& path) {
    Outbox outbox;
    try {
        Statement sinks = connection.Prepare("SELECT name, value FROM alert_sinks");
        while (sinks.Step()) {
            const std::string name(sinks.Bytes(0));
            if (name.empty()) {
                outbox.next = QueueJson::parse(sinks.Bytes(1)).get<std::uint64_t>();
            } else {
                outbox.sinks[name] = SinkOfText(sinks.Bytes(1));
            }
        }
        Statement queue =
            connection.Prepare("SELECT sink, number, key, value FROM alert_queue ORDER BY number");
        while (queue.Step()) {
            const auto number = static_cast<std::uint64_t>(queue.Integer(1));
            if (!QueueJson::accept(queue.Bytes(3))) {
                throw hxsqlite::DamagedError(path + " is damaged: an alert is no JSON");
            }
            outbox.sinks[std::string(queue.Bytes(0))].waiting.push_back(
                {number, std::string(queue.Bytes(2)), std::string(queue.Bytes(3))});
            outbox.next = std::max(outbox.next, number + 1);
        }
        Statement history =
            connection.Prepare("SELECT number, value FROM alert_history ORDER BY number");
        while (history.Step()) {
            if (!QueueJson::accept(history.Bytes(1))) {
                throw hxsqlite::DamagedError(path + " is damaged: its history is no JSON");
            }
            outbox.history.push_back(
                {static_cast<std::uint64_t>(history.Integer(0)), std::string(history.Bytes(1))});
        }
    } catch (const QueueJson::exception& error) {
        throw hxsqlite::DamagedError(path + " is damaged: " + error.what());
    }
    return outbox;
}

void SaveOutbox(const Connection& connection, const Outbox& outbox) {
    SaveQueues(connection, outbox);
    SaveHistory(connection, outbox.history);
    connection.Execute("DELETE FROM alert_sinks");
    Statement insert = connection.Prepare("INSERT INTO alert_sinks VALUES (?, ?)");
    const auto put = [&](const std::string& name, const std::string& value) {
        insert.BindText(1, name);
        insert.BindText(2, value);
        insert.Run();
    };
    for (const auto& [name, sink] : outbox.sinks) put(name, TextOfSink(sink));
    // The names of sinks are not empty.
    put("", std::to_string(outbox.next));
}

}  // namespace hxservice
