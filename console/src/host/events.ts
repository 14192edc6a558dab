// Events as they come, for as long as somebody looks at them.
import { useEffect, useRef, useState } from "react";
import { failureOf, type Failure } from "../model/failure.ts";
import { added, comesAfterHole, joined, numberOf, type Row } from "../model/events.ts";
import { Lines } from "../model/lines.ts";
import { list } from "./vexorctl.ts";
import type { Event } from "../model/types.ts";

const kAtFirst = 100;
const kGathered = 100;

export interface Followed {
    rows: Row[];
    failure: Failure | null;
    ready: boolean;
    older: () => Promise<void>;
    again: () => void;
}

export function useEvents(paused: boolean): Followed {
    const [rows, setRows] = useState<Row[]>([]);
    const [failure, setFailure] = useState<Failure | null>(null);
    const [ready, setReady] = useState(false);
    const [round, setRound] = useState(0);
    const waiting = useRef<unknown[]>([]);
    const held = useRef(paused);
    held.current = paused;

    useEffect(() => {
        let timer: number | undefined;
        const flush = () => {
            timer = undefined;
            if (held.current) return;
            const lines = waiting.current;
            waiting.current = [];
            if (lines.length > 0) setRows(before => added(before, lines));
            // Between the list and the begin of the stream events may have come: the store has them.
            if (lines.some(line => comesAfterHole(last, line))) void read();
            last = lines.reduce<number>((before, line) => numberOf(line) ?? before, last);
        };
        let last = -1;
        const soon = () => { timer ??= window.setTimeout(flush, kGathered); };
        let ended = false;
        let stop = () => { ended = true; };
        setFailure(null);
        const read = async () => {
            const stored = await list<Event>(["event", "list", "--last", String(kAtFirst)]);
            if (ended) return;
            // A store that nobody has made yet is no failure: the stream waits for it.
            if (stored.failure && stored.failure.kind !== "unusable") setFailure(stored.failure);
            last = stored.items.at(-1)?.sequence ?? -1;
            setRows(before => joined(before, stored.items));
            setReady(true);
        };
        const begin = async () => {
            await read();
            if (ended) return;
            const lines = new Lines();
            const follow = cockpit.spawn(["vexorctl", "event", "follow", "-o", "jsonl"], { superuser: "try", err: "message" });
            follow.stream(chunk => {
                waiting.current.push(...lines.take(chunk, line => setFailure({ kind: "broken", message: line })));
                soon();
            });
            // close() without a reason ends as success: only what ends by itself is told.
            follow.catch(why => !ended && setFailure(failureOf(why)));
            stop = () => {
                ended = true;
                follow.close("terminated");
            };
        };
        void begin();
        return () => {
            window.clearTimeout(timer);
            stop();
        };
    }, [round]);

    useEffect(() => {
        if (paused || waiting.current.length === 0) return;
        const lines = waiting.current;
        waiting.current = [];
        setRows(before => added(before, lines));
    }, [paused]);

    const older = async () => {
        const stored = await list<Event>(["event", "list", "--last", "500"]);
        if (stored.failure) setFailure(stored.failure);
        else setRows(added([], stored.items));
    };
    return { rows, failure, ready, older, again: () => setRound(before => before + 1) };
}
