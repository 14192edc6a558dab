// Makes TypeScript types of the JSON schemas that vexorctl and hxraidsvc promise, so that a field that is
// renamed or gone is an error of the compiler and not an empty cell.
import { readFileSync, writeFileSync, mkdirSync } from "node:fs";
import { dirname } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));

// TypeName of a key of $defs: "disk.keys" -> "DiskKeys".
function nameOf(key) {
    return key.split(/[^a-z0-9]+/i).map(part => part[0].toUpperCase() + part.slice(1)).join("");
}

function typeOf(schema, prefix) {
    if (schema === true || Object.keys(schema).length === 0) return "unknown";
    if (schema.$ref) return prefix + nameOf(schema.$ref.replace("#/$defs/", "").replace(/\.keys$/, ""));
    if ("const" in schema) return JSON.stringify(schema.const);
    // A later version may list more names: the known ones are written out, any other text is possible.
    if (schema.enum) return `(${schema.enum.map(value => JSON.stringify(value)).join(" | ")} | (string & {}))`;
    const options = schema.anyOf ?? schema.oneOf;
    if (options) return `(${[...new Set(options.map(option => typeOf(option, prefix)))].join(" | ")})`;
    if (Array.isArray(schema.type)) {
        return `(${schema.type.map(type => typeOf({ ...schema, type }, prefix)).join(" | ")})`;
    }
    switch (schema.type) {
    case "string": return "string";
    case "integer":
    case "number": return "number";
    case "boolean": return "boolean";
    case "null": return "null";
    case "array": return `${typeOf(schema.items ?? {}, prefix)}[]`;
    case "object": {
        if (!schema.properties) {
            const value = schema.additionalProperties;
            return `Record<string, ${value && value !== true ? typeOf(value, prefix) : "unknown"}>`;
        }
        const rows = Object.entries(schema.properties)
            .map(([key, value]) => `${JSON.stringify(key)}: ${typeOf(value, prefix)};`);
        return `{ ${rows.join(" ")} }`;
    }
    default: return "unknown";
    }
}

function typesOf(file, prefix) {
    const schema = JSON.parse(readFileSync(`${here}/../docs/${file}`, "utf8"));
    const rows = Object.entries(schema.$defs)
        .filter(([key]) => !(`${key}.keys` in schema.$defs))
        .map(([key, value]) => `export type ${prefix}${nameOf(key.replace(/\.keys$/, ""))} = ${typeOf(value, prefix)};`);
    return { schema, rows };
}

export function writeTypes() {
    const tool = typesOf("vexorctl.schema.json", "");
    const status = typesOf("hxraidsvc-status.schema.json", "Status");
    const text = [
        "// Made by schema.mjs from docs/vexorctl.schema.json and docs/hxraidsvc-status.schema.json.",
        ...tool.rows,
        ...status.rows,
        `export type Status = ${typeOf(status.schema, "Status")};`,
        "",
    ].join("\n");
    mkdirSync(`${here}/build`, { recursive: true });
    writeFileSync(`${here}/build/schema.ts`, text);
}

if (process.argv[1] === fileURLToPath(import.meta.url)) writeTypes();
