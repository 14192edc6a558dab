// Settings of an adapter, with its rates. What an adapter does not have is not offered.
import { FormGroup } from "@patternfly/react-core/dist/esm/components/Form/index.js";
import { NumberInput } from "@patternfly/react-core/dist/esm/components/NumberInput/index.js";
import { Slider } from "@patternfly/react-core/dist/esm/components/Slider/index.js";
import { Switch } from "@patternfly/react-core/dist/esm/components/Switch/index.js";
import { useState } from "react";
import type { Adapter } from "../model/types.ts";
import { _, fill } from "../host/language.ts";
import { ChangeDialog } from "./change.tsx";
import { closeDialog, show } from "./dialogs.tsx";

interface Rate {
    option: string;
    title: string;
    value: number | null;
}

interface Choice {
    option: string;
    title: string;
    value: boolean | null;
}

function ratesOf(adapter: Adapter): Rate[] {
    return [
        { option: "rebuild-rate", title: _("Rebuild rate"), value: adapter.rebuild_rate_percent },
        { option: "background-rate", title: _("Background rate"), value: adapter.background_rate_percent },
        { option: "check-rate", title: _("Check rate"), value: adapter.check_rate_percent },
        { option: "init-rate", title: _("Initialisation rate"), value: adapter.init_rate_percent },
        { option: "migration-rate", title: _("Migration rate"), value: adapter.migration_rate_percent },
        { option: "copyback-rate", title: _("Copyback rate"), value: adapter.copyback_rate_percent },
        { option: "media-patrol-rate", title: _("Media patrol rate"), value: adapter.media_patrol_rate_percent },
    ];
}

function choicesOf(adapter: Adapter): Choice[] {
    return [
        ...(adapter.has_alarm ? [{ option: "alarm", title: _("The alarm may sound"), value: adapter.alarm_on }] : []),
        { option: "auto-rebuild", title: _("Take spares at once"), value: adapter.auto_rebuild },
        { option: "copyback", title: _("Copy back onto a replaced disk"), value: adapter.copyback },
        { option: "poll-smart", title: _("Ask the disks for SMART"), value: adapter.poll_smart },
    ];
}

const bounded = (value: number) => Math.min(100, Math.max(0, Math.round(value)));

function Settings({ adapter }: { adapter: Adapter }) {
    const [rates, setRates] = useState<Record<string, number>>({});
    const [choices, setChoices] = useState<Record<string, boolean>>({});
    const changes = [
        ...ratesOf(adapter).flatMap(({ option, value }) => rates[option] !== undefined && rates[option] !== value ? [`--${option}=${rates[option]}`] : []),
        ...choicesOf(adapter).flatMap(({ option, value }) => choices[option] !== undefined && choices[option] !== value ? [`--${option}=${choices[option] ? "on" : "off"}`] : []),
    ];
    return (
        <ChangeDialog title={fill(_("Settings of $0"), adapter.address)} verb={_("Save")} onClose={closeDialog}
            args={changes.length === 0 ? null : ["adapter", "set", adapter.address, ...changes]} done={fill(_("The settings of $0 are saved"), adapter.address)}>
            {ratesOf(adapter).map(({ option, title, value }) => {
                if (value === null) return null;
                const now = rates[option] ?? value;
                const set = (next: number) => setRates({ ...rates, [option]: bounded(next) });
                return (
                    <FormGroup key={option} label={title} fieldId={option}>
                        <div className="vx-rate">
                            <Slider value={now} min={0} max={100} step={5} showTicks={false} thumbAriaLabel={title} onChange={(_event, next) => set(next)} />
                            <NumberInput value={now} min={0} max={100} unit="%" inputProps={{ id: option }} inputAriaLabel={title} widthChars={4}
                                minusBtnAriaLabel={fill(_("$0: less"), title)} plusBtnAriaLabel={fill(_("$0: more"), title)}
                                onMinus={() => set(now - 1)} onPlus={() => set(now + 1)}
                                onChange={event => set(Number((event.target as HTMLInputElement).value))} />
                        </div>
                    </FormGroup>
                );
            })}
            {choicesOf(adapter).map(({ option, title, value }) => value === null ? null : (
                <Switch key={option} id={option} label={title} isChecked={choices[option] ?? value} onChange={(_event, on) => setChoices({ ...choices, [option]: on })} />
            ))}
            {changes.length === 0 ? <p>{_("Nothing is changed yet.")}</p> : null}
        </ChangeDialog>
    );
}

export function adapterSettings(adapter: Adapter): void {
    show(<Settings adapter={adapter} />);
}
