#include "php_vexorapi.h"

#include <string.h>

#include "ext/standard/info.h"
#include "vexorapi.h"
#include "vexorapi_client.h"
#include "vexorapi_errors.h"
#include "vexorapi_events.h"
#include "vexorapi_library.h"
#include "vexorapi_result.h"

namespace {

#define VERSION_TEXT(number) #number
#define VERSION_OF(major, minor, patch) \
    VERSION_TEXT(major) "." VERSION_TEXT(minor) "." VERSION_TEXT(patch)
constexpr const char* kVersion =
    VERSION_OF(VEXORAPI_VERSION_MAJOR, VEXORAPI_VERSION_MINOR, VEXORAPI_VERSION_PATCH);

// string vexorapi_call(string $command): the result exactly, false where the library declines.
ZEND_FUNCTION(vexorapi_call) {
    zend_string* command = nullptr;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "S", &command) == FAILURE) return;
    // The library reads up to the first NUL: it would carry out a part of the command.
    if (strlen(ZSTR_VAL(command)) != ZSTR_LEN(command)) RETURN_FALSE;
    // Memory of PHP is taken before the library's turn: where there is none, PHP does not come
    // back.
    zend_string* const result = zend_string_alloc(vexorapi_php::kResultSize - 1, false);
    if (!vexorapi_php::Send(ZSTR_VAL(command), ZSTR_VAL(result))) {
        zend_string_efree(result);
        RETURN_FALSE;
    }
    RETURN_STR(zend_string_truncate(result, strlen(ZSTR_VAL(result)), false));
}

ZEND_BEGIN_ARG_WITH_RETURN_TYPE_MASK_EX(arginfo_vexorapi_call, 0, 1, MAY_BE_STRING | MAY_BE_FALSE)
ZEND_ARG_TYPE_INFO(0, command, IS_STRING, 0)
ZEND_END_ARG_INFO()

const zend_function_entry kFunctionTable[] = {ZEND_FE(vexorapi_call, arginfo_vexorapi_call)
                                                  ZEND_FE_END};

PHP_MINIT_FUNCTION(vexorapi) {
    (void)type;
    (void)module_number;
    if (!vexorapi_php::PrepareForForks()) return FAILURE;
    vexorapi_php::MakeKeys();
    vexorapi_php::RegisterExceptions();
    vexorapi_php::RegisterEvents();
    vexorapi_php::RegisterClient();
    return SUCCESS;
}

PHP_MSHUTDOWN_FUNCTION(vexorapi) {
    (void)type;
    (void)module_number;
    vexorapi_php::ShutDown();
    return SUCCESS;
}

PHP_MINFO_FUNCTION(vexorapi) {
    (void)zend_module;
    php_info_print_table_start();
    php_info_print_table_row(2, "RAID controllers by libvexorapi", "enabled");
    php_info_print_table_row(2, "Version", kVersion);
    php_info_print_table_end();
}

}  // namespace

zend_module_entry vexorapi_module_entry = {
    STANDARD_MODULE_HEADER,
    "vexorapi",
    kFunctionTable,
    PHP_MINIT(vexorapi),
    PHP_MSHUTDOWN(vexorapi),
    nullptr,
    nullptr,
    PHP_MINFO(vexorapi),
    kVersion,
    STANDARD_MODULE_PROPERTIES,
};

extern "C" {
ZEND_GET_MODULE(vexorapi)
}
