PHP_ARG_ENABLE([vexorapi], [whether to enable vexorapi],
  [AS_HELP_STRING([--enable-vexorapi], [Enable RAID controllers by libvexorapi])])

if test "$PHP_VEXORAPI" != "no"; then
  PKG_CHECK_MODULES([VEXORAPI], [vexorapi])
  PHP_EVAL_INCLINE($VEXORAPI_CFLAGS)
  PHP_EVAL_LIBLINE($VEXORAPI_LIBS, VEXORAPI_SHARED_LIBADD)
  PHP_SUBST(VEXORAPI_SHARED_LIBADD)
  PHP_REQUIRE_CXX()
  PHP_NEW_EXTENSION(vexorapi, php_vexorapi.cpp vexorapi_ask.cpp vexorapi_client.cpp dnl
    vexorapi_command.cpp vexorapi_errors.cpp vexorapi_events.cpp vexorapi_functions.cpp dnl
    vexorapi_library.cpp vexorapi_result.cpp vexorapi_utf8.cpp, $ext_shared,, -std=c++20, cxx)
fi
