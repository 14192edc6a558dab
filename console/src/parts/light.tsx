// The light of a disk's bay.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import LightbulbIcon from "@patternfly/react-icons/dist/esm/icons/lightbulb-icon";
import { useState } from "react";
import { _, fill } from "../host/language.ts";
import { actNow } from "./notices.tsx";
import { useActing } from "./acting.tsx";

/** on is null where nobody has asked yet: the button then switches it on. */
export function LightButton({ address, on, onDone }: { address: string; on: boolean | null; onDone?: () => void }) {
    const acting = useActing();
    const [busy, setBusy] = useState(false);
    const [done, setDone] = useState<boolean | null>(null);
    const lit = on ?? done ?? false;
    const press = async () => {
        setBusy(true);
        const title = fill(lit ? _("Light of $0 off") : _("Light of $0 on"), address);
        if (await actNow(title, ["disk", "locate", address, ...(lit ? ["--off"] : [])])) setDone(!lit);
        setBusy(false);
        onDone?.();
    };
    return (
        <Button variant="secondary" size="sm" icon={<LightbulbIcon />} isDisabled={busy} {...acting}
            aria-label={fill(lit ? _("Light off: $0") : _("Light: $0"), address)} onClick={() => void press()}>
            {lit ? _("Light off") : _("Light")}
        </Button>
    );
}
