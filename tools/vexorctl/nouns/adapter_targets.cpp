#include "nouns/adapter_targets.h"

#include <string>
#include <vector>

#include "common/address.h"
#include "nouns/find_object.h"
#include "shell/present.h"

namespace vexorctl {

void SelectTargets(Invocation& invocation) {
    SelectAdapters(invocation);
    if (invocation.targets().empty()) return;
    std::vector<unsigned> adapters;
    for (const std::string& target : invocation.targets()) {
        adapters.push_back(FindObject(invocation, ObjectKind::kAdapter, target).adapter);
    }
    invocation.controller().Select(adapters);
}

}  // namespace vexorctl
