// What has become of an act, in a corner of the page and for screen readers.
import { Alert, AlertActionCloseButton, AlertGroup } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { useSyncExternalStore } from "react";
import type { Failure } from "../model/failure.ts";
import { _ } from "../host/language.ts";
import { refresh } from "../host/lists.ts";
import { act } from "../host/vexorctl.ts";

interface Notice {
    id: number;
    variant: "success" | "danger";
    title: string;
    text: string;
}

let notices: Notice[] = [];
let spoken = "";
let next = 0;
const listeners = new Set<() => void>();

function set(change: () => void): void {
    change();
    for (const listener of listeners) listener();
}

function subscribe(listener: () => void): () => void {
    listeners.add(listener);
    return () => listeners.delete(listener);
}

function close(id: number): void {
    set(() => { notices = notices.filter(notice => notice.id !== id); });
}

/** Told to screen readers alone, politely. */
export function speak(text: string): void {
    set(() => { spoken = text; });
}

export function notifyFailure(title: string, failure: Failure): void {
    set(() => { notices = [...notices, { id: next++, variant: "danger", title, text: failure.message }]; });
}

/** Acts at once. A refusal is told; success is seen in the lists, which are read again. */
export async function actNow(title: string, args: string[]): Promise<boolean> {
    const { failure } = await act(args);
    if (failure) notifyFailure(title, failure);
    else speak(title);
    await refresh();
    return failure === null;
}

export function Notices() {
    const shown = useSyncExternalStore(subscribe, () => notices);
    const said = useSyncExternalStore(subscribe, () => spoken);
    return (
        <>
            <div className="vx-spoken" aria-live="polite" role="status">{said}</div>
            <AlertGroup isToast isLiveRegion>
                {shown.map(({ id, variant, title, text }) => (
                    <Alert
                        key={id} variant={variant} title={title}
                        actionClose={<AlertActionCloseButton title={_("Close")} onClose={() => close(id)} />}
                    >
                        <bdi lang="en">{text}</bdi>
                    </Alert>
                ))}
            </AlertGroup>
        </>
    );
}
