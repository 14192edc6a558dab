// What tests look for in a page.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");

export async function seen(locator) {
    await locator.waitFor({ state: "visible" });
}

/** What axe-core finds, a line each. */
export async function axeFinds(page) {
    await page.evaluate(axe);
    return page.evaluate(async () => {
        const { violations } = await globalThis.axe.run({
            runOnly: { type: "tag", values: ["wcag2a", "wcag2aa", "wcag21a", "wcag21aa", "wcag22aa", "best-practice"] },
        });
        return violations.flatMap(({ id, nodes }) => nodes.map(node => `${id}: ${node.html.slice(0, 200)}`));
    });
}

/** No message of the console, no error, nothing refused. */
export function quiet(stage) {
    assert.deepEqual(stage.complaints, []);
}

export async function noSidewaysScroll(page) {
    const [inside, outside] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
    assert.ok(inside <= outside, `the page is ${inside} px wide in a window of ${outside}`);
}

/** To another view, as a link does. */
export async function goTo(page, view) {
    await page.evaluate(path => { location.hash = `#/${path}`; }, view);
}
