// What can go wrong between the page and the machine: six kinds, each shown in one way.

export type Kind = "absent" | "denied" | "unusable" | "partial" | "changed" | "broken";

export type Failure = { kind: Kind; message: string };

/** What was seen of a process that did not end well. */
export interface Ended {
    problem?: string | null;
    exit_status?: number | null;
    exit_signal?: string | null;
    message?: string | null;
}

function kindOf(ended: Ended): Kind {
    if (ended.problem === "not-found") return "absent";
    if (ended.problem === "access-denied") return "denied";
    // "terminated" is what the channel says of a signal; then there is no exit code to read.
    if (ended.problem || ended.exit_signal) return "broken";
    switch (ended.exit_status) {
    case 4: return "denied";
    case 5: return "unusable";
    case 3:
    case 8: return "changed";
    case 1:
    case 7: return "partial";
    default: return "broken";
    }
}

/** vexorctl begins each line of standard error with its own name, which tells a reader of the page nothing. */
export function plainMessage(message: string): string {
    return message.trim().split("\n").map(line => line.replace(/^vexorctl: /, "")).join(" ");
}

export function failureOf(ended: Ended): Failure {
    return { kind: kindOf(ended), message: plainMessage(ended.message ?? "") };
}

/** A command that was refused for want of permission says so in exit code 5 where the library could not be
 *  opened: without privilege that is "denied", because turning it on is what helps. */
export function withoutPrivilege(failure: Failure, privileged: boolean | null): Failure {
    return failure.kind === "unusable" && privileged === false ? { ...failure, kind: "denied" } : failure;
}
