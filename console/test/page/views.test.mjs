// Every view, over a machine that has lost two disks: what it shows, what axe finds, at every width and in the dark.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { closeBrowser, Stage } from "../stage.mjs";
import { axeFinds, goTo, noSidewaysScroll, quiet, seen } from "../checks.mjs";

// A view, and what is seen in it once its data is there.
const kViews = [
    ["", page => page.getByText("data1 (a1/vd1) has no redundancy left").first()],
    ["virtual-disks", page => page.getByRole("link", { name: "data1 (a1/vd1)" })],
    ["vd/a1/vd1", page => page.getByRole("grid", { name: "Members" }).getByText("a1/pd5")],
    ["disks", page => page.getByRole("link", { name: "a1/pd4", exact: true })],
    ["disk/a1/pd4", page => page.getByText("BR5H-2290431")],
    ["enclosures", page => page.getByRole("button", { name: /^Bay 5: a0\/pd1, failed/ })],
    ["activities", page => page.getByRole("progressbar", { name: "Rebuild of DATABASE (a0/vd0)" })],
    ["events", page => page.getByText("Virtual disk a1/vd1 is degraded: no redundancy is left")],
    ["adapters", page => page.getByRole("region", { name: "Battery of a0" })],
    ["replace/a1/pd4?serial=BR5H-2290431", page => page.getByText("Let the bay of the disk blink")],
];

function scene() {
    const stage = new Stage();
    stage.round();
    stage.loseRedundancy();
    stage.sim("disk", "fail", "a0/pd1");
    stage.round();
    return stage;
}

for (const [what, options] of [
    ["at 1280 pixels", { width: 1280 }],
    ["at 360 pixels in the dark", { width: 360, dark: true }],
    ["from right to left", { width: 1280, language: "he" }],
]) {
    describe(`the views ${what}`, () => {
        let stage;
        let page;
        before(async () => {
            stage = scene();
            page = await stage.page(options);
        });
        after(async () => {
            await stage.close();
            await closeBrowser();
        });
        for (const [view, mark] of kViews) {
            it(`show ${view || "the overview"}`, async () => {
                await goTo(page, view);
                await seen(mark(page));
                assert.deepEqual(await axeFinds(page), []);
                await noSidewaysScroll(page);
                quiet(stage);
            });
        }
        it("are as Cockpit is set", async () => {
            const [dark, direction] = await page.evaluate(() =>
                [document.documentElement.classList.contains("pf-v6-theme-dark"), getComputedStyle(document.body).direction]);
            assert.equal(dark, Boolean(options.dark));
            assert.equal(direction, options.language === "he" ? "rtl" : "ltr");
        });
    });
}

describe("the views", () => {
    let stage;
    let page;
    before(async () => {
        stage = scene();
        page = await stage.page();
    });
    after(async () => {
        await stage.close();
        await closeBrowser();
    });

    it("find disks by text and state, and say when none matches", async () => {
        await goTo(page, "disks");
        await page.getByRole("textbox", { name: "Address, model or serial number" }).fill("BR5H-2290431");
        await seen(page.getByRole("link", { name: "a1/pd4", exact: true }));
        await page.getByRole("link", { name: "a0/pd1", exact: true }).waitFor({ state: "detached" });
        await page.getByRole("combobox", { name: "State" }).selectOption("free");
        await seen(page.getByText("No disk matches"));
        await page.getByRole("button", { name: "Clear filters" }).click();
        await seen(page.getByRole("link", { name: "a0/pd1", exact: true }));
    });

    it("have failed disks first", async () => {
        await goTo(page, "disks");
        const first = page.getByRole("grid", { name: "Disks" }).getByRole("row").nth(1);
        await seen(first.getByText("failed"));
    });

    it("move over the bays by the arrow keys and open one by Enter", async () => {
        await goTo(page, "enclosures");
        const bay = name => page.getByRole("button", { name });
        await bay(/^Bay 4: a0\/pd0, in use/).focus();
        await page.keyboard.press("ArrowRight");
        assert.equal(await bay(/^Bay 5: a0\/pd1, failed/).evaluate(element => element === document.activeElement), true);
        await page.keyboard.press("End");
        await page.keyboard.press("Home");
        await page.keyboard.press("ArrowRight");
        await page.keyboard.press("Enter");
        await seen(page.getByRole("heading", { name: "Disk a0/pd1" }));
        await page.goBack();
        await seen(bay(/^Bay 5: a0\/pd1, failed/));
    });

    it("show an object that is not there as gone", async () => {
        await goTo(page, "vd/a0/vd77");
        await seen(page.getByText("There is no virtual disk a0/vd77"));
        await goTo(page, "disk/a0/pd77");
        await seen(page.getByText("There is no disk a0/pd77"));
    });

    it("follow what another tool changes", async () => {
        await goTo(page, "virtual-disks");
        await seen(page.getByRole("link", { name: "MIRROR (a1/vd0)" }));
        stage.vexorctl("vd", "create", "a1/pd6", "a1/pd7", "--raid", "1", "--size", "20GiB", "--name", "another", "--yes");
        stage.round();
        await seen(page.getByRole("link", { name: /^another/ }));
        stage.vexorctl("vd", "delete", "name:another", "--yes");
        stage.round();
        await page.getByRole("link", { name: /^another/ }).waitFor({ state: "detached" });
    });

    it("filter events, and keep what is missing in sight", async () => {
        await goTo(page, "events");
        await seen(page.getByText("Virtual disk a1/vd1 is degraded: no redundancy is left"));
        await page.getByRole("combobox", { name: "Severity" }).selectOption("major");
        await page.getByText("The rebuild of virtual disk a0/vd0 has started").waitFor({ state: "detached" });
        await page.getByRole("combobox", { name: "Severity" }).selectOption("");
        await page.getByRole("textbox", { name: "Text of the event" }).fill("nothing like it");
        await seen(page.getByText("No event matches"));
    });

    it("show events as they come, and a store that is reset while they do", async () => {
        await goTo(page, "disks");
        await goTo(page, "events");
        await seen(page.getByText("Virtual disk a1/vd1 is degraded: no redundancy is left"));
        stage.sim("disk", "fail", "a1/pd7");
        stage.round();
        await seen(page.getByText("Disk a1/pd7 was set down").first());
        stage.vexorctl("event", "reset", "--yes");
        stage.sim("disk", "fail", "a1/pd6");
        stage.round();
        await seen(page.getByText("The store was reset."));
        await seen(page.getByText("Disk a1/pd6 was set down").first());
        quiet(stage);
    });
});

describe("the views in German", () => {
    let stage;
    before(() => { stage = scene(); });
    after(async () => {
        await stage.close();
        await closeBrowser();
    });

    it("have German words, sizes and events", async () => {
        const page = await stage.page({ language: "de", path: "#/disks" });
        await seen(page.getByRole("link", { name: "Gehäuse" }));
        await seen(page.getByText("558,91 GiB").first());
        assert.equal(await page.evaluate(() => document.documentElement.lang), "de");
        await goTo(page, "events");
        await seen(page.getByText(/Die virtuelle Festplatte a1\/vd1 .*: Keine Redundanz/));
        quiet(stage);
    });
});
