// The text of an event in the language of the page, by its key; {address} and {0}, {1} stand for its values.
import type { Event } from "../model/types.ts";
import { fillEvent } from "../model/event_text.ts";

/** Null where the language has no text for the key: vexorctl's own is shown then. */
export function eventText(event: Event): string | null {
    if (!event.key) return null;
    const id = `event ${event.key}`;
    const form = cockpit.gettext(id);
    return form === id ? null : fillEvent(form, event);
}
