// A stage for one test: a machine of the virtual controller, the event service run by hand, one cockpit-ws and one
// page of Chromium. All of it is in a temporary folder.
import { spawn, spawnSync } from "node:child_process";
import { cpSync, existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync, chmodSync } from "node:fs";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { chromium } from "playwright-core";

const here = dirname(fileURLToPath(import.meta.url));
const tree = resolve(here, "../..");
const programs = resolve(process.env.CONSOLE_PROGRAMS ?? `${tree}/build/dev/bin`);
const built = resolve(process.env.CONSOLE_BUILD ?? `${here}/../build/vexorapi`);
export const kPatience = 60000;

function freePort() {
    return new Promise((done, failed) => {
        const server = createServer();
        server.once("error", failed);
        server.listen(0, "127.0.0.1", () => {
            const { port } = server.address();
            server.close(() => done(port));
        });
    });
}

let browser;
export async function theBrowser() {
    browser ??= await chromium.launch({
        executablePath: process.env.CONSOLE_CHROMIUM ?? "/usr/bin/chromium",
        args: ["--no-sandbox", "--disable-gpu", "--force-prefers-reduced-motion"],
    });
    return browser;
}
export async function closeBrowser() {
    await browser?.close();
    browser = undefined;
}

export class Stage {
    /** topology: a name of hxsimctl's own or a file; user: whose session it is; programs: false hides vexorctl. */
    constructor({ topology = "default", user = "root", tools = true } = {}) {
        this.folder = mkdtempSync(join(tmpdir(), "console-stage-"));
        this.user = user;
        const at = (...parts) => join(this.folder, ...parts);
        for (const part of ["root/opt/kestrel/raid/db", "root/var/log", "root/run/hxraid", "home", "data/cockpit", "bin"]) {
            mkdirSync(at(part), { recursive: true });
        }
        this.programs = programs;
        this.root = at("root");
        this.status = at("root/run/hxraid/status.json");
        cpSync(built, at("data/cockpit/vexorapi"), { recursive: true });
        const manifest = JSON.parse(readFileSync(at("data/cockpit/vexorapi/manifest.json"), "utf8"));
        writeFileSync(at("data/cockpit/vexorapi/manifest.json"),
            JSON.stringify({ ...manifest, config: { status: this.status } }));
        this.environment = {
            PATH: `${programs}:/usr/bin:/bin`, HOME: at("home"), LANG: "C.UTF-8", TMPDIR: this.folder,
            HXSIM_STATE: at("hxsim.db"), VEXORAPI_ROOT: this.root, XDG_DATA_HOME: at("data"),
            XDG_DATA_DIRS: "/usr/share", XDG_CONFIG_HOME: at("home/.config"), XDG_RUNTIME_DIR: at("home"),
        };
        // A language from right to left that the package does not have yet: what it has is enough for the direction.
        writeFileSync(at("data/cockpit/vexorapi/po.he.js"),
            'cockpit.locale({"":{"plural-forms":n=>n!=1,"language":"he","language-direction":"rtl"}});');
        this.sessionPath = tools ? this.environment.PATH : "/usr/bin:/bin";
        this.run("hxsimctl", "init", "--topology", topology, "--seed", "7");
        this.run("hxsimctl", "clock", "freeze");
    }

    /** Runs a program of the build; its output, or an error that says what it said. */
    run(program, ...args) {
        const ended = spawnSync(join(programs, program), args, { env: this.environment, encoding: "utf8" });
        if (ended.error || ended.status !== 0) {
            throw new Error(`${program} ${args.join(" ")}: ${ended.error ?? ended.status}\n${ended.stdout}${ended.stderr}`);
        }
        return ended.stdout;
    }
    vexorctl(...args) { return this.run("vexorctl", ...args); }
    items(...args) { return JSON.parse(this.vexorctl(...args, "-o", "json")).items; }
    sim(...args) { this.run("hxsimctl", ...args); }

    /** Two rounds of the event service, a minute apart by its clock, so that what must hold for a while is told. */
    round() {
        this.now ??= Date.now() / 1000 - 100;
        for (let rounds = 0; rounds < 2; rounds++) {
            this.now += 60;
            this.run("hxraidsvc", "--once", "--now", new Date(this.now * 1000).toISOString().replace(/\.\d+Z/, "Z"));
        }
    }

    /** A RAID 5 called data1 over a1/pd3 to a1/pd5 that has no spare. */
    makeData1(size = "30GiB") {
        this.vexorctl("vd", "create", "a1/pd3", "a1/pd4", "a1/pd5", "--raid", "5", "--size", size, "--name", "data1", "--yes");
    }

    /** data1 loses a1/pd4. */
    loseRedundancy() {
        this.makeData1();
        this.sim("clock", "advance", "10h");
        this.sim("disk", "fail", "a1/pd4");
    }

    conditions() { return JSON.parse(readFileSync(this.status, "utf8")).conditions; }

    /** The report as a service that runs writes it, with its own fields replaced. */
    report(change = {}) {
        const status = JSON.parse(readFileSync(this.status, "utf8"));
        writeFileSync(`${this.status}.new`, JSON.stringify({ ...status, ...change }));
        spawnSync("mv", [`${this.status}.new`, this.status]);
    }

    async open() {
        this.port = await freePort();
        if (this.user !== "root") {
            spawnSync("chmod", ["-R", "a+rX", this.folder]);
            spawnSync("chown", ["-R", this.user, join(this.folder, "home")]);
            chmodSync(join(this.folder, "hxsim.db"), 0o600);
        }
        const command = ["/usr/lib/cockpit/cockpit-ws", "--no-tls", "--port", String(this.port), "--address", "127.0.0.1",
            "--local-session=/usr/bin/cockpit-bridge"];
        const [program, ...args] = this.user === "root" ? command
            : ["/usr/sbin/runuser", "-u", this.user, "--preserve-environment", "--", ...command];
        this.server = spawn(program, args, {
            env: { ...this.environment, PATH: this.sessionPath }, stdio: ["ignore", "pipe", "pipe"], detached: true,
        });
        this.said = "";
        for (const stream of [this.server.stdout, this.server.stderr]) stream.on("data", data => { this.said += data; });
        for (const end = Date.now() + kPatience; ; await new Promise(done => setTimeout(done, 50))) {
            try {
                if ((await fetch(`http://127.0.0.1:${this.port}/ping`)).ok) break;
            } catch { /* not yet */ }
            if (Date.now() > end) throw new Error(`cockpit-ws does not answer: ${this.said}`);
        }
    }

    /** The page without Cockpit's shell around it. What it says, and what is refused to it, is kept. */
    async page({ path = "", width = 1280, height = 900, dark = false, language = "en-us", inShell = false } = {}) {
        if (!this.server) await this.open();
        this.context = await (await theBrowser()).newContext({
            viewport: { width, height }, colorScheme: dark ? "dark" : "light", reducedMotion: "reduce",
            permissions: ["clipboard-read", "clipboard-write"],
        });
        await this.context.addCookies([{ name: "CockpitLang", value: language, url: `http://127.0.0.1:${this.port}/` }]);
        await this.context.addInitScript(lang => {
            localStorage.setItem("cockpit.lang", lang);
            document.addEventListener("securitypolicyviolation", event => console.error("CSP", event.violatedDirective, event.blockedURI));
        }, language);
        const page = await this.context.newPage();
        page.setDefaultTimeout(kPatience);
        this.complaints = [];
        page.on("console", message => this.complaints.push(`${message.type()}: ${message.text()}`));
        page.on("pageerror", error => this.complaints.push(`error: ${error}`));
        page.on("response", answer => answer.status() >= 400 && this.complaints.push(`${answer.status()} ${answer.url()}`));
        const place = inShell ? `/vexorapi${path}` : `/cockpit/@localhost/vexorapi/index.html${path}`;
        await page.goto(`http://127.0.0.1:${this.port}${place}`);
        return page;
    }

    async close() {
        await this.context?.close();
        if (this.server?.pid) {
            try { process.kill(-this.server.pid, "SIGTERM"); } catch { /* it has ended */ }
        }
        if (existsSync(this.folder)) rmSync(this.folder, { recursive: true, force: true, maxRetries: 5 });
    }
}
