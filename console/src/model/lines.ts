// Lines out of chunks: a stream is cut anywhere, also within a line.

export class Lines {
    private rest = "";

    /** The lines that are whole now, each read as JSON. One that is not JSON is passed to broken. */
    take(chunk: string, broken: (line: string) => void): unknown[] {
        const lines = (this.rest + chunk).split("\n");
        this.rest = lines.pop() ?? "";
        const read: unknown[] = [];
        for (const line of lines) {
            if (line.trim() === "") continue;
            try {
                read.push(JSON.parse(line));
            } catch {
                broken(line);
            }
        }
        return read;
    }
}
