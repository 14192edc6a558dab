// Adapters with their versions, settings, battery and flash.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import { Card, CardBody, CardTitle } from "@patternfly/react-core/dist/esm/components/Card/index.js";
import { EmptyState, EmptyStateBody } from "@patternfly/react-core/dist/esm/components/EmptyState/index.js";
import { Progress } from "@patternfly/react-core/dist/esm/components/Progress/index.js";
import { codeName, percent } from "../model/text.ts";
import type { Adapter, Battery, Flash } from "../model/types.ts";
import { _, fill, language } from "../host/language.ts";
import { refresh, useList } from "../host/lists.ts";
import { adapterSettings } from "../dialogs/adapter_settings.tsx";
import { relearn } from "../dialogs/dialogs.tsx";
import { updateFlash } from "../dialogs/flash.tsx";
import { useActing } from "../parts/acting.tsx";
import { Bdi } from "../parts/bdi.tsx";
import { DataTable } from "../parts/data_table.tsx";
import { Listed } from "../parts/failure.tsx";
import { actNow } from "../parts/notices.tsx";
import { StateText, levelName } from "../parts/state.tsx";
import { Facts } from "./virtual_disks.tsx";

function onOff(value: boolean | null): string {
    return value === null ? "?" : value ? _("on") : _("off");
}

function OneBattery({ battery }: { battery: Battery }) {
    const acting = useActing();
    const status = battery.status?.names ?? null;
    const safe = status?.includes("safe_for_write_back") ?? null;
    return (
        <section aria-label={fill(_("Battery of $0"), battery.address)}>
            <div className="vx-row"><h3>{_("Battery")}</h3>
                {battery.features?.names.includes("relearn") ? <Button variant="secondary" size="sm" {...acting} onClick={() => relearn(battery.address)}
                    aria-label={fill(_("Relearn the battery of $0"), battery.address)}>{_("Relearn")}</Button> : null}</div>
            <StateText look={safe === null ? "unknown" : safe ? "ok" : "warning"}
                word={safe === null ? _("unknown") : safe ? _("safe for write-back") : _("not safe for write-back")} more={status?.filter(name => name !== "safe_for_write_back" && name !== "present").join(", ") || undefined} />
            {battery.charge_ratio === null ? null : <Progress size="sm" value={Math.floor(battery.charge_ratio * 100)}
                label={percent(battery.charge_ratio, language())} aria-label={fill(_("Charge of the battery of $0"), battery.address)} />}
            <Facts facts={[
                { term: _("Temperature"), value: <Bdi>{`${battery.temperature_celsius ?? "?"} °C (${battery.min_temperature_celsius ?? "–"} … ${battery.max_temperature_celsius ?? "–"})`}</Bdi> },
                { term: _("Voltage"), value: <Bdi>{`${battery.voltage_millivolts ?? "?"} mV (${battery.min_voltage_millivolts ?? "–"} … ${battery.max_voltage_millivolts ?? "–"})`}</Bdi> },
                { term: _("Capacity"), value: <Bdi>{`${battery.full_capacity_mah ?? "?"} mAh`}</Bdi> },
                { term: _("Cycles"), value: battery.cycles ?? "?" },
            ]} />
        </section>
    );
}

function Images({ adapter, images }: { adapter: string; images: Flash[] }) {
    const acting = useActing();
    return (
        <section aria-label={fill(_("Flash of $0"), adapter)}>
            <div className="vx-row"><h3>{_("Flash")}</h3>
                <Button variant="secondary" size="sm" {...acting} onClick={() => updateFlash(adapter, images)}
                    aria-label={fill(_("Update the flash of $0"), adapter)}>{_("Update")}</Button></div>
            <DataTable label={fill(_("Images of $0"), adapter)} rows={images} rowKey={image => codeName(image.image) ?? ""} columns={[
                { title: _("Image"), cell: image => codeName(image.image) ?? "?" },
                { title: _("Version"), cell: image => <Bdi>{image.version ?? "?"}</Bdi> },
                { title: _("State"), cell: image => image.healthy === null ? <StateText look="unknown" word={_("unknown")} />
                    : <StateText look={image.healthy ? "ok" : "critical"} word={image.healthy ? _("sound") : _("damaged")} /> },
            ]} />
        </section>
    );
}

function OneAdapter({ adapter, battery, images }: { adapter: Adapter; battery: Battery | undefined; images: Flash[] }) {
    const acting = useActing();
    return (
        <Card component="section" aria-label={fill(_("Adapter $0"), adapter.address)}>
            <CardTitle component="h2"><div className="vx-row"><span>{_("Adapter")} <Bdi>{adapter.address}</Bdi></span><span className="vx-actions">
                {adapter.has_alarm ? <Button variant="secondary" size="sm" {...acting} aria-label={fill(_("Mute the alarm of $0"), adapter.address)}
                    onClick={() => void actNow(fill(_("The alarm of $0 is muted"), adapter.address), ["adapter", "mute", adapter.address])}>{_("Mute")}</Button> : null}
                <Button variant="secondary" size="sm" {...acting} aria-label={fill(_("Settings of $0"), adapter.address)} onClick={() => adapterSettings(adapter)}>{_("Settings")}</Button>
            </span></div></CardTitle>
            <CardBody>
                <Facts facts={[
                    { term: _("Serial number"), value: <Bdi>{adapter.serial ?? "?"}</Bdi> },
                    { term: _("Firmware"), value: <Bdi>{adapter.firmware_version ?? "?"}</Bdi> },
                    { term: _("BIOS"), value: <Bdi>{adapter.bios_version ?? "?"}</Bdi> },
                    { term: _("Driver"), value: <Bdi>{adapter.driver_version ?? "?"}</Bdi> },
                    { term: _("Levels"), value: <Bdi>{adapter.levels?.names.map(levelName).join(", ") ?? "?"}</Bdi> },
                    { term: _("Disks at most"), value: adapter.max_disks ?? "?" },
                    { term: _("Virtual disks at most"), value: adapter.max_virtual_disks ?? "?" },
                    { term: _("Automatic rebuild"), value: onOff(adapter.auto_rebuild) },
                    { term: _("Copyback"), value: onOff(adapter.copyback) },
                    { term: _("Alarm"), value: adapter.has_alarm === false ? _("none") : onOff(adapter.alarm_on) },
                    { term: _("Rebuild rate"), value: adapter.rebuild_rate_percent === null ? "?" : <Bdi>{`${adapter.rebuild_rate_percent} %`}</Bdi> },
                ]} />
                {battery ? <OneBattery battery={battery} /> : null}
                {images.length > 0 ? <Images adapter={adapter.address} images={images} /> : null}
            </CardBody>
        </Card>
    );
}

export function Adapters() {
    const adapters = useList("adapters");
    const batteries = useList("batteries");
    const flash = useList("flash");
    return (
        <Listed list={adapters} retry={() => void refresh()}>
            {items => items.length === 0 ? (
                <EmptyState headingLevel="h2" titleText={_("No RAID controller")}><EmptyStateBody>{_("No controller answers on this machine.")}</EmptyStateBody></EmptyState>
            ) : (
                <div className="vx-cards">
                    {items.map(adapter => (
                        <OneAdapter key={adapter.address} adapter={adapter} battery={batteries.items?.find(battery => battery.address === adapter.address)}
                            images={(flash.items ?? []).filter(image => image.address === adapter.address)} />
                    ))}
                </div>
            )}
        </Listed>
    );
}
