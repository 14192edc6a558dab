// What is wrong, the worst first; then what runs, the adapters in brief and the last events. From the service's
// report alone, so that it needs no process and no privilege.
import { Alert } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { EmptyState, EmptyStateBody } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import CheckCircleIcon from "@patternfly/react-icons/dist/esm/icons/check-circle-icon";
import { activitiesOfList, activitiesOfStatus, callsForReplacement, diskOf, inOrder, levelOf } from "../model/health.ts";
import { adapterOf, ago, clock } from "../model/text.ts";
import type { Status, StatusCondition } from "../model/types.ts";
import { _, fill, language, plural } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import type { Health } from "../host/status.ts";
import { run } from "../host/vexorctl.ts";
import { create } from "../dialogs/create.tsx";
import { Activities } from "../parts/activity.tsx";
import { useActing } from "../parts/acting.tsx";
import { Bdi } from "../parts/bdi.tsx";
import { CommandText } from "../parts/command.tsx";
import { EventLine } from "../parts/event_line.tsx";
import { Listed } from "../parts/failure.tsx";
import { LightButton } from "../parts/light.tsx";
import { ObjectLink, PageLink, pathOf } from "../parts/links.tsx";
import { actNow, notifyFailure } from "../parts/notices.tsx";
import { LookIcon, levelWord } from "../parts/state.tsx";

function Condition({ condition }: { condition: StatusCondition }) {
    const level = levelOf(condition.level);
    const disk = diskOf(condition);
    const { address } = condition.object;
    const since = ago(condition.since ?? condition.first_seen, Date.now(), language());
    const said = [
        since ? fill(_("began $0"), since) : null,
        condition.stale ? _("not seen at the last look") : null,
        condition.acknowledged ? fill(_("acknowledged by $0"), condition.acknowledged.by) : null,
        condition.silenced_until ? fill(_("silenced until $0"), clock(condition.silenced_until, language())) : null,
    ].filter(Boolean).join(" · ");
    const path = address ? pathOf(address) : null;
    const replace = disk !== null && callsForReplacement(condition);
    return (
        <li className={`vx-condition vx-${level}`}>
            <LookIcon look={level} size="lg" />
            <div className="vx-condition-text">
                <div>
                    <strong>{levelWord(level)}</strong>{" "}
                    <bdi lang="en" className="vx-sentence">{condition.sentence}</bdi>
                </div>
                <div className="vx-details">
                    <span className="vx-small">{said}</span>
                    {condition.next_step.text ? <bdi lang="en">{condition.next_step.text}</bdi> : null}
                    {condition.folded.length > 0 ? (
                        <details>
                            <summary>{_("Why")}</summary>
                            <ul>{condition.folded.map(folded => <li key={`${folded.code} ${folded.object.address}`}><bdi lang="en">{folded.sentence}</bdi></li>)}</ul>
                        </details>
                    ) : null}
                    {condition.next_step.command ? <CommandText command={condition.next_step.command} /> : null}
                </div>
            </div>
            <div className="vx-actions">
                {replace ? (
                    <Button variant="primary" size="sm" aria-label={fill(_("Replace $0"), disk)}
                        onClick={() => cockpit.location.go(["replace", ...disk.split("/")])}>
                        {_("Replace...")}
                    </Button>
                ) : null}
                {disk ? <LightButton address={disk} on={null} /> : null}
                {path && !replace ? <PageLink path={path} label={fill(_("Show $0"), condition.object.name ?? address ?? "")}>{_("Show")}</PageLink> : null}
            </div>
        </li>
    );
}

function AllWell({ health }: { health: Health }) {
    const { machine } = health.report!;
    const counted = [
        [machine.adapters, (count: number) => plural("$0 adapter", "$0 adapters", count)],
        [machine.virtual_disks, (count: number) => plural("$0 virtual disk", "$0 virtual disks", count)],
        [machine.disks, (count: number) => plural("$0 disk", "$0 disks", count)],
        [machine.spares, (count: number) => plural("$0 spare", "$0 spares", count)],
    ] as const;
    const said = counted.map(([count, words]) => count === null ? "?" : words(count)).join(", ");
    const when = health.source === "service" && health.status
        ? ago(health.status.looked_at ?? health.status.written, Date.now(), language()) : _("just now");
    return (
        <div className="vx-well">
            <LookIcon look="ok" size="lg" />
            <span><strong>{_("All is well.")}</strong> {said}{when ? `, ${fill(_("looked at $0"), when)}` : null}</span>
        </div>
    );
}

function Conditions({ health }: { health: Health }) {
    const conditions = inOrder(health.report!.conditions);
    const serious = conditions.some(condition => !["info", "ok"].includes(levelOf(condition.level)));
    const { left_out = 0 } = health.source === "service" && health.status ? health.status : {};
    return (
        <section aria-label={_("Health")} className="vx-health">
            {serious || health.report!.overall !== "ok" ? null : <AllWell health={health} />}
            <ul className="vx-list">
                {conditions.map(condition => <Condition key={`${condition.code} ${condition.object.address}`} condition={condition} />)}
            </ul>
            {left_out > 0 ? <p>{plural("$0 more condition had no room here", "$0 more conditions had no room here", left_out)}</p> : null}
        </section>
    );
}

/** What says how current the page is, when the service does not. */
export function ServiceAlert({ health }: { health: Health }) {
    const acting = useActing();
    if (health.service === null || !health.ready) return null;
    const since = health.status ? ago(health.status.written, Date.now(), language()) : null;
    const start = async () => {
        const { failure } = await run(["systemctl", "start", "hxraidsvc"], "require");
        if (failure) notifyFailure(_("The event service was not started"), failure);
    };
    return (
        <Alert isInline component="h2" variant="warning" title={_("The event service is not running")}
            actionLinks={<Button variant="link" isInline {...acting} onClick={() => void start()}>{_("Start it")}</Button>}>
            {health.service === "silent" && since ? fill(_("It wrote its last report $0. "), since) : null}
            {health.service === "unreadable" ? _("Its report cannot be read. ") : null}
            {_("What is shown comes from the controllers themselves, every 10 seconds while this page is visible; what only the service notices is missing.")}
        </Alert>
    );
}

function CheckedActivities() {
    const tasks = useList("tasks");
    return <Listed list={tasks} retry={() => void refresh()}>{items => <Running activities={activitiesOfList(items)} />}</Listed>;
}

function Running({ activities }: { activities: ReturnType<typeof activitiesOfList> }) {
    if (activities.length === 0) return <p>{_("Nothing runs in the background.")}</p>;
    return <Activities activities={activities} />;
}

function Adapters({ health }: { health: Health }) {
    const adapters = useList("adapters");
    const acting = useActing();
    const rows: Status["adapters"] = health.source === "service" && health.status ? health.status.adapters
        : (adapters.items ?? []).map(({ address, serial }) => ({
            address, serial, readable: true, virtual_disks: null, disks: null, disk_groups: null, enclosures: null, battery_percent: null,
        }));
    if (rows.length === 0) return <p>{_("No adapter is known.")}</p>;
    return (
        <ul className="vx-list">
            {rows.map(row => {
                const known = adapters.items?.find(adapter => adapter.address === row.address);
                const bad = health.report?.conditions.some(condition =>
                    condition.object.address !== null && adapterOf(condition.object.address) === row.address);
                const facts = [
                    row.virtual_disks === null ? null : plural("$0 virtual disk", "$0 virtual disks", row.virtual_disks),
                    row.disks === null ? null : plural("$0 disk", "$0 disks", row.disks),
                    row.battery_percent === null ? null : fill(_("battery $0 %"), row.battery_percent),
                    row.readable ? null : _("does not answer"),
                ].filter(Boolean);
                return (
                    <li key={row.address} className="vx-row">
                        <span><ObjectLink address={row.address} /> <Bdi>{row.serial ?? "?"}</Bdi> <span className="vx-small">{facts.join(" · ")}</span></span>
                        {bad && known?.has_alarm ? (
                            <Button variant="secondary" size="sm" {...acting} aria-label={fill(_("Mute the alarm of $0"), row.address)}
                                onClick={() => void actNow(fill(_("The alarm of $0 is muted"), row.address), ["adapter", "mute", row.address])}>
                                {_("Mute")}
                            </Button>
                        ) : null}
                    </li>
                );
            })}
        </ul>
    );
}

export function Overview({ health }: { health: Health }) {
    const acting = useActing();
    if (!health.report) {
        return <Listed list={{ items: null, failure: health.failure, at: null }} retry={() => void refresh()}>{() => null}</Listed>;
    }
    const status = health.source === "service" ? health.status : null;
    if (health.report.machine.adapters === 0 && health.report.conditions.length === 0) {
        return (
            <EmptyState headingLevel="h2" titleText={_("No RAID controller")} icon={CheckCircleIcon}>
                <EmptyStateBody>{_("No controller answers on this machine.")}</EmptyStateBody>
            </EmptyState>
        );
    }
    const failing = status?.deliveries.filter(delivery => delivery.failing) ?? [];
    return (
        <div className="vx-overview">
            <div className="vx-row vx-end"><Button variant="secondary" {...acting} onClick={create}>{_("Create virtual disk")}</Button></div>
            <Conditions health={health} />
            {failing.map(delivery => (
                <Alert key={delivery.sink} isInline component="h2" variant="warning" title={fill(_("Alerts do not reach $0"), delivery.sink)}>
                    <bdi lang="en">{delivery.error}</bdi>
                </Alert>
            ))}
            <div className="vx-cards">
                <Card component="section"><CardTitle component="h2">{_("Activities")}</CardTitle>
                    <CardBody>{status ? <Running activities={activitiesOfStatus(status)} /> : <CheckedActivities />}</CardBody></Card>
                <Card component="section"><CardTitle component="h2">{_("Adapters")}</CardTitle><CardBody><Adapters health={health} /></CardBody></Card>
                {status ? (
                    <Card component="section"><CardTitle component="h2">{_("Last events")}</CardTitle>
                        <CardBody>
                            {status.events.length === 0 ? <p>{_("No event yet.")}</p> : (
                                <ul className="vx-list">
                                    {[...status.events].reverse().map(event => (
                                        <li key={event.number}><EventLine time={event.time} severity={event.severity} text={event.text} /></li>
                                    ))}
                                </ul>
                            )}
                            <PageLink path={["events"]}>{_("All events")}</PageLink>
                        </CardBody></Card>
                ) : null}
            </div>
        </div>
    );
}
