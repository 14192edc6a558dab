// The bays of enclosures, derived from what the disks say of themselves.
import type { Disk, Enclosure } from "./types.ts";
import { adapterOf, compareAddresses } from "./text.ts";

export interface Bay {
    /** As it is labelled; null where the disk does not tell its place. */
    number: number | null;
    disk: Disk | null;
}

export interface Shelf {
    key: string;
    /** The enclosure; null for disks that are in none. */
    enclosure: Enclosure | null;
    adapter: string;
    bays: Bay[];
    columns: number;
}

/** What an administrator has written about an enclosure, by its logical ID. */
export interface Layout {
    columns?: number;
    first_number?: number;
    /** The phys in the order of the bays. */
    order?: number[];
}

function byNumber(a: Bay, b: Bay): number {
    return (a.number ?? 1e9) - (b.number ?? 1e9);
}

// Empty bays between the first and the last disk are shown. Which phys of an expander lead to no bay at all it does
// not say, so that nothing is invented before the first and behind the last.
function baysOf(disks: Disk[], layout: Layout | undefined): Bay[] {
    const bySlot = new Map<number, Disk[]>();
    const elsewhere: Bay[] = [];
    for (const disk of disks) {
        const slot = disk.slot ?? disk.phy;
        if (slot === null) elsewhere.push({ number: null, disk });
        else bySlot.set(slot, [...bySlot.get(slot) ?? [], disk]);
    }
    const slots = [...bySlot.keys()];
    const order = layout?.order ?? (slots.length === 0 ? []
        : Array.from({ length: Math.max(...slots) - Math.min(...slots) + 1 }, (_, index) => Math.min(...slots) + index));
    const first = layout?.first_number;
    const bays = order.flatMap((slot, index): Bay[] => {
        const number = first === undefined ? slot : first + index;
        const here = bySlot.get(slot) ?? [];
        bySlot.delete(slot);
        return here.length === 0 ? [{ number, disk: null }] : here.map(disk => ({ number, disk }));
    });
    // A layout that forgets a bay hides no disk.
    const left = [...bySlot].flatMap(([slot, here]) => here.map(disk => ({ number: slot, disk }))).sort(byNumber);
    return [...bays, ...left, ...elsewhere];
}

export function shelvesOf(
    disks: Disk[], enclosures: Enclosure[], layouts: Record<string, Layout> = {},
): Shelf[] {
    const shelves: Shelf[] = enclosures.map(enclosure => {
        const layout = enclosure.logical_id ? layouts[enclosure.logical_id] : undefined;
        const bays = baysOf(disks.filter(disk => disk.enclosure === enclosure.address), layout);
        return {
            key: enclosure.address,
            enclosure,
            adapter: adapterOf(enclosure.address),
            bays,
            columns: layout?.columns ?? (bays.length > 16 ? 6 : 4),
        };
    });
    const known = new Set(enclosures.map(enclosure => enclosure.address));
    const loose = new Map<string, Disk[]>();
    for (const disk of disks) {
        if (disk.enclosure !== null && known.has(disk.enclosure)) continue;
        const adapter = adapterOf(disk.address);
        loose.set(adapter, [...loose.get(adapter) ?? [], disk]);
    }
    for (const [adapter, here] of loose) {
        const sorted = [...here].sort((a, b) => compareAddresses(a.address, b.address));
        shelves.push({
            key: `${adapter}/ports`, enclosure: null, adapter,
            bays: sorted.map(disk => ({ number: null, disk })), columns: 4,
        });
    }
    return shelves.sort((a, b) => compareAddresses(a.key, b.key));
}
