// The dialog that is open, if one is, and the short ones: what asks for nothing but a confirmation.
import { useSyncExternalStore, type ReactNode } from "react";
import type { Disk, Task, Vd, Dg } from "../model/types.ts";
import type { Activity } from "../model/health.ts";
import { named } from "../model/text.ts";
import { _, fill } from "../host/language.ts";
import { activityWord } from "../parts/state.tsx";
import { ChangeDialog } from "./change.tsx";

let open: ReactNode = null;
const listeners = new Set<() => void>();

export function show(dialog: ReactNode): void {
    open = dialog;
    for (const listener of listeners) listener();
}

export const closeDialog = (): void => show(null);

export function OpenDialog() {
    return useSyncExternalStore(listener => {
        listeners.add(listener);
        return () => listeners.delete(listener);
    }, () => open);
}

interface Confirmed {
    title: string;
    verb: string;
    args: string[];
    done: string;
    typed?: string;
    danger?: boolean;
}

function confirm(props: Confirmed): void {
    show(<ChangeDialog {...props} onClose={closeDialog} />);
}

/** An object without a name is confirmed by its address. */
export function deleteVd(vd: Pick<Vd, "address" | "name">): void {
    confirm({
        title: fill(_("Delete the virtual disk $0?"), named(vd.address, vd.name)), verb: _("Delete"), danger: true,
        typed: vd.name ?? vd.address, args: ["vd", "delete", vd.address], done: fill(_("$0 is deleted"), named(vd.address, vd.name)),
    });
}

export function deleteDg(dg: Pick<Dg, "address" | "name">): void {
    confirm({
        title: fill(_("Delete the disk group $0?"), named(dg.address, dg.name)), verb: _("Delete"), danger: true,
        typed: dg.name ?? dg.address, args: ["dg", "delete", dg.address], done: fill(_("$0 is deleted"), named(dg.address, dg.name)),
    });
}

export function wipe(disk: Pick<Disk, "address">): void {
    confirm({
        title: fill(_("Wipe the disk $0?"), disk.address), verb: _("Wipe"), danger: true, typed: disk.address,
        args: ["disk", "wipe", disk.address], done: fill(_("$0 is wiped"), disk.address),
    });
}

export function setOffline(disk: Pick<Disk, "address">): void {
    confirm({
        title: fill(_("Set the disk $0 offline?"), disk.address), verb: _("Set offline"), danger: true, typed: disk.address,
        args: ["disk", "set", disk.address, "--state", "offline"], done: fill(_("$0 is offline"), disk.address),
    });
}

export function makeSpare(disk: Pick<Disk, "address">): void {
    confirm({
        title: fill(_("Make $0 a spare?"), disk.address), verb: _("Make spare"), args: ["disk", "spare", disk.address],
        done: fill(_("$0 is a spare"), disk.address),
    });
}

export function freeSpare(disk: Pick<Disk, "address">): void {
    confirm({
        title: fill(_("Free the spare $0?"), disk.address), verb: _("Free"), args: ["disk", "unspare", disk.address],
        done: fill(_("$0 is free"), disk.address),
    });
}

export function startRebuild(vd: Pick<Vd, "address" | "name">, disk: string): void {
    confirm({
        title: fill(_("Rebuild $0 onto $1?"), named(vd.address, vd.name), disk), verb: _("Rebuild"),
        args: ["task", "start", vd.address, "--kind", "rebuild", "--disk", disk],
        done: fill(_("The rebuild of $0 has started"), named(vd.address, vd.name)),
    });
}

export function startCheck(vd: Pick<Vd, "address" | "name">): void {
    confirm({
        title: fill(_("Check the consistency of $0?"), named(vd.address, vd.name)), verb: _("Check"),
        args: ["task", "start", vd.address, "--kind", "check"],
        done: fill(_("The check of $0 has started"), named(vd.address, vd.name)),
    });
}

export function stopActivity(activity: Pick<Activity, "address" | "name" | "activity"> | Task): void {
    const what = typeof activity.activity === "object" && activity.activity ? activity.activity.name : activity.activity;
    confirm({
        title: fill(_("Stop: $0 of $1?"), activityWord(what as string | null), named(activity.address, activity.name)), verb: _("Stop"),
        danger: true, args: ["task", "abort", activity.address], done: fill(_("$0 is stopped"), named(activity.address, activity.name)),
    });
}

export function relearn(adapter: string): void {
    confirm({
        title: fill(_("Start a relearn cycle of the battery of $0?"), adapter), verb: _("Relearn"),
        args: ["battery", "relearn", adapter], done: fill(_("The battery of $0 relearns"), adapter),
    });
}
