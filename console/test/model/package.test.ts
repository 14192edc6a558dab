import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { describe, it } from "node:test";
// @ts-expect-error They are programs of the build, without types.
import { entriesOf, localeOf } from "../../po.mjs";
// @ts-expect-error as above
import { textsOf } from "../po_texts.mjs";

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
    it("has each of its texts in German, with the same places for values", () => {
        const places = (text: string) => (text.match(/\$\d/g) ?? []).sort().join();
        const german = new Map<string, { plural: string | null; texts: string[] }>();
        for (const entry of entriesOf(read("po/de.po"))) german.set(entry.id, entry);
        for (const [one, many] of textsOf("src") as Map<string, string | null>) {
            const found = german.get(one);
            assert.ok(found, `"${one}" is missing`);
            assert.equal(found.plural, many, one);
            assert.equal(found.texts.length, many === null ? 1 : 2, one);
            for (const text of found.texts) assert.equal(places(text), places(one), one);
        }
    });
    it("makes no program of what a header of texts holds", () => {
        const po = (rule: string) => `msgid ""\nmsgstr "Plural-Forms: nplurals=2; plural=${rule};\\n"\n`;
        assert.match(localeOf(po("(n != 1)"), "de"), /^cockpit\.locale\(\{"":\{"plural-forms":n=>Number\(\(n != 1\)\)/);
        assert.throws(() => localeOf(po("alert(1)"), "de"));
    });
});
