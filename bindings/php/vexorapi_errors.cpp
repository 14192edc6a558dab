#include "vexorapi_errors.h"

#include <string.h>

#include <initializer_list>
#include <vector>

#include "ext/spl/spl_exceptions.h"
#include "vexorapi_functions.h"
#include "zend_exceptions.h"

namespace vexorapi_php {

namespace {

constexpr zend_long kMostMistakes = 2;
constexpr std::size_t kLongestName = 128;

ExceptionClasses classes;

zend_class_entry* Register(const char* name, zend_class_entry* parent,
                           std::initializer_list<const char*> properties = {}) {
    zend_class_entry entry;
    INIT_CLASS_ENTRY_EX(entry, name, strlen(name), nullptr);
    zend_class_entry* const registered = zend_register_internal_class_ex(&entry, parent);
    for (const char* const property : properties) {
        zend_declare_property_null(registered, property, strlen(property), ZEND_ACC_PUBLIC);
    }
    return registered;
}

// By the interpreter's own levenshtein(), without regard to the case of letters; -1 when it cannot
// be had.
zend_long Mistakes(zend_string* one, const char* other) {
    zval function;
    zval result;
    zval words[2];
    ZVAL_STRING(&function, "levenshtein");
    ZVAL_STR(&words[0], zend_string_tolower(one));
    zend_string* const word = zend_string_init(other, strlen(other), false);
    ZVAL_STR(&words[1], zend_string_tolower(word));
    zend_string_release(word);
    ZVAL_UNDEF(&result);
    zend_long mistakes = -1;
    if (call_user_function(nullptr, nullptr, &function, &result, 2, words) == SUCCESS &&
        Z_TYPE(result) == IS_LONG) {
        mistakes = Z_LVAL(result);
    }
    zval_ptr_dtor(&result);
    zval_ptr_dtor(&words[0]);
    zval_ptr_dtor(&words[1]);
    zval_ptr_dtor(&function);
    return mistakes;
}

// The one of the names that may be meant; null when none is near.
const char* Nearest(zend_string* typed, const char* const* names, std::size_t count) {
    if (ZSTR_LEN(typed) > kLongestName) return nullptr;
    const char* nearest = nullptr;
    zend_long least = kMostMistakes + 1;
    for (std::size_t i = 0; i < count; ++i) {
        const zend_long mistakes = Mistakes(typed, names[i]);
        const bool is_near =
            mistakes >= 0 && 2 * static_cast<std::size_t>(mistakes) < strlen(names[i]);
        if (is_near && mistakes < least) {
            nearest = names[i];
            least = mistakes;
        }
    }
    return nearest;
}

void SetText(zend_object* object, const char* property, const char* text) {
    if (text == nullptr) return;
    zend_update_property_string(object->ce, object, property, strlen(property), text);
}

}  // namespace

const ExceptionClasses& Exceptions() { return classes; }

void RegisterExceptions() {
    classes.base = Register("Vexorapi\\Exception", spl_ce_RuntimeException);
    classes.unknown_function =
        Register("Vexorapi\\UnknownFunction", classes.base, {"function", "nearest"});
    classes.parameter =
        Register("Vexorapi\\ParameterError", classes.base, {"function", "parameter"});
    classes.unknown_parameter =
        Register("Vexorapi\\UnknownParameter", classes.parameter, {"nearest"});
    classes.declined = Register("Vexorapi\\Declined", classes.base);
    classes.does_not_fit = Register("Vexorapi\\DoesNotFit", classes.base);
    classes.unreadable = Register("Vexorapi\\Unreadable", classes.base);
    classes.refused = Register("Vexorapi\\Refused", classes.base, {"function", "name", "sentence"});
    classes.logon_failed = Register("Vexorapi\\LogonFailed", classes.base);
    classes.store_unreadable = Register("Vexorapi\\StoreUnreadable", classes.base);
}

void ThrowUnknownFunction(zend_string* function) {
    std::vector<const char*> names;
    for (const Function& each : Functions()) names.push_back(each.name);
    const char* const nearest = Nearest(function, names.data(), names.size());
    zend_object* const thrown = zend_throw_exception_ex(
        classes.unknown_function, 0, "there is no function \"%s\"%s%s%s", ZSTR_VAL(function),
        nearest ? "; did you mean \"" : "", nearest ? nearest : "", nearest ? "\"?" : "");
    SetText(thrown, "function", ZSTR_VAL(function));
    SetText(thrown, "nearest", nearest);
}

void ThrowUnknownParameter(const char* function, zend_string* parameter, const char* const* names,
                           std::size_t count) {
    const char* const nearest = Nearest(parameter, names, count);
    zend_object* const thrown =
        zend_throw_exception_ex(classes.unknown_parameter, 0, "%s has no parameter \"%s\"%s%s%s",
                                function, ZSTR_VAL(parameter), nearest ? "; did you mean \"" : "",
                                nearest ? nearest : "", nearest ? "\"?" : "");
    SetText(thrown, "function", function);
    SetText(thrown, "parameter", ZSTR_VAL(parameter));
    SetText(thrown, "nearest", nearest);
}

void ThrowRefused(const char* function, zend_long code, const char* name, const char* sentence) {
    zend_object* const thrown = zend_throw_exception_ex(
        classes.refused, code, "%s was refused with code " ZEND_LONG_FMT "%s%s", function, code,
        sentence ? ": " : "", sentence ? sentence : "");
    SetText(thrown, "function", function);
    SetText(thrown, "name", name);
    SetText(thrown, "sentence", sentence);
}

void ThrowLogonFailed(zend_long code) {
    const char* const reason = code == 2   ? "no such user, or the shadow file cannot be read"
                               : code == 3 ? "wrong password"
                                           : "the logon failed";
    zend_throw_exception_ex(classes.logon_failed, code, "%s", reason);
}

}  // namespace vexorapi_php
