#!/usr/bin/env python3
"""The schema of vexorctl's documents guards them: every golden document and line is valid, and every
document that was changed is not. What is changed is one thing each time, in every key of every object: it
is left out, renamed, null, of another type, a word or name that nobody knows, in another unit.

The golden files are the only input; no program is run.

usage: vexorctl_schema_test.py [TEST]...
"""

import copy
import json
import pathlib
import re
import unittest

import jsonschema

TREE = pathlib.Path(__file__).resolve().parents[3]
GOLDEN = pathlib.Path(__file__).resolve().parent / "data" / "output"
SCHEMA = json.loads((TREE / "docs" / "vexorctl.schema.json").read_text())
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)
DEFINITIONS = SCHEMA["$defs"]

ADDRESS = re.compile(r"^a\d+(/(pd|vd|dg|enc)\d+(/el\d+)?)?$")
TIME = re.compile(r"^\d{4}-\d\d-\d\dT")

# Texts that are free: any other text would be as good.
FREE = {"text"}


def documents():
    """Every golden document, with few items: what is said of one is said of all."""
    for path in sorted(GOLDEN.glob("*.json")):
        document = json.loads(path.read_text())
        for few in ("items", "conditions"):
            if few in document:
                document[few] = kinds_of(document[few])
        yield document


def kinds_of(items):
    """The first item of each set of types, so that no key is null in all of them that is not always."""
    kinds = {}
    for item in items:
        kinds.setdefault(json.dumps({k: type(v).__name__ for k, v in item.items()}), item)
    return list(kinds.values())


def places(value, path=()):
    """The path of every key of every object in a document."""
    if isinstance(value, dict):
        for key, child in value.items():
            yield (*path, key)
            yield from places(child, (*path, key))
    if isinstance(value, list):
        for index, child in enumerate(value):
            yield from places(child, (*path, index))


def holder(document, path):
    for step in path[:-1]:
        document = document[step]
    return document


def resolved(schema):
    while "$ref" in schema:
        name = schema["$ref"].rsplit("/", 1)[-1]
        schema = {**DEFINITIONS[name], "is": name,
                  **{key: value for key, value in schema.items() if key != "$ref"}}
    return schema


def may_be_null(schema):
    if None in schema.get("enum", ()):
        return True
    return any(resolved(each).get("type") == "null" or may_be_null(each)
               for each in schema.get("anyOf", ()))


def forms(schema):
    """The schemas of which a value has to fulfil one."""
    schema = resolved(schema)
    if "anyOf" not in schema:
        return [schema]
    return [form for each in schema["anyOf"] for form in forms(each)]


def property_schema(document, path):
    """What the schema says of the key at the path of a document, or None of one in a list."""
    name = {"errors": "error", "conditions": "condition"}.get(path[0])
    if path[0] == "items":
        name = NAMES[document["command"]] + ".keys"
    schema = DEFINITIONS[name] if name else None
    rest = path[2:]
    if schema is None:
        schema, rest = OVERVIEW if path[0] in OVERVIEW["properties"] else DEFINITIONS["document"], path
    for step in rest:
        if isinstance(step, int):
            schema = next(form["items"] for form in forms(schema) if "items" in form)
        else:
            schema = next(form["properties"][step] for form in forms(schema)
                          if "properties" in form)
    return schema


def names_of_commands():
    """The definition of the items of each command, from the rules of the schema."""
    names = {}
    for rule in DEFINITIONS["document"]["allOf"]:
        if "else" in rule["then"]:
            reference = rule["then"]["else"]["properties"]["items"]["items"]["$ref"]
            for command in rule["if"]["properties"]["command"]["enum"]:
                names[command] = reference.rsplit("/", 1)[-1]
    return names


NAMES = names_of_commands()
OVERVIEW = DEFINITIONS["document"]["allOf"][-1]["then"]


class Guard(unittest.TestCase):
    def assert_invalid(self, document, path, what):
        self.assertFalse(VALIDATOR.is_valid(document),
                         f"{document.get('command')}: {'/'.join(map(str, path))}: {what}")

    def changed(self, document, path, value):
        document = copy.deepcopy(document)
        holder(document, path)[path[-1]] = value
        return document

    def each_place(self):
        seen = set()
        for document in documents():
            for path in places(document):
                # One of each kind is enough for a key that the schema says the same of.
                value = holder(document, path)[path[-1]]
                keys = [step for step in path if isinstance(step, str)]
                of = NAMES[document["command"]] if keys[0] == "items" else ""
                if (kind := (of, *keys, type(value))) in seen:
                    continue
                seen.add(kind)
                alone = copy.deepcopy(document)
                if path[0] == "items" and len(path) > 1:
                    alone["items"] = [alone["items"][path[1]]]
                    path = ("items", 0, *path[2:])
                yield alone, path, value

    def test_every_golden_document_and_line_is_valid(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)
        for path in sorted(GOLDEN.glob("*.json")):
            with self.subTest(file=path.name):
                VALIDATOR.validate(json.loads(path.read_text()))
        for path in sorted(GOLDEN.glob("*.jsonl")):
            for line in path.read_text().splitlines()[:40]:
                with self.subTest(file=path.name):
                    VALIDATOR.validate(json.loads(line))

    def test_says_which_draft_and_which_version_it_is(self):
        self.assertEqual(SCHEMA["$schema"], "https://json-schema.org/draft/2020-12/schema")
        self.assertEqual(SCHEMA["$id"], "urn:vexorctl:schema:1")

    def test_a_key_that_is_left_out_or_renamed_is_noticed(self):
        for document, path, value in self.each_place():
            without = copy.deepcopy(document)
            del holder(without, path)[path[-1]]
            # Without its items a document is taken for a line, which is not valid either.
            self.assert_invalid(without, path, "left out")
            holder(without, path)["x" + path[-1]] = value
            self.assert_invalid(without, path, "renamed")

    def test_null_stands_only_where_something_may_be_unknown_or_absent(self):
        never = 0
        for document, path, _ in self.each_place():
            nulled = self.changed(document, path, None)
            if may_be_null(property_schema(document, path)):
                self.assertTrue(VALIDATOR.is_valid(nulled), path)
            else:
                never += 1
                self.assert_invalid(nulled, path, "null")
        self.assertGreater(never, 100)

    def test_no_text_is_empty(self):
        for document, path, value in self.each_place():
            if isinstance(value, str):
                self.assert_invalid(self.changed(document, path, ""), path, "empty")

    def test_a_value_of_another_type_is_noticed(self):
        for document, path, value in self.each_place():
            if value is None:
                continue
            for other in (["x"], {"x": 1}, "x", 1.5, True):
                if type(other) is not type(value) and not (
                        isinstance(value, float) and isinstance(other, float)):
                    if isinstance(value, (int, float)) and not isinstance(value, bool) and \
                            other == 1.5 and self.is_ratio(document, path):
                        continue
                    self.assert_invalid(self.changed(document, path, other), path, repr(other))

    def is_ratio(self, document, path):
        return any(form.get("is") == "ratio" for form in forms(property_schema(document, path)))

    def test_a_word_or_a_name_that_nobody_knows_is_noticed(self):
        words = 0
        for document, path, value in self.each_place():
            if not isinstance(value, str):
                continue
            allowed = forms(property_schema(document, path))
            if any(form.get("is") in FREE for form in allowed) or \
                    any(form.get("type") == "string" and "pattern" not in form and
                        "enum" not in form and "const" not in form for form in allowed):
                continue
            words += 1
            self.assert_invalid(self.changed(document, path, "optimal-ish"), path, "a wrong word")
        self.assertGreater(words, 50)

    def test_an_unknown_code_is_a_number_without_a_name(self):
        document = json.loads((GOLDEN / "vd-list.json").read_text())
        path = ("items", 0, "state")
        VALIDATOR.validate(self.changed(document, path, {"code": 77, "name": None}))
        VALIDATOR.validate(self.changed(document, path, {"code": 77, "name": "x_dreaming"}))
        self.assert_invalid(self.changed(document, path, {"code": 77, "name": "dreaming"}), path,
                            "a foreign name without x_")

    def test_a_wrong_unit_is_noticed(self):
        units = 0
        for document, path, value in self.each_place():
            key = path[-1]
            if not isinstance(key, str) or value is None or isinstance(value, (str, list, dict)):
                continue
            wrong = {"_bytes": (f"{value} GiB", 1.5, 465.25),
                     "_ratio": (50, 1.01, "50%"),
                     "_seconds": ("1:00:00", 1.5), "_percent": ("30%", 30.5),
                     "_celsius": ("30 C", 30.5), "_millivolts": (3.9, "3.9 V"),
                     "_mah": (1.5, "1500 mAh")}.get(key[key.rfind("_"):] if "_" in key else "", ())
            if any(form.get("is") == "bytes" for form in forms(property_schema(document, path))):
                wrong = (*wrong, value + 1)  # sizes are whole sectors
            for other in wrong:
                units += 1
                self.assert_invalid(self.changed(document, path, other), path, f"{other!r}")
        self.assertGreater(units, 50)

    def test_a_time_or_an_address_in_another_form_is_noticed(self):
        found = 0
        for document, path, value in self.each_place():
            if isinstance(value, str) and TIME.match(value):
                for other in (1767225600, "yesterday", "2026-01-31 12:00:00", "31.01.2026"):
                    self.assert_invalid(self.changed(document, path, other), path, f"{other!r}")
                    found += 1
            if isinstance(value, str) and ADDRESS.match(value):
                for other in ("0/pd3", "a0:pd3", "a0/hd3", "disk 3", "/dev/sda"):
                    self.assert_invalid(self.changed(document, path, other), path, f"{other!r}")
                    found += 1
        self.assertGreater(found, 100)

    def test_an_item_of_another_command_is_noticed(self):
        for document in documents():
            if not document["items"] or document["command"] == "vd list":
                continue
            with self.subTest(command=document["command"]):
                if NAMES[document["command"]] != NAMES["vd list"]:
                    self.assert_invalid({**document, "command": "vd list"}, (), "another command")

    def test_with_named_columns_the_others_are_not_missed(self):
        document = json.loads((GOLDEN / "vd-list.json").read_text())
        document["items"] = [{"address": "a0/vd0"}]
        self.assert_invalid(document, (), "keys are missing, and nothing says so")
        VALIDATOR.validate({**document, "partial": True})
        self.assert_invalid({**document, "partial": True, "items": [{"address": "vd0"}]}, (),
                            "a wrong address")

    def test_a_line_without_its_schema_or_command_is_noticed(self):
        for path in sorted(GOLDEN.glob("*.jsonl")):
            lines = path.read_text().splitlines()
            for line in lines[:1]:
                with self.subTest(file=path.name):
                    for key in json.loads(line):
                        changed = json.loads(line)
                        del changed[key]
                        self.assertFalse(VALIDATOR.is_valid(changed), key)

    def test_keys_that_come_later_break_no_reader(self):
        document = json.loads((GOLDEN / "vd-list.json").read_text())
        document["items"][0]["colour_of_the_future"] = "blue"
        VALIDATOR.validate(document)


if __name__ == "__main__":
    unittest.main(verbosity=2)
