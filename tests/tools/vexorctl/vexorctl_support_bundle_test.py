#!/usr/bin/env python3
"""vexorctl support-bundle: what is in the archive, what is not, and that nothing leaves by mistake.

usage: vexorctl_support_bundle_test.py VEXORCTL [TEST]...
"""

import json
import stat
import tarfile

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema

VEXORCTL = ""
LOG = """XMLCmd = <HX_LogonUser type="function">
  <lpszUsername>root</lpszUsername>
  <lpszPassword>hunter-one</lpszPassword>
</HX_LogonUser>
XMLCmd = <HX_LogonUser type="function"><lpszPassword type="x"><![CDATA[hunter-two]]></lpszPassword>
XMLRet = <HX_Adapter_GetCount type="function">
password = hunter-three
Password: hunter-four
XMLCmd = <HX_LogonUser type="function"><lpszPassword>hunter-five
"""


class SupportBundle(VexorctlCase):
    topology = "small"

    def setUp(self):
        super().setUp()
        self.archive = self.root / "bundle.tar.gz"
        self.run_words("vd", "create", "--adapter", "0", "--raid", "1", "--disks", "2", "--size",
                       "10G", "--name", "PAYROLL", "--yes")
        self.collect()

    def bundle(self, *options):
        run = self.run_words("support-bundle", self.archive, *options, "-o", "json")
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        return {item["file"]: item for item in document["items"]}, run

    def files(self):
        with tarfile.open(self.archive) as archive:
            return {member.name.removeprefix("vexorapi-support/"): archive.extractfile(member).read()
                    for member in archive if member.isfile()}

    def write_log(self, text):
        (self.root / "var/log").mkdir(parents=True, exist_ok=True)
        (self.root / "var/log/hxraidsvc.log").write_text(text)

    def test_has_the_lists_the_tape_and_the_store(self):
        parts, run = self.bundle()
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        files = self.files()
        self.assertEqual(set(files), {name for name, part in parts.items()
                                      if part["state"] == "included"})
        for name, part in parts.items():
            if part["state"] == "included":
                self.assertEqual(len(files[name]), part["length"], name)
        disks = self.run_words("disk", "list", "-o", "json").stdout
        self.assertEqual(files["disks.json"].decode(), disks)
        self.assertEqual(files["event-store.ev"],
                         (self.root / "opt/kestrel/raid/db/vx_hx_raid.ev").read_bytes())
        self.assertTrue(json.loads(files["events.json"])["items"])
        self.assertIn(b"disks.json: included, vexorctl disk list\n", files["contents.txt"])
        tape = self.root / "machine.tape"
        tape.write_bytes(files["machine.tape"])
        run = self.run_words("tape", "replay", tape, "--", self.vexorctl, "disk", "list", "-o", "json")
        self.assertEqual((run.stdout, run.returncode), (disks, 0))

    def test_that_cannot_be_packed_is_not_there_and_says_why(self):
        tar = self.root / "bin" / "tar"
        tar.parent.mkdir()
        tar.write_text("#!/bin/sh\nprintf '\\ngzip: stdout: No space left on device\\n' >&2\nexit 2\n")
        tar.chmod(0o755)
        self.environment["PATH"] = f"{tar.parent}:{self.environment['PATH']}"
        run = self.run_words("support-bundle", self.archive)
        self.assertEqual((run.returncode, run.stdout, run.stderr),
                         (5, "", "vexorctl: tar: gzip: stdout: No space left on device\n"))
        self.assertFalse(self.archive.exists())

    def test_has_no_password(self):
        self.write_log(LOG)
        (self.root / "vexorapi.ini").write_text(
            '<Cfg><Section name="DebugLogConfig"><Attr name="LogEnable">0</Attr></Section></Cfg>')
        parts, _ = self.bundle()
        log = self.files()["hxraidsvc.log"].decode()
        self.assertEqual(parts["hxraidsvc.log"]["state"], "included")
        self.assertNotIn("hunter", log)
        self.assertEqual(log.count("***"), 5)
        self.assertIn("<lpszUsername>root</lpszUsername>", log)
        self.assertIn("XMLRet = <HX_Adapter_GetCount", log)

    def test_has_none_of_a_log_that_was_cut_either(self):
        self.write_log("hunter-one</lpszPassword>\nthe rest\n")
        self.bundle()
        self.assertEqual(self.files()["hxraidsvc.log"], b"***</lpszPassword>\nthe rest\n")

    def test_is_anonymous_when_asked(self):
        self.write_log(LOG)
        disks = json.loads(self.run_words("disk", "list", "-o", "json").stdout)["items"]
        parts, run = self.bundle("--anonymous")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        files = self.files()
        for name in ("event-store.ev", "hxraidsvc.log", "vexorapi.ini", "events.json"):
            self.assertEqual(parts[name]["state"], "left_out")
            self.assertNotIn(name, files)
        everything = b"\n".join(files.values()).lower()
        for value in ("PAYROLL", *(disk["serial"] for disk in disks), *(disk["wwn"] for disk in disks)):
            self.assertNotIn(value.lower().encode(), everything)
            self.assertNotIn(value.encode().hex().encode(), everything)
        self.assertEqual(len(json.loads(files["disks.json"])["items"]), len(disks))

    def test_says_what_it_could_not_read(self):
        (self.root / "opt/kestrel/raid/db/vx_hx_raid.ev").write_bytes(b"no store")
        (self.root / "var/log/hxraidsvc.log").mkdir(parents=True)
        parts, run = self.bundle()
        self.assertEqual(run.returncode, 1)
        self.assertEqual({name for name, part in parts.items() if part["state"] == "unread"},
                         {"events.json", "hxraidsvc.log"})
        self.assertTrue(parts["events.json"]["reason"])
        self.assertIn("2 parts of it could not be read", run.stderr)
        self.assertIn("hxraidsvc.log: unread", self.files()["contents.txt"].decode())

    def test_is_its_owners_and_replaces_nothing_unasked(self):
        self.archive.write_text("mine")
        self.archive.chmod(0o644)
        run = self.run_words("support-bundle", self.archive)
        self.assertEqual((run.returncode, run.stdout, self.archive.read_text()), (2, "", "mine"))
        self.assertIn("is there already; --force replaces it", run.stderr)
        self.bundle("--force")
        self.assertEqual(stat.S_IMODE(self.archive.stat().st_mode), 0o600)
        self.assertIn("disks.json", self.files())

    def test_has_a_name_when_none_is_given(self):
        self.assertEqual(self.run_words("support-bundle").returncode, 0)
        self.assertEqual(len(list(self.root.glob("vexorapi-support-*.tar.gz"))), 1)


if __name__ == "__main__":
    vexorctl_machine.run_tests("__main__", "VEXORCTL")
