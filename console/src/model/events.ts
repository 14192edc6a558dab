// The events that the page keeps: those that came, what is missing between them, the newest 500.
import type { Event, Gap } from "./types.ts";

export type Row = { row: "event"; event: Event } | { row: "gap"; gap: Gap };

export const kMostRows = 500;

function isGap(line: unknown): line is Gap {
    return typeof line === "object" && line !== null && (line as { record?: unknown }).record === "gap";
}

function isEvent(line: unknown): line is Event {
    return typeof line === "object" && line !== null && typeof (line as { sequence?: unknown }).sequence === "number";
}

/** The number of an event that a stream has brought; null of everything else. */
export function numberOf(line: unknown): number | null {
    return isEvent(line) ? line.sequence : null;
}

/** Whether events are missing before this one that no gap tells of. last is -1 where none is known. */
export function comesAfterHole(last: number, line: unknown): boolean {
    const number = numberOf(line);
    return number !== null && last >= 0 && number > last + 1;
}

/** The rows with what the store holds put in its place; rows before a reset stay before it. */
export function joined(rows: Row[], stored: Event[]): Row[] {
    const reset = rows.map(row => row.row === "gap" && row.gap.reason === "reset").lastIndexOf(true);
    const numbers = new Set(rows.slice(reset + 1).map(row => row.row === "event" ? row.event.sequence : null));
    const missing = stored.filter(event => !numbers.has(event.sequence));
    if (missing.length === 0) return rows;
    const after = [...rows.slice(reset + 1), ...missing.map((event): Row => ({ row: "event", event }))];
    const place = (row: Row) => row.row === "event" ? row.event.sequence : row.gap.next - 0.5;
    return [...rows.slice(0, reset + 1), ...after.sort((a, b) => place(a) - place(b))].slice(-kMostRows);
}

/** The rows with what a stream has brought, the oldest first. An event that is there already is not taken again,
 *  except behind a reset: numbers begin at 0 again there. */
export function added(rows: Row[], lines: unknown[]): Row[] {
    let last = -1;
    for (const row of rows) last = row.row === "gap" && row.gap.reason === "reset" ? -1
        : row.row === "event" ? row.event.sequence : last;
    const more: Row[] = [];
    for (const line of lines) {
        if (isGap(line)) {
            if (line.reason === "reset") last = -1;
            more.push({ row: "gap", gap: line });
        } else if (isEvent(line) && line.sequence > last) {
            last = line.sequence;
            more.push({ row: "event", event: line });
        }
    }
    return more.length === 0 ? rows : [...rows, ...more].slice(-kMostRows);
}

export interface EventFilter {
    text: string;
    /** The least severity: "" is any. */
    severity: string;
    adapter: string;
    class: string;
}

export const kSeverities = ["unknown", "other", "info", "warning", "minor", "major", "critical", "fatal"];

function graveness(name: string | null | undefined): number {
    return name ? kSeverities.indexOf(name) : -1;
}

export function shown(rows: Row[], filter: EventFilter): Row[] {
    const text = filter.text.trim().toLowerCase();
    return rows.filter(row => {
        // What is missing is told whatever is looked for: it may have been that.
        if (row.row === "gap") return true;
        const { event } = row;
        if (filter.severity && graveness(event.severity?.name) < graveness(filter.severity)) return false;
        if (filter.adapter && String(event.adapter) !== filter.adapter.replace(/^a/, "")) return false;
        if (filter.class && event.class?.name !== filter.class) return false;
        return text === "" || [event.text, event.address].some(part => part?.toLowerCase().includes(text));
    });
}

// A cell that begins so is calculated by a spreadsheet, and whoever names an array could make it do harm.
function cell(value: unknown): string {
    const text = value === null || value === undefined ? "" : String(value);
    return `"${(/^[=+\-@\t\r]/.test(text) ? `'${text}` : text).replaceAll('"', '""')}"`;
}

export function csv(rows: Row[]): string {
    const lines = rows.map(row => row.row === "event"
        ? [row.event.sequence, row.event.time, row.event.severity?.name, row.event.address, row.event.text]
        : [null, null, null, null, `${row.gap.reason}: ${row.gap.lost ?? "?"}`]);
    return [["number", "time", "severity", "address", "event"], ...lines]
        .map(line => line.map(cell).join(",") + "\r\n").join("");
}
