// A lost disk from the alarm to the end of its rebuild, and a machine of many disks.
import assert from "node:assert/strict";
import { afterEach, after, describe, it } from "node:test";
import { closeBrowser, Stage } from "../stage.mjs";
import { axeFinds, goTo, quiet, seen } from "../checks.mjs";

describe("a lost disk", () => {
    let stage;
    afterEach(() => stage.close());
    after(closeBrowser);

    it("is found, swapped, rebuilt and done, as the machine says and not as is clicked", async () => {
        stage = new Stage();
        stage.loseRedundancy();
        stage.round();
        const page = await stage.page();
        await seen(page.getByText("data1 (a1/vd1) has no redundancy left").first());
        await page.getByRole("button", { name: "Replace a1/pd4" }).click();
        await page.waitForFunction(() => location.hash.includes("serial=BR5H-2290431"));
        await page.getByRole("button", { name: "Light: a1/pd4" }).click();
        await seen(page.getByText("Waiting for a disk with another serial number"));
        stage.sim("disk", "replace", "a1/pd4");
        stage.round();
        await seen(page.getByText("The new disk is there").first());
        const rebuild = page.getByRole("button", { name: "Rebuild data1 (a1/vd1)" });
        const running = page.getByRole("progressbar", { name: "Rebuild of data1 (a1/vd1)" });
        await seen(rebuild.or(running).first());
        if (await rebuild.isVisible()) {
            await rebuild.click();
            await page.getByRole("dialog").getByRole("button", { name: "Rebuild", exact: true }).click();
        }
        await seen(running);
        await page.reload();
        await seen(running);
        stage.sim("clock", "advance", "10h");
        stage.round();
        await seen(page.getByText("Redundancy is complete again."));
        assert.deepEqual(await axeFinds(page), []);
        quiet(stage);
    });
});

describe("four adapters of 128 disks", () => {
    let stage;
    afterEach(() => stage.close());
    after(closeBrowser);

    it("are shown a hundred rows at a time, and each bay", async () => {
        stage = new Stage({ topology: "rack" });
        stage.round();
        const page = await stage.page({ path: "#/disks" });
        await seen(page.getByText("1 to 100 of 512"));
        await page.getByRole("button", { name: "Next" }).click();
        await seen(page.getByText("101 to 200 of 512"));
        await goTo(page, "enclosures");
        await seen(page.getByRole("button", { name: /a0\/pd0/ }).first());
        quiet(stage);
    });
});
