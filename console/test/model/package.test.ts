import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { describe, it } from "node:test";

const read = (name: string) => readFileSync(name, "utf8");

describe("the package", () => {
    it("locks versions without the address of a machine", () => {
        const lock = read("package-lock.json");
        assert.ok(lock.includes('"integrity"'));
        assert.ok(!lock.includes('"resolved"'));
        assert.ok(!/https?:\/\/(registry|npm)/.test(lock));
    });
    it("names exact versions", () => {
        const { dependencies, devDependencies } = JSON.parse(read("package.json"));
        for (const version of Object.values({ ...dependencies, ...devDependencies })) assert.match(String(version), /^\d+\.\d+\.\d+$/);
    });
    it("says which Cockpit it needs, in words that Cockpit reads", () => {
        const manifest = JSON.parse(read("src/manifest.json"));
        assert.deepEqual(manifest.requires, { cockpit: "287" });
        assert.deepEqual(manifest.preload, ["index"]);
    });
});
