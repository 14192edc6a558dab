// Vexorapi\Client and Vexorapi\Group.
#pragma once

namespace vexorapi_php {

void RegisterClient();

}  // namespace vexorapi_php
