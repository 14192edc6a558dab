#include "vexorapi_events.h"

#include <string.h>

#include <algorithm>
#include <cstddef>

#include "vexorapi_ask.h"
#include "vexorapi_errors.h"
#include "zend_exceptions.h"
#include "zend_interfaces.h"

namespace vexorapi_php {

namespace {

constexpr zend_long kPage = 128;
constexpr int kTries = 3;  // of what another process's work on the event store was in the way of

zend_class_entry* events_class;
zend_object_handlers events_handlers;

struct Events {
    zend_long from;
    zend_long following;  // the number behind the page
    zend_long number;     // of the page's first event
    zval page;            // a list of events; undefined before the first one was read
    zend_ulong index;     // of the current event
    zend_object object;
};

Events& EventsOf(zend_object* object) {
    char* const start = reinterpret_cast<char*>(object) - offsetof(Events, object);
    return *reinterpret_cast<Events*>(start);
}

zend_object* Create(zend_class_entry* entry) {
    auto* const events = static_cast<Events*>(zend_object_alloc(sizeof(Events), entry));
    events->from = events->following = events->number = 0;
    events->index = 0;
    ZVAL_UNDEF(&events->page);
    zend_object_std_init(&events->object, entry);
    object_properties_init(&events->object, entry);
    events->object.handlers = &events_handlers;
    return &events->object;
}

void Free(zend_object* object) {
    zval_ptr_dtor(&EventsOf(object).page);
    zend_object_std_dtor(object);
}

zend_long NumberIn(zval* array, const char* name) {
    const zval* const value = zend_hash_str_find(Z_ARRVAL_P(array), name, strlen(name));
    return value == nullptr ? 0 : Z_LVAL_P(value);
}

bool Query(zend_long n, zend_long s, zend_long e, zval* answer) {
    zval parameters;
    array_init(&parameters);
    add_assoc_long(&parameters, "n", n);
    add_assoc_long(&parameters, "s", s);
    add_assoc_long(&parameters, "e", e);
    const bool is_answered =
        Ask(KnownFunction("VX_HX_EVT_GetEvents"), Z_ARRVAL(parameters), answer);
    zval_ptr_dtor(&parameters);
    return is_answered;
}

zval* ListIn(zval* answer) { return zend_hash_str_find(Z_ARRVAL_P(answer), "Event", 5); }

bool Unreadable(const char* message) {
    zend_throw_exception(Exceptions().store_unreadable, message, 0);
    return false;
}

// The numbers of the oldest event and behind the newest.
bool AskExtent(zend_long& first, zend_long& end) {
    for (int tried = 0; tried < kTries; ++tried) {
        zval answer;
        if (!Query(0, 0, 0, &answer)) return false;
        first = NumberIn(&answer, "s");
        end = first + NumberIn(&answer, "n");
        zval_ptr_dtor(&answer);
        if (end != first) return true;
        // A store that cannot be read has the same extent as an empty one; but asked for an event,
        // it answers with one of zeros, where the empty one answers with none.
        if (!Query(1, 0, 0, &answer)) return false;
        const bool is_empty = zend_hash_num_elements(Z_ARRVAL_P(ListIn(&answer))) == 0;
        zval_ptr_dtor(&answer);
        if (is_empty) return true;
    }
    return Unreadable("the event store cannot be read");
}

// What cannot be read is answered as events of zeros.
bool AreEvents(zval* list) {
    zval* event = nullptr;
    ZEND_HASH_FOREACH_VAL(Z_ARRVAL_P(list), event) {
        if (NumberIn(event, "TimeStamp") == 0) return false;
    }
    ZEND_HASH_FOREACH_END();
    return true;
}

bool ReadPage(Events& events, zend_long count) {
    for (int tried = 0; tried < kTries; ++tried) {
        zval answer;
        const zend_long last = events.following + count - 1;
        if (!Query(count, events.following, last, &answer)) return false;
        if (AreEvents(ListIn(&answer))) {
            ZVAL_COPY(&events.page, ListIn(&answer));
            // Asked for numbers below the oldest, the store answers from its oldest.
            events.number = NumberIn(&answer, "s");
            events.following = events.number + zend_hash_num_elements(Z_ARRVAL(events.page));
            zval_ptr_dtor(&answer);
            return true;
        }
        zval_ptr_dtor(&answer);
    }
    return Unreadable("events of the event store cannot be read");
}

// Goes on to the next page, which is empty when there is no further event.
void Fetch(Events& events) {
    zval_ptr_dtor(&events.page);
    ZVAL_EMPTY_ARRAY(&events.page);
    events.index = 0;
    zend_long first = 0;
    zend_long end = 0;
    if (!AskExtent(first, end)) return;
    if (events.following > end) events.following = first;  // the store was emptied
    if (events.following == end) return;
    ReadPage(events, std::min(end - events.following, kPage));
}

void Begin(Events& events) {
    events.following = events.from;
    Fetch(events);
}

zval* Current(Events& events) {
    if (Z_TYPE(events.page) == IS_UNDEF) Begin(events);
    return zend_hash_index_find(Z_ARRVAL(events.page), events.index);
}

// ---- Methods ---------------------------------------------------------------------------------

ZEND_METHOD(Vexorapi_Events, current) {
    ZEND_PARSE_PARAMETERS_NONE();
    zval* const event = Current(EventsOf(Z_OBJ_P(ZEND_THIS)));
    if (event != nullptr) RETURN_COPY(event);
    if (EG(exception) == nullptr) zend_throw_exception(Exceptions().base, "there is no event", 0);
}

ZEND_METHOD(Vexorapi_Events, key) {
    ZEND_PARSE_PARAMETERS_NONE();
    Events& events = EventsOf(Z_OBJ_P(ZEND_THIS));
    Current(events);
    RETURN_LONG(events.number + static_cast<zend_long>(events.index));
}

ZEND_METHOD(Vexorapi_Events, next) {
    (void)return_value;
    ZEND_PARSE_PARAMETERS_NONE();
    Events& events = EventsOf(Z_OBJ_P(ZEND_THIS));
    if (Current(events) != nullptr) ++events.index;
    if (EG(exception) == nullptr && Current(events) == nullptr) Fetch(events);
}

ZEND_METHOD(Vexorapi_Events, rewind) {
    (void)return_value;
    ZEND_PARSE_PARAMETERS_NONE();
    Begin(EventsOf(Z_OBJ_P(ZEND_THIS)));
}

ZEND_METHOD(Vexorapi_Events, valid) {
    ZEND_PARSE_PARAMETERS_NONE();
    RETURN_BOOL(Current(EventsOf(Z_OBJ_P(ZEND_THIS))) != nullptr);
}

ZEND_BEGIN_ARG_WITH_RETURN_TYPE_INFO_EX(arginfo_events_current, 0, 0, IS_ARRAY, 0)
ZEND_END_ARG_INFO()
ZEND_BEGIN_ARG_WITH_RETURN_TYPE_INFO_EX(arginfo_events_key, 0, 0, IS_LONG, 0)
ZEND_END_ARG_INFO()
ZEND_BEGIN_ARG_WITH_RETURN_TYPE_INFO_EX(arginfo_events_next, 0, 0, IS_VOID, 0)
ZEND_END_ARG_INFO()
ZEND_BEGIN_ARG_WITH_RETURN_TYPE_INFO_EX(arginfo_events_valid, 0, 0, _IS_BOOL, 0)
ZEND_END_ARG_INFO()

const zend_function_entry kMethods[] = {
    ZEND_ME(Vexorapi_Events, current, arginfo_events_current, ZEND_ACC_PUBLIC)
        ZEND_ME(Vexorapi_Events, key, arginfo_events_key, ZEND_ACC_PUBLIC)
            ZEND_ME(Vexorapi_Events, next, arginfo_events_next, ZEND_ACC_PUBLIC)
                ZEND_ME(Vexorapi_Events, rewind, arginfo_events_next, ZEND_ACC_PUBLIC) ZEND_ME(
                    Vexorapi_Events, valid, arginfo_events_valid, ZEND_ACC_PUBLIC) ZEND_FE_END};

}  // namespace

void RegisterEvents() {
    zend_class_entry entry;
    INIT_CLASS_ENTRY(entry, "Vexorapi\\Events", kMethods);
    events_class = zend_register_internal_class(&entry);
    events_class->ce_flags |= ZEND_ACC_FINAL | ZEND_ACC_NOT_SERIALIZABLE;
    events_class->create_object = Create;
    zend_class_implements(events_class, 1, zend_ce_iterator);
    events_handlers = *zend_get_std_object_handlers();
    events_handlers.offset = offsetof(Events, object);
    events_handlers.free_obj = Free;
    events_handlers.clone_obj = nullptr;
}

void MakeEvents(zval* object, zend_long from) {
    object_init_ex(object, events_class);
    EventsOf(Z_OBJ_P(object)).from = from;
}

}  // namespace vexorapi_php
