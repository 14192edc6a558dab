// The health of the machine as the page tells it: conditions in their order, how fresh they are, and what
// the icon in Cockpit's menu says. Sentences and next steps are those of the table of conditions.
import type { Status, StatusCondition, Task } from "./types.ts";

export type Level = "critical" | "unknown" | "warning" | "info" | "ok";

/** What "status.json" and "vexorctl check" both tell. */
export type Report = Pick<Status, "overall" | "counts" | "machine" | "conditions">;

export function isStatus(content: unknown): content is Status {
    return typeof content === "object" && content !== null &&
        (content as { schema?: unknown }).schema === "hxraidsvc-status/1";
}

/** The levels that call for somebody; the rest is told, not counted. */
export function levelOf(word: string): Level {
    switch (word) {
    case "critical":
    case "warning":
    case "info":
    case "ok":
        return word;
    default:
        return "unknown";
    }
}

/** The worst first, silenced ones last; the service's own order among equals. */
export function inOrder(conditions: StatusCondition[]): StatusCondition[] {
    const silenced = (condition: StatusCondition) => condition.silenced_until ? 1 : 0;
    return [...conditions].sort((a, b) => silenced(a) - silenced(b) || a.rank - b.rank);
}

/** What the menu of Cockpit shows beside the page's name, on every page; null where there is nothing to show. */
export function pageStatus(report: Report): { type: "error" | "warning"; title: string } | null {
    const worst = inOrder(report.conditions).find(condition => !condition.silenced_until);
    const level = worst ? levelOf(worst.level) : levelOf(report.overall);
    if (level === "ok" || level === "info") return null;
    return { type: level === "critical" ? "error" : "warning", title: worst?.sentence ?? report.overall };
}

// A service that runs from a timer writes when that says so.
const kOnceSeconds = 600;

/** How many seconds old a report may become before the service counts as not running: three rounds. */
export function shelfLife(status: Pick<Status, "interval_s" | "once">): number {
    return status.once ? Math.max(kOnceSeconds, 3 * status.interval_s) : 3 * status.interval_s;
}

/** The clocks of browser and machine differ: how much is learnt when a report is seen to change. */
export class Age {
    private skew = 0;
    private written: number | null = null;

    seen(written_at: number, now: number): void {
        // Only a change tells that the report was written just now.
        if (this.written !== null && written_at !== this.written) this.skew = now - written_at;
        this.written = written_at;
    }

    seconds(now: number): number | null {
        return this.written === null ? null : Math.max(0, now - this.written - this.skew);
    }
}

/** The disk that a condition is about or caused by: what a light helps to find. */
export function diskOf(condition: StatusCondition): string | null {
    const addresses = [condition.object.address, ...condition.cause.map(cause => cause.address),
        ...condition.folded.map(folded => folded.object.address)];
    return addresses.find(address => address !== null && /\/pd\d+$/.test(address)) ?? null;
}

const kReplaceable = ["DISK_FAILED", "DISK_MISSING", "DISK_OFFLINE", "DISK_PREDICTED_FAILURE", "DISK_REMAP_FULL",
    "DISK_REMAP_NEARLY_FULL", "DISK_MEDIA_ERRORS"];

/** Whether what helps is another disk in the place of this one. */
export function callsForReplacement(condition: StatusCondition): boolean {
    return [condition.code, ...condition.cause.map(cause => cause.code),
        ...condition.folded.map(folded => folded.code)].some(code => kReplaceable.includes(code));
}

/** An activity as both the service's report and "task list" tell it. */
export interface Activity {
    address: string;
    name: string | null;
    activity: string | null;
    standing: string | null;
    /** From 0 to 1. */
    progress: number | null;
    seconds_left: number | null;
    rate: number | null;
    targets: string[];
    cause: string | null;
    next_step: string | null;
}

// Before one percent the estimate is noise.
function estimate(seconds: number | null, progress: number | null): number | null {
    return progress !== null && progress >= 0.01 ? seconds : null;
}

export function activitiesOfStatus(status: Status): Activity[] {
    return status.tasks.map(task => {
        const progress = task.percent === null ? null : task.percent / 100;
        return {
            address: task.object.address,
            name: task.object.name,
            activity: task.activity,
            standing: task.state === "auto_paused" ? "queued" : task.state,
            progress,
            seconds_left: estimate(task.seconds_left, progress),
            rate: null,
            targets: [],
            cause: null,
            next_step: null,
        };
    });
}

export function activitiesOfList(tasks: Task[]): Activity[] {
    return tasks.map(task => ({
        address: task.address,
        name: task.name,
        activity: task.activity.name ?? `unknown (${task.activity.code})`,
        standing: task.standing,
        progress: task.progress_ratio,
        seconds_left: estimate(task.seconds_left, task.progress_ratio),
        rate: task.rate_bytes_per_second,
        targets: task.targets ?? [],
        cause: task.cause,
        next_step: typeof task.next_step === "string" ? task.next_step : null,
    }));
}
