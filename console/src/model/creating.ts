// What a dialog proposes for a new virtual disk.
import type { Adapter, Disk } from "./types.ts";
import { adapterOf, compareAddresses } from "./text.ts";

export interface LevelRule {
    name: string;
    /** As vexorctl takes it. */
    option: string;
    least: number;
    /** How many of the disks are proposed at most. */
    proposed: number;
    even?: boolean;
    exactly?: number;
}

export const kLevels: LevelRule[] = [
    { name: "raid5", option: "5", least: 3, proposed: 4 },
    { name: "raid6", option: "6", least: 4, proposed: 6 },
    { name: "raid1", option: "1", least: 2, proposed: 2, exactly: 2 },
    { name: "raid10", option: "10", least: 4, proposed: 4, even: true },
    { name: "raid0", option: "0", least: 1, proposed: 2 },
];

export function isFree(disk: Pick<Disk, "state" | "free_bytes">): boolean {
    return disk.state === "free" && (disk.free_bytes ?? 0) > 0;
}

type Known = Disk & { boot_record?: boolean | null };

function freeOn(disks: Known[], adapter: string): Known[] {
    return disks.filter(disk => adapterOf(disk.address) === adapter && isFree(disk) && disk.boot_record === false);
}

function alikeOn(disks: Known[], adapter: string): Known[] {
    const groups = new Map<number, Known[]>();
    for (const disk of freeOn(disks, adapter)) groups.set(disk.size_bytes ?? 0, [...groups.get(disk.size_bytes ?? 0) ?? [], disk]);
    return [...groups.values()].sort((a, b) => b.length - a.length)[0] ?? [];
}

/** The free disks of an adapter that are most alike, as many as the level is proposed with. Those with a boot record
 *  hold data, and none whose boot record is unknown is proposed. */
export function proposal(disks: Known[], adapter: string, level: LevelRule): string[] {
    const free = freeOn(disks, adapter);
    const alike = alikeOn(disks, adapter);
    const from = alike.length >= level.least ? alike : free;
    if (from.length < level.least) return [];
    const most = Math.min(from.length, level.exactly ?? level.proposed);
    const count = level.even ? most - most % 2 : most;
    return from.map(disk => disk.address).sort(compareAddresses).slice(0, count);
}

/** The adapter with the most free disks that are alike. */
export function adapterToPropose(disks: Known[], adapters: Adapter[]): string | null {
    const best = adapters
        .map(({ address }) => ({ address, count: alikeOn(disks, address).length }))
        .sort((a, b) => b.count - a.count || compareAddresses(a.address, b.address))[0];
    return best?.address ?? null;
}

/** Why so many disks do not do for a level; null when they do. */
export function unfit(level: LevelRule, count: number): "few" | "odd" | "not_two" | null {
    if (level.exactly !== undefined && count !== level.exactly) return "not_two";
    if (count < level.least) return "few";
    return level.even && count % 2 === 1 ? "odd" : null;
}

/** At most 15 bytes, not characters. */
export function nameFits(name: string): boolean {
    return new TextEncoder().encode(name).length <= 15;
}

/** How many bytes of unequal disks are not used; null where a size is unknown. */
export function wasted(disks: Pick<Disk, "free_bytes">[]): number | null {
    const sizes = disks.map(disk => disk.free_bytes);
    if (sizes.length === 0 || sizes.some(size => size === null)) return null;
    const least = Math.min(...sizes as number[]);
    return (sizes as number[]).reduce((sum, size) => sum + size - least, 0);
}
