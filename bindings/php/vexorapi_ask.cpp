#include "vexorapi_ask.h"

#include <algorithm>
#include <string_view>

#include "vexorapi_command.h"
#include "vexorapi_errors.h"
#include "vexorapi_library.h"
#include "vexorapi_result.h"
#include "zend_exceptions.h"

namespace vexorapi_php {

namespace {

const Function* Find(std::string_view name) {
    const auto functions = Functions();
    const auto found = std::ranges::find_if(
        functions, [&](const Function& function) { return name == function.name; });
    return found == functions.end() ? nullptr : &*found;
}

// Whether the codes of refusals are those that the extension knows.
bool HasKnownCodes(char* result) {
    if (!Send("<HX_API_Version type=\"function\"/>", result)) return false;
    const std::string_view text(result);
    return std::ranges::any_of(Controllers(), [&](std::string_view controller) {
        const std::size_t end = text.find("</RetVal>");
        return end != std::string_view::npos && text.substr(0, end).ends_with(controller);
    });
}

// `result` has room for another result, since that of the refused call is of no more use.
void Refuse(const char* function, zend_long code, char* result) {
    const Refusal* known = nullptr;
    if (HasKnownCodes(result)) {
        for (const Refusal& refusal : Refusals()) {
            if (static_cast<zend_long>(refusal.code) == code) known = &refusal;
        }
    }
    ThrowRefused(function, code, known == nullptr ? nullptr : known->name,
                 known == nullptr ? nullptr : known->sentence);
}

bool Read(const Function& function, char* result, zval* array) {
    const std::string_view text(result);
    if (text.empty()) {
        zend_throw_exception_ex(Exceptions().does_not_fit, 0,
                                "%s: the result does not fit, or there was no memory for it",
                                function.name);
        return false;
    }
    const zend_long status = function.has_status ? StatusOf(text) : 0;
    if (status > 0) {
        Refuse(function.name, status, result);
        return false;
    }
    if (status < 0) {
        zend_throw_exception_ex(Exceptions().unreadable, 0, "%s: the result has no status",
                                function.name);
        return false;
    }
    return ReadResult(function, text, array);
}

}  // namespace

const Function* FindFunction(zend_string* name) {
    const Function* const function = Find({ZSTR_VAL(name), ZSTR_LEN(name)});
    if (function == nullptr) ThrowUnknownFunction(name);
    return function;
}

const Function& KnownFunction(const char* name) { return *Find(name); }

bool Ask(const Function& function, HashTable* parameters, zval* array) {
    zend_string* const command = MakeCommand(function, parameters);
    if (command == nullptr) return false;
    zend_string* const result = zend_string_alloc(kResultSize - 1, false);
    const bool is_taken = Send(ZSTR_VAL(command), ZSTR_VAL(result));
    WipeAndRelease(command);
    bool is_read = false;
    if (is_taken) {
        is_read = Read(function, ZSTR_VAL(result), array);
    } else {
        zend_throw_exception_ex(Exceptions().declined, 0, "%s: the library does not take it",
                                function.name);
    }
    zend_string_efree(result);
    return is_read;
}

}  // namespace vexorapi_php
