# find_package(vexorapi): the target vexorapi::vexorapi.
include("${CMAKE_CURRENT_LIST_DIR}/vexorapi-targets.cmake")
