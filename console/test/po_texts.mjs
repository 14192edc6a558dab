// The texts of the sources that are translated: every first argument of _() and both of plural().
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";

function files(folder) {
    return readdirSync(folder, { withFileTypes: true }).flatMap(entry =>
        entry.isDirectory() ? files(join(folder, entry.name)) : /\.tsx?$/.test(entry.name) ? [join(folder, entry.name)] : []);
}

const kText = String.raw`"((?:[^"\\]|\\.)*)"`;

export function textsOf(folder) {
    const texts = new Map();
    for (const file of files(folder)) {
        const source = readFileSync(file, "utf8");
        for (const [, id] of source.matchAll(new RegExp(String.raw`\b_\(\s*${kText}\s*,?\s*\)`, "g"))) texts.set(JSON.parse(`"${id}"`), null);
        for (const [, one, many] of source.matchAll(new RegExp(String.raw`\bplural\(\s*${kText},\s*${kText}`, "g"))) {
            texts.set(JSON.parse(`"${one}"`), JSON.parse(`"${many}"`));
        }
    }
    return texts;
}
