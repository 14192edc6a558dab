// Links within the page: every object has an address that can be sent to a colleague.
import type { MouseEvent, ReactNode } from "react";
import { Bdi } from "./bdi.tsx";

export function hrefOf(path: string[], options: Record<string, string> = {}): string {
    const query = new URLSearchParams(options).toString();
    return `#/${path.map(encodeURIComponent).join("/")}${query ? `?${query}` : ""}`;
}

export function PageLink({ path, options, children, label }: {
    path: string[]; options?: Record<string, string>; children: ReactNode; label?: string;
}) {
    const follow = (event: MouseEvent) => {
        if (event.ctrlKey || event.metaKey || event.shiftKey || event.button !== 0) return;
        event.preventDefault();
        cockpit.location.go(path, options);
    };
    return <a href={hrefOf(path, options)} onClick={follow} aria-label={label}>{children}</a>;
}

/** The path of an object's own page; null for objects that have none. */
export function pathOf(address: string): string[] | null {
    const [adapter = "", object = ""] = address.split("/");
    if (/^pd\d+$/.test(object)) return ["disk", adapter, object];
    if (/^vd\d+$/.test(object)) return ["vd", adapter, object];
    if (/^dg\d+$/.test(object)) return ["virtual-disks"];
    if (/^enc\d+$/.test(object)) return ["enclosures"];
    return object === "" ? ["adapters"] : null;
}

export function ObjectLink({ address, name }: { address: string; name?: string | null }) {
    const path = pathOf(address);
    const text = name ? <><bdi>{name}</bdi> <Bdi>({address})</Bdi></> : <Bdi>{address}</Bdi>;
    return path ? <PageLink path={path}>{text}</PageLink> : text;
}
