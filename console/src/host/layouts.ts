// What the administrator has written about enclosures: an object by logical ID with columns, first_number and order.
import type { Layout } from "../model/bays.ts";

const kPath = "/etc/hxraid/enclosures.json";

function isLayouts(content: unknown): content is Record<string, Layout> {
    return typeof content === "object" && content !== null && Object.values(content).every(value =>
        typeof value === "object" && value !== null &&
        (!("order" in value) || Array.isArray(value.order) && value.order.every(Number.isInteger)));
}

/** Follows the file; without one, or with one that is broken, every place is derived. */
export function readLayouts(changed: (layouts: Record<string, Layout>) => void): () => void {
    const file = cockpit.file(kPath, { syntax: JSON });
    file.watch(content => changed(isLayouts(content) ? content : {}));
    return () => file.close();
}
