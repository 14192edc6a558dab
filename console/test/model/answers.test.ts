import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { answerOf } from "../../src/model/answers.ts";

const kDisk = '{"schema":"vexorctl/1","command":"disk list","address":"a0/pd0"}';
const kError = '{"schema":"vexorctl/1","command":"disk list","error":{"address":null,"message":"it is away"}}';

describe("the answer of a list", () => {
    it("has an item a line", () => {
        const { items, errors, cut } = answerOf(`${kDisk}\n`, new Map());
        assert.deepEqual(items.map(item => (item as { address: string }).address), ["a0/pd0"]);
        assert.deepEqual([errors, cut], [[], false]);
    });
    it("takes no error for an item", () => {
        const { items, errors } = answerOf(`${kError}\n`, new Map());
        assert.deepEqual(items, []);
        assert.equal(errors[0]?.message, "it is away");
    });
    it("has what was read before the error", () => {
        const { items, errors } = answerOf(`${kDisk}\n${kError}\n`, new Map());
        assert.deepEqual([items.length, errors.length], [1, 1]);
    });
    it("says when it was cut", () => {
        const { items, cut } = answerOf(`${kDisk}\n{"address":"a0/p`, new Map());
        assert.deepEqual([items.length, cut], [1, true]);
    });
    it("keeps the object of a line that is the same, and no other", () => {
        const first = answerOf(`${kDisk}\n`, new Map());
        const second = answerOf(`${kDisk.replace("pd0", "pd1")}\n${kDisk}\n`, first.known);
        assert.equal(second.items[1], first.items[0]);
        assert.equal(answerOf("", second.known).known.size, 0);
    });
    it("is empty when nothing was said", () => assert.deepEqual(answerOf("", new Map()).items, []));
});
