// The overview: what is wrong first, from the service's report alone; also on every other page of Cockpit.
import assert from "node:assert/strict";
import { after, afterEach, beforeEach, describe, it } from "node:test";
import { closeBrowser, Stage } from "../stage.mjs";
import { axeFinds, quiet, seen } from "../checks.mjs";

describe("the overview", () => {
    let stage;
    beforeEach(() => { stage = new Stage(); });
    afterEach(() => stage.close());
    after(closeBrowser);

    it("is one line when all is well", async () => {
        stage.round();
        const page = await stage.page();
        await seen(page.getByText("All is well."));
        await seen(page.getByText("2 adapters, 3 virtual disks, 24 disks, 2 spares"));
        assert.deepEqual(await axeFinds(page), []);
        quiet(stage);
    });

    it("has the worst condition first, with its sentence and what to do", async () => {
        stage.sim("battery", "charge", "a0", "10");
        stage.loseRedundancy();
        stage.round();
        const [worst] = stage.conditions();
        const page = await stage.page();
        const first = page.getByRole("region", { name: "Health" }).getByRole("listitem").first();
        await seen(first.getByText(worst.sentence));
        await seen(first.getByText("Critical"));
        await seen(first.getByRole("button", { name: "Replace a1/pd4" }));
        assert.deepEqual(await axeFinds(page), []);
        quiet(stage);
    });

    it("follows what the service writes without being loaded again", async () => {
        stage.round();
        const page = await stage.page();
        await seen(page.getByText("All is well."));
        stage.sim("disk", "fail", "a0/pd1");
        stage.round();
        await seen(page.getByText("DATABASE (a0/vd0) survives no failure until its rebuild ends").first());
        await page.getByText("All is well.").waitFor({ state: "detached" });
        await seen(page.getByRole("progressbar", { name: "Rebuild of DATABASE (a0/vd0)" }));
        quiet(stage);
    });

    it("is in the menu of Cockpit on another page", async () => {
        stage.loseRedundancy();
        stage.round();
        const page = await stage.page({ inShell: true, path: "" });
        await page.goto(`http://127.0.0.1:${stage.port}/system`);
        const entry = page.locator("#host-apps a").filter({ hasText: "RAID" });
        await seen(entry.locator("#raid-error svg"));
    });

    it("asks the controllers itself when the service is silent, and says so", async () => {
        stage.round();
        stage.sim("disk", "fail", "a0/pd1");
        stage.report({ once: false, written_at: 1000 });
        const page = await stage.page();
        await seen(page.getByText("The event service is not running"));
        await seen(page.getByText("DATABASE (a0/vd0) survives no failure until its rebuild ends").first());
        quiet(stage);
    });

    it("does the same when there is no service, and finds it when it starts", async () => {
        stage.sim("disk", "fail", "a0/pd1");
        const page = await stage.page();
        await seen(page.getByText("The event service is not running"));
        await seen(page.getByText("DATABASE (a0/vd0) survives no failure until its rebuild ends").first());
        stage.round();
        await page.getByText("The event service is not running").waitFor({ state: "detached" });
        quiet(stage);
    });
});
