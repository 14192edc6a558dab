// The command line that does the same, to be copied.
import { Button } from "@patternfly/react-core/dist/esm/components/Button/index.js";
import CopyIcon from "@patternfly/react-icons/dist/esm/icons/copy-icon";
import { commandLine } from "../model/text.ts";
import { _ } from "../host/language.ts";
import { speak } from "./notices.tsx";

export function CommandText({ command, title }: { command: string[]; title?: string }) {
    const line = commandLine(command);
    const copy = () => void navigator.clipboard?.writeText(line).then(() => speak(_("The command was copied")));
    return (
        <details className="vx-command">
            <summary>{title ?? _("Show command")}</summary>
            <code dir="ltr">{line}</code>
            <Button variant="plain" size="sm" icon={<CopyIcon />} aria-label={_("Copy the command")} onClick={copy} />
        </details>
    );
}
