// Virtual disks and disk groups, and the page of one virtual disk.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { DescriptionList, DescriptionListDescription, DescriptionListGroup, DescriptionListTerm } from "@patternfly/react-core/dist/esm/components/DescriptionList/index.js";
import { EmptyState, EmptyStateActions, EmptyStateBody, EmptyStateFooter } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import { Progress } from "@patternfly/react-core/dist/esm/components/Progress/index.js";
import { activitiesOfList } from "../model/health.ts";
import { bytes, codeName, compareAddresses, named, percent } from "../model/text.ts";
import type { Dg, Disk, Vd } from "../model/types.ts";
import { _, fill, language, plural } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import { create } from "../dialogs/create.tsx";
import { deleteDg, deleteVd, startCheck, stopActivity } from "../dialogs/dialogs.tsx";
import { migrate } from "../dialogs/migrate.tsx";
import { vdSettings } from "../dialogs/settings.tsx";
import { useActing } from "../parts/acting.tsx";
import { Activities } from "../parts/activity.tsx";
import { Bdi } from "../parts/bdi.tsx";
import { DataTable, type Column } from "../parts/data_table.tsx";
import { Listed } from "../parts/failure.tsx";
import { ObjectLink } from "../parts/links.tsx";
import { ActionMenu, type MenuAction } from "../parts/menu.tsx";
import { StateText, activityWord, arrayState, diskState, levelName } from "../parts/state.tsx";
import { ObjectEvents } from "./events.tsx";

function activityOf(vd: Vd): string | undefined {
    const name = vd.activity?.name;
    if (!name || name === "none") return undefined;
    return vd.progress_ratio === null ? activityWord(name) : `${activityWord(name)} ${percent(vd.progress_ratio, language())}`;
}

// A level without redundancy survives nothing and has lost nothing.
export function survives(vd: Vd): string {
    if (vd.failures_tolerated === null) return "?";
    return plural("$0 more failure", "$0 more failures", vd.failures_tolerated);
}

function StateOf({ vd }: { vd: Vd }) {
    const { look, word } = arrayState(codeName(vd.state));
    // Rebuilding with redundancy to spare is less than critical; the table of conditions says the rest.
    return <StateText look={look === "critical" && (vd.failures_tolerated ?? 0) > 0 ? "warning" : look} word={word} more={activityOf(vd)} />;
}

function columns(): Column<Vd>[] {
    return [
        { title: _("Name"), cell: vd => <ObjectLink address={vd.address} name={vd.name} />, sort: (a, b) => (a.name ?? "").localeCompare(b.name ?? "") },
        { title: _("State"), cell: vd => <StateOf vd={vd} />, sort: (a, b) => (a.state?.code ?? -1) - (b.state?.code ?? -1) },
        { title: _("Level"), cell: vd => levelName(codeName(vd.level)) },
        { title: _("Size"), cell: vd => <Bdi>{bytes(vd.size_bytes, language())}</Bdi>, sort: (a, b) => (a.size_bytes ?? -1) - (b.size_bytes ?? -1) },
        { title: _("Survives"), cell: survives },
        { title: _("Disks"), cell: vd => vd.disks === null ? "?" : vd.disks.length },
    ];
}

export function vdActions(vd: Vd): MenuAction[] {
    const busy = vd.activity?.name && vd.activity.name !== "none" ? _("An activity runs there.") : null;
    const redundant = vd.level?.name !== "raid0";
    return [
        { title: _("Settings"), act: () => vdSettings(vd) },
        ...(redundant ? [{ title: _("Check consistency"), act: () => startCheck(vd), refused: busy }] : []),
        { title: _("Migrate"), act: () => migrate(vd), refused: busy },
        { title: _("Delete"), act: () => deleteVd(vd), danger: true },
    ];
}

function Groups({ dgs }: { dgs: Dg[] }) {
    if (dgs.length === 0) return null;
    return (
        <section aria-label={_("Disk groups")}>
            <h2>{_("Disk groups")}</h2>
            <div className="vx-cards">
                {dgs.map(dg => {
                    const { look, word } = arrayState(codeName(dg.state));
                    const used = dg.size_bytes && dg.free_bytes !== null ? 1 - dg.free_bytes / dg.size_bytes : null;
                    return (
                        <Card key={dg.address} component="article">
                            <CardTitle component="h3">
                                <div className="vx-row"><span><bdi>{dg.name}</bdi> <Bdi>({dg.address})</Bdi></span>
                                    <ActionMenu of={named(dg.address, dg.name)} actions={[{ title: _("Delete"), act: () => deleteDg(dg), danger: true }]} /></div>
                            </CardTitle>
                            <CardBody>
                                <StateText look={look} word={word} more={levelName(codeName(dg.level))} />
                                {used === null ? null : <Progress size="sm" value={Math.floor(used * 100)} aria-label={fill(_("Used of $0"), named(dg.address, dg.name))}
                                    label={fill(_("$0 free"), bytes(dg.free_bytes, language()))} />}
                                <div className="vx-small">{(dg.vds ?? []).map(vd => <span key={vd}><ObjectLink address={vd} /> </span>)}</div>
                            </CardBody>
                        </Card>
                    );
                })}
            </div>
        </section>
    );
}

export function VirtualDisks() {
    const vds = useList("vds");
    const dgs = useList("dgs");
    const acting = useActing();
    const button = <Button variant="primary" {...acting} onClick={create}>{_("Create virtual disk")}</Button>;
    return (
        <>
            <Listed list={vds} retry={() => void refresh()}>
                {items => items.length === 0 ? (
                    <EmptyState headingLevel="h2" titleText={_("No virtual disk")}>
                        <EmptyStateBody>{_("Several disks become one that survives the failure of some of them.")}</EmptyStateBody>
                        <EmptyStateFooter><EmptyStateActions>{button}</EmptyStateActions></EmptyStateFooter>
                    </EmptyState>
                ) : (
                    <section aria-label={_("Virtual disks")}>
                        <div className="vx-row"><h2>{_("Virtual disks")}</h2>{button}</div>
                        <DataTable label={_("Virtual disks")} rows={items} rowKey={vd => vd.address} columns={columns()}
                            actions={vd => <ActionMenu of={named(vd.address, vd.name)} actions={vdActions(vd)} />} />
                    </section>
                )}
            </Listed>
            {dgs.items ? <Groups dgs={dgs.items} /> : null}
        </>
    );
}

export interface Fact {
    term: string;
    value: React.ReactNode;
}

export function Facts({ facts }: { facts: Fact[] }) {
    return (
        <DescriptionList isHorizontal isCompact>
            {facts.map(({ term, value }) => (
                <DescriptionListGroup key={term}><DescriptionListTerm>{term}</DescriptionListTerm>
                    <DescriptionListDescription>{value ?? "?"}</DescriptionListDescription></DescriptionListGroup>
            ))}
        </DescriptionList>
    );
}

function Members({ vd, disks }: { vd: Vd; disks: Disk[] }) {
    const members = [...vd.members ?? []].sort((a, b) => (a.position ?? 0) - (b.position ?? 0));
    return (
        <DataTable label={_("Members")} rows={members} rowKey={member => String(member.position)} columns={[
            { title: _("Position"), cell: member => member.position },
            { title: _("Disk"), cell: member => member.disk ? <ObjectLink address={member.disk} /> : _("missing") },
            { title: _("State"), cell: member => {
                const shown = member.state === "optimal" ? { look: "ok" as const, word: _("optimal") } : diskState(member.state);
                return <StateText {...shown} />;
            } },
            { title: _("Bay"), cell: member => disks.find(disk => disk.address === member.disk)?.slot ?? "–" },
        ]} />
    );
}

export function VirtualDisk({ address }: { address: string }) {
    const vds = useList("vds");
    const disks = useList("disks");
    const tasks = useList("tasks");
    return (
        <Listed list={vds} retry={() => void refresh()}>
            {items => {
                const vd = items.find(item => item.address === address);
                if (!vd) {
                    return (
                        <EmptyState headingLevel="h2" titleText={fill(_("There is no virtual disk $0"), address)}>
                            <EmptyStateBody>{_("It was deleted, or has another address now.")}</EmptyStateBody>
                        </EmptyState>
                    );
                }
                const mine = activitiesOfList((tasks.items ?? []).filter(task => task.address === address));
                const cache = vd.cache === null ? null : vd.cache.names.join(", ") || _("none");
                return (
                    <>
                        <div className="vx-row">
                            <h2><bdi>{vd.name}</bdi> <Bdi>({vd.address})</Bdi></h2>
                            <ActionMenu of={named(vd.address, vd.name)} actions={vdActions(vd)} />
                        </div>
                        <div className="vx-cards">
                            <Card component="section"><CardTitle component="h3">{_("State")}</CardTitle><CardBody>
                                <Facts facts={[
                                    { term: _("State"), value: <StateOf vd={vd} /> },
                                    { term: _("Survives"), value: survives(vd) },
                                    { term: _("Level"), value: levelName(codeName(vd.level)) },
                                    { term: _("Size"), value: <Bdi>{bytes(vd.size_bytes, language())}</Bdi> },
                                    { term: _("Stripe"), value: <Bdi>{bytes(vd.stripe_bytes, language())}</Bdi> },
                                    { term: _("Cache"), value: cache },
                                    { term: _("Disk group"), value: vd.dg ? <Bdi>{vd.dg}</Bdi> : "–" },
                                ]} />
                                {mine.length > 0 ? <Activities activities={mine} onStop={stopActivity} /> : null}
                            </CardBody></Card>
                            <Card component="section"><CardTitle component="h3">{_("Members")}</CardTitle>
                                <CardBody><Members vd={vd} disks={[...disks.items ?? []].sort((a, b) => compareAddresses(a.address, b.address))} /></CardBody></Card>
                        </div>
                        <ObjectEvents address={address} />
                    </>
                );
            }}
        </Listed>
    );
}
