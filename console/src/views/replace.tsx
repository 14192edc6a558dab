// Replacing a disk, step by step; where one is, the machine says.
import { Alert } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { ProgressStep, ProgressStepper } from "@patternfly/react-core/dist/esm/components/ProgressStepper/index.js";
import { useEffect } from "react";
import { activitiesOfList } from "../model/health.ts";
import { replacing, type Replacing, type Step } from "../model/replacing.ts";
import { named } from "../model/text.ts";
import { _, fill } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import { makeSpare, startRebuild } from "../dialogs/dialogs.tsx";
import { useActing } from "../parts/acting.tsx";
import { Activities } from "../parts/activity.tsx";
import { Bdi } from "../parts/bdi.tsx";
import { Listed } from "../parts/failure.tsx";
import { LightButton } from "../parts/light.tsx";
import { ObjectLink } from "../parts/links.tsx";
import { StateText, diskState } from "../parts/state.tsx";

const kSteps: Step[] = ["find", "swap", "rebuild", "done"];

function titleOf(step: Step): string {
    switch (step) {
    case "find": return _("Find");
    case "swap": return _("Swap");
    case "rebuild": return _("Rebuild");
    case "done": return _("Done");
    }
}

function Advice({ address, serial, state }: { address: string; serial: string | null; state: Replacing }) {
    const acting = useActing();
    const { step, now, damaged, running, candidate } = state;
    switch (step) {
    case "find":
        return (
            <>
                <p>{_("Let the bay of the disk blink, so that no other disk is pulled.")}</p>
                <LightButton address={address} on={now?.locate_light ?? null} />
            </>
        );
    case "swap":
        return (
            <>
                <p>{now ? _("Pull the disk whose bay blinks, and put a new one in its place.") : _("The bay is empty. Put the new disk in.")}</p>
                {serial ? <p>{_("The old disk has the serial number")} <Bdi>{serial}</Bdi>.</p> : null}
                {now ? <LightButton address={address} on={now.locate_light} /> : null}
                <p role="status">{_("Waiting for a disk with another serial number ...")}</p>
            </>
        );
    case "rebuild":
        if (running) return <><p>{_("The new disk is there. Nothing has to be done until this ends.")}</p><Activities activities={activitiesOfList([running])} /></>;
        return (
            <>
                <p>{_("The new disk is there, and no rebuild has begun by itself.")}</p>
                <div className="vx-actions">
                    {damaged.map(vd => (
                        <Button key={vd.address} variant="primary" {...acting} onClick={() => startRebuild(vd, candidate?.address ?? address)}>
                            {fill(_("Rebuild $0"), named(vd.address, vd.name))}
                        </Button>
                    ))}
                </div>
            </>
        );
    case "done":
        return (
            <>
                <Alert isInline component="h3" variant="success" title={_("Redundancy is complete again.")} />
                {now?.locate_light ? <><p>{_("The light is on still.")}</p><LightButton address={address} on /></> : null}
                {candidate ? (
                    <div className="vx-row">
                        <span>{_("The new disk is free. It can stand by for the next failure.")}</span>
                        <Button variant="secondary" {...acting} onClick={() => makeSpare(candidate)}>{_("Make it a spare")}</Button>
                    </div>
                ) : null}
            </>
        );
    }
}

export function Replace({ address, serial }: { address: string; serial: string | null }) {
    const disks = useList("disks");
    const vds = useList("vds");
    const tasks = useList("tasks");
    const now = disks.items?.find(disk => disk.address === address);
    // The serial number belongs into the address: a reload after the swap would take the new disk for the old one.
    useEffect(() => {
        if (serial === null && now?.serial) cockpit.location.go(["replace", ...address.split("/")], { serial: now.serial });
    }, [serial, now?.serial, address]);
    // A swap tells itself by an event, which the service may be slow to see.
    useEffect(() => {
        const timer = setInterval(() => !cockpit.hidden && void refresh(), 2000);
        return () => clearInterval(timer);
    }, []);
    return (
        <Listed list={disks} retry={() => void refresh()}>
            {items => (
                <Listed list={vds} retry={() => void refresh()}>
                    {arrays => {
                        const state = replacing(address, serial, { disks: items, vds: arrays, tasks: tasks.items ?? [] });
                        const at = kSteps.indexOf(state.step);
                        return (
                            <Card component="section">
                                <CardTitle component="h2">{_("Replace the disk")} <Bdi>{address}</Bdi></CardTitle>
                                <CardBody className="vx-guide">
                                    <ProgressStepper aria-label={_("Steps")}>
                                        {kSteps.map((step, index) => (
                                            <ProgressStep key={step} id={`step-${step}`} titleId={`step-title-${step}`} isCurrent={index === at}
                                                variant={index < at || state.step === "done" ? "success" : index === at ? "info" : "pending"}>
                                                {titleOf(step)}
                                            </ProgressStep>
                                        ))}
                                    </ProgressStepper>
                                    {now ? <p><ObjectLink address={address} /> <Bdi>{now.serial ?? "?"}</Bdi> <StateText {...diskState(now.state)} />
                                        {now.slot === null ? null : <> · {fill(_("Bay $0"), now.slot)} {now.enclosure ? <ObjectLink address={now.enclosure} /> : null}</>}</p> : null}
                                    {state.unhurried && state.step !== "done" ? (
                                        <Alert isInline component="h3" variant="info" title={_("There is no hurry: no virtual disk lacks redundancy.")} />
                                    ) : null}
                                    {state.damaged.length > 0 ? <p>{_("Without full redundancy")}: {state.damaged.map(vd => <span key={vd.address}><ObjectLink address={vd.address} name={vd.name} /> </span>)}</p> : null}
                                    <Advice address={address} serial={serial} state={state} />
                                </CardBody>
                            </Card>
                        );
                    }}
                </Listed>
            )}
        </Listed>
    );
}
