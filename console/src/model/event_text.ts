// Fills the translated text of an event with what the event says.
import type { Event } from "./types.ts";

export function fillEvent(form: string, event: Pick<Event, "address" | "values">): string {
    return form.replace(/\{(address|\d)\}/g, (_whole, name: string) =>
        name === "address" ? event.address ?? "?" : event.values?.[Number(name)] ?? "?");
}
