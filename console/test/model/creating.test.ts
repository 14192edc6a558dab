import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { adapterToPropose, kLevels, nameFits, proposal, unfit, wasted } from "../../src/model/creating.ts";
import { fillEvent } from "../../src/model/event_text.ts";
import type { Adapter } from "../../src/model/types.ts";
import { disk } from "./build.ts";

const level = (name: string) => kLevels.find(rule => rule.name === name)!;
const free = (address: string, size = 1000, boot_record: boolean | null = false) =>
    ({ ...disk({ address, size_bytes: size, free_bytes: size }), boot_record });

describe("the disks that are proposed", () => {
    const disks = [free("a0/pd9"), free("a0/pd10"), free("a0/pd2"), free("a0/pd3"), free("a0/pd4", 5000)];
    it("are alike, and as many as the level takes", () => {
        assert.deepEqual(proposal(disks, "a0", level("raid5")), ["a0/pd2", "a0/pd3", "a0/pd9", "a0/pd10"]);
        assert.deepEqual(proposal(disks, "a0", level("raid1")), ["a0/pd2", "a0/pd3"]);
    });
    it("are unlike where there are not enough alike", () => {
        assert.equal(proposal([free("a0/pd0", 1), free("a0/pd1", 2), free("a0/pd2", 3)], "a0", level("raid5")).length, 3);
    });
    it("are an even number where the level wants that", () => {
        assert.equal(proposal([...disks, free("a0/pd5")], "a0", { ...level("raid10"), proposed: 9 }).length, 4);
    });
    it("are none when there are too few", () => assert.deepEqual(proposal(disks.slice(0, 2), "a0", level("raid5")), []));
    it("hold no boot record, and none that is unknown", () => {
        const some = [free("a0/pd0"), free("a0/pd1", 1000, true), free("a0/pd2", 1000, null), free("a0/pd3")];
        assert.deepEqual(proposal(some, "a0", level("raid1")), ["a0/pd0", "a0/pd3"]);
        assert.deepEqual(proposal(some, "a0", level("raid5")), []);
    });
    it("are on the adapter that has most", () => {
        const adapters = [{ address: "a0" }, { address: "a1" }] as Adapter[];
        assert.equal(adapterToPropose([...disks, free("a1/pd0")], adapters), "a0");
        const unlike = [free("a0/pd0", 1), free("a0/pd1", 2), free("a0/pd2", 3), free("a1/pd0"), free("a1/pd1")];
        assert.equal(adapterToPropose(unlike, adapters), "a1");
        assert.equal(adapterToPropose([], []), null);
    });
});

describe("what a level takes", () => {
    it("is told by number", () => {
        assert.equal(unfit(level("raid5"), 2), "few");
        assert.equal(unfit(level("raid5"), 3), null);
        assert.equal(unfit(level("raid1"), 3), "not_two");
        assert.equal(unfit(level("raid10"), 5), "odd");
    });
});

describe("a name", () => {
    it("has 15 bytes at most", () => {
        assert.equal(nameFits("123456789012345"), true);
        assert.equal(nameFits("1234567890123456"), false);
        assert.equal(nameFits("ääääääää"), false);
    });
});

describe("what unequal disks waste", () => {
    it("is what is over the smallest", () => assert.equal(wasted([free("a", 10), free("b", 15)]), 5));
    it("is unknown when a size is", () => assert.equal(wasted([free("a", 10), { free_bytes: null }]), null));
});

describe("the text of an event", () => {
    it("takes the address and the values", () => {
        assert.equal(fillEvent("Platte {address}: {0} von {1}", { address: "a0/pd1", values: ["5", "9"] }), "Platte a0/pd1: 5 von 9");
    });
    it("says ? for what the event does not have", () => {
        assert.equal(fillEvent("{address} {3}", { address: null, values: ["5"] }), "? ?");
    });
});
