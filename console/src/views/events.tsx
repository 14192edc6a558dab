// Events as they come, and those of one object.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { EmptyState, EmptyStateActions, EmptyStateBody, EmptyStateFooter } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import { FormSelect, FormSelectOption } from "@patternfly/react-core/dist/esm/components/FormSelect/index.js";
import { SearchInput } from "@patternfly/react-core/dist/esm/components/SearchInput/index.js";
import { Skeleton } from "@patternfly/react-core/dist/esm/components/Skeleton/index.js";
import { useMemo, useState } from "react";
import { csv, shown, type EventFilter, type Row } from "../model/events.ts";
import { clock } from "../model/text.ts";
import type { Gap } from "../model/types.ts";
import { useEvents } from "../host/events.ts";
import { eventText } from "../host/event_text.ts";
import { _, language, plural } from "../host/language.ts";
import { Bdi } from "../parts/bdi.tsx";
import { severityLook } from "../parts/event_line.tsx";
import { FailureAlert } from "../parts/failure.tsx";
import { ObjectLink } from "../parts/links.tsx";
import { LookIcon } from "../parts/state.tsx";

const kNoFilter: EventFilter = { text: "", severity: "", adapter: "", class: "" };

function gapText(gap: Gap): string {
    if (gap.reason === "reset") return _("The store was reset. How many events that took, nobody can tell.");
    const lost = gap.lost === null ? _("Events were lost.") : plural("$0 event was lost.", "$0 events were lost.", gap.lost);
    return gap.reason === "overflow" ? `${lost} ${_("The adapter's queue was full.")}` : `${lost} ${_("The store was full.")}`;
}

function EventRow({ row }: { row: Row }) {
    if (row.row === "gap") {
        return <li className="vx-event vx-gap"><LookIcon look="warning" /><strong>{gapText(row.gap)}</strong></li>;
    }
    const { event } = row;
    const translated = eventText(event);
    return (
        <li className="vx-event">
            <LookIcon look={severityLook(event.severity?.name)} />
            <span className="vx-small vx-event-time">{clock(event.time, language())}</span>
            <span className="vx-event-text">
                {translated ? <bdi>{translated}</bdi> : <bdi lang="en">{event.text}</bdi>}
                {event.address ? <> <ObjectLink address={event.address} /></> : null}
            </span>
            <span className="vx-small"><Bdi>{event.sequence}</Bdi></span>
        </li>
    );
}

function EventList({ rows, label }: { rows: Row[]; label: string }) {
    return (
        <ul className="vx-list vx-events" aria-label={label}>
            {[...rows].reverse().map((row, index) => <EventRow key={row.row === "event" ? row.event.sequence : `gap ${index}`} row={row} />)}
        </ul>
    );
}

function save(rows: Row[]): void {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([csv(rows)], { type: "text/csv" }));
    link.download = "events.csv";
    link.click();
    URL.revokeObjectURL(link.href);
}

export function Events() {
    const [paused, setPaused] = useState(false);
    const [filter, setFilter] = useState(kNoFilter);
    const { rows, failure, ready, older, again } = useEvents(paused);
    const found = useMemo(() => shown(rows, filter), [rows, filter]);
    const change = (part: Partial<EventFilter>) => setFilter({ ...filter, ...part });
    const adapters = [...new Set(rows.flatMap(row => row.row === "event" && row.event.adapter !== null ? [`a${row.event.adapter}`] : []))].sort();
    const classes = [...new Set(rows.flatMap(row => row.row === "event" && row.event.class?.name ? [row.event.class.name] : []))].sort();
    return (
        <Card component="section"><CardTitle component="h2"><div className="vx-row"><span>{_("Events")}</span><span className="vx-actions">
            <Button variant="secondary" size="sm" aria-pressed={paused} onClick={() => setPaused(!paused)}>{paused ? _("Go on") : _("Pause")}</Button>
            <Button variant="secondary" size="sm" onClick={() => void older()}>{_("Show older")}</Button>
            <Button variant="secondary" size="sm" isDisabled={found.length === 0} onClick={() => save(found)}>{_("Save as CSV")}</Button>
        </span></div></CardTitle><CardBody>
            {failure ? <FailureAlert failure={failure} at={null} retry={again} /> : null}
            <div className="vx-filters" role="search" aria-label={_("Filter")}>
                <SearchInput aria-label={_("Text of the event")} placeholder={_("Text of the event")} value={filter.text}
                    onChange={(_event, text) => change({ text })} onClear={() => change({ text: "" })} />
                <FormSelect className="vx-choice" aria-label={_("Severity")} value={filter.severity} onChange={(_event, severity) => change({ severity })}>
                    <FormSelectOption value="" label={_("Any severity")} />
                    <FormSelectOption value="warning" label={_("Warning and graver")} />
                    <FormSelectOption value="major" label={_("Major and graver")} />
                </FormSelect>
                {adapters.length > 1 ? (
                    <FormSelect className="vx-choice" aria-label={_("Adapter")} value={filter.adapter} onChange={(_event, adapter) => change({ adapter })}>
                        <FormSelectOption value="" label={_("All adapters")} />
                        {adapters.map(adapter => <FormSelectOption key={adapter} value={adapter} label={adapter} />)}
                    </FormSelect>
                ) : null}
                <FormSelect className="vx-choice" aria-label={_("Kind of object")} value={filter.class} onChange={(_event, chosen) => change({ class: chosen })}>
                    <FormSelectOption value="" label={_("All objects")} />
                    {classes.map(name => <FormSelectOption key={name} value={name} label={name.replaceAll("_", " ")} />)}
                </FormSelect>
            </div>
            {!ready && !failure ? <Skeleton height="10rem" screenreaderText={_("Loading")} /> : null}
            {ready && found.length === 0 ? (
                <EmptyState headingLevel="h3" titleText={rows.length === 0 ? _("No event yet") : _("No event matches")}>
                    <EmptyStateBody>{rows.length === 0 ? _("Events of the controllers appear here as soon as the event service has collected them.") : null}</EmptyStateBody>
                    {rows.length > 0 ? <EmptyStateFooter><EmptyStateActions>
                        <Button variant="link" onClick={() => setFilter(kNoFilter)}>{_("Clear filters")}</Button>
                    </EmptyStateActions></EmptyStateFooter> : null}
                </EmptyState>
            ) : <EventList rows={found} label={_("Events")} />}
        </CardBody></Card>
    );
}

export function ObjectEvents({ address }: { address: string }) {
    const { rows, failure, ready, again } = useEvents(false);
    const mine = rows.filter(row => row.row === "event" && row.event.address === address);
    return (
        <Card component="section"><CardTitle component="h3">{_("Events")}</CardTitle><CardBody>
            {failure ? <FailureAlert failure={failure} at={null} retry={again} /> : null}
            {mine.length > 0 ? <EventList rows={mine} label={_("Events")} /> : ready ? <p>{_("None among the last events.")}</p> : <Skeleton height="4rem" screenreaderText={_("Loading")} />}
        </CardBody></Card>
    );
}
