// Each kind of failure in its one way.
import assert from "node:assert/strict";
import { mkdirSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, afterEach, describe, it } from "node:test";
import { closeBrowser, Stage } from "../stage.mjs";
import { axeFinds, goTo, seen } from "../checks.mjs";

describe("a failure", () => {
    let stage;
    afterEach(() => stage.close());
    after(closeBrowser);

    it("of a program that is not installed is an empty state", async () => {
        stage = new Stage({ tools: false });
        const page = await stage.page({ path: "#/disks" });
        await seen(page.getByRole("heading", { name: "vexorctl is not installed" }));
        assert.deepEqual(await axeFinds(page), []);
    });

    it("of permission shows what the service tells, and buttons that say why they do nothing", async () => {
        stage = new Stage({ user: "nobody" });
        stage.loseRedundancy();
        stage.round();
        const page = await stage.page();
        await seen(page.getByText("data1 (a1/vd1) has no redundancy left").first());
        const button = page.getByRole("button", { name: "Create virtual disk" });
        await page.waitForFunction(() => document.querySelector("button[aria-disabled=true]"));
        assert.equal(await button.getAttribute("aria-disabled"), "true");
        assert.equal(await button.getAttribute("title"), "Administrative access is needed for this.");
        await goTo(page, "disks");
        await seen(page.getByRole("heading", { name: "Administrative access is needed" }));
    });

    it("of the library shows vexorctl's own sentence", async () => {
        stage = new Stage();
        rmSync(join(stage.folder, "hxsim.db"));
        mkdirSync(join(stage.folder, "hxsim.db"));
        const page = await stage.page({ path: "#/disks" });
        await seen(page.getByRole("heading", { name: "The RAID controllers cannot be asked" }));
        await seen(page.getByText("the controller could not be opened"));
    });

    it("of a part shows the rest under a warning", async () => {
        stage = new Stage();
        stage.round();
        const page = await stage.page({ path: "#/adapters" });
        await seen(page.getByRole("region", { name: "Battery of a0" }));
        await goTo(page, "virtual-disks");
        await seen(page.getByRole("link", { name: "MIRROR (a1/vd0)" }));
        stage.sim("inject", "--call", "HX_LD_GetStatus", "--code", "7");
        stage.report({ counters: { any: 1 } });
        await seen(page.getByText(/Not everything could be read|What is shown is not up to date/).first());
        stage.sim("inject", "clear");
        await page.getByRole("button", { name: "Try again" }).first().click();
        await page.getByText(/Not everything could be read|What is shown is not up to date/).first().waitFor({ state: "detached" });
        await seen(page.getByRole("link", { name: "MIRROR (a1/vd0)" }));
    });

    it("of the service's report is told, and the controllers are asked", async () => {
        stage = new Stage();
        writeFileSync(stage.status, "{ no report");
        const page = await stage.page();
        await seen(page.getByText("Its report cannot be read."));
        await seen(page.getByText("All is well."));
    });
});
