# What is installed, by component: cmake --install BUILD --component NAME installs one, without it all.
# tests/install compares the installed files with a list.
include(CMakePackageConfigHelpers)

set(VEXORAPI_ZSH_DIR "${CMAKE_INSTALL_DATADIR}/zsh/site-functions" CACHE STRING
    "Folder of zsh's completions below the prefix; distributions have one of their own")

set(VEXORAPI_PYTHON_DIR "lib/python3/dist-packages" CACHE STRING
    "Folder of Python's packages below the prefix; other systems than Debian have another")

set(vexor_data "${CMAKE_INSTALL_DATADIR}/vexorapi")
set(vexor_examples "${CMAKE_INSTALL_DOCDIR}/examples")
set(vexor_controllers "${CMAKE_INSTALL_LIBDIR}/vexorapi")

# vexor_install_manual(COMPONENT PAGE...): pages of docs/man, each in its section's folder.
function(vexor_install_manual component)
    foreach(page IN LISTS ARGN)
        string(REGEX REPLACE "^.*\\." "" section "${page}")
        install(FILES "${PROJECT_SOURCE_DIR}/docs/man/${page}"
            DESTINATION "${CMAKE_INSTALL_MANDIR}/man${section}" COMPONENT ${component})
    endforeach()
endfunction()

# vexor_install_configured(COMPONENT TEMPLATE NAME DESTINATION): a file that names installed folders. It
# is written while installing, since cmake --install --prefix may choose another prefix than the
# configuration had, and where it belongs, since two installations may run at once.
function(vexor_install_configured component template name destination)
    install(CODE "
        set(PROJECT_VERSION \"${PROJECT_VERSION}\")
        set(PROJECT_DESCRIPTION \"${PROJECT_DESCRIPTION}\")
        set(LIBDIR \"${CMAKE_INSTALL_LIBDIR}\")
        set(INCLUDEDIR \"${CMAKE_INSTALL_INCLUDEDIR}\")
        set(SBINDIR \"${CMAKE_INSTALL_SBINDIR}\")
        set(DESTINATION \"${destination}\")
        foreach(folder LIBDIR INCLUDEDIR SBINDIR DESTINATION)
            cmake_path(ABSOLUTE_PATH \${folder} BASE_DIRECTORY \"\${CMAKE_INSTALL_PREFIX}\"
                OUTPUT_VARIABLE CMAKE_INSTALL_FULL_\${folder})
        endforeach()
        set(file \"\${CMAKE_INSTALL_FULL_DESTINATION}/${name}\")
        message(STATUS \"Installing: \$ENV{DESTDIR}\${file}\")
        configure_file(\"${PROJECT_SOURCE_DIR}/packaging/${template}\" \"\$ENV{DESTDIR}\${file}\" @ONLY)
        list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${file}\")"
        COMPONENT ${component})
endfunction()

# ---- runtime: the library and the event store's folder ---------------------------------------
install(TARGETS vexorapi EXPORT vexorapi
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        COMPONENT runtime NAMELINK_COMPONENT development)
# In the build tree the virtual controller is found beside the library. When installed, the vendor's
# folder comes first, so that the vendor's library takes precedence.
vexor_run_path(vexorapi BUILD "$ORIGIN" INSTALL "${VEXORAPI_VENDOR_DIR}" "$ORIGIN/vexorapi"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime)
install(FILES packaging/vexorapi.tmpfiles.conf
    DESTINATION lib/tmpfiles.d RENAME vexorapi.conf COMPONENT runtime)
vexor_install_manual(runtime vexorapi.ini.5 vexorapi-events.5 vexorapi.7)

# ---- development: what programs are compiled with ---------------------------------------------
install(FILES backend/vexorapi/vexorapi.h backend/hxraid/hxraid.h
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
install(EXPORT vexorapi NAMESPACE vexorapi:: FILE vexorapi-targets.cmake
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/vexorapi" COMPONENT development)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vexorapi-config-version.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES packaging/vexorapi-config.cmake "${PROJECT_BINARY_DIR}/vexorapi-config-version.cmake"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/cmake/vexorapi" COMPONENT development)
vexor_install_configured(development vexorapi.pc.in vexorapi.pc "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
install(FILES docs/vexorapi-results.rng DESTINATION "${vexor_data}/schemas" COMPONENT development)
vexor_install_manual(development libvexorapi.3)

# ---- tools: the command line, and the recorder that it puts before a controller ---------------
install(TARGETS vexorctl RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
vexor_run_path_to_library(vexorctl BINDIR tools)
install(TARGETS hxtape LIBRARY DESTINATION "${vexor_controllers}/tape" COMPONENT tools)
vexor_run_path(hxtape DESTINATION "${vexor_controllers}/tape" COMPONENT tools)
install(DIRECTORY "${PROJECT_BINARY_DIR}/tools/vexorctl/man/"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools FILES_MATCHING PATTERN "*.1")
vexor_install_manual(tools hxraid-conditions.7 vexorapi-tape.5 vexorctl-codes.5)
set(vexor_completions "${PROJECT_BINARY_DIR}/tools/vexorctl/completions")
install(FILES "${vexor_completions}/vexorctl.bash" RENAME vexorctl
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT tools)
install(FILES "${vexor_completions}/vexorctl.zsh" RENAME _vexorctl
    DESTINATION "${VEXORAPI_ZSH_DIR}" COMPONENT tools)
install(FILES "${vexor_completions}/vexorctl.fish"
    DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d" COMPONENT tools)
install(FILES
    docs/vexorctl.schema.json docs/vexorctl-codes.schema.json docs/vexorctl-plan.schema.json
    DESTINATION "${vexor_data}/schemas" COMPONENT tools)

# ---- service: the event service and what watches it -------------------------------------------
if(TARGET hxraidsvc)
    install(TARGETS hxraidsvc RUNTIME DESTINATION "${CMAKE_INSTALL_SBINDIR}" COMPONENT service)
    vexor_run_path_to_library(hxraidsvc SBINDIR service)
    if(TARGET hxraidsvc-webhook)
        install(TARGETS hxraidsvc-webhook
            RUNTIME DESTINATION "${CMAKE_INSTALL_LIBEXECDIR}/hxraid" COMPONENT service)
    endif()
    # systemd's own folder, which is not below the library folder of the machine's architecture.
    vexor_install_configured(service hxraidsvc.service.in hxraidsvc.service lib/systemd/system)
    install(FILES packaging/hxraid.catalog DESTINATION lib/systemd/catalog COMPONENT service)
    install(FILES packaging/hxraidsvc-metrics.socket
        DESTINATION lib/systemd/system COMPONENT service)
    install(FILES packaging/hxraidsvc.sysusers
        DESTINATION lib/sysusers.d RENAME hxraidsvc.conf COMPONENT service)
    install(FILES packaging/hxraidsvc.logrotate
        DESTINATION "${CMAKE_INSTALL_SYSCONFDIR}/logrotate.d" RENAME hxraidsvc COMPONENT service)
    install(FILES
        packaging/prometheus/alertmanager-hxraid.yml
        packaging/prometheus/hxraid-alerts.yml
        packaging/prometheus/hxraid-dashboard.json
        packaging/prometheus/hxraid-recordings.yml
        DESTINATION "${CMAKE_INSTALL_DATADIR}/hxraid/prometheus" COMPONENT service)
    install(FILES packaging/rsyslog/hxraid-receive.conf packaging/rsyslog/hxraid-send.conf
        DESTINATION "${CMAKE_INSTALL_DATADIR}/hxraid/rsyslog" COMPONENT service)
    install(FILES docs/hxraidsvc-status.schema.json
        DESTINATION "${vexor_data}/schemas" COMPONENT service)
    vexor_install_manual(service hxraidsvc.conf.5 hxraidsvc.8)
endif()

# ---- virtual: the virtual controller, its hands and its stories -------------------------------
# Beside the library, where the loader looks last.
install(TARGETS hxraid LIBRARY DESTINATION "${vexor_controllers}" COMPONENT virtual)
vexor_run_path(hxraid DESTINATION "${vexor_controllers}" COMPONENT virtual)
install(TARGETS hxsimctl RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT virtual)
vexor_run_path(hxsimctl DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT virtual)
install(DIRECTORY examples/scenarios examples/topologies
    DESTINATION "${vexor_data}" COMPONENT virtual)
vexor_install_manual(virtual hxsimctl.1 hxsim-scenario.5 hxsim-topology.5)

# ---- linuxmd: the kernel's own arrays as a controller -----------------------------------------
# All controllers have the vendor's soname and file name, and the loader takes the first that it
# finds. So each is installed in its own folder.
install(TARGETS hxmd LIBRARY DESTINATION "${vexor_controllers}/linuxmd" COMPONENT linuxmd)
vexor_run_path(hxmd DESTINATION "${vexor_controllers}/linuxmd" COMPONENT linuxmd)

# ---- python: the package for Python ------------------------------------------------------------
set(vexor_python bindings/python/vexorapi)
install(FILES
    ${vexor_python}/__init__.py ${vexor_python}/_library.py ${vexor_python}/_repair.py
    ${vexor_python}/_shapes.py ${vexor_python}/client.py ${vexor_python}/errors.py
    ${vexor_python}/functions.py ${vexor_python}/py.typed ${vexor_python}/records.py
    DESTINATION "${VEXORAPI_PYTHON_DIR}/vexorapi" COMPONENT python)

# ---- php: what editors read of the extension, which its own folder installs where PHP is ------
if(TARGET php_vexorapi)
    install(FILES bindings/php/vexorapi.stub.php DESTINATION "${vexor_data}/php" COMPONENT php)
endif()

# ---- documentation: for users, and examples ---------------------------------------------------
install(FILES
    CHANGELOG.md LICENSE SECURITY.md
    docs/console.md docs/event-store.md docs/fleet.md docs/hxraidsvc.md docs/linux-md.md
    docs/performance.md docs/reliability.md docs/screens.md docs/versioning.md
    docs/vexorctl.md docs/virtual-controller.md docs/xml-api.md
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
install(FILES
    examples/README.md examples/check_in.c examples/event_store_check.c examples/event_store_check.h
    examples/sample-bios.bin
    DESTINATION "${vexor_examples}" COMPONENT documentation)
install(PROGRAMS examples/make-sample-bios
    DESTINATION "${vexor_examples}" COMPONENT documentation)
install(FILES examples/php/index.php
    DESTINATION "${vexor_examples}/php" COMPONENT documentation)
install(PROGRAMS examples/python/watch.py
    DESTINATION "${vexor_examples}/python" COMPONENT documentation)
install(DIRECTORY examples/commands DESTINATION "${vexor_examples}" COMPONENT documentation)
