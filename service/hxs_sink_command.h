// The sink that is a program of the user.
#pragma once

#include <string>
#include <vector>

#include "service/hxs_notice.h"
#include "service/hxs_process.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

/// The program gets the letter's JSON on standard input and what is short in its environment.
Job CommandJob(const SinkSettings& sink, const Letter& letter);

/// What every program that delivers gets: a path, and what describes the letter.
std::vector<std::string> EnvironmentOf(const Letter& letter);

}  // namespace hxservice
