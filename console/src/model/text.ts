// Sizes, times and names as the page writes them, in the language of the page.

const kUnits = ["B", "KiB", "MiB", "GiB", "TiB", "PiB"];

/** As in the tables of vexorctl: powers of 1024, at most two places. Unknown is "?", never 0. */
export function bytes(count: number | null | undefined, language: string): string {
    if (count === null || count === undefined) return "?";
    let value = count;
    let unit = 0;
    while (value >= 1024 && unit < kUnits.length - 1) {
        value /= 1024;
        unit++;
    }
    const text = new Intl.NumberFormat(language, { maximumFractionDigits: 2, useGrouping: false }).format(value);
    return `${text} ${kUnits[unit]}`;
}

export function percent(ratio: number | null | undefined, language: string): string {
    if (ratio === null || ratio === undefined) return "?";
    return new Intl.NumberFormat(language, { style: "percent", maximumFractionDigits: 0 }).format(Math.floor(ratio * 100) / 100);
}

/** In the unit that says enough: "45 seconds", "12 minutes", "3.5 hours", "2 days". */
export function duration(seconds: number | null | undefined, language: string): string {
    if (seconds === null || seconds === undefined) return "?";
    const [value, unit, places] = seconds < 90 ? [seconds, "second", 0] as const
        : seconds < 5400 ? [seconds / 60, "minute", 0] as const
        : seconds < 48 * 3600 ? [seconds / 3600, "hour", 1] as const
        : [seconds / 86400, "day", 0] as const;
    return new Intl.NumberFormat(language, {
        style: "unit", unit, unitDisplay: "long", maximumFractionDigits: places,
    }).format(value);
}

/** "12 minutes ago"; null where the time is unknown. */
export function ago(time: string | null | undefined, now: number, language: string): string | null {
    const at = time ? Date.parse(time) : NaN;
    if (Number.isNaN(at)) return null;
    const seconds = Math.max(0, now / 1000 - at / 1000);
    const format = new Intl.RelativeTimeFormat(language, { numeric: "auto" });
    if (seconds < 90) return format.format(-Math.floor(seconds), "second");
    if (seconds < 5400) return format.format(-Math.floor(seconds / 60), "minute");
    if (seconds < 48 * 3600) return format.format(-Math.floor(seconds / 3600), "hour");
    return format.format(-Math.floor(seconds / 86400), "day");
}

export function clock(time: string | null | undefined, language: string): string {
    const at = time ? Date.parse(time) : NaN;
    if (Number.isNaN(at)) return "?";
    return new Intl.DateTimeFormat(language, { dateStyle: "short", timeStyle: "medium" }).format(at);
}

/** A code with its name; one without a name shows its number. */
export function codeName(code: { code: number; name: string | null } | null | undefined): string | null {
    if (!code) return null;
    return code.name ?? `unknown (${code.code})`;
}

/** The adapter of an address: "a0/pd3" is of "a0". */
export function adapterOf(address: string): string {
    return address.split("/")[0] ?? address;
}

/** By adapter, kind and number: "a0/pd9" before "a0/pd10". */
export function compareAddresses(a: string, b: string): number {
    return a.localeCompare(b, "en", { numeric: true });
}

/** The name with its address, for people: "DATABASE (a0/vd0)". */
export function named(address: string, name: string | null | undefined): string {
    return name ? `${name} (${address})` : address;
}

/** A command line that can be pasted into a shell. */
export function commandLine(args: string[]): string {
    return args.map(arg => /^[A-Za-z0-9_./:=,+@%-]+$/.test(arg) ? arg : `'${arg.replaceAll("'", `'\\''`)}'`).join(" ");
}
