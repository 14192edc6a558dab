// A new image for an adapter's flash, from a file on the server.
import { Alert } from "@patternfly/react-core/dist/esm/components/Alert/index.js";
import { FormGroup } from "@patternfly/react-core/dist/esm/components/Form/index.js";
import { FormSelect, FormSelectOption } from "@patternfly/react-core/dist/esm/components/FormSelect/index.js";
import { TextInput } from "@patternfly/react-core/dist/esm/components/TextInput/index.js";
import { useState } from "react";
import { codeName } from "../model/text.ts";
import type { Flash } from "../model/types.ts";
import { _, fill } from "../host/language.ts";
import { Bdi } from "../parts/bdi.tsx";
import { ChangeDialog } from "./change.tsx";
import { closeDialog, show } from "./dialogs.tsx";

function Update({ adapter, images }: { adapter: string; images: Flash[] }) {
    const [image, setImage] = useState(codeName(images[0]?.image) ?? "bios");
    const [file, setFile] = useState("");
    const installed = images.find(item => item.image?.name === image)?.version;
    return (
        <ChangeDialog title={fill(_("Update the flash of $0?"), adapter)} verb={_("Update")} danger typed={adapter} onClose={closeDialog}
            args={file.startsWith("/") ? ["flash", "update", adapter, `--image=${image}`, `--file=${file}`] : null}
            warning={<Alert isInline component="h2" variant="warning" title={_("Keep the machine on until it has ended.")} />}
            done={fill(_("The image of $0 is written"), adapter)}>
            <FormGroup label={_("Image")} fieldId="flash-image">
                <FormSelect id="flash-image" value={image} onChange={(_event, value) => setImage(value)}>
                    {images.map(item => <FormSelectOption key={codeName(item.image)} value={codeName(item.image) ?? ""} label={codeName(item.image) ?? "?"} />)}
                </FormSelect>
            </FormGroup>
            <p>{_("Installed")}: <Bdi>{installed ?? "?"}</Bdi></p>
            <FormGroup label={_("File on the server")} fieldId="flash-file">
                <TextInput id="flash-file" value={file} placeholder="/root/bios.rom" onChange={(_event, value) => setFile(value)} autoComplete="off" spellCheck="false" />
            </FormGroup>
        </ChangeDialog>
    );
}

export function updateFlash(adapter: string, images: Flash[]): void {
    show(<Update adapter={adapter} images={images} />);
}
