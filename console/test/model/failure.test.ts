import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { failureOf, withoutPrivilege } from "../../src/model/failure.ts";

describe("a failure", () => {
    const rows = [
        ["a program that is not installed", { problem: "not-found" }, "absent"],
        ["no permission by Cockpit", { problem: "access-denied" }, "denied"],
        ["no permission by vexorctl", { exit_status: 4 }, "denied"],
        ["a library that cannot be used", { exit_status: 5 }, "unusable"],
        ["an answer in part", { exit_status: 1 }, "partial"],
        ["an object that is gone", { exit_status: 3 }, "changed"],
        ["an object that has changed since the look", { exit_status: 8 }, "changed"],
        ["a session that ended", { problem: "disconnected" }, "broken"],
        ["a process that was killed", { problem: "terminated", exit_signal: "TERM" }, "broken"],
        ["a signal without a problem", { exit_signal: "SEGV" }, "broken"],
        ["wrong usage", { exit_status: 2 }, "broken"],
        ["nothing that says why", {}, "broken"],
    ] as const;
    for (const [what, ended, kind] of rows) it(`of ${what} is ${kind}`, () => assert.equal(failureOf(ended).kind, kind));

    it("says what vexorctl said, without its name before it", () => {
        const { message } = failureOf({ exit_status: 5, message: "vexorctl: the controller is away\nvexorctl: twice\n" });
        assert.equal(message, "the controller is away twice");
    });
    it("of a library that cannot be used is one of permission while there is no privilege", () => {
        assert.equal(withoutPrivilege({ kind: "unusable", message: "" }, false).kind, "denied");
        assert.equal(withoutPrivilege({ kind: "unusable", message: "" }, true).kind, "unusable");
        assert.equal(withoutPrivilege({ kind: "unusable", message: "" }, null).kind, "unusable");
        assert.equal(withoutPrivilege({ kind: "broken", message: "" }, false).kind, "broken");
    });
});
