// A dialog that changes something: what will be made or lost is shown before, and what is carried out is what was shown.
import { Alert } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Form, FormGroup } from "@patternfly/react-core/dist/esm/components/Form/index.js";
import { Modal, ModalBody, ModalFooter, ModalHeader } from "@patternfly/react-core/dist/esm/components/Modal/index.js";
import { TextInput } from "@patternfly/react-core/dist/esm/components/TextInput/index.js";
import { useEffect, useRef, useState, type FormEvent, type ReactNode } from "react";
import type { Failure } from "../model/failure.ts";
import { bytes } from "../model/text.ts";
import { _, fill, language } from "../host/language.ts";
import { refresh } from "../host/lists.ts";
import { Planned, type Preview } from "../host/vexorctl.ts";
import { CommandText } from "../parts/command.tsx";
import { usePrivileged } from "../parts/acting.tsx";
import { speak } from "../parts/notices.tsx";

// After the last key; the first preview is taken at once.
const kPauseMs = 200;

interface Props {
    title: string;
    /** The verb on the button. */
    verb: string;
    /** vexorctl's arguments; null while the fields are not complete. */
    args: string[] | null;
    danger?: boolean;
    /** What has to be typed before the button works. */
    typed?: string;
    wide?: boolean;
    children?: ReactNode;
    /** What vexorctl cannot foresee and the dialog knows. */
    warning?: ReactNode;
    onClose: () => void;
    /** Said to screen readers when it is done. */
    done: string;
}

function Foreseen({ preview, old }: { preview: Preview | null; old: boolean }) {
    if (preview === null) return <p role="status">{_("Looking at what it would do ...")}</p>;
    const { change, failure } = preview;
    const refusals = change?.refusals ?? [];
    return (
        <div className={old ? "vx-old" : undefined}>
            {change?.size_bytes != null ? <p>{_("Usable size")}: <strong><bdi dir="ltr">{bytes(change.size_bytes, language())}</bdi></strong></p> : null}
            {change && change.effects.length > 0
                ? <ul className="vx-effects">{change.effects.map(effect => <li key={effect}><bdi lang="en">{effect}</bdi></li>)}</ul> : null}
            {refusals.length > 0
                ? <Alert isInline component="h2" variant="danger" title={_("It would be refused")}>{refusals.map(refusal => <p key={refusal}><bdi lang="en">{refusal}</bdi></p>)}</Alert> : null}
            {failure && refusals.length === 0 ? <FailedPreview failure={failure} /> : null}
        </div>
    );
}

function FailedPreview({ failure }: { failure: Failure }) {
    const title = failure.kind === "denied" ? _("Administrative access is needed for this.")
        : failure.kind === "changed" ? _("It has changed, or is gone")
        : _("This is not possible");
    return <Alert isInline component="h2" variant={failure.kind === "changed" ? "warning" : "danger"} title={title}><bdi lang="en">{failure.message}</bdi></Alert>;
}

export function ChangeDialog({ title, verb, args, danger, typed, wide, children, warning, onClose, done }: Props) {
    const planned = useRef<Planned>(null);
    planned.current ??= new Planned();
    const opener = useRef(document.activeElement);
    const [shown, setShown] = useState<{ of: number; preview: Preview } | null>(null);
    const [name, setName] = useState("");
    const [busy, setBusy] = useState(false);
    const [refused, setRefused] = useState<Failure | null>(null);
    const [round, setRound] = useState(0);
    const allowed = usePrivileged() !== false;
    const key = args === null ? null : JSON.stringify(args);

    // Each change of the fields makes what was looked at before old, at once: an answer may still be on its way
    // when the fields are no longer complete, or are again what they were.
    const asked = useRef({ key, round, number: 0 });
    if (asked.current.key !== key || asked.current.round !== round) {
        asked.current = { key, round, number: asked.current.number + 1 };
    }
    const { number } = asked.current;
    const preview = shown?.preview ?? null;
    const old = key === null || shown?.of !== number;

    useEffect(() => {
        if (key === null) return;
        const look = async () => {
            const seen = await planned.current!.preview(JSON.parse(key) as string[]);
            // A later one was asked for meanwhile.
            if (seen !== null) setShown({ of: number, preview: seen });
        };
        const timer = setTimeout(() => void look(), shown === null ? 0 : kPauseMs);
        return () => clearTimeout(timer);
    }, [number]);

    useEffect(() => () => void planned.current!.forget(), []);

    const close = () => {
        onClose();
        // Back to where it was opened from, if that is still there.
        setTimeout(() => (opener.current as HTMLElement | null)?.focus?.(), 0);
    };
    const fits = typed === undefined || name === typed;
    const ready = allowed && fits && !old && !busy && preview?.failure === null && preview.change?.refusals.length === 0;
    const submit = async (event?: FormEvent) => {
        event?.preventDefault();
        if (!ready) return;
        setBusy(true);
        setRefused(null);
        const { failure } = await planned.current!.carryOut();
        setBusy(false);
        await refresh();
        if (failure === null) {
            speak(done);
            close();
            return;
        }
        setRefused(failure);
        // The dialog stays; what it would do now is looked at anew.
        setRound(round + 1);
    };
    return (
        <Modal isOpen variant={wide ? "large" : "medium"} onClose={close} aria-labelledby="change-title" elementToFocus="#change-first, .vx-dialog input, .vx-dialog button">
            <ModalHeader labelId="change-title" title={title} titleIconVariant={danger ? "warning" : undefined} />
            <ModalBody>
                <Form id="change-form" className="vx-dialog" onSubmit={event => void submit(event)}>
                    {refused ? (
                        <Alert isInline component="h2" variant={refused.kind === "changed" ? "warning" : "danger"}
                            title={refused.kind === "changed" ? _("Nothing was done: something has changed meanwhile") : _("It was refused")}>
                            <bdi lang="en">{refused.message}</bdi>
                        </Alert>
                    ) : null}
                    {children}
                    <section aria-label={_("What it would do")} aria-live="polite">
                        {args === null ? null : <Foreseen preview={preview} old={old} />}
                    </section>
                    {warning}
                    {typed === undefined ? null : (
                        <FormGroup label={fill(_("Type $0 to confirm"), typed)} fieldId="change-first">
                            <TextInput id="change-first" value={name} autoComplete="off" spellCheck="false"
                                onChange={(_event, value) => setName(value)} />
                        </FormGroup>
                    )}
                    {args === null ? null : <CommandText command={["vexorctl", ...args]} />}
                </Form>
            </ModalBody>
            <ModalFooter>
                <Button type="submit" form="change-form" variant={danger ? "danger" : "primary"} isDisabled={!ready} isLoading={busy}>{verb}</Button>
                <Button variant="link" onClick={close}>{_("Cancel")}</Button>
            </ModalFooter>
        </Modal>
    );
}
