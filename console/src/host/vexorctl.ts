// Runs vexorctl: arguments only, never a shell, and its answers as objects.
import { failureOf, withoutPrivilege, type Failure } from "../model/failure.ts";
import { answerOf, type Known } from "../model/answers.ts";
import type { Change } from "../model/types.ts";
import type { Problem } from "./cockpit";
import { privileged } from "./privilege.ts";

export interface Ran {
    output: string;
    failure: Failure | null;
}

/** Runs a program to its end. The promise of cockpit.spawn rejects with two arguments, the second of which is what
 *  was printed before; await would lose it. */
export function run(command: string[], superuser: "try" | "require" = "try"): Promise<Ran> {
    return new Promise(resolve => {
        cockpit.spawn(command, { superuser, err: "message" })
            .then(output => resolve({ output, failure: null }))
            .catch((why: Problem, output?: string) =>
                resolve({ output: output ?? "", failure: withoutPrivilege(failureOf(why), privileged()) }));
    });
}

export interface Lists<T> {
    items: T[];
    failure: Failure | null;
}

export type { Known };

/** The items of a list. What could not be read is the failure beside those that could. */
export async function list<T>(args: string[], known: Known = new Map()): Promise<Lists<T>> {
    const { output, failure } = await run(["vexorctl", ...args, "-o", "jsonl"]);
    const answer = answerOf(output, known);
    known.clear();
    for (const [line, item] of answer.known) known.set(line, item);
    const items = answer.items as T[];
    const said = answer.errors.map(error => error.message).join(" ");
    if (answer.cut) return { items, failure: { kind: "broken", message: said || (failure?.message ?? "") } };
    return { items, failure: failure && { ...failure, message: said || failure.message } };
}

interface Document<T> {
    items: T[];
    errors: { message: string }[];
}

/** One document, such as that of check, whose exit code says something of health and not of failure. */
export async function check<T>(): Promise<{ report: T | null; failure: Failure | null }> {
    const { output, failure } = await run(["vexorctl", "check", "-o", "json"]);
    try {
        return { report: JSON.parse(output) as T, failure: null };
    } catch {
        return { report: null, failure: failure ?? { kind: "broken", message: "" } };
    }
}

export interface Preview {
    change: Change | null;
    failure: Failure | null;
}

async function change(command: string[]): Promise<Preview> {
    const { output, failure } = await run([...command, "-o", "json"], "require");
    try {
        const document = JSON.parse(output) as Document<Change>;
        const said = document.errors.map(error => error.message).join(" ");
        return { change: document.items[0] ?? null, failure: failure && { ...failure, message: said || failure.message } };
    } catch {
        return { change: null, failure: failure ?? { kind: "broken", message: output } };
    }
}

/** Acts at once, for what can be taken back: a light, a pause, an alarm that is muted. */
export function act(args: string[]): Promise<Preview> {
    return change(["vexorctl", ...args, "--yes"]);
}

/** What a dialog is about to do. Each preview is written as a plan, and the act carries out that plan: vexorctl does
 *  nothing when an object is not what it was at the preview. */
export class Planned {
    private folder: Promise<string> | null = null;
    private number = 0;
    private plan: string | null = null;

    private async made(): Promise<string> {
        const { output, failure } = await run(["mktemp", "-d", "-t", "vexorapi-XXXXXXXX"], "require");
        if (failure) throw failure;
        return output.trim();
    }

    /** Null when a later preview was asked for meanwhile. */
    async preview(args: string[]): Promise<Preview | null> {
        const mine = ++this.number;
        this.plan = null;
        let folder: string;
        try {
            folder = await (this.folder ??= this.made());
        } catch (failure) {
            this.folder = null;
            return mine === this.number ? { change: null, failure: failure as Failure } : null;
        }
        const plan = `${folder}/${mine}.json`;
        const seen = await change(["vexorctl", ...args, "--plan", plan]);
        if (mine !== this.number) return null;
        if (seen.failure === null && seen.change?.refusals.length === 0) this.plan = plan;
        return seen;
    }

    async carryOut(): Promise<Preview> {
        if (this.plan === null) return { change: null, failure: { kind: "changed", message: "" } };
        return change(["vexorctl", "apply", this.plan, "--yes"]);
    }

    async forget(): Promise<void> {
        this.number++;
        const folder = await this.folder?.catch(() => null);
        if (folder) await run(["rm", "-r", "--", folder], "require");
    }
}
