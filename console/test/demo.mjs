// The page over a machine of the virtual controller whose story runs, until it is interrupted.
import { spawn } from "node:child_process";
import { join } from "node:path";
import { Stage } from "./stage.mjs";

const stage = new Stage();
let service;
async function end() {
    service?.kill("SIGTERM");
    await stage.close();
    process.exit(0);
}
process.once("SIGINT", () => void end());
process.once("SIGTERM", () => void end());

const pause = seconds => new Promise(done => setTimeout(done, seconds * 1000));
const say = text => console.log(`demo: ${text}`);

stage.makeData1("300GiB");
stage.sim("clock", "speed", "20");
service = spawn(join(stage.programs, "hxraidsvc"), ["--foreground"], { env: stage.environment, stdio: "ignore" });
await stage.open();
say(`http://127.0.0.1:${stage.port}/vexorapi`);
say("whoever opens it first has the only session; Ctrl-C ends it");
await pause(30);
say("a1/pd4 fails: data1 has no redundancy left, and no spare fits");
stage.sim("disk", "fail", "a1/pd4");
await pause(90);
say("another disk is put into its place, and data1 is rebuilt");
stage.sim("disk", "replace", "a1/pd4");
await pause(300);
say("a0/pd1 fails: DATABASE is rebuilt onto the spare");
stage.sim("disk", "fail", "a0/pd1");
say("the machine goes on, 20 times as fast as outside");
setInterval(() => {}, 60000);
