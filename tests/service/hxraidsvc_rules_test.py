#!/usr/bin/env python3
"""The alert rules, recording rules and dashboard are those of the tables, and Prometheus takes them.

usage: hxraidsvc_rules_test.py PROGRAMS
"""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = sys.argv.pop(1)
PATIENCE = 120  # seconds
FOLDER = TREE / "packaging" / "prometheus"
ALERTS = FOLDER / "hxraid-alerts.yml"
RECORDINGS = FOLDER / "hxraid-recordings.yml"
CATALOGUE = TREE / "packaging" / "hxraid.catalog"
CONDITIONS = TREE / "docs" / "man" / "hxraid-conditions.7"
DASHBOARD = FOLDER / "hxraid-dashboard.json"
INFORMATION = 500  # the rank from which nothing is alerted


def alert_name(code):
    return "Hxraid" + "".join(word.capitalize() for word in code.split("_"))


def codes_to_alert():
    """The codes of the conditions that are more than information. That a service is silent is seen
    by the time of its metrics."""
    lines = (TREE / "tests" / "conditions" / "codes.golden").read_text().splitlines()
    return [code for code, rank, *_ in map(str.split, lines)
            if int(rank) < INFORMATION and code != "SERVICE_STALE"]


def alerts():
    """{alert: its text in the file of rules}."""
    parts = re.split(r"(?m)^      - alert: (\w+)$", ALERTS.read_text())
    return dict(zip(parts[1::2], parts[2::2]))


class Files(unittest.TestCase):
    def test_are_what_the_tables_make(self):
        for word, file in (("alerts", ALERTS), ("recordings", RECORDINGS),
                           ("dashboard", DASHBOARD), ("catalogue", CATALOGUE),
                           ("conditions", CONDITIONS)):
            written = subprocess.run([os.path.join(PROGRAMS, "write_service_files"), word],
                                     text=True, capture_output=True, check=True,
                                     timeout=PATIENCE).stdout
            self.assertEqual(file.read_text(), written,
                             f"write it anew: write_service_files {word}")

    def test_explain_each_entry_of_the_journal(self):
        entries = dict(re.findall(r"(?m)^-- ([0-9a-f]{32})\nSubject: (.+)$",
                                  CATALOGUE.read_text()))
        self.assertEqual(len(re.findall(r"(?m)^-- ", CATALOGUE.read_text())), len(entries))
        golden = (TREE / "tests" / "conditions" / "codes.golden").read_text().splitlines()
        for code, _, raised, cleared in map(str.split, golden):
            self.assertTrue(entries[raised].startswith(f"{code} ("), entries[raised])
            self.assertEqual(entries[cleared], f"{code} of @HXRAID_OBJECT@ is over")
        self.assertIn("was set down", entries["8f1c6a5e0d2b4c739ae4b7d100020002"])
        self.assertNotIn("{", CATALOGUE.read_text())
        with tempfile.TemporaryDirectory() as root:
            folder = pathlib.Path(root) / "usr" / "lib" / "systemd" / "catalog"
            folder.mkdir(parents=True)
            shutil.copy(CATALOGUE, folder)
            subprocess.run(["journalctl", f"--root={root}", "--update-catalog"], check=True,
                           timeout=PATIENCE)
            listed = subprocess.run(["journalctl", f"--root={root}", "--list-catalog"], check=True,
                                    text=True, capture_output=True, timeout=PATIENCE).stdout
        self.assertEqual({line.split()[0] for line in listed.splitlines()}, set(entries))

    def test_have_a_rule_for_each_condition(self):
        names = [alert_name(code) for code in codes_to_alert()]
        self.assertGreater(len(names), 70)
        self.assertEqual(list(alerts()),
                         names + ["HxraidServiceStale", "HxraidAbsent", "HxraidCollectFailed"])

    def test_tell_what_it_is_what_to_do_and_where_to_read_on(self):
        for name, text in alerts().items():
            for field in ("summary", "description", "next_step", "runbook_url"):
                self.assertRegex(text, rf'(?m)^          {field}: ".+"$', name)
            self.assertNotRegex(text, r"(^|[^{])\{[a-z_]+\}", f"{name}: not filled in")
            summary = re.search(r'summary: "(.*)"', text)[1]
            self.assertNotIn("{{", summary, "it would keep alerts from being grouped")

    def test_name_sections_of_the_manual_that_there_are(self):
        page = CONDITIONS.read_text()
        for name, text in alerts().items():
            manual, section = re.search(r'runbook_url: "man:(.*?\(\d\))(?:#(\w+))?"', text).groups()
            if section is None:
                self.assertTrue((CONDITIONS.parent / "hxraidsvc.8").exists(), name)
                continue
            self.assertEqual(manual, "hxraid-conditions(7)")
            self.assertIn(f"\n.Ss {section}\n", page)
        self.assertNotRegex(page, r"[{}]", "a placeholder")
        self.assertLessEqual(max(map(len, page.splitlines())), 80)

    def test_ask_for_metrics_that_there_are(self):
        there = set(re.findall(r'"(hxraid_[a-z_0-9]+)"',
                               (TREE / "service" / "hxs_metrics.cpp").read_text()))
        self.assertGreater(len(there), 40)
        for file in (ALERTS, RECORDINGS, DASHBOARD):
            asked = set(re.findall(r"(?<![:\w])hxraid_[a-z_0-9]+", file.read_text()))
            self.assertEqual(asked - there, set(), file)


@unittest.skipUnless(shutil.which("promtool") and shutil.which("amtool") or os.environ.get("CI"),
                     "promtool or amtool is not installed; scripts/bootstrap installs them")
class Prometheus(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="hxraidsvc-rules-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def take(self, *command):
        done = subprocess.run(command, text=True, capture_output=True, timeout=PATIENCE,
                              check=False)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def write(self, name, document):
        """JSON, which is YAML, too."""
        file = self.folder / name
        file.write_text(json.dumps(document))
        return file

    def test_takes_the_rules(self):
        self.take("promtool", "check", "rules", ALERTS, RECORDINGS)

    def test_takes_what_the_dashboard_asks(self):
        panels = json.loads(DASHBOARD.read_text())["panels"]
        asked = [target["expr"].replace("$instance", ".*")
                 for panel in panels for target in panel["targets"]]
        self.assertGreater(len(asked), 10)
        rules = [{"record": f"panel:{number}", "expr": expression}
                 for number, expression in enumerate(asked)]
        self.take("promtool", "check", "rules",
                  self.write("panels.yml", {"groups": [{"name": "panels", "rules": rules}]}))

    def test_alertmanager_takes_its_part(self):
        self.take("amtool", "check-config", FOLDER / "alertmanager-hxraid.yml")

    def test_alerts_each_condition_and_ends_it_5_minutes_later(self):
        labels = {"severity": "warning", "adapter": "0", "object": "a0/vd0", "instance": "h1"}
        rules = alerts()
        series, cases = [], []
        for code in codes_to_alert():
            of_series = ",".join(f'{name}="{value}"' for name, value in labels.items())
            series.append({"series": f'hxraid_condition{{code="{code}",{of_series}}}',
                           "values": "_ 1x3 stale"})

            def annotation(field, text=rules[alert_name(code)]):
                value = json.loads(re.search(rf'(?m)^ +{field}: (".*")$', text)[1])
                for name in ("object", "instance"):
                    value = value.replace(f"{{{{ $labels.{name} }}}}", labels[name])
                return value
            firing = [{"exp_labels": {"code": code, **labels},
                       "exp_annotations": {field: annotation(field) for field in (
                           "summary", "description", "next_step", "runbook_url")}}]
            for minute, expected in ((0, []), (1, firing), (8, firing), (11, [])):
                cases.append({"eval_time": f"{minute}m", "alertname": alert_name(code),
                              "exp_alerts": expected})
        self.take("promtool", "test", "rules", self.write("test.yml", {
            "rule_files": [str(ALERTS)], "evaluation_interval": "1m",
            "tests": [{"interval": "1m", "input_series": series, "alert_rule_test": cases}]}))

    def test_alerts_nothing_that_is_silenced_or_acknowledged(self):
        labels = 'code="VD_GONE",severity="critical",adapter="0",object="a0/vd0",instance="h1"'
        for quiet in ("silenced", "acknowledged"):
            series = [("hxraid_condition", "1x40"),
                      ("hxraid_condition_silenced", "0x40"),
                      ("hxraid_condition_acknowledged", "0x40")]
            series = [(f"{name}{{{labels}}}", "0x9 1x14 0x20" if name.endswith(quiet) else values)
                      for name, values in series]
            cases = [{"eval_time": f"{minute}m", "expr":
                      'count(ALERTS{alertname="HxraidVdGone",alertstate="firing"}) or vector(0)',
                      "exp_samples": [{"labels": "{}", "value": value}]}
                     # It goes on for 5 minutes.
                     for minute, value in ((5, 1), (20, 0), (26, 1))]
            with self.subTest(quiet):
                self.take("promtool", "test", "rules", self.write("test.yml", {
                    "rule_files": [str(ALERTS)], "evaluation_interval": "1m",
                    "tests": [{"interval": "1m",
                               "input_series": [{"series": name, "values": values}
                                                for name, values in series],
                               "promql_expr_test": cases}]}))

    def test_alerts_a_service_that_is_silent_and_one_that_cannot_read(self):
        tests = [
            # It reports until the third minute, every 10 s.
            ("HxraidServiceStale", [("hxraid_snapshot_timestamp_seconds{instance=\"h\"}",
                                     "0 60 120 180 180x20"),
                                    ("hxraid_round_interval_seconds{instance=\"h\"}", "10x30")],
             4, 8),
            ("HxraidAbsent", [("hxraid_snapshot_timestamp_seconds{instance=\"h\"}", "0 60 stale")],
             8, 20),
            ("HxraidCollectFailed", [('hxraid_collect_success{instance="h",adapter="0",'
                                      'query="disks"}', "1 1 0x30")], 3, 9),
        ]
        for alert, series, before, after in tests:
            count = f'count(ALERTS{{alertname="{alert}",alertstate="firing"}}) or vector(0)'
            cases = [{"eval_time": f"{minute}m", "expr": count,
                      "exp_samples": [{"labels": "{}", "value": value}]}
                     for minute, value in ((before, 0), (after, 1))]
            with self.subTest(alert):
                self.take("promtool", "test", "rules", self.write("test.yml", {
                    "rule_files": [str(ALERTS)], "evaluation_interval": "1m",
                    "tests": [{"interval": "1m",
                               "input_series": [{"series": name, "values": values}
                                                for name, values in series],
                               "promql_expr_test": cases}]}))


if __name__ == "__main__":
    unittest.main()
