#!/usr/bin/env python3
"""The whole way of an alert, with the real programs: a disk of the virtual controller fails, the
service tells it, the node exporter hands it on, Prometheus alerts, Alertmanager delivers, and after
the rebuild all of them take it back.

Every program listens on a port of the loopback interface that the kernel chooses, and is ended by
this test.

usage: hxraidsvc_prometheus_test.py HXRAIDSVC
"""

import http.server
import json
import os
import pathlib
import re
import shlex
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.error
import urllib.parse
import urllib.request

TREE = pathlib.Path(__file__).resolve().parents[2]
SERVICE = sys.argv.pop(1)
PROGRAMS = os.path.dirname(SERVICE)
PATIENCE = 240  # seconds until a state that must come counts as missing
NEEDED = ("prometheus", "prometheus-node-exporter", "prometheus-alertmanager")
ALERT = "HxraidVdRebuildingUnprotected"


class Receiver(http.server.ThreadingHTTPServer):
    """Keeps the last status of each alert that is delivered."""

    daemon_threads = True

    def __init__(self):
        self.alerts = {}

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_POST(self):  # the name is http.server's
                length = int(self.headers["Content-Length"])
                for alert in json.loads(self.rfile.read(length))["alerts"]:
                    labels = alert["labels"]
                    self.server.alerts[labels["alertname"], labels.get("object")] = alert
                self.send_response(200)
                self.end_headers()

            def log_message(self, *_):
                pass

        super().__init__(("127.0.0.1", 0), Handler)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def status(self, name, thing):
        return self.alerts.get((name, thing), {}).get("status")


@unittest.skipUnless(all(map(shutil.which, NEEDED)) or os.environ.get("CI"),
                     f"not all of {', '.join(NEEDED)} are installed; scripts/bootstrap does it")
class Programs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="hxraidsvc-prometheus-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.root = self.folder / "root"
        self.root.mkdir()
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.lower().endswith("_proxy")}
        self.environment.update(VEXORAPI_ROOT=str(self.root),
                                HXSIM_STATE=str(self.folder / "machine.db"))

    def hxsimctl(self, *words):
        subprocess.run([os.path.join(PROGRAMS, "hxsimctl"), *words], check=True,
                       env=self.environment, stdout=subprocess.DEVNULL, timeout=PATIENCE)

    def start(self, name, *command, pass_fds=()):
        log = self.folder / f"{name}.log"
        with open(log, "wb") as output:
            process = subprocess.Popen(command, env=self.environment, cwd=self.folder,
                                       stdout=output, stderr=subprocess.STDOUT, pass_fds=pass_fds)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process, log

    def wait_for(self, state, what, *logs):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            found = state()
            if found:
                return found
            time.sleep(0.05)
        said = "".join(f"\n--- {log.name}\n{log.read_text()[-3000:]}" for log in logs)
        raise AssertionError(f"this never came: {what}{said}")

    def address_of(self, log):
        """Where the program listens, as its log tells."""
        def listens():
            found = re.search(r'(?i)listening on.* address=(127\.0\.0\.1:\d+)', log.read_text())
            return found and found[1]
        return self.wait_for(listens, "a port", log)

    def write(self, name, text):
        file = self.folder / name
        file.write_text(text)
        return file

    def start_alertmanager(self, receiver):
        text = (TREE / "packaging" / "prometheus" / "alertmanager-hxraid.yml").read_text()
        text, times = re.subn(r"(group_wait|group_interval): \w+", r"\1: 1s", text)
        self.assertEqual(times, 2)
        text += ("    webhook_configs:\n      - url: "
                 f"http://127.0.0.1:{receiver.server_address[1]}/\n")
        _, log = self.start("alertmanager", "prometheus-alertmanager",
                            f"--config.file={self.write('alertmanager.yml', text)}",
                            f"--storage.path={self.folder / 'alerts'}",
                            "--cluster.listen-address=", "--web.listen-address=127.0.0.1:0")
        return self.address_of(log), log

    def start_node_exporter(self):
        _, log = self.start("node-exporter", "prometheus-node-exporter",
                            "--collector.disable-defaults", "--collector.textfile",
                            "--collector.textfile.directory="
                            f"{self.root / 'var/lib/prometheus/node-exporter'}",
                            "--web.listen-address=127.0.0.1:0")
        return self.address_of(log), log

    def start_prometheus(self, exporter, alertmanager=None):
        # An alert ends with its condition here, and not five minutes later.
        rules = (TREE / "packaging" / "prometheus" / "hxraid-alerts.yml").read_text()
        self.write("alerts.yml", rules.replace("keep_firing_for: 5m", "keep_firing_for: 1s"))
        recordings = TREE / "packaging" / "prometheus" / "hxraid-recordings.yml"
        configuration = {
            "global": {"scrape_interval": "1s", "evaluation_interval": "1s"},
            "rule_files": ["alerts.yml", str(recordings)],
            "scrape_configs": [{"job_name": "node",
                                "static_configs": [{"targets": [exporter],
                                                    "labels": {"instance": "host1"}}]}],
            "alerting": {"alertmanagers": [{"static_configs": [{"targets": [alertmanager]}]}]
                         if alertmanager else []}}
        _, log = self.start("prometheus", "prometheus",
                            f"--config.file={self.write('p.yml', json.dumps(configuration))}",
                            f"--storage.tsdb.path={self.folder / 'series'}",
                            "--web.listen-address=127.0.0.1:0")
        return log


class Alert(Programs):
    def test_reaches_a_receiver_and_ends_after_the_rebuild(self):
        self.hxsimctl("init", "--seed", "7")
        self.hxsimctl("clock", "freeze")
        settings = self.root / "etc" / "hxraid" / "hxraidsvc.conf"
        settings.parent.mkdir(parents=True)
        settings.write_text('[collect]\ninterval = "1s"\njitter = "0s"\n[watch]\ninterval = "5s"\n')
        receiver = Receiver()
        self.addCleanup(receiver.server_close)
        self.addCleanup(receiver.shutdown)
        service, service_log = self.start("service", SERVICE, "--foreground")
        metrics = self.root / "var/lib/prometheus/node-exporter/hxraid.prom"
        self.wait_for(metrics.exists, "metrics", service_log)
        alertmanager, alertmanager_log = self.start_alertmanager(receiver)
        exporter, exporter_log = self.start_node_exporter()
        logs = (service_log, exporter_log,
                self.start_prometheus(exporter, alertmanager), alertmanager_log)

        self.hxsimctl("disk", "fail", "a0/pd1")
        service.send_signal(signal.SIGUSR1)
        self.wait_for(lambda: receiver.status(ALERT, "a0/vd0") == "firing", "the alert", *logs)
        alert = receiver.alerts[ALERT, "a0/vd0"]
        self.assertEqual(alert["labels"],
                         {"alertname": ALERT, "code": "VD_REBUILDING_UNPROTECTED",
                          "severity": "warning", "adapter": "0", "object": "a0/vd0",
                          "instance": "host1", "job": "node"})
        self.assertIn("a0/vd0 of host1: ", alert["annotations"]["description"])

        self.hxsimctl("clock", "advance", "48h")
        service.send_signal(signal.SIGUSR1)
        self.wait_for(lambda: receiver.status(ALERT, "a0/vd0") == "resolved", "its end", *logs)


class Listener(Programs):
    def test_of_the_service_is_scraped_by_prometheus_itself(self):
        self.hxsimctl("init", "--seed", "7")
        settings = self.root / "etc" / "hxraid" / "hxraidsvc.conf"
        settings.parent.mkdir(parents=True)
        settings.write_text('[metrics]\nlisten = "systemd"\ntextfile = false\n')
        listening = socket.create_server(("127.0.0.1", 0))
        self.addCleanup(listening.close)
        command = (f"exec 3<&{listening.fileno()}; LISTEN_PID=$$ LISTEN_FDS=1 "
                   f"exec {shlex.quote(SERVICE)} --foreground")
        _, service_log = self.start("service", "/bin/sh", "-c", command,
                                    pass_fds=[listening.fileno()])
        target = "127.0.0.1:" + str(listening.getsockname()[1])
        prometheus_log = self.start_prometheus(target)
        address = self.address_of(prometheus_log)
        # What was scraped, and that all of it was taken.
        for query, expected in (("up", "1"), ("hxraid_collecting", "1"),
                                ("count(hxraid_disk_state == 1)", "24")):
            self.wait_for(lambda query=query, expected=expected:
                          self.value(address, query) == expected,
                          f"{query} is {expected}", service_log, prometheus_log)
        text = prometheus_log.read_text()
        self.assertNotIn("Error on ingesting", text)
        self.assertNotIn("Append failed", text)

    def value(self, address, query):
        """Of the one series that there is; None without one, and while Prometheus starts."""
        question = urllib.parse.urlencode({"query": query})
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        try:
            with opener.open(f"http://{address}/api/v1/query?{question}",
                             timeout=PATIENCE) as answer:
                result = json.load(answer)["data"]["result"]
        except urllib.error.HTTPError:
            return None
        return result[0]["value"][1] if len(result) == 1 else None


if __name__ == "__main__":
    unittest.main()
