// How a state looks: an icon, a colour and always a word.
import CheckCircleIcon from "@patternfly/react-icons/dist/esm/icons/check-circle-icon";
import ExclamationCircleIcon from "@patternfly/react-icons/dist/esm/icons/exclamation-circle-icon";
import ExclamationTriangleIcon from "@patternfly/react-icons/dist/esm/icons/exclamation-triangle-icon";
import InfoCircleIcon from "@patternfly/react-icons/dist/esm/icons/info-circle-icon";
import QuestionCircleIcon from "@patternfly/react-icons/dist/esm/icons/question-circle-icon";
import SyncAltIcon from "@patternfly/react-icons/dist/esm/icons/sync-alt-icon";
import { Icon } from "@patternfly/react-core/dist/esm/components/Icon/index.js";
import type { Level } from "../model/health.ts";
import { _, fill } from "../host/language.ts";

export type Look = Level | "working";

const kIcons = {
    critical: { icon: ExclamationCircleIcon, status: "danger" },
    warning: { icon: ExclamationTriangleIcon, status: "warning" },
    unknown: { icon: QuestionCircleIcon, status: "custom" },
    info: { icon: InfoCircleIcon, status: "info" },
    ok: { icon: CheckCircleIcon, status: "success" },
    working: { icon: SyncAltIcon, status: "info" },
} as const;

export function LookIcon({ look, size }: { look: Look; size?: "lg" | "xl" }) {
    const { icon: Shape, status } = kIcons[look];
    return <Icon status={status} size={size}><Shape /></Icon>;
}

export function levelWord(level: Level): string {
    switch (level) {
    case "critical": return _("Critical");
    case "warning": return _("Warning");
    case "unknown": return _("Unknown");
    case "info": return _("Note");
    case "ok": return _("OK");
    }
}

interface Shown {
    look: Look;
    word: string;
}

function diskWords(): Record<string, Shown> {
    return {
        failed: { look: "critical", word: _("failed") },
        missing: { look: "critical", word: _("missing") },
        offline: { look: "warning", word: _("offline") },
        foreign: { look: "warning", word: _("foreign") },
        rebuilding: { look: "working", word: _("rebuilding") },
        copyback_target: { look: "working", word: _("copyback target") },
        global_spare: { look: "ok", word: _("spare") },
        group_spare: { look: "ok", word: _("spare of a group") },
        configured: { look: "ok", word: _("in use") },
        free: { look: "ok", word: _("free") },
    };
}

function arrayWords(): Record<string, Shown> {
    return {
        optimal: { look: "ok", word: _("optimal") },
        partially_optimal: { look: "warning", word: _("partially optimal") },
        rebuilding: { look: "working", word: _("rebuilding") },
        degraded: { look: "critical", word: _("degraded") },
        offline: { look: "critical", word: _("offline") },
        foreign: { look: "warning", word: _("foreign") },
    };
}

function elementWords(): Record<string, Shown> {
    return {
        ok: { look: "ok", word: _("OK") },
        critical: { look: "critical", word: _("critical") },
        unrecoverable: { look: "critical", word: _("unrecoverable") },
        noncritical: { look: "warning", word: _("not critical") },
        not_installed: { look: "info", word: _("not installed") },
        not_available: { look: "unknown", word: _("not available") },
        unsupported: { look: "info", word: _("not supported") },
    };
}

// What is not known is never well.
function found(words: Record<string, Shown>, state: string | null | undefined): Shown {
    if (!state) return { look: "unknown", word: _("unknown") };
    return words[state] ?? { look: "unknown", word: state };
}

export const diskState = (state: string | null | undefined) => found(diskWords(), state);
export const arrayState = (state: string | null | undefined) => found(arrayWords(), state);
export const elementState = (state: string | null | undefined) => found(elementWords(), state);

export function StateText({ look, word, more }: Shown & { more?: string }) {
    return (
        <span className="vx-state">
            <LookIcon look={look} />
            <span>{more ? fill(_("$0, $1"), word, more) : word}</span>
        </span>
    );
}

export function activityWord(activity: string | null): string {
    const words: Record<string, string> = {
        check: _("Consistency check"), fix: _("Consistency check with repair"), init_quick: _("Quick initialisation"),
        init_background: _("Initialisation in the background"), init_foreground: _("Initialisation"),
        rebuild: _("Rebuild"), migration: _("Migration"), copyback: _("Copyback"), media_patrol: _("Media patrol"),
        data_scrub: _("Data scrub"),
    };
    return activity === null ? _("unknown") : words[activity] ?? activity;
}

export function standingWord(standing: string | null): string {
    const words: Record<string, string> = {
        running: _("running"), paused: _("paused"), queued: _("waiting"), failed: _("failed"), idle: _("idle"),
    };
    return standing === null ? _("unknown") : words[standing] ?? standing;
}

export function levelName(level: string | null): string {
    return level === null ? "?" : level.replace(/^raid(?=\d)/, "RAID ").toUpperCase();
}
