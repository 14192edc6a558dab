// Disks: found by filters, worst first; and the page of one disk.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { Checkbox } from "@patternfly/react-core/dist/esm/components/Checkbox/index.js";
import { EmptyState, EmptyStateActions, EmptyStateBody, EmptyStateFooter } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import { FormSelect, FormSelectOption } from "@patternfly/react-core/dist/esm/components/FormSelect/index.js";
import { SearchInput } from "@patternfly/react-core/dist/esm/components/SearchInput/index.js";
import { useMemo, useState } from "react";
import { disksShown, isFiltered, kNoFilter, urgency, type DiskFilter } from "../model/filter.ts";
import { adapterOf, bytes, compareAddresses } from "../model/text.ts";
import type { Disk } from "../model/types.ts";
import { _, fill, language } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import { freeSpare, makeSpare, setOffline, wipe } from "../dialogs/dialogs.tsx";
import { diskSettings } from "../dialogs/settings.tsx";
import { Bdi } from "../parts/bdi.tsx";
import { DataTable, type Column } from "../parts/data_table.tsx";
import { Listed } from "../parts/failure.tsx";
import { LightButton } from "../parts/light.tsx";
import { ObjectLink } from "../parts/links.tsx";
import { ActionMenu, type MenuAction } from "../parts/menu.tsx";
import { StateText, diskState } from "../parts/state.tsx";
import { ObjectEvents } from "./events.tsx";
import { Facts } from "./virtual_disks.tsx";

export function replaceDisk(disk: Pick<Disk, "address" | "serial">): void {
    cockpit.location.go(["replace", ...disk.address.split("/")], disk.serial ? { serial: disk.serial } : {});
}

function diskActions(disk: Disk): MenuAction[] {
    const inUse = disk.vd || disk.dg ? fill(_("It serves $0."), disk.vd ?? disk.dg ?? "") : null;
    const isSpare = disk.state === "global_spare" || disk.state === "group_spare";
    return [
        { title: _("Replace..."), act: () => replaceDisk(disk) },
        isSpare ? { title: _("Free the spare"), act: () => freeSpare(disk) }
            : { title: _("Make spare"), act: () => makeSpare(disk), refused: disk.state === "free" ? null : inUse ?? _("It is not free.") },
        { title: _("Settings"), act: () => diskSettings(disk) },
        { title: _("Set offline"), act: () => setOffline(disk), danger: true, refused: disk.state === "configured" ? null : _("It is not in use.") },
        { title: _("Wipe"), act: () => wipe(disk), danger: true, refused: isSpare ? null : inUse },
    ];
}

function StateOf({ disk }: { disk: Disk }) {
    const { look, word } = diskState(disk.state);
    if (disk.smart_alarm && (look === "ok" || look === "working")) return <StateText look="warning" word={word} more={_("failure is predicted")} />;
    return <StateText look={look} word={word} />;
}

function columns(): Column<Disk>[] {
    return [
        { title: _("Disk"), cell: disk => <ObjectLink address={disk.address} />, sort: (a, b) => compareAddresses(a.address, b.address) },
        { title: _("State"), cell: disk => <StateOf disk={disk} />, sort: (a, b) => urgency(a) - urgency(b) || (a.state ?? "").localeCompare(b.state ?? "") },
        { title: _("Bay"), cell: disk => disk.slot ?? "–", sort: (a, b) => (a.slot ?? -1) - (b.slot ?? -1) },
        { title: _("Size"), cell: disk => <Bdi>{bytes(disk.size_bytes, language())}</Bdi>, sort: (a, b) => (a.size_bytes ?? -1) - (b.size_bytes ?? -1) },
        { title: _("Model"), cell: disk => <Bdi>{disk.model ?? "?"}</Bdi>, sort: (a, b) => (a.model ?? "").localeCompare(b.model ?? "") },
        { title: _("Serial number"), cell: disk => <Bdi>{disk.serial ?? "?"}</Bdi>, sort: (a, b) => (a.serial ?? "").localeCompare(b.serial ?? "") },
        { title: _("Used by"), cell: disk => disk.vd ? <ObjectLink address={disk.vd} /> : disk.dg ? <ObjectLink address={disk.dg} /> : "–" },
    ];
}

function rowActions(disk: Disk) {
    return <><LightButton address={disk.address} on={disk.locate_light} /><ActionMenu of={disk.address} actions={diskActions(disk)} /></>;
}

function Choice({ label, value, values, any, onChange }: {
    label: string; value: string; values: [string, string][]; any: string; onChange: (value: string) => void;
}) {
    return (
        <FormSelect className="vx-choice" aria-label={label} value={value} onChange={(_event, chosen) => onChange(chosen)}>
            <FormSelectOption value="" label={any} />
            {values.map(([name, word]) => <FormSelectOption key={name} value={name} label={word} />)}
        </FormSelect>
    );
}

function Found({ disks }: { disks: Disk[] }) {
    const [filter, setFilter] = useState<DiskFilter>(kNoFilter);
    const change = (part: Partial<DiskFilter>) => setFilter({ ...filter, ...part });
    const shown = useMemo(() => disksShown(disks, filter)
        .sort((a, b) => urgency(a) - urgency(b) || compareAddresses(a.address, b.address)), [disks, filter]);
    const titles = useMemo(columns, []);
    const unique = (values: (string | null)[]) => [...new Set(values.filter((value): value is string => value !== null))].sort(compareAddresses);
    const states = unique(disks.map(disk => disk.state)).map((state): [string, string] => [state, diskState(state).word]);
    const adapters = unique(disks.map(disk => adapterOf(disk.address))).map((name): [string, string] => [name, name]);
    const enclosures = unique(disks.map(disk => disk.enclosure)).map((name): [string, string] => [name, name]);
    return (
        <section aria-label={_("Disks")}>
            <div className="vx-filters" role="search" aria-label={_("Filter")}>
                <SearchInput aria-label={_("Address, model or serial number")} placeholder={_("Address, model or serial number")}
                    value={filter.text} onChange={(_event, text) => change({ text })} onClear={() => change({ text: "" })} />
                <Choice label={_("State")} any={_("Any state")} value={filter.state} values={states} onChange={state => change({ state })} />
                {adapters.length > 1 ? <Choice label={_("Adapter")} any={_("All adapters")} value={filter.adapter} values={adapters} onChange={adapter => change({ adapter })} /> : null}
                {enclosures.length > 1 ? <Choice label={_("Enclosure")} any={_("All enclosures")} value={filter.enclosure} values={enclosures} onChange={enclosure => change({ enclosure })} /> : null}
                <Checkbox id="smart-only" label={_("Failure predicted")} isChecked={filter.smart} onChange={(_event, smart) => change({ smart })} />
            </div>
            {shown.length === 0 ? (
                <EmptyState headingLevel="h2" titleText={_("No disk matches")}>
                    <EmptyStateFooter><EmptyStateActions>
                        {isFiltered(filter) ? <Button variant="link" onClick={() => setFilter(kNoFilter)}>{_("Clear filters")}</Button> : null}
                    </EmptyStateActions></EmptyStateFooter>
                </EmptyState>
            ) : <DataTable label={_("Disks")} rows={shown} rowKey={disk => disk.address} columns={titles} actions={rowActions} />}
        </section>
    );
}

export function Disks() {
    const disks = useList("disks");
    return (
        <Listed list={disks} retry={() => void refresh()}>
            {items => items.length === 0
                ? <EmptyState headingLevel="h2" titleText={_("No disk")}><EmptyStateBody>{_("No adapter reports a disk.")}</EmptyStateBody></EmptyState>
                : <Found disks={items} />}
        </Listed>
    );
}

export function OneDisk({ address }: { address: string }) {
    const disks = useList("disks");
    return (
        <Listed list={disks} retry={() => void refresh()}>
            {items => {
                const disk = items.find(item => item.address === address);
                if (!disk) {
                    return (
                        <EmptyState headingLevel="h2" titleText={fill(_("There is no disk $0"), address)}>
                            <EmptyStateBody>{_("It was pulled, or has another address now.")}</EmptyStateBody>
                        </EmptyState>
                    );
                }
                return (
                    <>
                        <div className="vx-row"><h2>{_("Disk")} <Bdi>{disk.address}</Bdi></h2><div className="vx-actions">{rowActions(disk)}</div></div>
                        <Card component="section"><CardTitle component="h3">{_("State")}</CardTitle><CardBody>
                            <Facts facts={[
                                { term: _("State"), value: <StateOf disk={disk} /> },
                                { term: _("Serial number"), value: <Bdi>{disk.serial ?? "?"}</Bdi> },
                                { term: _("Model"), value: <Bdi>{disk.model ?? "?"}</Bdi> },
                                { term: _("Size"), value: <Bdi>{bytes(disk.size_bytes, language())}</Bdi> },
                                { term: _("Free"), value: <Bdi>{bytes(disk.free_bytes, language())}</Bdi> },
                                { term: _("Enclosure"), value: disk.enclosure ? <ObjectLink address={disk.enclosure} /> : "–" },
                                { term: _("Bay"), value: disk.slot ?? "–" },
                                { term: _("Used by"), value: disk.vd ? <ObjectLink address={disk.vd} /> : disk.dg ? <Bdi>{disk.dg}</Bdi> : "–" },
                            ]} />
                        </CardBody></Card>
                        <ObjectEvents address={address} />
                    </>
                );
            }}
        </Listed>
    );
}
