// Whether buttons that change something may be pressed. Without privilege they stay, disabled, with the reason.
import { useSyncExternalStore } from "react";
import { onPrivilege, privileged } from "../host/privilege.ts";
import { _ } from "../host/language.ts";

function subscribe(changed: () => void): () => void {
    onPrivilege(changed);
    return () => {};
}

export function usePrivileged(): boolean | null {
    return useSyncExternalStore(subscribe, privileged);
}

/** For a button: nothing where acting is possible. */
export function useActing(): { isAriaDisabled?: boolean; title?: string } {
    return usePrivileged() === false
        ? { isAriaDisabled: true, title: _("Administrative access is needed for this.") } : {};
}
