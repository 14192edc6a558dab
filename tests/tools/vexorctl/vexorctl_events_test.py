#!/usr/bin/env python3
"""Events as programs take them from vexorctl: which object they name, what they tell of it, and what
a stream says of the events that it could not show.

usage: vexorctl_events_test.py VEXORCTL CHECK_IN [TEST]...
"""

import json
import shutil
import signal
import subprocess

import vexorctl_machine
from vexorctl_machine import SCHEMA, VexorctlCase, schema

VEXORCTL = ""
CHECK_IN = ""


def overflow(machine, folder):
    """More events than an adapter keeps until they are collected, which are 512."""
    (folder / "story").write_text("repeat 300\ndisk remove a0/pd11\ndisk insert a0/pd11\nend\n")
    machine.hxsimctl("scenario", "run", folder / "story")


def without_head(line):
    """A line of jsonl without what every line begins with."""
    head = ("vexorctl/1", "event follow")
    assert (line.pop("schema"), line.pop("command")) == head
    line.pop("partial", None)
    return line


class Sentences(VexorctlCase):
    def told(self, code):
        """(address, text) of the newest event with that class and code."""
        self.collect()
        run = self.run_words("event", "list", "-o", "jsonl", "--columns",
                             "class,code,severity,address,text")
        events = [json.loads(line) for line in run.stdout.splitlines()]
        event = [each for each in events
                 if f'{each["class"]["code"]},{each["code"]}' == code][-1]
        return event["address"], event["text"], event["severity"]["name"]

    def test_an_enclosures_events_name_the_element_and_its_reading(self):
        self.machine.hxsimctl("fan", "a0/enc0/el2", "0")
        self.assertEqual(self.told("8,0"), (
            "a0/enc0/el2", "The fan a0/enc0/el2 is critical, 0 rpm", "critical"))
        self.machine.hxsimctl("temp", "a0/enc0/el5", "52")
        self.assertEqual(self.told("8,1"), (
            "a0/enc0/el5",
            "The temperature sensor a0/enc0/el5 is not as it should be, 52 degrees C", "warning"))
        self.machine.hxsimctl("psu", "a0/enc0/el0", "fail")
        self.assertEqual(self.told("8,0")[:2], (
            "a0/enc0/el0", "The power supply a0/enc0/el0 is critical"))
        self.machine.hxsimctl("psu", "a0/enc0/el0", "ok")
        self.assertEqual(self.told("8,2"), (
            "a0/enc0/el0", "The power supply a0/enc0/el0 is ok", "info"))

    def test_an_event_without_a_class_of_its_own_is_shown_at_the_disk_that_it_names(self):
        self.run_words("disk", "spare", "a1/pd2")
        self.machine.hxsimctl("disk", "fail", "a0/pd4")
        self.machine.hxsimctl("disk", "fail", "a0/pd5")
        self.assertEqual(self.told("1,4")[1],
                         "Virtual disk a0/vd2 is degraded: no redundancy is left")
        self.machine.hxsimctl("disk", "remove", "a0/pd6")
        self.assertEqual(self.told("12,17"), (
            "a0/vd2", "Virtual disk a0/vd2 misses disks", "major"))
        self.machine.hxsimctl("power-cut")
        self.assertEqual(self.told("12,16"), (
            "a0/pd6", "Disk a0/pd6 of the configuration was missing at boot", "major"))

    def test_a_degraded_raid_10_names_the_disk_that_may_not_fail(self):
        run = self.run_words("vd", "create", "a1/pd3", "a1/pd4", "a1/pd5", "a1/pd6", "--raid", "10",
                             "--size", "1GiB", "--name", "ten")
        self.assertEqual(run.returncode, 0)
        self.machine.hxsimctl("disk", "fail", "a1/pd3")
        self.assertEqual(self.told("1,4"), (
            "a1/vd1", "Virtual disk a1/vd1 is degraded: it survives no failure of a1/pd4; a1/pd5 or "
                      "a1/pd6 may still fail", "major"))

    def test_an_erased_image_is_named_in_a_warning(self):
        run = self.run_words("flash", "erase", "a0", "--image", "bios", "--yes")
        self.assertEqual(run.returncode, 0)
        self.assertEqual(self.told("10,0"), (
            "a0", "The image bios in the flash of a0 was erased", "warning"))

    def test_a_replacement_that_is_too_small_is_told(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        self.machine.hxsimctl("disk", "replace", "a1/pd0", "--size", "10GiB")
        self.assertEqual(self.told("12,21"), (
            "a1/pd0", "Disk a1/pd0 is too small to replace the one that was in its bay", "warning"))

    def test_lost_events_are_counted(self):
        overflow(self.machine, self.root)
        address, text, severity = self.told("0,65535")
        self.assertRegex(text, r"^Events of a0 were lost before they were collected: \d+$")
        self.assertEqual((address, severity), ("a0", "warning"))


class Stream(VexorctlCase):
    """event follow -o jsonl, as a program reads it."""

    def setUp(self):
        super().setUp()
        self.store = self.root / "opt/kestrel/raid/db/vx_hx_raid.ev"

    def follow(self, *words):
        run = self.run_words("event", "follow", "--once", "--cursor", "cursor", "-o", "jsonl",
                             "--columns", "sequence", *words)
        lines = [json.loads(line) for line in run.stdout.splitlines()]
        for line in lines:
            schema(SCHEMA).validate(line)
        return [without_head(line) for line in lines], run

    def small_ring(self):
        (self.root / "vexorapi.ini").write_text(
            '<config><EventLogConfig type="config" MaxNumOfEvent="10" '
            f'Filename="{self.store}"/></config>')

    def many_events(self):
        (self.root / "story").write_text(
            "repeat 20\ndisk remove a0/pd11\ndisk insert a0/pd11\nend\n")
        self.machine.hxsimctl("scenario", "run", self.root / "story")
        self.collect()

    def test_overwritten_events_are_a_gap_with_their_count(self):
        self.small_ring()
        self.collect()
        (self.root / "cursor").write_text("vexorctl-cursor 1 2 x\n")
        lines, run = self.follow()
        first = lines[1]["sequence"]
        self.assertEqual(lines[0], {
            "record": "gap", "reason": "overwritten", "lost": first - 2, "after": 1, "next": first,
            "adapter": None})
        self.assertEqual(run.returncode, 10)
        self.assertNotIn("record", json.dumps(lines[1:]))
        self.assertIn(f"{first - 2} events were lost: they were overwritten", run.stderr)
        lines, run = self.follow()
        self.assertEqual((lines, run.stderr, run.returncode), ([], "", 0))

    def test_a_reset_is_a_gap_of_unknown_size(self):
        self.collect()
        before = len(self.follow("--from-start")[0])
        self.assertEqual(self.run_words("event", "reset", "--yes").returncode, 0)
        self.machine.hxsimctl("disk", "remove", "a0/pd11")
        self.collect()
        lines, run = self.follow()
        self.assertEqual(lines[0], {
            "record": "gap", "reason": "reset", "lost": None, "after": before - 1, "next": 0,
            "adapter": None})
        self.assertEqual(lines[1], {"sequence": 0})
        self.assertEqual(run.returncode, 10)

    def test_what_the_controller_lost_is_a_gap_beside_its_event(self):
        self.collect()
        self.follow()
        overflow(self.machine, self.root)
        self.collect()
        run = self.run_words("event", "list", "-o", "jsonl", "--columns", "sequence,code,params")
        events = [json.loads(line) for line in run.stdout.splitlines()]
        number, lost = [(e["sequence"], e["params"][2]) for e in events if e["code"] == 65535][0]
        lines, run = self.follow("--class", "disk")
        self.assertEqual(lines[0], {"record": "gap", "reason": "overflow", "lost": lost,
                                    "after": None, "next": number, "adapter": 0})
        self.assertEqual(run.returncode, 10)
        (self.root / "cursor").write_text(f"vexorctl-cursor 1 {number} \n")
        lines, run = self.follow("--adapter", "1")
        self.assertEqual((lines, run.returncode), ([], 0))

    def test_other_formats_hold_no_gaps_and_have_the_exit_code(self):
        self.small_ring()
        self.collect()
        (self.root / "cursor").write_text("vexorctl-cursor 1 2 x\n")
        run = self.run_words("event", "follow", "--once", "--cursor", "cursor", "-o", "csv",
                             "--columns", "sequence")
        self.assertRegex(run.stdout, r"^sequence\n(\d+\n)+$")
        self.assertEqual(run.returncode, 10)

    def waiting(self, *words):
        process = subprocess.Popen(
            [VEXORCTL, "event", "follow", "-o", "jsonl", "--columns", "sequence", "--interval",
             "20ms", *words], cwd=self.root, env=self.environment, text=True,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def test_it_waits_for_a_store_that_is_not_there_yet_and_shows_all_of_it(self):
        process = self.waiting()
        self.assertEqual(
            process.stderr.readline(),
            f"vexorctl: event follow: the event store {self.store} is not there (No such file or "
            "directory): no events have been stored yet, or it was removed; the event service makes "
            "it when it stores an event; waiting for it\n")
        self.collect()
        self.assertEqual(without_head(json.loads(process.stdout.readline())), {"sequence": 0})
        process.send_signal(signal.SIGINT)
        _, err = process.communicate(timeout=60)
        self.assertEqual((err, process.returncode), ("", 130))

    def test_it_waits_for_the_folder_too(self):
        shutil.rmtree(self.store.parent)
        process = self.waiting("--count", "1")
        self.assertIn("has no folder", process.stderr.readline())
        self.store.parent.mkdir()
        self.collect()
        out, err = process.communicate(timeout=60)
        self.assertEqual((without_head(json.loads(out)), err, process.returncode),
                         ({"sequence": 0}, "", 0))

    def test_it_waits_for_a_store_that_has_gone_and_tells_the_gap(self):
        self.collect()
        process = self.waiting("--from-start", "--cursor", "cursor")
        process.stdout.readline()
        while not (self.root / "cursor").exists():
            pass
        self.store.unlink()
        self.assertEqual(
            process.stderr.readline(),
            f"vexorctl: event follow: the event store {self.store} was there and is gone; waiting "
            "for the next one\n")
        self.many_events()
        lines = (without_head(json.loads(line)) for line in process.stdout)
        gap = next(line for line in lines if "record" in line)
        self.assertEqual((gap["reason"], gap["next"]), ("reset", 0))
        self.assertEqual(next(lines), {"sequence": 0})

    def test_once_does_not_wait(self):
        lines, run = self.follow()
        self.assertEqual((list(lines[0]), run.returncode), (["error"], 5))
        self.assertIn("no events have been stored yet", run.stderr)

    def test_a_damaged_store_is_not_waited_for(self):
        self.store.write_text("no event file")
        run = self.run_words("event", "follow", "-o", "jsonl")
        self.assertEqual(run.returncode, 5)
        self.assertIn("is damaged", run.stderr)


class Times(VexorctlCase):
    """What lies between --since and --until, as many as --last says."""

    def setUp(self):
        super().setUp()
        for _ in range(3):
            self.machine.hxsimctl("disk", "remove", "a0/pd11")
            self.machine.hxsimctl("clock", "advance", "1h")
            self.machine.hxsimctl("disk", "insert", "a0/pd11")
            self.machine.hxsimctl("clock", "advance", "1h")
        self.collect()
        self.all = sorted(set(self.times()))[-6:]  # not those of the machine's beginning

    def times(self, *words):
        run = self.run_words("event", "list", "--class", "disk", "--columns", "time,device", "-o",
                             "jsonl", *words)
        self.assertEqual((run.stderr, run.returncode), ("", 0))
        events = [json.loads(line) for line in run.stdout.splitlines()]
        return [event["time"] for event in events if event["device"] == 11]

    def test_until_ends_the_list_and_holds_its_second(self):
        self.assertEqual(sorted(set(self.times("--since", self.all[1], "--until", self.all[3]))),
                         self.all[1:4])
        self.assertEqual(max(self.times("--until", self.all[0])), self.all[0])

    def test_last_counts_those_that_pass(self):
        within = self.times("--since", self.all[1], "--until", self.all[3])
        self.assertEqual(
            self.times("--since", self.all[1], "--until", self.all[3], "--last", "2"), within[-2:])

    def test_a_week_ago_is_a_duration(self):
        run = self.run_words("event", "list", "--since", "1w", "--until", "0s")
        self.assertEqual((run.stderr, run.returncode), ("", 0))

    def test_an_end_before_its_beginning_is_wrong_usage(self):
        run = self.run_words("event", "list", "--since", "1h", "--until", "2h")
        self.assertEqual(run.returncode, 2)
        self.assertIn("--until is before --since", run.stderr)


class TimelineSince(VexorctlCase):
    def test_what_ended_before_is_left_out_and_what_lasts_is_not(self):
        self.machine.hxsimctl("clock", "advance", "1m")
        self.run_words("task", "start", "a0/vd2", "--kind", "check")
        self.machine.hxsimctl("clock", "advance", "30d")
        self.run_words("task", "start", "a0/vd0", "--kind", "check")
        self.collect()
        items = json.loads(self.run_words("timeline", "-o", "json").stdout)["items"]
        self.assertEqual([each["address"] for each in items], ["a0/vd2", "a0/vd0"])
        ended, lasting = items[0]["end_time"], items[1]["start_time"]

        def since(time):
            run = self.run_words("timeline", "--since", time, "--columns", "address", "-o", "csv")
            self.assertEqual((run.returncode, run.stderr), (0, ""))
            return run.stdout.split()[1:]

        self.assertEqual(since(ended), ["a0/vd2", "a0/vd0"])
        self.assertEqual(since(lasting), ["a0/vd0"])
        self.assertEqual(since("2100-01-01"), ["a0/vd0"])
        run = self.run_words("timeline", "--since", "yesterday")
        self.assertEqual(run.returncode, 2)
        self.assertIn("--since: ", run.stderr)


class Timeline(VexorctlCase):
    """What lasted, as the stored events tell it and no further."""

    def timeline(self, *words):
        self.collect()
        run = self.run_words("timeline", "-o", "json", *words)
        document = json.loads(run.stdout)
        schema(SCHEMA).validate(document)
        return {(each["address"], each["kind"]): each for each in document["items"]}, run

    def test_a_rebuild_and_the_bad_times_around_it_have_durations(self):
        self.machine.hxsimctl("disk", "fail", "a0/pd1")  # a spare steps in
        self.machine.hxsimctl("clock", "advance", "20m")
        periods, run = self.timeline("a0/vd0")
        self.assertEqual(run.returncode, 0)
        rebuild = periods["a0/vd0", "rebuild"]
        self.assertEqual((rebuild["outcome"], rebuild["duration_seconds"], rebuild["end_time"]),
                         ("running", None, None))
        self.assertRegex(rebuild["text"], r"^rebuild, running at \d+ % or more$")
        degraded = periods["a0/vd0", "degraded"]
        self.assertEqual((degraded["outcome"], degraded["end_time"]), ("unknown", None))
        self.assertEqual(degraded["text"], "degraded, no event of its end is stored")
        self.machine.hxsimctl("clock", "advance", "10h")
        periods, run = self.timeline("name:DATABASE")
        rebuild, degraded = periods["a0/vd0", "rebuild"], periods["a0/vd0", "degraded"]
        self.assertEqual((rebuild["outcome"], rebuild["progress_ratio"]), ("complete", 1.0))
        self.assertEqual(degraded["outcome"], "recovered")
        self.assertEqual(degraded["duration_seconds"], rebuild["duration_seconds"])
        self.assertGreater(degraded["duration_seconds"], 1200)
        self.assertEqual({address for address, _ in periods}, {"a0/vd0"})

    def test_an_activity_that_was_aborted_or_is_paused_is_so(self):
        self.run_words("task", "start", "a0/vd2", "--kind", "check")
        self.machine.hxsimctl("clock", "advance", "1h")
        self.run_words("task", "pause", "a0/vd2")
        self.assertEqual(self.timeline()[0]["a0/vd2", "check"]["outcome"], "paused")
        self.run_words("task", "abort", "a0/vd2", "--yes")
        aborted = self.timeline()[0]["a0/vd2", "check"]
        self.assertEqual((aborted["outcome"], aborted["duration_seconds"]), ("aborted", 3600))

    def test_an_end_that_was_not_collected_is_not_running(self):
        self.run_words("task", "start", "a0/vd2", "--kind", "check")
        self.collect()
        self.run_words("task", "abort", "a0/vd2", "--yes")
        run = self.run_words("timeline", "a0/vd2", "-o", "json")
        item, = [each for each in json.loads(run.stdout)["items"] if each["kind"] == "check"]
        self.assertEqual((item["outcome"], item["end_time"]), ("unknown", None))
        self.assertEqual(item["text"], "check, no event of its end is stored")

    def test_a_beginning_that_was_overwritten_is_unknown(self):
        (self.root / "vexorapi.ini").write_text(
            '<config><EventLogConfig type="config" MaxNumOfEvent="3" '
            f'Filename="{self.root}/opt/kestrel/raid/db/vx_hx_raid.ev"/></config>')
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        self.collect()
        self.machine.hxsimctl("clock", "advance", "10h")
        periods, _ = self.timeline("a0/vd0")
        self.assertNotIn(("a0/vd0", "degraded"), periods)
        for kind in ("rebuild", "not_optimal"):
            period = periods["a0/vd0", kind]
            self.assertEqual((period["start_time"], period["duration_seconds"]), (None, None))
            self.assertIn("its beginning is not stored", period["text"])

    def test_lost_events_stand_where_they_are_missing(self):
        self.machine.hxsimctl("disk", "fail", "a0/pd1")
        self.collect()
        overflow(self.machine, self.root)
        periods, _ = self.timeline()
        lost = periods["a0", "events_lost"]
        self.assertRegex(lost["text"], r"^events lost: \d+, what happened then is not known$")
        self.assertTrue(periods["a0/vd0", "degraded"]["has_gap"])

    def test_what_was_deleted_has_its_timeline_and_no_more(self):
        self.machine.hxsimctl("disk", "fail", "a1/pd0")
        self.machine.hxsimctl("clock", "advance", "1h")
        self.assertEqual(self.run_words("vd", "delete", "a1/vd0", "--yes").returncode, 0)
        degraded = self.timeline("a1/vd0")[0]["a1/vd0", "degraded"]
        self.assertEqual((degraded["outcome"], degraded["duration_seconds"]), ("deleted", 3600))

    def test_a_store_that_is_not_there_is_told(self):
        run = self.run_words("timeline")
        self.assertEqual(run.returncode, 5)
        self.assertIn("no events have been stored yet", run.stderr)


if __name__ == "__main__":
    vexorctl_machine.run_tests(__name__, "VEXORCTL", "CHECK_IN")
