// Whether the session may act as root: null until Cockpit says so.
const permission = cockpit.permission({ admin: true });

export function privileged(): boolean | null {
    return permission.allowed;
}

export function onPrivilege(changed: () => void): void {
    permission.addEventListener("changed", changed);
}
