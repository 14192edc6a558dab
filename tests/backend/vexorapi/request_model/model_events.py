"""Events as the model knows them: their texts, and the store that check-ins fill.

Written from docs/event-store.md and hxraid.h.
"""

import struct
import time

from model_records import layout

ALL_ONES = 0xFFFFFFFF
MOST_LISTED = 2000

SEVERITIES = ("UNKNOWN", "OTHER", "INFO", "WARNING", "MINOR", "MAJOR", "CRITICAL", "FATAL")

ACTIVITIES = ("CHECK", "FIX", "INIT_QUICK", "INIT_BACK", "INIT_FORE", "REBUILD", "MIGRATION",
              "COPYBACK")
STEPS = ("START", "RESTART", "PAUSE", "RESUME", "ABORT", "COMPLETE", "PROGRESS", "ERROR",
         "AUTO_PAUSED", "AUTO_RESUME")

# By class and code, the key of an event whose text has no more than key, severity and one number.
ADAPTER_KEYS = dict(enumerate((
    "SMART_FROM_OFF_TO_ON", "SMART_FROM_ON_TO_OFF", "ALARM_TURN_ON", "ALARM_TURN_OFF",
    "AUTO_REBUILD_ON", "AUTO_REBUILD_OFF", "HD_MP_RATE_CHANGE", "COPY_BACK_ON", "COPY_BACK_OFF")))
VIRTUAL_DISK_KEYS = dict(enumerate((
    "LD_OFFLINE", "LD_ONLINE", "LD_CREATE", "LD_DELETE", "LD_DEGRADE", "LD_PARTIALLYOPTIMAL",
    "LD_CACHE_MODE_CHANGE", "LD_FIXED", "LD_FOUND_ERROR")))
DISK_KEYS = dict(enumerate((
    "HD_OFFLINE", "HD_ONLINE", "HD_SETDOWN", "HD_TIMEOUT", "HD_RW_ERROR", "HD_SMART",
    "HD_ERROR_FIXED")))
DISK_KEYS.update(enumerate((
    "HD_ASSIGN_SPARE", "HD_REMOVE_SPARE", "HD_SMART_THRESHOLD_OVER", "HD_SMART_POLLING_FAIL",
    "BAD_BLOCK_TBL_80_FULL", "BAD_BLOCK_TBL_FULL", "BAD_BLOCK_REASSIGNED",
    "HD_CACHE_MODE_CHANGE", "HD_MP_START", "HD_MP_RESTART", "HD_MP_PAUSE", "HD_MP_RESUME",
    "HD_MP_ABORT", "HD_MP_COMPLETE"), 9))
DISK_KEYS.update({24: "HD_MP_ERROR", 25: "HD_MP_AUTO_PAUSED", 26: "HD_MP_AUTO_RESUME",
                  54: "HD_SETFREE"})
EXPANDER_KEYS = {0: "EXPANDER_PLUG_IN", 1: "EXPANDER_PLUG_OUT"}
BATTERY_KEYS = dict(enumerate((
    "PRESENT", "NOT_PRESENT", "NEW_BAT_DETECTED", "NEED_REPLACE", "REPLACED", "REMOVED",
    "RELEARN_STARTED", "RELEARN_IN_PGRS", "RELEARN_COMPLETED", "RELEARN_TIMED_OUT",
    "RELEARN_PENDING", "RELEARN_POSTPONED", "START_IN_4_DAYS", "START_IN_2_DAYS",
    "START_IN_1_DAY", "START_IN_5_HOURS", "DISCHARGING", "STARTED_CHARGING", "CHARGE_CMPLT",
    "CHARGER_PROBLEM_DETECTED", "CAPACITY_BELOW_THRESHOLD", "CAPACITY_ABOVE_THRESHOLD",
    "TEMP_IS_LOW", "TEMP_IS_NORMAL", "TEMP_IS_HIGH", "VOLTAGE_LOW", "VOLTAGE_NORMAL",
    "VOLTAGE_HIGH", "FORCE_WRITE_THROUGH", "SAFE_TO_USE_WRITE_BACK")))
MISC_PARAMETER_KEYS = {
    1: "MISC_CHANGE_BACK_ACTIVITY_RATE", 6: "MISC_SINGLE_BIT_ECC_ERR",
    22: "MISC_CHANGE_SYNC_RATE", 23: "MISC_CHANGE_INIT_RATE", 24: "MISC_CHANGE_REBUILD_RATE",
    25: "MISC_CHANGE_MIGRATION_RATE", 26: "MISC_CHANGE_COPYBACK_RATE",
    27: "MISC_CHANGE_MP_RATE"}
MISC_DEVICE_KEYS = {
    16: "MISC_PD_MISSING_FROM_CONFIG_AT_BOOT", 17: "MISC_VD_MISSING_DRIVES",
    18: "MISC_VD_MISSING_AT_BOOT", 20: "MISC_PD_TOO_SMALL_FOR_AUTOREBUILD",
    21: "MISC_PD_TOO_SMALL_FOR_COPYBACK"}
ARRAY_KEYS = {0: "ARRAY_CREATE", 1: "ARRAY_DELETE"}

EVENT = struct.Struct("<HHIHBBI4IBB30s")


def signed(number):
    """A number as "%d" shows its 32 bits."""
    return number - (1 << 32) if number & 1 << 31 else number


def message_of(event):
    """The text behind the time."""
    (kind, code, _, device, severity, adapter, sequence, p0, p1, p2, p3, sense_length, _,
     sense) = event
    level = f"[{SEVERITIES[severity] if severity < len(SEVERITIES) else 'UNKNOWN'}]"

    def standard(key, number):
        return f"EVT_CODE_{key}|{level}|{number}| "

    def unknown(name):
        return f"EVT_Unknown_{name}| |{code}|{device}"

    if kind == 0:
        if code in ADAPTER_KEYS:
            return standard(ADAPTER_KEYS[code], adapter)
        if code == 9:
            if sense_length > 0:
                serial = sense.split(b"\0", 1)[0].decode("latin-1")
                return f"EVT_CODE_ADAPTER_FOUND|{level}|{adapter}|{serial}| "
            return standard("ADAPTER_FOUND_NO_SERIAL", adapter)
        if code == 65535:
            return f"EVT_CODE_EVT_ERR|{level}|{signed(sequence)}|{signed(p2)}| "
        return unknown("Adpt")
    if kind == 1:
        if code in VIRTUAL_DISK_KEYS:
            return standard(VIRTUAL_DISK_KEYS[code], device)
        if code == 9:
            return f"EVT_CODE_LD_IMPORTED|{level}|{device}|{signed(p0)}"
        if 20 <= code < 100:
            activity, step = ACTIVITIES[code // 10 - 2], STEPS[code % 10]
            key = f"LD_{activity}_{step}"
            if step != "PROGRESS":
                return standard(key, device)
            blank = " " if activity == "REBUILD" else ""
            return f"EVT_CODE_{key}|{level}|{device}|{signed(p0)}{blank}"
        if code == 100:
            address = f"{p0:08x}{p1:08x}" if p0 != 0 else f"{p1:08x}"
            return f"EVT_CODE_LD_INCONSISTENT_LBA|{level}|{device}|{address} "
        return unknown("LD")
    if kind == 2:
        if code in DISK_KEYS:
            return standard(DISK_KEYS[code], device)
        if code == 23:
            return f"EVT_CODE_HD_MP_PROGRESS|{level}|{device}|{signed(p0)}| "
        if code == 36:
            return f"EVT_CODE_HD_SC_ERROR|{level}|{device}|{p0:x}|{p1:08x}|{p2:08x}|{p3:08x}| "
        if code in (37, 38):
            key = "HD_RCT_ADD" if code == 37 else "HD_RCT_REMOVE"
            return f"EVT_CODE_{key}|{level}|{device}|{p0:08x}|{p1:08x}|{signed(p2)}|{p3:08x} "
        return unknown("HD")
    if kind == 4:
        if code in EXPANDER_KEYS:
            return standard(EXPANDER_KEYS[code], device)
        return f"EVT_Unknown_EXPANDER| |{code}| "
    if kind == 9:
        if code in BATTERY_KEYS:
            return f"EVT_CODE_BAT_{BATTERY_KEYS[code]}|{level}| "
        return f"EVT_Unknown_BAT| |{code}| "
    if kind in (7, 8, 10, 11):
        return unknown({7: "SAS", 8: "ENCL", 10: "FLASH", 11: "CACHE"}[kind])
    if kind == 12:
        if code in MISC_PARAMETER_KEYS:
            return standard(MISC_PARAMETER_KEYS[code], signed(p0))
        if code in MISC_DEVICE_KEYS:
            return standard(MISC_DEVICE_KEYS[code], device)
        if code == 5:
            return f"EVT_CODE_MISC_MUTLI_BIT_ECC_ERR|{level}|{signed(p0)}|{p1:X}|{signed(p2)} "
        if code == 7:
            return f"EVT_CODE_MISC_GET_SHUTDOWN_CMD|{level}| | "
        if code == 19:
            return f"EVT_CODE_MISC_PREVIOUS_CONFIG_MISSING_AT_BOOT|{level}| | "
        return unknown("MISC")
    if kind == 13:
        return standard(ARRAY_KEYS[code], device) if code in ARRAY_KEYS else ""
    if kind in (3, 5, 6):
        return ""
    return f"EVT_Unknown| |{kind}|{adapter}"


def text_of_event(data):
    """The event as one line, its line end included."""
    event = EVENT.unpack(data)
    local = event[0] == 0 and event[1] == 9
    when = time.localtime(event[2]) if local else time.gmtime(event[2])
    return f"{time.asctime(when)} {message_of(event)}\n".encode("latin-1")


COUNTERS = [word.split(":")[0] for word in
            "Adapter_Change: HD_Change: MDD_Change: LD_Change: BSL_Change: Expander_Change: "
            "PM_Change: SAS_Change: ENCL_Change: BAT_Change: FLASH_Change: Whatever_Change: "
            "CACHE_Change: MISC_Change: ARRAY_Change:".split()]
CLASS_COUNTERS = [COUNTERS.index(name + "_Change") for name in (
    "Adapter", "LD", "HD", "PM", "Expander", "MDD", "BSL", "SAS", "ENCL", "BAT", "FLASH",
    "CACHE", "MISC", "ARRAY")]
WHATEVER = COUNTERS.index("Whatever_Change")

EVENTS_PER_POLL = 50
NO_EVENT = bytes(64)


class Store:
    """The event store: its two files, and what one process remembers of them."""

    def __init__(self, capacity):
        self.capacity = capacity
        self.made = False         # the event file exists
        self.events = []          # what it lists, the oldest first
        self.first = 0            # number of the oldest
        self.file_counters = [0] * 15
        self.file_numbers = None  # of the sequence-number file, None: there is none
        self.counters = [0] * 15  # of the process
        self.poll = [NO_EVENT] * 510

    def _count(self, events):
        for event in events:
            self.counters[WHATEVER] = (self.counters[WHATEVER] + 1) & ALL_ONES
            kind = event[0] | event[1] << 8
            if kind < len(CLASS_COUNTERS):
                place = CLASS_COUNTERS[kind]
                self.counters[place] = (self.counters[place] + 1) & ALL_ONES

    def check_in(self, adapters, controller):
        is_open = False
        while True:
            total = 0
            for adapter in range(min(adapters, 4)):
                _, parts = controller.call("HX_EVT_GetEvent", adapter, EVENTS_PER_POLL, "&", "&")
                told = parts[0][0] if parts else 0
                brought = parts[1] if parts and len(parts) > 1 else b""
                for place in range(min(len(brought) // 64, EVENTS_PER_POLL)):
                    self.poll[place] = brought[64 * place:64 * place + 64]
                self._count(self.poll[:told])
                if told == 0:
                    continue
                if not is_open:
                    is_open = True
                    if self.made:
                        self.counters = list(self.file_counters)
                    self.made = True
                    if self.file_numbers is None:
                        self.file_numbers = [0] * 4
                for event in self.poll[:told]:
                    self._store(adapter, event)
                self._count(self.poll[told:2 * told])
                self.file_counters = list(self.counters)
                total = (total + told) & 255
            if total == 0:
                return

    def _store(self, adapter, event):
        kind, code = struct.unpack_from("<HH", event)
        number, = struct.unpack_from("<I", event, 12)
        if (kind, code) != (0, 9):
            last = self.file_numbers[adapter]
            if last != 0 and number != 0 and number <= last:
                return
            self.file_numbers[adapter] = number
        self.events.append(event)
        if len(self.events) > self.capacity:
            del self.events[0]
            self.first += 1

    def _load(self):
        if self.made:
            self.counters = list(self.file_counters)

    def query(self, wanted, first, last):
        """n, s, e of the answer, and the events."""
        self._load()
        if not self.made:
            return wanted, first, last, [NO_EVENT] * wanted
        count = len(self.events)
        newest = self.first + count - 1 if count > 0 else self.first
        wanted = min(wanted, count)
        if wanted == 0:
            return count, self.first, newest, []
        if first == ALL_ONES:
            last = min(last, newest)
            first = (last - wanted + 1) & ALL_ONES
        first = max(first, self.first)
        offset = first - self.first
        if offset >= count:
            return 0, first, last, []
        events = self.events[offset:offset + wanted]
        return len(events), first, first + len(events) - 1, events

    def change_counters(self):
        self._load()
        return struct.pack("<15I", *self.counters)

    def reset(self):
        if self.made:
            self.events, self.first = [], 0
        self.counters = [0] * 15

    def extent(self):
        self._load()
        return (self.first, len(self.events)) if self.made else (0, 0)


assert layout("Event").size == EVENT.size == 64
