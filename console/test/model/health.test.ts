import assert from "node:assert/strict";
import { describe, it } from "node:test";
import {
    Age, activitiesOfList, activitiesOfStatus, callsForReplacement, diskOf, inOrder, isStatus, levelOf, pageStatus, shelfLife,
} from "../../src/model/health.ts";
import type { Status } from "../../src/model/types.ts";
import { condition, task } from "./build.ts";

const kCounts = { critical: 0, unknown: 0, warning: 0, info: 0, acknowledged: 0, silenced: 0, switched_off: 0 };
const kMachine = { adapters: 2, virtual_disks: 3, disks: 24, spares: 2 };

describe("the order of conditions", () => {
    it("has the smallest rank first and silenced ones last", () => {
        const order = inOrder([
            condition({ code: "BATTERY_LOW", rank: 360 }),
            condition({ code: "VD_OFFLINE", rank: 110, silenced_until: "2026-11-24T00:00:00Z" }),
            condition({ code: "VD_NO_REDUNDANCY", rank: 120 }),
        ]);
        assert.deepEqual(order.map(({ code }) => code), ["VD_NO_REDUNDANCY", "BATTERY_LOW", "VD_OFFLINE"]);
    });
    it("takes a level that it does not know for unknown, never for well", () => {
        assert.equal(levelOf("dire"), "unknown");
    });
});

describe("the icon in the menu", () => {
    const report = (overall: string, conditions: ReturnType<typeof condition>[]) =>
        ({ overall, counts: kCounts, machine: kMachine, conditions }) as Status;
    it("is an error with the worst sentence when something is critical", () => {
        assert.deepEqual(pageStatus(report("critical", [condition({})])),
            { type: "error", title: "DATABASE (a0/vd0) has no redundancy left" });
    });
    it("is a warning when something is unknown", () => {
        const status = report("unknown", [condition({ level: "unknown", rank: 220, sentence: "a0 does not answer" })]);
        assert.deepEqual(pageStatus(status), { type: "warning", title: "a0 does not answer" });
    });
    it("is absent when all is well", () => assert.equal(pageStatus(report("ok", [])), null));
    it("is absent for information", () => {
        assert.equal(pageStatus(report("ok", [condition({ level: "info", rank: 510 })])), null);
    });
    it("does not stand for what is silenced", () => {
        assert.equal(pageStatus(report("ok", [condition({ silenced_until: "2026-11-24T00:00:00Z" })]))?.type, undefined);
    });
    it("is there when the report is bad and names no condition", () => {
        assert.deepEqual(pageStatus(report("unknown", [])), { type: "warning", title: "unknown" });
    });
});

describe("the age of a report", () => {
    it("is unknown before one was seen", () => assert.equal(new Age().seconds(1000), null));
    it("is by the browser's clock at first", () => {
        const age = new Age();
        age.seen(900, 1000);
        assert.equal(age.seconds(1000), 100);
    });
    it("learns from a change how far the clocks differ", () => {
        const age = new Age();
        age.seen(900, 5000);
        age.seen(910, 5010);
        assert.equal(age.seconds(5015), 5);
    });
    it("does not learn from the same report read again", () => {
        const age = new Age();
        age.seen(900, 1000);
        age.seen(900, 1200);
        assert.equal(age.seconds(1200), 300);
    });
    it("is never negative", () => {
        const age = new Age();
        age.seen(900, 800);
        assert.equal(age.seconds(800), 0);
    });
    it("may reach three rounds", () => assert.equal(shelfLife({ interval_s: 10, once: false }), 30));
    it("may be longer when the service runs from a timer", () => {
        assert.equal(shelfLife({ interval_s: 10, once: true }), 600);
    });
});

describe("what a condition leads to", () => {
    it("is the disk that caused it", () => {
        assert.equal(diskOf(condition({ cause: [{ code: "DISK_FAILED", address: "a0/pd1" }] })), "a0/pd1");
    });
    it("is the disk itself", () => {
        const object = { kind: "disk", address: "a1/pd3", name: null, serial: "X" } as const;
        assert.equal(diskOf(condition({ object })), "a1/pd3");
    });
    it("is no disk where none has to do with it", () => {
        assert.equal(diskOf(condition({ cause: [{ code: "DG_DEGRADED", address: "a0/dg0" }] })), null);
    });
    it("is a replacement when a disk has failed, and none when an image is damaged", () => {
        assert.equal(callsForReplacement(condition({ cause: [{ code: "DISK_FAILED", address: "a0/pd1" }] })), true);
        assert.equal(callsForReplacement(condition({ code: "FLASH_FIRMWARE_DAMAGED" })), false);
    });
});

describe("activities", () => {
    it("have no estimate before one percent", () => {
        assert.equal(activitiesOfList([task({ progress_ratio: 0.001, seconds_left: 99999 })])[0]?.seconds_left, null);
        assert.equal(activitiesOfList([task({ progress_ratio: 0.01, seconds_left: 5000 })])[0]?.seconds_left, 5000);
    });
    it("of a code without a name show its number", () => {
        const [only] = activitiesOfList([task({ activity: { code: 42, name: null } })]);
        assert.equal(only?.activity, "unknown (42)");
    });
    it("of the service are read like those of the list", () => {
        const status = {
            tasks: [{
                object: { kind: "vd", address: "a0/vd0", name: "DATABASE", serial: null }, activity: "rebuild",
                state: "auto_paused", percent: null, first_seen: "x", percent_per_hour: null, seconds_left: 50,
            }],
        } as unknown as Status;
        const [only] = activitiesOfStatus(status);
        assert.deepEqual([only?.standing, only?.progress, only?.seconds_left], ["queued", null, null]);
    });
});

describe("what the file holds", () => {
    it("is a status by its schema alone", () => {
        assert.equal(isStatus({ schema: "hxraidsvc-status/1" }), true);
        assert.equal(isStatus({ schema: "hxraidsvc-status/2" }), false);
        assert.equal(isStatus(null), false);
        assert.equal(isStatus("hxraidsvc-status/1"), false);
    });
});
