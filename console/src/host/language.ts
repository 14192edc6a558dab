// The language of the page is that of Cockpit; po.js has brought its texts before this runs.
export function setLanguage(): void {
    const root = document.documentElement;
    root.lang = language();
    root.dir = cockpit.language_direction ?? "ltr";
}

/** As Intl takes it. */
export function language(): string {
    return (cockpit.language || "en").replace("_", "-");
}

export const _ = (text: string): string => cockpit.gettext(text);

/** Each $0, $1 in a text that is translated as a whole. */
export function fill(text: string, ...values: (string | number)[]): string {
    return cockpit.format(text, ...values);
}

export const plural = (one: string, many: string, count: number): string =>
    cockpit.format(cockpit.ngettext(one, many, count), count);
