// The lists that views show: read when a view opens, when a counter of changes moves and after an act of our own.
// Old items stay, with what went wrong beside them.
import { useCallback, useEffect, useSyncExternalStore } from "react";
import type { Failure } from "../model/failure.ts";
import type { Adapter, Battery, Dg, Disk, Element, Enclosure, Flash, Task, Vd } from "../model/types.ts";
import { list, type Known } from "./vexorctl.ts";
import { onPrivilege } from "./privilege.ts";
import { currentHealth, onHealth } from "./status.ts";

/** Of a list: the command, and the counters of the service that move when it has changed. What virtual disks and disks
 *  do, several kinds of events tell. */
interface Source {
    args: string[];
    counters: string[];
}

const kSources = {
    adapters: { args: ["adapter", "list"], counters: ["adapter", "flash", "misc"] },
    vds: { args: ["vd", "list"], counters: ["any"] },
    dgs: { args: ["dg", "list"], counters: ["any"] },
    disks: {
        // Only what lists show: all fields of a thousand disks are six times as much.
        args: ["disk", "list", "--columns",
            "address,state,size_bytes,free_bytes,vd,dg,model,serial,enclosure,slot,phy,smart_alarm,locate_light"],
        counters: ["any"],
    },
    enclosures: { args: ["enclosure", "list"], counters: ["enclosure", "expander"] },
    elements: { args: ["enclosure", "elements"], counters: ["enclosure"] },
    batteries: { args: ["battery", "list"], counters: ["battery"] },
    flash: { args: ["flash", "list"], counters: ["flash"] },
    tasks: { args: ["task", "list"], counters: ["any"] },
} satisfies Record<string, Source>;

interface Items {
    adapters: Adapter; vds: Vd; dgs: Dg; disks: Disk; enclosures: Enclosure; elements: Element;
    batteries: Battery; flash: Flash; tasks: Task;
}
export type Noun = keyof typeof kSources;

export interface List<T> {
    /** Null until the first answer. */
    items: T[] | null;
    failure: Failure | null;
    at: number | null;
}

class Kept {
    state: List<unknown> = { items: null, failure: null, at: null };
    readonly known: Known = new Map();
    readonly watchers = new Set<() => void>();
    private reading: Promise<void> | null = null;
    private again = false;
    counted = "";

    constructor(private readonly source: Source) {}

    counters(): string {
        const { counters, adapters } = currentHealth().status ?? { counters: {} as Record<string, number | null>, adapters: [] };
        // Some changes are no event: then the numbers of objects tell them.
        const numbers = adapters.map(({ virtual_disks, disks, disk_groups, enclosures }) =>
            [virtual_disks, disks, disk_groups, enclosures].join(","));
        return [...this.source.counters.map(name => counters[name] ?? "?"), ...numbers].join(" ");
    }

    async read(): Promise<void> {
        if (this.reading) {
            this.again = true;
            return this.reading;
        }
        this.reading = (async () => {
            do {
                this.again = false;
                this.counted = this.counters();
                const { items, failure } = await list<unknown>(this.source.args, this.known);
                // An answer that failed whole says nothing of the items: what was seen last stays.
                const keep = failure !== null && failure.kind !== "partial" && items.length === 0;
                this.state = {
                    items: keep ? this.state.items : items, failure, at: keep ? this.state.at : Date.now(),
                };
                for (const watcher of this.watchers) watcher();
            } while (this.again);
        })();
        await this.reading;
        this.reading = null;
    }
}

const kept = new Map<Noun, Kept>();

function keptOf(noun: Noun): Kept {
    let found = kept.get(noun);
    if (!found) kept.set(noun, found = new Kept(kSources[noun]));
    return found;
}

/** Reads again what is on the screen; the rest is read when it is opened. */
export async function refresh(): Promise<void> {
    await Promise.all([...kept.values()].map(entry => {
        if (entry.watchers.size > 0) return entry.read();
        entry.counted = "";
        return Promise.resolve();
    }));
}

const kTaskMs = 2000;
const kWithoutServiceMs = 10000;

export function followChanges(): void {
    onHealth(() => {
        if (cockpit.hidden || currentHealth().service !== null) return;
        for (const entry of kept.values()) {
            if (entry.watchers.size > 0 && entry.counted !== entry.counters()) void entry.read();
        }
    });
    onPrivilege(() => void refresh());
    cockpit.addEventListener("visibilitychange", () => !cockpit.hidden && void refresh());
    // Progress moves no counter for most of its percents.
    setInterval(() => {
        const tasks = kept.get("tasks");
        if (cockpit.hidden || !tasks || tasks.watchers.size === 0) return;
        if ((tasks.state.items?.length ?? 0) > 0) void tasks.read();
    }, kTaskMs);
    setInterval(() => {
        if (!cockpit.hidden && currentHealth().service !== null) void refresh();
    }, kWithoutServiceMs);
}

export function useList<N extends Noun>(noun: N): List<Items[N]> {
    const entry = keptOf(noun);
    const subscribe = useCallback((watcher: () => void) => {
        entry.watchers.add(watcher);
        return () => void entry.watchers.delete(watcher);
    }, [entry]);
    useEffect(() => {
        if (entry.state.items === null || entry.counted !== entry.counters()) void entry.read();
    }, [entry]);
    return useSyncExternalStore(subscribe, () => entry.state) as List<Items[N]>;
}
