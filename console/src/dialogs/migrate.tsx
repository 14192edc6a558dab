// Another level, or more disks, for a virtual disk that stays in use meanwhile.
import { Checkbox } from "@patternfly/react-core/dist/esm/components/Checkbox/index.js";
import { FormGroup } from "@patternfly/react-core/dist/esm/components/Form/index.js";
import { FormSelect, FormSelectOption } from "@patternfly/react-core/dist/esm/components/FormSelect/index.js";
import { useState } from "react";
import { kLevels } from "../model/creating.ts";
import { adapterOf, bytes, compareAddresses, named } from "../model/text.ts";
import type { Vd } from "../model/types.ts";
import { _, fill, language } from "../host/language.ts";
import { useList } from "../host/lists.ts";
import { Bdi } from "../parts/bdi.tsx";
import { levelName } from "../parts/state.tsx";
import { ChangeDialog } from "./change.tsx";
import { closeDialog, show } from "./dialogs.tsx";

function Migrate({ vd }: { vd: Vd }) {
    const disks = useList("disks");
    const adapters = useList("adapters");
    const [level, setLevel] = useState(vd.level?.name ?? "raid5");
    const [chosen, setChosen] = useState(vd.disks ?? []);
    const adapter = adapterOf(vd.address);
    const names = adapters.items?.find(item => item.address === adapter)?.levels?.names;
    const offered = kLevels.filter(rule => !names || names.includes(rule.name));
    const rule = kLevels.find(item => item.name === level);
    const usable = (disks.items ?? []).filter(disk => adapterOf(disk.address) === adapter && (disk.state === "free" || (vd.disks ?? []).includes(disk.address)))
        .sort((a, b) => compareAddresses(a.address, b.address));
    const same = level === vd.level?.name && [...chosen].sort().join() === [...vd.disks ?? []].sort().join();
    const args = same || !rule ? null : ["vd", "migrate", vd.address, `--raid=${rule.option}`, `--to=${[...chosen].sort(compareAddresses).join(",")}`];
    return (
        <ChangeDialog title={fill(_("Migrate the virtual disk $0?"), named(vd.address, vd.name))} verb={_("Migrate")} danger typed={vd.name ?? vd.address}
            args={args} onClose={closeDialog} done={fill(_("The migration of $0 has started"), named(vd.address, vd.name))}>
            <FormGroup label={_("New level")} fieldId="migrate-level">
                <FormSelect id="migrate-level" value={level} onChange={(_event, value) => setLevel(value)}>
                    {offered.map(item => <FormSelectOption key={item.name} value={item.name} label={levelName(item.name)} />)}
                </FormSelect>
            </FormGroup>
            <FormGroup role="group" label={_("Disks")} fieldId="migrate-disks">
                <div className="vx-choices vx-scroll" tabIndex={0} role="group" aria-label={_("Free disks")}>
                    {usable.map(disk => (
                        <Checkbox key={disk.address} id={`to-${disk.address}`} isChecked={chosen.includes(disk.address)}
                            label={<><Bdi>{disk.address}</Bdi> <span className="vx-small"><Bdi>{bytes(disk.size_bytes, language())}</Bdi></span></>}
                            onChange={(_event, on) => setChosen(on ? [...chosen, disk.address] : chosen.filter(address => address !== disk.address))} />
                    ))}
                </div>
            </FormGroup>
            {same ? <p>{_("Choose another level or other disks.")}</p> : null}
        </ChangeDialog>
    );
}

export function migrate(vd: Vd): void {
    show(<Migrate vd={vd} />);
}
