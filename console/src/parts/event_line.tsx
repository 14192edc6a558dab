// One event: when, how grave, what.
import { clock } from "../model/text.ts";
import { language } from "../host/language.ts";
import type { Look } from "./state.tsx";
import { LookIcon } from "./state.tsx";

export function severityLook(severity: string | null | undefined): Look {
    switch (severity) {
    case "fatal":
    case "critical":
    case "major": return "critical";
    case "warning":
    case "minor": return "warning";
    case "info":
    case "other": return "info";
    default: return "unknown";
    }
}

export function EventLine({ time, severity, text }: { time: string | null; severity: string | null; text: string }) {
    return (
        <span className="vx-state">
            <LookIcon look={severityLook(severity)} />
            <span><span className="vx-small">{clock(time, language())}</span> <bdi lang="en">{text}</bdi></span>
        </span>
    );
}
