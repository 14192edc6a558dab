// A new virtual disk: one dialog, with what it would be beside it while it is chosen.
import { Alert } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { Checkbox } from "@patternfly/react-core/dist/esm/components/Checkbox/index.js";
import { FormFieldGroupExpandable, FormFieldGroupHeader, FormGroup } from "@patternfly/react-core/dist/esm/components/Form/index.js";
import { FormSelect, FormSelectOption } from "@patternfly/react-core/dist/esm/components/FormSelect/index.js";
import { HelperText, HelperTextItem } from "@patternfly/react-core/dist/esm/components/HelperText/index.js";
import { Radio } from "@patternfly/react-core/dist/esm/components/Radio/index.js";
import { TextInput } from "@patternfly/react-core/dist/esm/components/TextInput/index.js";
import { useEffect, useState } from "react";
import { adapterToPropose, isFree, kLevels, nameFits, proposal, unfit, wasted, type LevelRule } from "../model/creating.ts";
import type { Failure } from "../model/failure.ts";
import { adapterOf, bytes, compareAddresses } from "../model/text.ts";
import type { Adapter, Battery, Disk } from "../model/types.ts";
import { _, fill, language } from "../host/language.ts";
import { useList } from "../host/lists.ts";
import { list } from "../host/vexorctl.ts";
import { Bdi } from "../parts/bdi.tsx";
import { FailureAlert } from "../parts/failure.tsx";
import { levelName } from "../parts/state.tsx";
import { ChangeDialog } from "./change.tsx";
import { closeDialog, show } from "./dialogs.tsx";

function survivesText(level: LevelRule): string {
    switch (level.name) {
    case "raid0": return _("survives no failure");
    case "raid6": return _("survives two failures");
    case "raid10": return _("survives one failure of each pair");
    default: return _("survives one failure");
    }
}

function unfitText(level: LevelRule, count: number): string | null {
    switch (unfit(level, count)) {
    case "few": return fill(_("$0 takes at least $1 disks."), levelName(level.name), level.least);
    case "odd": return fill(_("$0 takes an even number of disks."), levelName(level.name));
    case "not_two": return fill(_("$0 takes exactly 2 disks."), levelName(level.name));
    case null: return null;
    }
}

interface Available {
    adapters: Adapter[];
    disks: Disk[];
}

function Fields({ adapters, disks, batteries }: Available & { batteries: Battery[] }) {
    const first = adapterToPropose(disks, adapters);
    const [adapter, setAdapter] = useState(first ?? "");
    const offered = (address: string) => {
        const names = adapters.find(item => item.address === address)?.levels?.names;
        return kLevels.filter(rule => !names || names.includes(rule.name));
    };
    const best = (address: string) => offered(address).find(rule => proposal(disks, address, rule).length > 0) ?? offered(address)[0] ?? kLevels[0]!;
    const [level, setLevel] = useState(() => best(adapter));
    const [chosen, setChosen] = useState(() => proposal(disks, adapter, level));
    const [size, setSize] = useState("");
    const [name, setName] = useState("");
    const [cache, setCache] = useState("");
    const [init, setInit] = useState("");
    const [stripe, setStripe] = useState("");
    const free = disks.filter(disk => adapterOf(disk.address) === adapter && isFree(disk)).sort((a, b) => compareAddresses(a.address, b.address));
    const picked = free.filter(disk => chosen.includes(disk.address));
    const wrong = unfitText(level, picked.length);
    const unused = wasted(picked);
    const stripes = adapters.find(item => item.address === adapter)?.stripe_sizes ?? [];
    const written = cache.includes("write_back") &&
        batteries.find(battery => battery.address === adapter)?.status?.names.includes("safe_for_write_back") !== true;
    const boot = picked.filter(disk => disk.boot_record !== false);
    const kinds = new Set(picked.map(disk => disk.connection?.name ?? "?"));
    const args = wrong || !nameFits(name) || picked.length === 0 ? null : [
        "vd", "create", ...picked.map(disk => disk.address), `--raid=${level.option}`, `--size=${size.trim() || "max"}`,
        ...(name ? [`--name=${name}`] : []), ...(cache ? [`--cache=${cache}`] : []), ...(init ? [`--init=${init}`] : []),
        ...(stripe ? [`--stripe=${stripe}`] : []),
    ];
    const turnTo = (address: string, rule: LevelRule) => {
        setAdapter(address);
        setLevel(rule);
        setChosen(proposal(disks, address, rule));
    };
    const warnings = [
        wrong,
        nameFits(name) ? null : _("The name is longer than 15 bytes."),
        boot.length > 0 ? fill(_("A boot record is, or may be, on $0: its data will be lost."), boot.map(disk => disk.address).join(", ")) : null,
        kinds.size > 1 ? _("Disks of different kinds are mixed.") : null,
        written ? _("Without a charged battery, what is in the write-back cache is lost when power fails.") : null,
        unused ? fill(_("$0 of the larger disks stay unused."), bytes(unused, language())) : null,
    ].filter((text): text is string => text !== null);
    return (
        <ChangeDialog title={_("Create a virtual disk")} verb={_("Create")} wide args={args} onClose={closeDialog}
            typed={boot.length > 0 ? name || _("create") : undefined} done={fill(_("The virtual disk $0 was created"), name)}
            warning={warnings.length > 0 ? <Alert isInline component="h2" variant="warning" title={_("Please note")}>{warnings.map(text => <p key={text}>{text}</p>)}</Alert> : null}>
            {adapters.length > 1 ? (
                <FormGroup label={_("Adapter")} fieldId="create-adapter">
                    <FormSelect id="create-adapter" value={adapter} onChange={(_event, address) => turnTo(address, best(address))}>
                        {adapters.map(item => <FormSelectOption key={item.address} value={item.address} label={`${item.address} ${item.serial ?? ""}`} />)}
                    </FormSelect>
                </FormGroup>
            ) : null}
            <FormGroup role="radiogroup" label={_("Level")} fieldId="create-level">
                <div className="vx-choices">
                    {offered(adapter).map(rule => (
                        <Radio key={rule.name} id={`level-${rule.name}`} name="level" label={levelName(rule.name)} description={survivesText(rule)}
                            isChecked={rule.name === level.name} onChange={() => turnTo(adapter, rule)} />
                    ))}
                </div>
            </FormGroup>
            <FormGroup role="group" label={_("Disks")} fieldId="create-disks">
                {free.length === 0 ? <p>{fill(_("No disk of $0 is free."), adapter)}</p> : (
                    <div className="vx-choices vx-scroll" tabIndex={0} role="group" aria-label={_("Free disks")}>
                        {free.map(disk => (
                            <Checkbox key={disk.address} id={`pick-${disk.address}`} isChecked={chosen.includes(disk.address)}
                                label={<><Bdi>{disk.address}</Bdi> <span className="vx-small"><Bdi>{bytes(disk.free_bytes, language())}</Bdi> <Bdi>{disk.model ?? ""}</Bdi></span></>}
                                onChange={(_event, on) => setChosen(on ? [...chosen, disk.address] : chosen.filter(address => address !== disk.address))} />
                        ))}
                    </div>
                )}
            </FormGroup>
            <FormGroup label={_("Name")} fieldId="change-first">
                <TextInput id="change-first" value={name} onChange={(_event, value) => setName(value)} autoComplete="off" validated={nameFits(name) ? "default" : "error"} />
            </FormGroup>
            <FormGroup label={_("Size")} fieldId="create-size">
                <TextInput id="create-size" value={size} placeholder={_("all there is")} onChange={(_event, value) => setSize(value)} autoComplete="off" />
                <HelperText><HelperTextItem>{_("For example 200GiB or 50%; empty is the most.")}</HelperTextItem></HelperText>
            </FormGroup>
            <FormFieldGroupExpandable toggleAriaLabel={_("Advanced")} header={<FormFieldGroupHeader titleText={{ text: _("Advanced"), id: "create-advanced" }} />}>
                <FormGroup label={_("Cache")} fieldId="create-cache">
                    <FormSelect id="create-cache" value={cache} onChange={(_event, value) => setCache(value)}>
                        <FormSelectOption value="" label={_("As usual")} />
                        <FormSelectOption value="read_ahead" label={_("Read ahead")} />
                        <FormSelectOption value="write_back,read_ahead" label={_("Write back and read ahead")} />
                        <FormSelectOption value="none" label={_("None")} />
                    </FormSelect>
                </FormGroup>
                <FormGroup label={_("Initialisation")} fieldId="create-init">
                    <FormSelect id="create-init" value={init} onChange={(_event, value) => setInit(value)}>
                        <FormSelectOption value="" label={_("As usual")} />
                        <FormSelectOption value="quick" label={_("Quick")} />
                        <FormSelectOption value="background" label={_("In the background")} />
                        <FormSelectOption value="foreground" label={_("In the foreground")} />
                        <FormSelectOption value="none" label={_("None")} />
                    </FormSelect>
                </FormGroup>
                <FormGroup label={_("Stripe")} fieldId="create-stripe">
                    <FormSelect id="create-stripe" value={stripe} onChange={(_event, value) => setStripe(value)}>
                        <FormSelectOption value="" label={_("As usual")} />
                        {stripes.map(bytesOf => <FormSelectOption key={bytesOf} value={`${bytesOf}B`} label={bytes(bytesOf, language())} />)}
                    </FormSelect>
                </FormGroup>
            </FormFieldGroupExpandable>
        </ChangeDialog>
    );
}

// The list of disks leaves out what only this dialog asks for.
const kColumns = "address,state,size_bytes,free_bytes,model,connection,boot_record";

function Create() {
    const adapters = useList("adapters");
    const batteries = useList("batteries");
    const [disks, setDisks] = useState<Disk[] | null>(null);
    const [failure, setFailure] = useState<Failure | null>(null);
    useEffect(() => {
        void list<Disk>(["disk", "list", "--free", "--columns", kColumns]).then(answer => {
            setDisks(answer.items);
            setFailure(answer.failure);
        });
    }, []);
    if (disks && adapters.items && batteries.items && adapters.items.length > 0) {
        return <Fields adapters={adapters.items} disks={disks} batteries={batteries.items} />;
    }
    const wrong = failure ?? adapters.failure ?? batteries.failure;
    // The lists take a tenth of a second: a dialog that is replaced by another at once would only flicker.
    if (!wrong && adapters.items?.length !== 0) return null;
    return (
        <ChangeDialog title={_("Create a virtual disk")} verb={_("Create")} wide args={null} onClose={closeDialog} done="">
            {wrong ? <FailureAlert failure={wrong} at={null} /> : <p>{_("No adapter is known.")}</p>}
        </ChangeDialog>
    );
}

export function create(): void {
    show(<Create />);
}
