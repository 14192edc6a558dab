#!/usr/bin/env python3
"""The metrics are what Prometheus takes, also of a machine that answers with anything.

usage: hxraidsvc_metrics_test.py HXRAIDSVC
"""

import http.client
import os
import pathlib
import re
import shlex
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest

SERVICE = sys.argv.pop(1)
PROGRAMS = os.path.dirname(SERVICE)
PATIENCE = 120  # seconds


@unittest.skipUnless(shutil.which("promtool") or os.environ.get("CI"),
                     "promtool is not installed; scripts/bootstrap installs it")
class Metrics(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="hxraidsvc-metrics-")
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "root"
        self.root.mkdir()
        self.environment = {**os.environ, "VEXORAPI_ROOT": str(self.root),
                            "HXSIM_STATE": str(pathlib.Path(folder.name) / "machine.db")}
        self.file = self.root / "var/lib/prometheus/node-exporter/hxraid.prom"

    def run_program(self, name, *words, code=0):
        done = subprocess.run([os.path.join(PROGRAMS, name), *words], text=True,
                              capture_output=True, env=self.environment, timeout=PATIENCE,
                              check=False)
        self.assertEqual(done.returncode, code, done.stdout + done.stderr)

    def check(self, text=None):
        """The text of the metrics, of which promtool says nothing and no series is twice."""
        text = text or self.file.read_text(encoding="utf-8")
        done = subprocess.run(["promtool", "check", "metrics"], input=text, text=True,
                              capture_output=True, timeout=PATIENCE, check=False)
        self.assertEqual((done.returncode, done.stdout + done.stderr), (0, ""))
        series = [line.rsplit(" ", 1)[0] for line in text.splitlines() if line[0] != "#"]
        self.assertEqual(len(series), len(set(series)))
        return text

    def test_are_what_promtool_takes(self):
        self.run_program("hxsimctl", "init", "--seed", "7")
        self.run_program("hxsimctl", "disk", "fail", "a0/pd1")
        self.run_program("hxraidsvc", "--once")
        text = self.check()
        self.assertIn('\nhxraid_condition{code="VD_REBUILDING_UNPROTECTED",severity="warning",'
                      'adapter="0",object="a0/vd0"} 1\n', text)
        self.assertIn('\nhxraid_task_progress_ratio{adapter="0",object="a0/vd0",'
                      'activity="rebuild"} 0\n', text)
        self.assertEqual(self.file.stat().st_mode & 0o777, 0o644 & ~os.umask(os.umask(0)))
        self.assertGreater(len(set(re.findall(r"^(hxraid_\w+)", text, re.M))), 40)

    def test_of_a_hostile_controller_are_what_promtool_takes(self):
        self.run_program("hxsimctl", "init", "--seed", "7")
        self.run_program("hxsimctl", "inject", "--hostile")
        self.run_program("hxraidsvc", "--once")
        self.assertRegex(self.check(), r"hxraid_collect_success\{.*\} 0\n")

    def test_can_be_asked_for_by_http_instead_of_the_file(self):
        self.run_program("hxsimctl", "init", "--seed", "7")
        self.run_program("hxraidsvc", "--once")
        self.assertTrue(self.file.exists())
        file = self.root / "etc/hxraid/hxraidsvc.conf"
        file.parent.mkdir(parents=True)
        file.write_text('[metrics]\nlisten = "systemd"\ntextfile = false\n')
        # As systemd hands it over: descriptor 3, and its number in the environment. The shell
        # tells the process that it becomes.
        listening = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(listening.close)
        command = (f"exec 3<&{listening.fileno()}; LISTEN_PID=$$ LISTEN_FDS=1 "
                   f"exec {shlex.quote(SERVICE)} --foreground")
        with subprocess.Popen(["/bin/sh", "-c", command], env=self.environment,
                              stderr=subprocess.DEVNULL, pass_fds=[listening.fileno()]) as service:
            self.addCleanup(service.kill)

            def ask(accept, method="GET"):
                while True:
                    connection = http.client.HTTPConnection(*listening.getsockname(),
                                                            timeout=PATIENCE)
                    try:
                        connection.request(method, "/metrics", headers={"Accept": accept})
                        answer = connection.getresponse()
                        return answer.headers["Content-Type"], answer.read().decode()
                    except ConnectionError:  # this machine was too slow for its 5 seconds
                        self.assertIsNone(service.poll())
                    finally:
                        connection.close()
            kind, text = ask("text/plain")
            self.assertEqual(kind, "text/plain; version=0.0.4; charset=utf-8")
            self.check(text)
            self.assertIn("\nhxraid_rounds_total ", text)
            kind, text = ask("application/openmetrics-text; version=1.0.0")
            self.assertIn("application/openmetrics-text", kind)
            self.assertTrue(text.endswith("\n# EOF\n"))
            self.assertIn("\n# TYPE hxraid_rounds counter\nhxraid_rounds_total ", text)
            self.assertEqual(ask("text/plain", "HEAD")[1], "")
            self.assertFalse(self.file.exists(), "it would be told for ever")
            service.terminate()
            self.assertEqual(service.wait(PATIENCE), 0)

    def test_of_a_machine_that_cannot_be_asked_tell_that_alone(self):
        pathlib.Path(self.environment["HXSIM_STATE"]).write_text("no database")
        self.run_program("hxraidsvc", "--once", code=5)
        text = self.check()
        self.assertIn('\nhxraid_collect_success{adapter="",query="machine"} 0\n', text)
        self.assertIn("\nhxraid_collecting 0\n", text)
        self.assertNotIn("hxraid_disk", text)
        self.assertIn('\nhxraid_condition{code="CONTROLLER_UNREACHABLE",', text)


if __name__ == "__main__":
    unittest.main()
