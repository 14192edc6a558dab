#include "vexorapi_client.h"

#include <string.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "php.h"  // IWYU pragma: keep: the head of PHP; what it includes is not included alone
#include "vexorapi_ask.h"
#include "vexorapi_errors.h"
#include "vexorapi_events.h"
#include "zend_attributes.h"
#include "zend_enum.h"
#include "zend_exceptions.h"

namespace vexorapi_php {

namespace {

constexpr zend_long kListComplete = 65535;
constexpr zend_long kPage = 128;

zend_class_entry* group_class;

// The groups by their names in results.
struct GroupCase {
    const char* name;
    std::string_view value;
};
constexpr std::array<GroupCase, 3> kGroups = {{
    {"Administrator", "Administrator"},
    {"ValidUser", "ValidUser"},
    {"UnknownUser", "UnknownUser"},
}};

zval* Find(zval* array, std::string_view name) {
    return zend_hash_str_find(Z_ARRVAL_P(array), name.data(), name.size());
}

// The list in a page of the function's; null when it answers none.
const Row* ListRow(const Function& function) {
    const Shape shape = Shapes()[function.shape];
    for (const Row& row : Rows().subspan(shape.first, shape.count)) {
        if (row.kind == Row::Kind::kList) return &row;
    }
    return nullptr;
}

bool IsPaged(const Function& function) {
    const Shape shape = Shapes()[function.shape];
    return std::ranges::any_of(Rows().subspan(shape.first, shape.count),
                               [](const Row& row) { return row.name == "RequestHeader"; });
}

// Appends a page's entries and tells where the list goes on. Returns false, with an exception, when
// the page could not be had.
bool AppendPage(const Function& function, HashTable* parameters, zval* list, zend_long& start) {
    zval page;
    if (!Ask(function, parameters, &page)) return false;
    zval* entry = nullptr;
    ZEND_HASH_FOREACH_VAL(Z_ARRVAL_P(Find(&page, ListRow(function)->name)), entry) {
        Z_TRY_ADDREF_P(entry);
        zend_hash_next_index_insert_new(Z_ARRVAL_P(list), entry);
    }
    ZEND_HASH_FOREACH_END();
    const zend_long following = Z_LVAL_P(Find(Find(&page, "RequestHeader"), "nextStartingIndex"));
    zval_ptr_dtor(&page);
    if (following <= start) {
        zend_throw_exception_ex(Exceptions().unreadable, 0,
                                "%s: the list goes on where it has been", function.name);
        return false;
    }
    start = following;
    return true;
}

void SetNumber(HashTable* parameters, const char* name, zend_long value) {
    zval number;
    ZVAL_LONG(&number, value);
    zend_hash_str_update(parameters, name, strlen(name), &number);
}

// A whole list, page by page.
bool AppendAll(const Function& function, HashTable* parameters, zval* list) {
    zend_long wanted = kPage;
    zend_long start = 0;
    while (start != kListComplete) {
        SetNumber(parameters, "startingIndexOrId", start);
        SetNumber(parameters, "numRequested", wanted);
        if (AppendPage(function, parameters, list, start)) continue;
        const bool is_too_large = EG(exception) != nullptr &&
                                  instanceof_function(EG(exception)->ce, Exceptions().does_not_fit);
        if (!is_too_large || wanted == 1) return false;
        zend_clear_exception();
        wanted /= 2;
    }
    return true;
}

// Null when there is no such group.
zend_object* GroupOf(zval* text) {
    for (const GroupCase& each : kGroups) {
        if (std::string_view(Z_STRVAL_P(text), Z_STRLEN_P(text)) == each.value) {
            return zend_enum_get_case_cstr(group_class, each.name);
        }
    }
    return nullptr;
}

// ---- Methods ---------------------------------------------------------------------------------

ZEND_METHOD(Vexorapi_Client, call) {
    zend_string* name = nullptr;
    HashTable* parameters = nullptr;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "S|h", &name, &parameters) == FAILURE) return;
    const Function* const function = FindFunction(name);
    if (function == nullptr) return;
    zval result;
    if (Ask(*function,
            parameters == nullptr ? const_cast<HashTable*>(&zend_empty_array) : parameters,
            &result)) {
        RETVAL_COPY_VALUE(&result);
    }
}

ZEND_METHOD(Vexorapi_Client, all) {
    zend_string* name = nullptr;
    HashTable* parameters = nullptr;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "S|h", &name, &parameters) == FAILURE) return;
    const Function* const function = FindFunction(name);
    if (function == nullptr) return;
    if (!IsPaged(*function)) {
        zend_throw_exception_ex(Exceptions().base, 0, "%s answers no list of pages",
                                function->name);
        return;
    }
    HashTable* const asked = parameters == nullptr ? zend_new_array(0) : zend_array_dup(parameters);
    zval list;
    array_init(&list);
    if (AppendAll(*function, asked, &list)) {
        RETVAL_COPY_VALUE(&list);
    } else {
        zval_ptr_dtor(&list);
    }
    zend_array_release(asked);
}

ZEND_METHOD(Vexorapi_Client, events) {
    constexpr zend_long kMostEvents = 0xFFFFFFFE;
    zend_long from = 0;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "|l", &from) == FAILURE) return;
    if (from < 0 || from > kMostEvents) {
        zend_argument_value_error(1, "must be the number of an event");
        return;
    }
    MakeEvents(return_value, from);
}

ZEND_METHOD(Vexorapi_Client, counters) {
    ZEND_PARSE_PARAMETERS_NONE();
    zval result;
    HashTable* const none = const_cast<HashTable*>(&zend_empty_array);
    if (!Ask(KnownFunction("VX_HX_EVT_GetChangeCounters"), none, &result)) return;
    RETVAL_COPY(Find(&result, "ChangeCounters"));
    zval_ptr_dtor(&result);
}

ZEND_METHOD(Vexorapi_Client, logon) {
    zend_string* user = nullptr;
    zend_string* password = nullptr;
    if (zend_parse_parameters(ZEND_NUM_ARGS(), "SS", &user, &password) == FAILURE) return;
    zval parameters;
    array_init(&parameters);
    add_assoc_str(&parameters, "lpszUsername", zend_string_copy(user));
    add_assoc_str(&parameters, "lpszPassword", zend_string_copy(password));
    zval result;
    const bool is_answered = Ask(KnownFunction("HX_LogonUser"), Z_ARRVAL(parameters), &result);
    zval_ptr_dtor(&parameters);
    if (!is_answered) return;
    const zend_long code = Z_LVAL_P(Find(&result, "RetVal"));
    if (code != 0) {
        ThrowLogonFailed(code);
    } else if (zend_object* const group = GroupOf(Find(&result, "UserGroup")); group != nullptr) {
        RETVAL_OBJ_COPY(group);
    } else {
        zend_throw_exception(Exceptions().unreadable, "HX_LogonUser: an unknown group", 0);
    }
    zval_ptr_dtor(&result);
}

ZEND_BEGIN_ARG_WITH_RETURN_TYPE_INFO_EX(arginfo_client_call, 0, 1, IS_ARRAY, 0)
ZEND_ARG_TYPE_INFO(0, function, IS_STRING, 0)
ZEND_ARG_TYPE_INFO_WITH_DEFAULT_VALUE(0, parameters, IS_ARRAY, 0, "[]")
ZEND_END_ARG_INFO()
ZEND_BEGIN_ARG_WITH_RETURN_OBJ_INFO_EX(arginfo_client_events, 0, 0, Vexorapi\\Events, 0)
ZEND_ARG_TYPE_INFO_WITH_DEFAULT_VALUE(0, from, IS_LONG, 0, "0")
ZEND_END_ARG_INFO()
ZEND_BEGIN_ARG_WITH_RETURN_TYPE_INFO_EX(arginfo_client_counters, 0, 0, IS_ARRAY, 0)
ZEND_END_ARG_INFO()
ZEND_BEGIN_ARG_WITH_RETURN_OBJ_INFO_EX(arginfo_client_logon, 0, 2, Vexorapi\\Group, 0)
ZEND_ARG_TYPE_INFO(0, user, IS_STRING, 0)
ZEND_ARG_TYPE_INFO(0, password, IS_STRING, 0)
ZEND_END_ARG_INFO()

const zend_function_entry kMethods[] = {
    ZEND_ME(Vexorapi_Client, call, arginfo_client_call, ZEND_ACC_PUBLIC)
        ZEND_ME(Vexorapi_Client, all, arginfo_client_call, ZEND_ACC_PUBLIC)
            ZEND_ME(Vexorapi_Client, events, arginfo_client_events, ZEND_ACC_PUBLIC) ZEND_ME(
                Vexorapi_Client, counters, arginfo_client_counters, ZEND_ACC_PUBLIC)
                ZEND_ME(Vexorapi_Client, logon, arginfo_client_logon, ZEND_ACC_PUBLIC) ZEND_FE_END};

}  // namespace

void RegisterClient() {
    group_class = zend_register_internal_enum("Vexorapi\\Group", IS_STRING, nullptr);
    for (const GroupCase& each : kGroups) {
        zval value;
        ZVAL_STR(&value, zend_string_init_interned(each.value.data(), each.value.size(), true));
        zend_enum_add_case_cstr(group_class, each.name, &value);
    }
    zend_class_entry entry;
    INIT_CLASS_ENTRY(entry, "Vexorapi\\Client", kMethods);
    zend_class_entry* const client = zend_register_internal_class(&entry);
    client->ce_flags |= ZEND_ACC_FINAL | ZEND_ACC_NO_DYNAMIC_PROPERTIES;
#if PHP_VERSION_ID >= 80200
    // Backtraces leave the password out.
    auto* const logon = static_cast<zend_function*>(
        zend_hash_str_find_ptr(&client->function_table, "logon", strlen("logon")));
    zend_add_parameter_attribute(logon, 1, ZSTR_KNOWN(ZEND_STR_SENSITIVEPARAMETER), 0);
#endif
}

}  // namespace vexorapi_php
