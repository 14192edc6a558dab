// Settings of virtual disks and disks. Only what is changed is sent.
import { FormGroup } from "@patternfly/react-core/dist/esm/components/Form/index.js";
import { FormSelect, FormSelectOption } from "@patternfly/react-core/dist/esm/components/FormSelect/index.js";
import { TextInput } from "@patternfly/react-core/dist/esm/components/TextInput/index.js";
import { useState } from "react";
import { nameFits } from "../model/creating.ts";
import { named } from "../model/text.ts";
import type { Disk, Vd } from "../model/types.ts";
import { _, fill } from "../host/language.ts";
import { ChangeDialog } from "./change.tsx";
import { closeDialog, show } from "./dialogs.tsx";

function VdSettings({ vd }: { vd: Vd }) {
    // What the controller forces is not a setting.
    const before = (vd.cache?.names ?? []).filter(mode => mode === "write_back" || mode === "read_ahead").join(",") || "none";
    const [name, setName] = useState(vd.name ?? "");
    const [cache, setCache] = useState(before);
    const [rebuild, setRebuild] = useState(vd.auto_rebuild ? "on" : "off");
    const changes = [
        ...(name !== (vd.name ?? "") && nameFits(name) ? [`--name=${name}`] : []),
        ...(cache !== before ? [`--cache=${cache}`] : []),
        ...(vd.auto_rebuild !== null && rebuild !== (vd.auto_rebuild ? "on" : "off") ? [`--auto-rebuild=${rebuild}`] : []),
    ];
    return (
        <ChangeDialog title={fill(_("Settings of $0"), named(vd.address, vd.name))} verb={_("Save")} onClose={closeDialog}
            args={changes.length === 0 || !nameFits(name) ? null : ["vd", "set", vd.address, ...changes]} done={fill(_("The settings of $0 are saved"), named(vd.address, vd.name))}>
            <FormGroup label={_("Name")} fieldId="change-first">
                <TextInput id="change-first" value={name} onChange={(_event, value) => setName(value)} autoComplete="off" validated={nameFits(name) ? "default" : "error"} />
            </FormGroup>
            <FormGroup label={_("Cache")} fieldId="vd-cache">
                <FormSelect id="vd-cache" value={cache} onChange={(_event, value) => setCache(value)}>
                    <FormSelectOption value="none" label={_("None")} />
                    <FormSelectOption value="read_ahead" label={_("Read ahead")} />
                    <FormSelectOption value="write_back" label={_("Write back")} />
                    <FormSelectOption value="write_back,read_ahead" label={_("Write back and read ahead")} />
                </FormSelect>
            </FormGroup>
            {vd.auto_rebuild === null ? null : (
                <FormGroup label={_("Take a spare at once")} fieldId="vd-rebuild">
                    <FormSelect id="vd-rebuild" value={rebuild} onChange={(_event, value) => setRebuild(value)}>
                        <FormSelectOption value="on" label={_("Yes")} />
                        <FormSelectOption value="off" label={_("No")} />
                    </FormSelect>
                </FormGroup>
            )}
            {changes.length === 0 ? <p>{_("Nothing is changed yet.")}</p> : null}
        </ChangeDialog>
    );
}

function DiskSettings({ disk }: { disk: Disk }) {
    const [cache, setCache] = useState("");
    const [smart, setSmart] = useState("");
    const changes = [...(cache ? [`--write-cache=${cache}`] : []), ...(smart ? [`--smart=${smart}`] : [])];
    const choice = (id: string, label: string, value: string, set: (value: string) => void) => (
        <FormGroup label={label} fieldId={id}>
            <FormSelect id={id} value={value} onChange={(_event, chosen) => set(chosen)}>
                <FormSelectOption value="" label={_("As it is")} />
                <FormSelectOption value="on" label={_("On")} />
                <FormSelectOption value="off" label={_("Off")} />
            </FormSelect>
        </FormGroup>
    );
    return (
        <ChangeDialog title={fill(_("Settings of $0"), disk.address)} verb={_("Save")} onClose={closeDialog}
            args={changes.length === 0 ? null : ["disk", "set", disk.address, ...changes]} done={fill(_("The settings of $0 are saved"), disk.address)}>
            {choice("change-first", _("Write cache"), cache, setCache)}
            {choice("disk-smart", _("SMART"), smart, setSmart)}
            {changes.length === 0 ? <p>{_("Nothing is changed yet.")}</p> : null}
        </ChangeDialog>
    );
}

export function vdSettings(vd: Vd): void {
    show(<VdSettings vd={vd} />);
}

export function diskSettings(disk: Disk): void {
    show(<DiskSettings disk={disk} />);
}
