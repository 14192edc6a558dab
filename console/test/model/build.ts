// Objects for the tests, with what a test does not name as an unremarkable machine has it.
import type { Disk, Event, StatusCondition, Task, Vd } from "../../src/model/types.ts";

export function disk(fields: Partial<Disk>): Disk {
    return {
        address: "a0/pd0", state: "free", size_bytes: 600127266816, free_bytes: 600093712384, vd: null, dg: null,
        model: "TW600S10", serial: "S0", enclosure: "a0/enc0", slot: 4, phy: 4, smart_alarm: false,
        locate_light: false, ...fields,
    } as Disk;
}

export function vd(fields: Partial<Vd>): Vd {
    return {
        address: "a0/vd0", name: "DATABASE", state: { code: 1, name: "optimal" }, level: { code: 5, name: "raid5" },
        members: [], failures_tolerated: 1, ...fields,
    } as Vd;
}

export function task(fields: Partial<Task>): Task {
    return {
        address: "a0/vd0", name: "DATABASE", activity: { code: 6, name: "rebuild" }, standing: "running",
        state: { code: 1, name: "running" }, progress_ratio: 0.3, seconds_left: 600, rate_bytes_per_second: 1,
        targets: [], cause: null, next_step: null, ...fields,
    } as unknown as Task;
}

export function event(sequence: number, fields: Partial<Event> = {}): Event {
    return {
        sequence, time: "2026-11-23T02:45:16+00:00", severity: { code: 2, name: "info" }, address: "a0/pd1",
        text: "Disk a0/pd1 is online", class: { code: 2, name: "disk" }, adapter: 0, key: "EVT_CODE_HD_ONLINE",
        values: ["1"], ...fields,
    } as Event;
}

export function condition(fields: Partial<StatusCondition>): StatusCondition {
    return {
        code: "VD_NO_REDUNDANCY", level: "critical", rank: 120, since: "2026-11-23T02:33:16Z", cause: [], folded: [],
        object: { kind: "vd", address: "a0/vd0", name: "DATABASE", serial: null }, silenced_until: null,
        sentence: "DATABASE (a0/vd0) has no redundancy left", next_step: { text: "Replace it", command: null },
        ...fields,
    } as StatusCondition;
}
