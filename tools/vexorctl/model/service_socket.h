// Asks the running event service, by its Unix socket.
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace vexorctl {

/// The service's answer to a request: an object. Throws Failure: nobody listens, the user may not,
/// the answer does not come, or the service refuses.
nlohmann::ordered_json AskService(const nlohmann::ordered_json& request);

/// What the service would have answered to "list" and "history" when it saved its state last, with
/// that time as "as_of"; null when there is nothing that can be read.
nlohmann::ordered_json RecallService();

}  // namespace vexorctl
