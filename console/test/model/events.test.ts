import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { Lines } from "../../src/model/lines.ts";
import { added, comesAfterHole, csv, joined, kMostRows, shown, type Row } from "../../src/model/events.ts";
import { event } from "./build.ts";

const kAny = { text: "", severity: "", adapter: "", class: "" };
const gap = (reason: string, lost: number | null) =>
    ({ schema: "vexorctl/1", command: "event follow", record: "gap", reason, lost, after: 3, next: 9, adapter: null });

function numbers(rows: Row[]): (number | string)[] {
    return rows.map(row => row.row === "event" ? row.event.sequence : row.gap.reason);
}

describe("lines of a stream", () => {
    const broken = () => assert.fail("a line was taken for broken");
    it("come whole though chunks are cut anywhere", () => {
        const lines = new Lines();
        assert.deepEqual(lines.take('{"a":', broken), []);
        assert.deepEqual(lines.take('1}\n{"b":2}\n{"c"', broken), [{ a: 1 }, { b: 2 }]);
        assert.deepEqual(lines.take(":3}\n", broken), [{ c: 3 }]);
    });
    it("that are no JSON are handed over, and the others stay", () => {
        const seen: string[] = [];
        assert.deepEqual(new Lines().take('oops\n{"a":1}\n', line => seen.push(line)), [{ a: 1 }]);
        assert.deepEqual(seen, ["oops"]);
    });
});

describe("events", () => {
    it("are taken once", () => {
        const rows = added(added([], [event(1), event(2)]), [event(2), event(3)]);
        assert.deepEqual(numbers(rows), [1, 2, 3]);
    });
    it("that were lost are a row of their own", () => {
        assert.deepEqual(numbers(added([], [event(3), gap("overwritten", 5), event(9)])), [3, "overwritten", 9]);
    });
    it("begin again at 0 behind a reset", () => {
        const before = added([], [event(7), gap("reset", null)]);
        assert.deepEqual(numbers(added(before, [event(0), event(1)])), [7, "reset", 0, 1]);
    });
    it("are kept up to a limit, the newest", () => {
        const rows = added([], Array.from({ length: kMostRows + 5 }, (_, index) => event(index)));
        assert.equal(rows.length, kMostRows);
        assert.equal(numbers(rows)[0], 5);
    });
    it("are the same rows when nothing came", () => {
        const rows = added([], [event(1)]);
        assert.equal(added(rows, [{ other: true }, null, 4]), rows);
    });
    it("are filtered by severity upwards, and what is missing stays", () => {
        const rows = added([], [event(1), gap("overflow", 2), event(2, { severity: { code: 5, name: "major" } })]);
        assert.deepEqual(numbers(shown(rows, { ...kAny, severity: "warning" })), ["overflow", 2]);
    });
    it("are filtered by text, adapter and class", () => {
        const rows = added([], [event(1), event(2, { adapter: 1, class: { code: 1, name: "virtual_disk" } })]);
        assert.deepEqual(numbers(shown(rows, { ...kAny, adapter: "a1" })), [2]);
        assert.deepEqual(numbers(shown(rows, { ...kAny, class: "disk" })), [1]);
        assert.deepEqual(numbers(shown(rows, { ...kAny, text: "ONLINE" })), [1, 2]);
        assert.deepEqual(numbers(shown(rows, { ...kAny, text: "no such" })), []);
    });
    it("that came between the list and the stream are noticed", () => {
        assert.equal(comesAfterHole(3, event(4)), false);
        assert.equal(comesAfterHole(3, event(5)), true);
        assert.equal(comesAfterHole(-1, event(5)), false);
        assert.equal(comesAfterHole(3, gap("overwritten", 5)), false);
    });
    it("from the store get the place of their number", () => {
        const rows = added([], [event(1), event(2), event(5)]);
        assert.deepEqual(numbers(joined(rows, [event(2), event(3), event(4)])), [1, 2, 3, 4, 5]);
        assert.equal(joined(rows, [event(1)]), rows);
    });
    it("from the store stand behind a reset, whatever was before it", () => {
        const rows = added([], [event(7), gap("reset", null), event(2)]);
        assert.deepEqual(numbers(joined(rows, [event(0), event(1)])), [7, "reset", 0, 1, 2]);
    });
    it("as csv are quoted, and none is a formula", () => {
        const rows = added([], [event(1, { text: '=cmd|"x"', address: null })]);
        assert.equal(csv(rows), '"number","time","severity","address","event"\r\n' +
            '"1","2026-11-23T02:45:16+00:00","info","","\'=cmd|""x"""\r\n');
    });
});
