// Runs the tests of the model with node's own runner: bundles each, because node 18 reads no TypeScript.
import { build } from "esbuild";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readdirSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { writeTypes } from "../../schema.mjs";

const here = dirname(fileURLToPath(import.meta.url));
const scratch = mkdtempSync(join(tmpdir(), "console-model-"));
try {
    writeTypes();
    const tests = readdirSync(here).filter(name => name.endsWith(".test.ts")).map(name => join(here, name));
    await build({
        entryPoints: tests, outdir: scratch, bundle: true, platform: "node", format: "esm",
        outExtension: { ".js": ".mjs" }, logLevel: "warning",
    });
    const files = readdirSync(scratch).map(name => join(scratch, name));
    process.exitCode = spawnSync(process.execPath, ["--test", ...files], { stdio: "inherit" }).status ?? 1;
} finally {
    rmSync(scratch, { recursive: true, force: true });
}
