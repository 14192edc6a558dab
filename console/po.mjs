// Reads gettext's .po files into what cockpit.locale takes: {"": header, id: [null, text...]}.

// The string of a line such as msgid "Disk \"%s\"".
function textOf(line) {
    return JSON.parse(line.slice(line.indexOf('"')));
}

/** The entries of a .po file: {context, id, plural, texts}. The first one, with the empty id, is its header. */
export function entriesOf(po) {
    const entries = [];
    for (const block of po.split(/\n\s*\n/)) {
        const entry = { context: null, id: null, plural: null, texts: [] };
        let append = () => {};
        for (const line of block.split("\n")) {
            if (line.startsWith("#") || !line.trim()) continue;
            if (line.startsWith("msgctxt ")) append = text => { entry.context = (entry.context ?? "") + text; };
            else if (line.startsWith("msgid ")) append = text => { entry.id = (entry.id ?? "") + text; };
            else if (line.startsWith("msgid_plural ")) append = text => { entry.plural = (entry.plural ?? "") + text; };
            else if (line.startsWith("msgstr")) {
                const index = Number(/^msgstr(?:\[(\d)\])?/.exec(line)[1] ?? 0);
                append = text => { entry.texts[index] = (entry.texts[index] ?? "") + text; };
            }
            append(textOf(line));
        }
        if (entry.id !== null) entries.push(entry);
    }
    return entries;
}

// The rule for plurals is an expression of C over n, which JavaScript reads alike. Whatever else a header could
// hold is refused, because the text becomes a program.
function pluralOf(header) {
    const rule = /plural=([-n0-9 !=<>%&|?:()]+);?/.exec(header)?.[1];
    if (!rule) throw new Error("the header has no Plural-Forms");
    return `n=>Number(${rule.trim()})`;
}

/** The program that Cockpit loads as po.js: it hands the texts of one language to cockpit.locale. */
export function localeOf(po, language) {
    const entries = entriesOf(po);
    const header = entries.find(({ id }) => id === "")?.texts[0] ?? "";
    const direction = ["ar", "he", "fa", "ur"].includes(language) ? "rtl" : "ltr";
    const rows = entries.filter(({ id, texts }) => id !== "" && texts.length > 0 && texts.every(text => text))
        .map(({ context, id, texts }) =>
            `${JSON.stringify(context === null ? id : `${context}\u0004${id}`)}:${JSON.stringify([null, ...texts])}`);
    return `cockpit.locale({"":{"plural-forms":${pluralOf(header)},"language":${JSON.stringify(language)},` +
        `"language-direction":"${direction}"},${rows.join(",")}});\n`;
}
