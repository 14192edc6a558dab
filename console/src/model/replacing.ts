// The steps of replacing a disk. They come from what the machine says and not from what was clicked, so that a
// reload, another browser or the command line moves them, too.
import type { Disk, Task, Vd } from "./types.ts";

export type Step = "find" | "swap" | "rebuild" | "done";

export interface Replacing {
    step: Step;
    /** The disk that is at the address now. */
    now: Disk | null;
    /** Whether that is another one than the one to be replaced. */
    swapped: boolean;
    /** The virtual disks that miss something. */
    damaged: Vd[];
    /** The rebuild or copyback that runs for it. */
    running: Task | null;
    /** Whether redundancy is whole again without this disk: a spare took its place. */
    unhurried: boolean;
    /** The disk that could take the lost one's place, if nothing runs by itself. */
    candidate: Disk | null;
}

export interface Seen {
    disks: Disk[];
    vds: Vd[];
    tasks: Task[];
}

const kRestoring = ["rebuild", "copyback"];

function isGone(disk: Disk | null): boolean {
    return disk === null || disk.state === "missing";
}

/** Redundancy below its level's: what is not known counts as lost. */
export function isDamaged(vd: Vd): boolean {
    const state = vd.state?.name;
    return !(state === "optimal" || state === "foreign") ||
        (vd.members ?? []).some(member => member.state !== "optimal");
}

/** The steps of replacing the disk that has, or had, this serial number at the address. */
export function replacing(address: string, serial: string | null, seen: Seen): Replacing {
    const adapter = address.split("/")[0] ?? "";
    const now = seen.disks.find(disk => disk.address === address) ?? null;
    const swapped = now !== null && !isGone(now) && serial !== null && now.serial !== null && now.serial !== serial;
    const mine = seen.vds.filter(vd => vd.address.startsWith(`${adapter}/`));
    const damaged = mine.filter(isDamaged);
    const running = seen.tasks.find(task => task.address.startsWith(`${adapter}/`) &&
        kRestoring.includes(task.activity.name ?? "")) ?? null;
    const candidate = swapped && now.state === "free" ? now : null;
    let step: Step;
    if (isGone(now)) step = "swap";
    else if (!swapped) step = now?.locate_light === true ? "swap" : "find";
    else step = running !== null || damaged.length > 0 ? "rebuild" : "done";
    return { step, now, swapped, damaged, running, unhurried: damaged.length === 0 && running === null, candidate };
}
