// Builds the package into build/vexorapi, or into the folder that is named: node build.mjs [FOLDER].
// It holds what Cockpit serves and nothing else.
import { build } from "esbuild";
import { copyFileSync, mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { dirname, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { gzipSync } from "node:zlib";
import { localeOf } from "./po.mjs";
import { writeTypes } from "./schema.mjs";

const here = dirname(fileURLToPath(import.meta.url));
const folder = resolve(process.argv[2] ?? `${here}/build/vexorapi`);

// PatternFly's base brings its own fonts and the pictures of themes that Cockpit does not have. The fonts
// are those of Cockpit's shell, which every version keeps for packages.
const fonts = [
    ["Red Hat Text", 400, "RedHatText-Regular"],
    ["Red Hat Text", 500, "RedHatText-Medium"],
    ["Red Hat Display", 500, "RedHatDisplay-Medium"],
].map(([family, weight, file]) => `@font-face{font-family:"${family}";font-weight:${weight};font-display:fallback;` +
    `src:url("../../static/fonts/${file}.woff2") format("woff2")}`).join("\n");

// The rules of a style sheet, each with its nested braces; comments are taken out first.
function rulesOf(css) {
    const rules = [];
    let depth = 0;
    let start = 0;
    for (let at = 0; at < css.length; at++) {
        if (css[at] === "{") depth++;
        if (css[at] === "}" && --depth === 0) {
            rules.push(css.slice(start, at + 1));
            start = at + 1;
        }
        if (css[at] === ";" && depth === 0) {
            rules.push(css.slice(start, at + 1));
            start = at + 1;
        }
    }
    return rules;
}

function withoutOtherThemes(css) {
    return rulesOf(css.replace(/\/\*[^]*?\*\//g, ""))
        .filter(rule => !/^\s*@font-face/.test(rule))
        .filter(rule => !/^[^{]*pf-v6-theme-(felt|glass|high-contrast)/.test(rule))
        .map(rule => rule.replace(/url\(["']?\.{1,2}\/assets[^)]*\)/g, "none"))
        .join("\n");
}

const styles = {
    name: "styles",
    setup(task) {
        task.onLoad({ filter: /node_modules\/@patternfly\/.*\.css$/ }, args => ({
            contents: withoutOtherThemes(readFileSync(args.path, "utf8")),
            loader: "css",
        }));
    },
};

writeTypes();
rmSync(folder, { recursive: true, force: true });
mkdirSync(folder, { recursive: true });
const result = await build({
    entryPoints: [`${here}/src/index.tsx`],
    outdir: folder,
    write: false,
    bundle: true,
    minify: true,
    jsx: "automatic",
    target: "es2020",
    define: { "process.env.NODE_ENV": '"production"' },
    external: ["*.woff2"],
    plugins: [styles],
    legalComments: "none",
    banner: { css: fonts },
    logLevel: "warning",
});
function put(name, bytes) {
    const packed = gzipSync(bytes, { level: 9 });
    writeFileSync(`${folder}/${name}.gz`, packed);
    console.log(`${name}.gz ${Math.round(packed.length / 1000)} kB`);
}
for (const file of result.outputFiles) put(file.path.endsWith(".css") ? "index.css" : "index.js", file.contents);
copyFileSync(`${here}/src/index.html`, `${folder}/index.html`);
copyFileSync(`${here}/src/manifest.json`, `${folder}/manifest.json`);
copyFileSync(`${here}/../LICENSE`, `${folder}/LICENSE`);
for (const file of readdirSync(`${here}/po`).filter(name => name.endsWith(".po"))) {
    const language = file.slice(0, -3);
    put(`po.${language}.js`, localeOf(readFileSync(`${here}/po/${file}`, "utf8"), language));
}
