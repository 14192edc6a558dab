#!/usr/bin/env python3
"""The events reach a central rsyslog by the configuration that is delivered.

usage: hxraidsvc_rsyslog_test.py HXRAIDSVC
"""

import os
import shutil
import subprocess
import sys
import unittest

from hxraidsvc_test import PATIENCE, TREE, Case, wait_for

# /usr/sbin is in the path of root alone.
RSYSLOGD = shutil.which("rsyslogd", path=os.environ.get("PATH", "") + ":/usr/sbin")
CONFIGURATIONS = TREE / "packaging" / "rsyslog"


@unittest.skipUnless(RSYSLOGD or os.environ.get("CI"),
                     "rsyslogd is not installed; scripts/bootstrap installs it")
class Rsyslog(Case):
    def start(self, name, changes):
        """A daemon with the delivered configuration, its machine's names and paths changed."""
        text = (CONFIGURATIONS / f"hxraid-{name}.conf").read_text()
        for old, new in changes.items():
            self.assertIn(old, text)
            text = text.replace(old, new)
        folder = self.root.folder / name
        folder.mkdir()
        file = folder / "rsyslog.conf"
        file.write_text(f'global(workDirectory="{folder}")\n{text}')
        check = subprocess.run([RSYSLOGD, "-N1", "-f", file], text=True, capture_output=True,
                               timeout=PATIENCE, check=False)
        self.assertEqual(check.returncode, 0, check.stderr)
        daemon = subprocess.Popen([RSYSLOGD, "-n", "-f", file, "-i", folder / "pid"],
                                  stderr=subprocess.DEVNULL)
        self.addCleanup(daemon.wait, PATIENCE)
        self.addCleanup(daemon.kill)
        return folder

    def test_brings_what_the_service_says_to_one_place(self):
        central = self.root.folder / "central"
        receiver = self.start("receive", {
            "/var/log/hxraid": str(central),
            'port="10514"': f'port="0" address="127.0.0.1" '
                            f'listenPortFileName="{self.root.folder}/port"'})
        port = self.root.folder / "port"
        wait_for(lambda: port.exists() and port.read_text().strip(), "the port")
        self.assertTrue(receiver.is_dir())
        log = self.root.path("/var/log/hxraidsvc.log")
        self.root.service("--once")
        self.start("send", {"/var/log/hxraidsvc.log": str(log),
                            "loghost.example.org": "127.0.0.1",
                            'port="10514"': f'port="{port.read_text().strip()}"'})

        def arrived(text):
            return any(text in file.read_text() for file in central.glob("*.log"))
        wait_for(lambda: central.is_dir() and arrived("1 adapter"), "what was there before")
        self.root.hxsimctl("disk", "fail", "a0/pd5")
        self.root.service("--once")
        wait_for(lambda: arrived("Disk a0/pd5 was set down"), "the event")
        self.assertEqual(len(list(central.iterdir())), 1, "a file for each machine")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
