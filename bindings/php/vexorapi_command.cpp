#include "vexorapi_command.h"

#include <string.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "Zend/zend_smart_str.h"
#include "vexorapi_errors.h"
#include "vexorapi_utf8.h"
#include "zend_exceptions.h"

namespace vexorapi_php {

namespace {

// What a list is asked with when the caller does not say: without them there would be none. A page
// of so many entries fits into a result whatever it lists.
struct Default {
    std::string_view name;
    zend_long value;
};
constexpr Default kListDefaults[] = {{"requestType", 1}, {"numRequested", 128}};

bool IsList(const Function& function) {
    return std::ranges::any_of(function.parameters, [](const Parameter& parameter) {
        return std::string_view(parameter.name) == "numRequested";
    });
}

// Appends parameters to a command. Nothing that it throws repeats a text: it may be a password.
class CommandWriter {
public:
    CommandWriter(smart_str& text, const Function& function) : text_(text), function_(function) {}

    bool Append(const Parameter& parameter, zval* value) {
        ZVAL_DEREF(value);
        switch (parameter.kind) {
            case Parameter::Kind::kNumber:
                return AppendNumber(parameter, value);
            case Parameter::Kind::kNumbers:
                return AppendNumbers(parameter, value);
            case Parameter::Kind::kText:
                return AppendText(parameter, value);
        }
        return false;
    }

private:
    bool Refuse(const Parameter& parameter, const char* reason) const {
        zend_throw_exception_ex(Exceptions().parameter, 0, "%s: %s %s", function_.name,
                                parameter.name, reason);
        return false;
    }

    bool AppendNumber(const Parameter& parameter, zval* value) {
        if (Z_TYPE_P(value) == IS_TRUE || Z_TYPE_P(value) == IS_FALSE) {
            smart_str_appendc(&text_, Z_TYPE_P(value) == IS_TRUE ? '1' : '0');
            return true;
        }
        if (Z_TYPE_P(value) != IS_LONG) return Refuse(parameter, "takes numbers of type int");
        const zend_long number = Z_LVAL_P(value);
        const bool is_too_large = parameter.bits < 63 && number >> parameter.bits != 0;
        if (number < 0 || is_too_large) {
            zend_throw_exception_ex(Exceptions().parameter, 0,
                                    "%s: %s is " ZEND_LONG_FMT
                                    "; it takes numbers of %u bits, from 0",
                                    function_.name, parameter.name, number, parameter.bits);
            return false;
        }
        smart_str_append_long(&text_, number);
        return true;
    }

    bool AppendNumbers(const Parameter& parameter, zval* value) {
        if (Z_TYPE_P(value) != IS_ARRAY) return Refuse(parameter, "takes an array of numbers");
        if (zend_hash_num_elements(Z_ARRVAL_P(value)) > parameter.most) {
            return Refuse(parameter, "has more numbers than it takes");
        }
        bool is_first = true;
        zval* item = nullptr;
        ZEND_HASH_FOREACH_VAL(Z_ARRVAL_P(value), item) {
            ZVAL_DEREF(item);
            if (!is_first) smart_str_appendc(&text_, ' ');
            is_first = false;
            if (!AppendNumber(parameter, item)) return false;
        }
        ZEND_HASH_FOREACH_END();
        return true;
    }

    bool AppendText(const Parameter& parameter, zval* value) {
        if (Z_TYPE_P(value) != IS_STRING) return Refuse(parameter, "takes a string");
        std::string_view text(Z_STRVAL_P(value), Z_STRLEN_P(value));
        if (text.size() > parameter.most) return Refuse(parameter, "is longer than what it takes");
        while (!text.empty()) {
            const Utf8Character character = FirstCharacter(text);
            if (!character.is_allowed) {
                return Refuse(parameter, "is no UTF-8 or holds a character that XML cannot carry");
            }
            AppendCharacter(text.data(), character.length);
            text.remove_prefix(character.length);
        }
        return true;
    }

    void AppendCharacter(const char* character, std::size_t length) {
        switch (*character) {
            case '&':
                smart_str_appends(&text_, "&amp;");
                break;
            case '<':
                smart_str_appends(&text_, "&lt;");
                break;
            case '>':
                smart_str_appends(&text_, "&gt;");
                break;
            case '\r':  // by itself it would be read as another line end
                smart_str_appends(&text_, "&#13;");
                break;
            default:
                smart_str_appendl(&text_, character, length);
        }
    }

    smart_str& text_;
    const Function& function_;
};

const Parameter* FindParameter(const Function& function, zend_string* name) {
    for (const Parameter& parameter : function.parameters) {
        if (std::string_view(ZSTR_VAL(name), ZSTR_LEN(name)) == parameter.name) return &parameter;
    }
    return nullptr;
}

// `name` is null in an array without keys.
bool AppendParameter(smart_str& text, const Function& function, zend_string* name, zval* value) {
    if (name == nullptr) {
        zend_throw_exception_ex(Exceptions().parameter, 0, "%s: parameters have names",
                                function.name);
        return false;
    }
    const Parameter* const parameter = FindParameter(function, name);
    if (parameter == nullptr) {
        std::vector<const char*> names;
        for (const Parameter& each : function.parameters) names.push_back(each.name);
        ThrowUnknownParameter(function.name, name, names.data(), names.size());
        return false;
    }
    smart_str_append_printf(&text, "  <%s>", parameter->name);
    if (!CommandWriter(text, function).Append(*parameter, value)) return false;
    smart_str_append_printf(&text, "</%s>\n", parameter->name);
    return true;
}

bool AppendParameters(smart_str& text, const Function& function, HashTable* parameters) {
    zend_string* name = nullptr;
    zval* value = nullptr;
    ZEND_HASH_FOREACH_STR_KEY_VAL(parameters, name, value) {
        if (!AppendParameter(text, function, name, value)) return false;
    }
    ZEND_HASH_FOREACH_END();
    if (!IsList(function)) return true;
    for (const Default& each : kListDefaults) {
        if (zend_hash_str_exists(parameters, each.name.data(), each.name.size())) continue;
        smart_str_append_printf(&text, "  <%s>" ZEND_LONG_FMT "</%s>\n", each.name.data(),
                                each.value, each.name.data());
    }
    return true;
}

}  // namespace

zend_string* MakeCommand(const Function& function, HashTable* parameters) {
    // Room for every logon, so that no copy of a password is left behind where it grew.
    constexpr std::size_t kRoom = 2048;
    smart_str text = {};
    smart_str_alloc(&text, kRoom, false);
    smart_str_appendc(&text, '<');
    smart_str_appends(&text, function.name);
    smart_str_appends(&text, " type=\"function\">\n");
    const bool is_complete = AppendParameters(text, function, parameters);
    smart_str_appends(&text, "</");
    smart_str_appends(&text, function.name);
    smart_str_appends(&text, ">\n");
    smart_str_0(&text);
    if (is_complete) return text.s;
    WipeAndRelease(text.s);
    return nullptr;
}

void WipeAndRelease(zend_string* text) {
    explicit_bzero(ZSTR_VAL(text), ZSTR_LEN(text));
    zend_string_release(text);
}

}  // namespace vexorapi_php
