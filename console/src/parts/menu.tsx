// The menu of what can be done with an object. What cannot be done is not offered, or says why.
import { Dropdown, DropdownItem, DropdownList } from "@patternfly/react-core/dist/esm/components/Dropdown/index.js";
import { MenuToggle } from "@patternfly/react-core/dist/esm/components/MenuToggle/index.js";
import EllipsisIcon from "@patternfly/react-icons/dist/esm/icons/ellipsis-v-icon";
import { useState } from "react";
import { _, fill } from "../host/language.ts";
import { usePrivileged } from "./acting.tsx";

export interface MenuAction {
    title: string;
    act: () => void;
    danger?: boolean;
    /** Why it cannot be done now. */
    refused?: string | null;
}

export function ActionMenu({ of, actions }: { of: string; actions: MenuAction[] }) {
    const [open, setOpen] = useState(false);
    const denied = usePrivileged() === false ? _("Administrative access is needed for this.") : null;
    if (actions.length === 0) return null;
    return (
        <Dropdown isOpen={open} onOpenChange={setOpen} onSelect={() => setOpen(false)} popperProps={{ position: "end" }}
            toggle={ref => (
                <MenuToggle ref={ref} variant="plain" isExpanded={open} onClick={() => setOpen(!open)}
                    aria-label={fill(_("Actions for $0"), of)} icon={<EllipsisIcon />} />
            )}>
            <DropdownList>
                {actions.map(({ title, act, danger, refused }) => (
                    <DropdownItem key={title} isDanger={danger} isAriaDisabled={Boolean(denied ?? refused)}
                        description={denied ?? refused ?? undefined} onClick={act}>
                        {title}
                    </DropdownItem>
                ))}
            </DropdownList>
        </Dropdown>
    );
}
