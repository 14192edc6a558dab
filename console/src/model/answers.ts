// The answer of a list: a line an item, and a line for each thing that could not be read.
import type { ApiError } from "./types.ts";

/** Objects by the line that they were read from. */
export type Known = Map<string, unknown>;

export interface Answer {
    items: unknown[];
    errors: ApiError[];
    /** Whether a line was not whole. */
    cut: boolean;
    /** The items by their lines, for the next answer. */
    known: Known;
}

function errorOf(line: unknown): ApiError | null {
    const error = typeof line === "object" && line !== null ? (line as { error?: unknown }).error : undefined;
    return typeof error === "object" && error !== null ? error as ApiError : null;
}

/** An item whose line has not changed keeps its object, so that only the rows that did change are drawn again. */
export function answerOf(output: string, before: Known): Answer {
    const answer: Answer = { items: [], errors: [], cut: false, known: new Map() };
    for (const line of output.split("\n")) {
        if (line === "") continue;
        let item = before.get(line);
        try {
            item ??= JSON.parse(line);
        } catch {
            answer.cut = true;
            continue;
        }
        const error = errorOf(item);
        if (error) {
            answer.errors.push(error);
        } else {
            answer.known.set(line, item);
            answer.items.push(item);
        }
    }
    return answer;
}
