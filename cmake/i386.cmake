# Builds for 32-bit x86 with the machine's compiler. Its 32-bit runtime comes with g++-multilib, the
# other libraries from the folder that scripts/i386-sysroot fills. The programs run on this machine,
# since the build's run path contains that folder.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(VEXORAPI_I386_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/i386-sysroot" CACHE PATH
    "Folder that scripts/i386-sysroot filled")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VEXORAPI_I386_SYSROOT)
get_filename_component(vexorapi_i386_root "${VEXORAPI_I386_SYSROOT}" REALPATH)
if(NOT EXISTS "${vexorapi_i386_root}/contents")
    message(FATAL_ERROR "No 32-bit libraries; run: scripts/i386-sysroot ${VEXORAPI_I386_SYSROOT}")
endif()

# Support files past 2 GiB and dates past 2038 in everything, including GoogleTest.
set(vexorapi_i386_flags "-m32 -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64")
set(CMAKE_C_FLAGS_INIT "${vexorapi_i386_flags}")
set(CMAKE_CXX_FLAGS_INIT "${vexorapi_i386_flags}")

# Libraries come only from that folder, because the machine's are 64-bit. Header-only packages and
# programs come from the machine.
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(CMAKE_FIND_ROOT_PATH "${vexorapi_i386_root}")
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
