// The calls of Cockpit's base1/cockpit.js that this package uses, and no others.

export interface Problem {
    problem?: string | null;
    exit_status?: number | null;
    exit_signal?: string | null;
    message?: string | null;
}

interface Running<T> {
    then(done: (value: T) => void): Running<T>;
    catch(failed: (why: Problem, output?: T) => void): Running<T>;
    stream(chunk: (data: T) => void): Running<T>;
    input(data: string | null, more?: boolean): Running<T>;
    close(problem?: string): void;
}

interface Watched {
    watch(changed: (content: unknown, tag: string, problem?: Problem | Error | null) => void): { remove(): void };
    close(): void;
}

interface Cockpit {
    spawn(
        command: string[],
        options: { superuser?: "try" | "require"; err?: "message" | "out"; environ?: string[] },
    ): Running<string>;
    file(path: string, options: { syntax?: { parse(text: string): unknown } }): Watched;
    permission(options: { admin: true }): {
        allowed: boolean | null;
        addEventListener(event: "changed", heard: () => void): void;
    };
    location: { path: string[]; options: Record<string, string>; go(path: string[], options?: object): void };
    gettext(text: string): string;
    ngettext(one: string, many: string, count: number): string;
    format(form: string, ...values: (string | number)[]): string;
    language: string;
    language_direction?: string;
    hidden: boolean;
    manifests?: Record<string, { config?: { status?: string } } | undefined>;
    transport: { control(command: "notify", options: object): void };
    addEventListener(event: "locationchanged" | "visibilitychange", heard: () => void): void;
}

declare global {
    const cockpit: Cockpit;
}
