import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { shelvesOf } from "../../src/model/bays.ts";
import { disksShown, isFiltered, kNoFilter, urgency } from "../../src/model/filter.ts";
import { isDamaged, replacing } from "../../src/model/replacing.ts";
import * as text from "../../src/model/text.ts";
import type { Enclosure } from "../../src/model/types.ts";
import { disk, task, vd } from "./build.ts";

const kShelf = { address: "a0/enc0", logical_id: "50A4" } as Enclosure;

describe("sizes and times", () => {
    it("are those of vexorctl's tables", () => {
        assert.equal(text.bytes(600127266816, "en"), "558.91 GiB");
        assert.equal(text.bytes(824633720832, "en"), "768 GiB");
        assert.equal(text.bytes(2000398934016, "en"), "1.82 TiB");
        assert.equal(text.bytes(600127266816, "de"), "558,91 GiB");
        assert.equal(text.bytes(0, "en"), "0 B");
    });
    it("that are unknown are never 0", () => {
        assert.equal(text.bytes(null, "en"), "?");
        assert.equal(text.percent(undefined, "en"), "?");
        assert.equal(text.duration(null, "en"), "?");
        assert.equal(text.ago("nonsense", 0, "en"), null);
        assert.equal(text.clock(null, "en"), "?");
    });
    it("are cut, not rounded up to done", () => assert.equal(text.percent(0.999, "en"), "99%"));
    it("are told in the unit that says enough", () => {
        assert.equal(text.duration(45, "en"), "45 seconds");
        assert.equal(text.duration(720, "en"), "12 minutes");
        assert.equal(text.duration(12600, "en"), "3.5 hours");
        assert.equal(text.ago("2026-11-23T02:33:16Z", Date.parse("2026-11-23T02:45:16Z"), "en"), "12 minutes ago");
        assert.equal(text.ago("2026-11-23T02:33:16Z", Date.parse("2026-11-23T02:00:00Z"), "en"), "now");
    });
});

describe("names", () => {
    it("stand before their addresses", () => {
        assert.equal(text.named("a0/vd0", "DATABASE"), "DATABASE (a0/vd0)");
        assert.equal(text.named("a0/pd1", null), "a0/pd1");
    });
    it("are sorted by number", () => {
        assert.deepEqual(["a0/pd10", "a1/pd0", "a0/pd9"].sort(text.compareAddresses), ["a0/pd9", "a0/pd10", "a1/pd0"]);
    });
    it("of a code without one are its number", () => {
        assert.equal(text.codeName({ code: 7, name: null }), "unknown (7)");
        assert.equal(text.codeName(null), null);
    });
    it("are quoted in a command line", () => {
        assert.equal(text.commandLine(["vexorctl", "vd", "set", "a0/vd0", "--name=it's $(me)"]),
            "vexorctl vd set a0/vd0 '--name=it'\\''s $(me)'");
    });
});

describe("the disks that are shown", () => {
    const disks = [
        disk({ address: "a0/pd0", state: "failed", serial: "ABC" }),
        disk({ address: "a1/pd1", enclosure: null, smart_alarm: true, model: null }),
    ];
    it("are all without a filter", () => {
        assert.equal(disksShown(disks, kNoFilter).length, 2);
        assert.equal(isFiltered(kNoFilter), false);
    });
    it("are those of every part of the filter", () => {
        const addresses = (filter: object) => disksShown(disks, { ...kNoFilter, ...filter }).map(({ address }) => address);
        assert.deepEqual(addresses({ text: " abc " }), ["a0/pd0"]);
        assert.deepEqual(addresses({ state: "failed" }), ["a0/pd0"]);
        assert.deepEqual(addresses({ adapter: "a1" }), ["a1/pd1"]);
        assert.deepEqual(addresses({ enclosure: "a0/enc0" }), ["a0/pd0"]);
        assert.deepEqual(addresses({ smart: true }), ["a1/pd1"]);
        assert.deepEqual(addresses({ smart: true, state: "failed" }), []);
    });
    it("have the pressing ones first", () => {
        assert.ok(urgency(disk({ state: "missing" })) < urgency(disk({ smart_alarm: true })));
        assert.ok(urgency(disk({ smart_alarm: true })) < urgency(disk({ state: "rebuilding" })));
        assert.ok(urgency(disk({ state: "rebuilding" })) < urgency(disk({})));
    });
});

describe("bays", () => {
    it("show the empty ones between the disks and invent none around them", () => {
        const [shelf] = shelvesOf([disk({ slot: 4 }), disk({ address: "a0/pd2", slot: 6 })], [kShelf]);
        assert.deepEqual(shelf?.bays.map(bay => [bay.number, bay.disk?.address ?? null]),
            [[4, "a0/pd0"], [5, null], [6, "a0/pd2"]]);
    });
    it("hide no disk that tells no place, or the place of another", () => {
        const disks = [disk({}), disk({ address: "a0/pd1" }), disk({ address: "a0/pd2", slot: null, phy: null })];
        const [shelf] = shelvesOf(disks, [kShelf]);
        assert.deepEqual(shelf?.bays.map(bay => bay.disk?.address), ["a0/pd0", "a0/pd1", "a0/pd2"]);
    });
    it("are as the administrator says, and what that forgets is behind", () => {
        const disks = [disk({ slot: 4 }), disk({ address: "a0/pd1", slot: 5 }), disk({ address: "a0/pd9", slot: 9 })];
        const [shelf] = shelvesOf(disks, [kShelf], { "50A4": { columns: 2, first_number: 1, order: [5, 4] } });
        assert.equal(shelf?.columns, 2);
        assert.deepEqual(shelf?.bays.map(bay => [bay.number, bay.disk?.address]),
            [[1, "a0/pd1"], [2, "a0/pd0"], [9, "a0/pd9"]]);
    });
    it("of disks in no enclosure stand by adapter", () => {
        const shelves = shelvesOf([disk({ address: "a1/pd1", enclosure: null }), disk({ enclosure: "a0/enc7" })], []);
        assert.deepEqual(shelves.map(shelf => shelf.key), ["a0/ports", "a1/ports"]);
    });
    it("of an enclosure without a disk are none", () => assert.deepEqual(shelvesOf([], [kShelf])[0]?.bays, []));
});

describe("replacing a disk", () => {
    const broken = vd({ state: { code: 4, name: "degraded" } });
    const failed = disk({ address: "a0/pd1", state: "failed", serial: "OLD" });
    const at = (disks: ReturnType<typeof disk>[], vds = [broken], tasks: ReturnType<typeof task>[] = []) =>
        replacing("a0/pd1", "OLD", { disks, vds, tasks });
    it("begins with finding it", () => assert.equal(at([failed]).step, "find"));
    it("goes on to the swap when its light is on", () => assert.equal(at([{ ...failed, locate_light: true }]).step, "swap"));
    it("waits for the new disk while the bay is empty", () => {
        assert.equal(at([]).step, "swap");
        assert.equal(at([disk({ address: "a0/pd1", state: "missing", serial: "OLD" })]).step, "swap");
    });
    it("sees another serial number, and what could be done with the new disk", () => {
        const seen = at([disk({ address: "a0/pd1", serial: "NEW" })]);
        assert.deepEqual([seen.step, seen.swapped, seen.candidate?.serial], ["rebuild", true, "NEW"]);
    });
    it("watches the rebuild that began by itself", () => {
        const seen = at([disk({ address: "a0/pd1", serial: "NEW", state: "rebuilding" })], [broken], [task({})]);
        assert.deepEqual([seen.step, seen.running?.address, seen.candidate], ["rebuild", "a0/vd0", null]);
    });
    it("is done when redundancy is back", () => {
        assert.equal(at([disk({ address: "a0/pd1", serial: "NEW", state: "configured" })], [vd({})]).step, "done");
    });
    it("is not done while a copyback runs", () => {
        const copyback = task({ activity: { code: 8, name: "copyback" } });
        assert.equal(at([disk({ address: "a0/pd1", serial: "NEW" })], [vd({})], [copyback]).step, "rebuild");
    });
    it("is in no hurry when a spare has taken over", () => {
        assert.equal(at([failed], [vd({})]).unhurried, true);
        assert.equal(at([failed]).unhurried, false);
    });
    it("takes a disk of unknown serial number for the old one", () => {
        assert.equal(at([disk({ address: "a0/pd1", serial: null })]).swapped, false);
    });
    it("does not look at other adapters", () => {
        const far = vd({ address: "a1/vd0", state: { code: 4, name: "degraded" } });
        assert.deepEqual(at([failed], [far]).damaged, []);
    });
    it("counts an unknown state as damaged", () => {
        assert.equal(isDamaged(vd({ state: null })), true);
        assert.equal(isDamaged(vd({ members: [{ position: 0, disk: "a0/pd1", state: null, leg: null }] as never })), true);
        assert.equal(isDamaged(vd({})), false);
    });
});
