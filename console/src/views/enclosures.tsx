// Enclosures as pictures of their bays: real buttons in a grid, moved over by the arrow keys.
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { EmptyState, EmptyStateBody } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import LightbulbIcon from "@patternfly/react-icons/dist/esm/icons/lightbulb-icon";
import { memo, useEffect, useMemo, useRef, useState, type KeyboardEvent } from "react";
import { shelvesOf, type Bay, type Layout, type Shelf } from "../model/bays.ts";
import { bytes, codeName } from "../model/text.ts";
import type { Element } from "../model/types.ts";
import { readLayouts } from "../host/layouts.ts";
import { _, fill, language } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import { Bdi } from "../parts/bdi.tsx";
import { DataTable } from "../parts/data_table.tsx";
import { Listed } from "../parts/failure.tsx";
import { LookIcon, StateText, diskState, elementState } from "../parts/state.tsx";

function bayName({ number, disk }: Bay): string {
    const place = number === null ? null : fill(_("Bay $0"), number);
    if (!disk) return fill(_("$0: empty"), place ?? _("Bay"));
    return [
        place === null ? disk.address : `${place}: ${disk.address}`,
        diskState(disk.state).word,
        bytes(disk.size_bytes, language()),
        disk.vd ? fill(_("in $0"), disk.vd) : null,
        disk.smart_alarm ? _("failure is predicted") : null,
        disk.locate_light ? _("light on") : null,
    ].filter(Boolean).join(", ");
}

const OneBay = memo(function OneBay({ bay, index, focusable }: { bay: Bay; index: number; focusable: boolean }) {
    const { disk, number } = bay;
    const { look, word } = diskState(disk?.state);
    return (
        <button type="button" data-bay={index} tabIndex={focusable ? 0 : -1} aria-label={bayName(bay)}
            aria-disabled={disk === null} className={`vx-bay ${disk ? `vx-${disk.smart_alarm && look === "ok" ? "warning" : look}` : "vx-empty"}`}
            onClick={() => disk && cockpit.location.go(["disk", ...disk.address.split("/")])}>
            <span className="vx-bay-number">{number ?? ""}{" "}{disk?.locate_light ? <span className="vx-blink"><LightbulbIcon /></span> : null}</span>
            {disk ? (
                <span className="vx-bay-text">
                    <Bdi>{disk.address}</Bdi>{" "}
                    <span className="vx-state"><LookIcon look={disk.smart_alarm && look === "ok" ? "warning" : look} />{word}</span>{" "}
                    <span className="vx-small"><Bdi>{bytes(disk.size_bytes, language())}</Bdi></span>
                </span>
            ) : <span className="vx-small">{_("empty")}</span>}
        </button>
    );
});

function Bays({ shelf }: { shelf: Shelf }) {
    const [focus, setFocus] = useState(0);
    const grid = useRef<HTMLDivElement>(null);
    // How many stand in a row is the browser's affair: the grid wraps where it is narrow.
    const across = () => {
        const bays = [...grid.current?.querySelectorAll<HTMLElement>("[data-bay]") ?? []];
        const below = bays.findIndex(bay => bay.offsetTop > (bays[0]?.offsetTop ?? 0));
        return below < 0 ? bays.length : below;
    };
    const move = (event: KeyboardEvent) => {
        const forward = document.documentElement.dir === "rtl" ? -1 : 1;
        const steps: Record<string, number> = {
            ArrowRight: forward, ArrowLeft: -forward, ArrowDown: across(), ArrowUp: -across(),
            Home: -focus, End: shelf.bays.length - 1 - focus,
        };
        const step = steps[event.key];
        if (step === undefined) return;
        event.preventDefault();
        const next = Math.min(Math.max(focus + step, 0), shelf.bays.length - 1);
        setFocus(next);
        grid.current?.querySelector<HTMLElement>(`[data-bay="${next}"]`)?.focus();
    };
    return (
        <div ref={grid} className="vx-bays" role="group" aria-label={fill(_("Bays of $0"), shelf.key)} onKeyDown={move}
            style={{ gridTemplateColumns: `repeat(auto-fill, minmax(min(${shelf.columns > 4 ? 8 : 10}rem, 100%), 1fr))` }}>
            {shelf.bays.map((bay, index) => <OneBay key={`${bay.number} ${bay.disk?.address}`} bay={bay} index={index} focusable={index === focus} />)}
        </div>
    );
}

function reading(element: Element): string {
    if (element.temperature_celsius !== null) return fill(_("$0 °C"), element.temperature_celsius);
    if (element.speed_rpm !== null) return fill(_("$0 rpm"), element.speed_rpm);
    if (element.voltage_millivolts !== null) return fill(_("$0 mV"), element.voltage_millivolts);
    return "–";
}

// Of a voltage they are deviations, and of which unit nobody says.
function limits(element: Element): string {
    if (element.voltage_millivolts !== null) return "–";
    const range = (low: number | null, high: number | null) => low === null && high === null ? null : `${low ?? "–"} … ${high ?? "–"}`;
    const warning = range(element.low_warning, element.high_warning);
    const critical = range(element.low_critical, element.high_critical);
    return [warning, critical].filter(Boolean).join(" / ") || "–";
}

function elementType(type: string | null): string {
    const words: Record<string, string> = {
        power_supply: _("Power supply"), fan: _("Fan"), temperature: _("Temperature"), door: _("Door"),
        alarm: _("Alarm"), voltage: _("Voltage"),
    };
    return type === null ? "?" : words[type] ?? type;
}

function Elements({ elements, of }: { elements: Element[]; of: string }) {
    return (
        <DataTable label={fill(_("Elements of $0"), of)} rows={elements} rowKey={element => element.address} columns={[
            { title: _("Element"), cell: element => <Bdi>{element.address.split("/")[2]}</Bdi> },
            { title: _("Kind"), cell: element => elementType(codeName(element.type)) },
            { title: _("State"), cell: element => <StateText {...elementState(codeName(element.state))} /> },
            { title: _("Reading"), cell: element => <Bdi>{reading(element)}</Bdi> },
            { title: _("Limits: warning / critical"), cell: element => <Bdi>{limits(element)}</Bdi> },
        ]} />
    );
}

function Enclosure({ shelf, elements }: { shelf: Shelf; elements: Element[] }) {
    const { enclosure } = shelf;
    const { look, word } = elementState(codeName(enclosure?.state));
    const mine = elements.filter(element => element.address.startsWith(`${shelf.key}/`));
    return (
        <Card component="section" className="vx-shelf">
            <CardTitle component="h2">
                {enclosure ? <><Bdi>{shelf.key}</Bdi> <Bdi>{enclosure.product ?? ""}</Bdi> <StateText look={look} word={word} /></>
                    : fill(_("Disks of $0 in no enclosure"), shelf.adapter)}
            </CardTitle>
            <CardBody>
                {shelf.bays.length === 0 ? <p>{_("No disk is in it.")}</p> : <Bays shelf={shelf} />}
                <p className="vx-small">
                    {enclosure ? _("The places are derived from the ports of the enclosure; the light of a disk shows the right one.")
                        : _("They stand by their addresses; the light of a disk shows the right one.")}
                </p>
                {mine.length > 0 ? <Elements elements={mine} of={shelf.key} /> : null}
            </CardBody>
        </Card>
    );
}

export function Enclosures() {
    const disks = useList("disks");
    const enclosures = useList("enclosures");
    const elements = useList("elements");
    const [layouts, setLayouts] = useState<Record<string, Layout>>({});
    useEffect(() => readLayouts(setLayouts), []);
    const shelves = useMemo(() => shelvesOf(disks.items ?? [], enclosures.items ?? [], layouts), [disks.items, enclosures.items, layouts]);
    return (
        <Listed list={enclosures} retry={() => void refresh()}>
            {() => (
                <Listed list={disks} retry={() => void refresh()}>
                    {() => shelves.length === 0
                        ? <EmptyState headingLevel="h2" titleText={_("No enclosure")}><EmptyStateBody>{_("No adapter reports an enclosure or a disk.")}</EmptyStateBody></EmptyState>
                        : <>{shelves.map(shelf => <Enclosure key={shelf.key} shelf={shelf} elements={elements.items ?? []} />)}</>}
                </Listed>
            )}
        </Listed>
    );
}
