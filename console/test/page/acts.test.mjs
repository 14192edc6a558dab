// What the page does to the machine: by mouse, and one of each kind by the keyboard alone.
import assert from "node:assert/strict";
import { after, afterEach, beforeEach, describe, it } from "node:test";
import { closeBrowser, Stage } from "../stage.mjs";
import { axeFinds, goTo, quiet, seen } from "../checks.mjs";

describe("the page acts", () => {
    let stage;
    beforeEach(() => {
        stage = new Stage();
        stage.round();
    });
    afterEach(() => stage.close());
    after(closeBrowser);

    const menu = async (page, of, action) => {
        await page.getByRole("button", { name: `Actions for ${of}`, exact: true }).click();
        await page.getByRole("menuitem", { name: action }).click();
    };
    const disk = address => stage.items("disk", "show", address)[0];
    const until = async (what, look) => {
        for (const end = Date.now() + 60000; !look(); await new Promise(done => setTimeout(done, 100))) {
            assert.ok(Date.now() < end, `it never came to this: ${what}`);
        }
    };

    it("on lights and spares", async () => {
        const page = await stage.page({ path: "#/disks" });
        await page.getByRole("button", { name: "Light: a1/pd3", exact: true }).click();
        await seen(page.getByRole("button", { name: "Light off: a1/pd3", exact: true }));
        assert.equal(disk("a1/pd3").locate_light, true);
        await page.getByRole("button", { name: "Light off: a1/pd3", exact: true }).click();
        await seen(page.getByRole("button", { name: "Light: a1/pd3", exact: true }));
        assert.equal(disk("a1/pd3").locate_light, false);

        await menu(page, "a1/pd3", "Make spare");
        assert.deepEqual(await axeFinds(page), []);
        await page.getByRole("dialog").getByRole("button", { name: "Make spare" }).click();
        await page.getByRole("dialog").waitFor({ state: "detached" });
        assert.equal(disk("a1/pd3").state, "global_spare");
        await menu(page, "a1/pd3", "Free the spare");
        await page.getByRole("dialog").getByRole("button", { name: "Free", exact: true }).click();
        await page.getByRole("dialog").waitFor({ state: "detached" });
        assert.equal(disk("a1/pd3").state, "free");
        quiet(stage);
    });

    it("on a new virtual disk, in three clicks, with what it will be before", async () => {
        const page = await stage.page();
        await page.getByRole("button", { name: "Create virtual disk" }).click();
        const dialog = page.getByRole("dialog");
        await seen(dialog.getByText("Usable size"));
        await seen(dialog.getByText("will survive 1 failed disk"));
        assert.deepEqual(await axeFinds(page), []);
        await dialog.getByRole("textbox", { name: "Name" }).fill("fresh");
        await dialog.getByRole("textbox", { name: "Size" }).fill("20GiB");
        await seen(dialog.getByText("20 GiB").first());
        await dialog.getByRole("button", { name: "Create", exact: true }).click();
        await dialog.waitFor({ state: "detached" });
        const [made] = stage.items("vd", "list").filter(vd => vd.name === "fresh");
        assert.deepEqual([made.level.name, made.disk_count, made.address.split("/")[0]], ["raid5", 4, "a1"]);
        quiet(stage);
    });

    it("on nothing while what was chosen cannot be", async () => {
        const page = await stage.page({ path: "#/virtual-disks" });
        await page.getByRole("button", { name: "Create virtual disk" }).click();
        const dialog = page.getByRole("dialog");
        await dialog.getByRole("radio", { name: "RAID 10" }).click();
        await dialog.getByRole("checkbox", { name: "a1/pd6" }).click();
        await seen(dialog.getByText("RAID 10 takes at least 4 disks."));
        const button = dialog.getByRole("button", { name: "Create", exact: true });
        assert.equal(await button.isDisabled(), true);
        await dialog.getByRole("textbox", { name: "Name" }).fill("a name of too many");
        await seen(dialog.getByText("The name is longer than 15 bytes."));
        // What was looked at before, of other disks, may have been answered only now.
        assert.equal(await button.isDisabled(), true);
    });

    it("on a deletion only with the name, by the keyboard alone", async () => {
        const page = await stage.page({ path: "#/virtual-disks" });
        const opener = page.getByRole("button", { name: "Actions for MIRROR (a1/vd0)" });
        await opener.focus();
        await page.keyboard.press("Enter");
        await seen(page.getByRole("menuitem", { name: "Delete" }));
        await page.keyboard.press("End");
        await page.keyboard.press("ArrowUp");
        await page.keyboard.press("ArrowDown");
        await page.getByRole("menuitem", { name: "Delete" }).press("Enter");
        const dialog = page.getByRole("dialog", { name: "Delete the virtual disk MIRROR (a1/vd0)?" });
        await seen(dialog.getByText("all data on it will be lost"));
        assert.deepEqual(await axeFinds(page), []);
        const field = dialog.getByRole("textbox", { name: "Type MIRROR to confirm" });
        await page.waitForFunction(() => document.activeElement?.id === "change-first");
        await page.keyboard.type("MIRROR".slice(1));
        await page.keyboard.press("Enter");
        assert.equal(stage.items("vd", "list").some(vd => vd.name === "MIRROR"), true);
        await seen(field);
        await page.keyboard.press("Escape");
        await dialog.waitFor({ state: "detached" });
        assert.equal(stage.items("vd", "list").some(vd => vd.name === "MIRROR"), true);
        await opener.press("Enter");
        await page.getByRole("menuitem", { name: "Delete" }).press("Enter");
        await page.waitForFunction(() => document.activeElement?.id === "change-first");
        await page.keyboard.type("MIRROR");
        await page.waitForFunction(() => ![...document.querySelectorAll("button")].find(button => button.textContent === "Delete")?.disabled);
        await page.keyboard.press("Enter");
        await dialog.waitFor({ state: "detached" });
        assert.equal(stage.items("vd", "list").some(vd => vd.name === "MIRROR"), false);
        quiet(stage);
    });

    it("on nothing when the object was deleted under the open dialog", async () => {
        const page = await stage.page({ path: "#/virtual-disks" });
        await menu(page, "MIRROR (a1/vd0)", "Delete");
        const dialog = page.getByRole("dialog");
        await seen(dialog.getByText("all data on it will be lost"));
        await dialog.getByRole("textbox", { name: "Type MIRROR to confirm" }).fill("MIRROR");
        stage.vexorctl("vd", "delete", "a1/vd0", "--yes");
        stage.vexorctl("vd", "create", "a1/pd0", "a1/pd1", "--raid", "1", "--name", "OTHER", "--yes");
        await dialog.getByRole("button", { name: "Delete", exact: true }).click();
        await seen(dialog.getByText("Nothing was done: something has changed meanwhile"));
        assert.equal(stage.items("vd", "list").some(vd => vd.name === "OTHER"), true);
    });

    it("on pauses and ends of activities", async () => {
        stage.sim("disk", "fail", "a0/pd1");
        stage.round();
        const page = await stage.page();
        const of = "DATABASE (a0/vd0)";
        await page.getByRole("button", { name: `Pause: ${of}` }).click();
        await until("paused", () => stage.items("task", "list")[0]?.standing === "paused");
        stage.round();
        await page.getByRole("button", { name: `Resume: ${of}` }).click();
        await until("running", () => stage.items("task", "list")[0]?.standing === "running");
        await goTo(page, "activities");
        await page.getByRole("button", { name: "Pause all of a0" }).click();
        await until("paused", () => stage.items("task", "list")[0]?.standing === "paused");
        await page.getByRole("button", { name: `Stop: ${of}` }).click();
        await page.getByRole("dialog").getByRole("button", { name: "Stop", exact: true }).click();
        await page.getByRole("dialog").waitFor({ state: "detached" });
        await until("stopped", () => stage.items("task", "list").every(task => task.standing !== "running" && task.standing !== "paused"));
    });

    it("on settings, of which only those that changed are sent", async () => {
        const page = await stage.page({ path: "#/adapters" });
        await page.getByRole("button", { name: "Settings of a0", exact: true }).click();
        const dialog = page.getByRole("dialog");
        await seen(dialog.getByText("Nothing is changed yet."));
        assert.deepEqual(await axeFinds(page), []);
        await dialog.getByRole("spinbutton", { name: "Rebuild rate" }).fill("90");
        await dialog.getByText("Show command").click();
        await seen(dialog.getByText("vexorctl adapter set a0 --rebuild-rate=90"));
        await dialog.getByRole("button", { name: "Save" }).click();
        await dialog.waitFor({ state: "detached" });
        assert.equal(stage.items("adapter", "list")[0].rebuild_rate_percent, 90);

        await goTo(page, "virtual-disks");
        await menu(page, "MIRROR (a1/vd0)", "Settings");
        await dialog.getByRole("textbox", { name: "Name" }).fill("it's $(me)");
        await dialog.getByRole("button", { name: "Save" }).click();
        await dialog.waitFor({ state: "detached" });
        assert.equal(stage.items("vd", "list").find(vd => vd.address === "a1/vd0").name, "it's $(me)");
        await seen(page.getByRole("link", { name: "it's $(me) (a1/vd0)" }));

        await goTo(page, "disks");
        await menu(page, "a1/pd3", "Settings");
        await dialog.getByRole("combobox", { name: "Write cache" }).selectOption("on");
        await dialog.getByRole("button", { name: "Save" }).click();
        await dialog.waitFor({ state: "detached" });
        assert.equal(disk("a1/pd3").write_cache, true);
        quiet(stage);
    });

    it("on disks, checks, migrations, batteries and alarms", async () => {
        const page = await stage.page({ path: "#/disks" });
        const dialog = page.getByRole("dialog");
        const confirmed = async (verb, typed) => {
            if (typed) await dialog.getByRole("textbox", { name: `Type ${typed} to confirm` }).fill(typed);
            await dialog.getByRole("button", { name: verb, exact: true }).click();
            await dialog.waitFor({ state: "detached" });
        };
        await menu(page, "a1/pd2", "Wipe");
        await confirmed("Wipe", "a1/pd2");
        await menu(page, "a0/pd4", "Set offline");
        await seen(dialog.getByText("survives"));
        await confirmed("Set offline", "a0/pd4");
        await until("offline", () => disk("a0/pd4").state !== "configured");
        await goTo(page, "virtual-disks");
        await menu(page, "MIRROR (a1/vd0)", "Check consistency");
        await confirmed("Check");
        await until("checked", () => stage.items("task", "list").some(task => task.activity.name === "check"));
        stage.sim("clock", "advance", "20h");
        stage.round();
        await menu(page, "MIRROR (a1/vd0)", "Migrate");
        await seen(dialog.getByText("Choose another level or other disks."));
        await dialog.getByRole("combobox", { name: "New level" }).selectOption("raid5");
        await dialog.getByRole("checkbox", { name: "a1/pd3" }).click();
        await confirmed("Migrate", "MIRROR");
        await until("migrating", () => stage.items("task", "list").some(task => task.activity.name === "migration"));
        await goTo(page, "adapters");
        await page.getByRole("button", { name: "Relearn the battery of a0" }).click();
        await confirmed("Relearn");
        await page.getByRole("button", { name: "Mute the alarm of a0" }).click();
        await seen(page.getByText("The alarm of a0 is muted"));
        quiet(stage);
    });
});
