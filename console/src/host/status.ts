// The report of the event service, watched; where there is none, "vexorctl check" while the page is visible.
import { Age, isStatus, pageStatus, shelfLife, type Report } from "../model/health.ts";
import type { Failure } from "../model/failure.ts";
import type { Status } from "../model/types.ts";
import { check } from "./vexorctl.ts";
import { onPrivilege } from "./privilege.ts";

export interface Health {
    /** What the service says, however old. */
    status: Status | null;
    /** What is shown: the service's report while it is fresh, else that of check. */
    report: Report | null;
    source: "service" | "check";
    failure: Failure | null;
    /** Why there is no report of the service; null while there is a fresh one. */
    service: "silent" | "absent" | "unreadable" | null;
    age: number | null;
    /** Whether anything is known already. */
    ready: boolean;
}

const kPath = "/run/hxraid/status.json";
const kAgainMs = 10000;

const age = new Age();
let health: Health = {
    status: null, report: null, source: "service", failure: null, service: null, age: null, ready: false,
};
let checked: { report: Report | null; failure: Failure | null } | null = null;
let checking = false;
const listeners = new Set<() => void>();

const now = () => Date.now() / 1000;

// Straight from the callback that brings the data: in a hidden frame a frame's callback runs late or never.
function notify(): void {
    const status = health.report ? pageStatus(health.report) : null;
    cockpit.transport.control("notify", { page_status: status });
}

function tell(change: Partial<Health>): void {
    health = { ...health, ...change };
    notify();
    for (const listener of listeners) listener();
}

function settle(): void {
    const { status } = health;
    const seconds = age.seconds(now());
    const fresh = status !== null && seconds !== null && seconds <= shelfLife(status);
    if (fresh) {
        tell({ report: status, source: "service", service: null, failure: null, age: seconds, ready: true });
        return;
    }
    const service = status !== null ? "silent" : health.service ?? "absent";
    if (checked) {
        tell({ ...checked, report: checked.report ?? health.report, source: "check", service, age: seconds, ready: true });
    } else {
        tell({ report: status, service, age: seconds, ready: status !== null });
    }
}

/** Asks the controller itself, which takes a process; never while the page is hidden. */
export async function checkNow(): Promise<void> {
    if (checking || cockpit.hidden) return;
    checking = true;
    checked = await check<Report>();
    checking = false;
    settle();
}

function read(content: unknown, problem: unknown): void {
    if (isStatus(content)) {
        age.seen(content.written_at, now());
        health = { ...health, status: content, service: null };
        checked = null;
    } else {
        health = { ...health, status: null, service: content !== null || problem ? "unreadable" : "absent" };
    }
    settle();
    if (health.service !== null) void checkNow();
}

export function followStatus(): void {
    const path = cockpit.manifests?.["vexorapi"]?.config?.status ?? kPath;
    const arm = () => {
        const file = cockpit.file(path, { syntax: JSON });
        file.watch((content, _tag, problem) => read(content, problem));
        return file;
    };
    let file = arm();
    setInterval(() => {
        // A watch does not fire for a folder that was not there when it began.
        if (health.status === null && health.service === "absent") {
            file.close();
            file = arm();
        }
        settle();
        if (health.service !== null) void checkNow();
    }, kAgainMs);
    onPrivilege(() => health.service !== null && void checkNow());
    cockpit.addEventListener("visibilitychange", () => health.service !== null && void checkNow());
}

export function onHealth(listener: () => void): () => void {
    listeners.add(listener);
    return () => listeners.delete(listener);
}

export const currentHealth = (): Health => health;
