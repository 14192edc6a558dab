// Which disks a list shows.
import type { Disk } from "./types.ts";
import { adapterOf } from "./text.ts";

export interface DiskFilter {
    text: string;
    state: string;
    adapter: string;
    enclosure: string;
    smart: boolean;
}

export const kNoFilter: DiskFilter = { text: "", state: "", adapter: "", enclosure: "", smart: false };

export function isFiltered(filter: DiskFilter): boolean {
    return Object.values(filter).some(Boolean);
}

export function disksShown(disks: Disk[], filter: DiskFilter): Disk[] {
    const text = filter.text.trim().toLowerCase();
    return disks.filter(disk =>
        (!filter.state || disk.state === filter.state) &&
        (!filter.adapter || adapterOf(disk.address) === filter.adapter) &&
        (!filter.enclosure || disk.enclosure === filter.enclosure) &&
        (!filter.smart || disk.smart_alarm === true) &&
        (text === "" || [disk.address, disk.model, disk.serial].some(part => part?.toLowerCase().includes(text))));
}

/** What is pressing stands first: failed and missing disks, then those that announce it. */
export function urgency(disk: Disk): number {
    if (disk.state === "failed" || disk.state === "missing") return 0;
    if (disk.state === "offline") return 1;
    if (disk.smart_alarm) return 2;
    if (disk.state === "rebuilding" || disk.state === "copyback_target") return 3;
    return 4;
}
