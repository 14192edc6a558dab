// The service's fixed paths, all below the root prefix, and its folders.
#pragma once

#include <string>
#include <string_view>

namespace hxservice {

inline constexpr std::string_view kConfigurationFile = "/etc/hxraid/hxraidsvc.conf";
inline constexpr std::string_view kRunFolder = "/run/hxraid";
inline constexpr std::string_view kLockFile = "/run/hxraid/hxraidsvc.lock";
inline constexpr std::string_view kSocketFile = "/run/hxraid/hxraidsvc.sock";
// The sockets of systemd's journal and of syslog.
inline constexpr std::string_view kJournalSocket = "/run/systemd/journal/socket";
inline constexpr std::string_view kSyslogSocket = "/dev/log";
inline constexpr std::string_view kStatusFile = "/run/hxraid/status.json";
// Where Debian's node exporter takes metrics from files.
inline constexpr std::string_view kMetricsFolder = "/var/lib/prometheus/node-exporter";
inline constexpr std::string_view kMetricsFile = "/var/lib/prometheus/node-exporter/hxraid.prom";
inline constexpr std::string_view kStateFolder = "/var/lib/hxraid";
inline constexpr std::string_view kStateFile = "/var/lib/hxraid/state.db";
// What vexorctl alert shows while no service runs.
inline constexpr std::string_view kAlertsFile = "/var/lib/hxraid/alerts.json";
inline constexpr std::string_view kStoreFolder = "/opt/kestrel/raid/db";
inline constexpr std::string_view kLogFolder = "/var/log";

/// The path below VEXORAPI_ROOT, if that is set.
std::string UnderRoot(std::string_view path);

/// Whether a missing folder may be made. That happens below a root prefix only: an installed system
/// gets its folders from its package.
enum class MissingFolder { kMakeBelowRoot, kRefuse };

/// Makes the fixed folder where there is a root prefix, else nothing. Throws vexortools::Failure.
void MakeBelowRoot(std::string_view path);

/// Makes sure that the fixed folder exists. Throws vexortools::Failure, which names the command
/// that makes it.
void RequireFolder(std::string_view path, MissingFolder missing);

}  // namespace hxservice
