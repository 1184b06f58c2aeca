#!/usr/bin/env python3
"""What mirovanectl prints with --json is what docs/schema says, for every command that has --json.

Each output is also spoilt by an unknown key: a schema that takes everything would not notice.

usage: json_output.py BIN_FOLDER SCHEMA
"""

import copy
import json
import os
import re
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("SKIPPED: python3-jsonschema is not installed")
    sys.exit(77)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    ctl_path = os.path.join(sys.argv[1], "mirovanectl")
    with open(sys.argv[2]) as file:
        schema = json.load(file)
    faults = []

    def ctl(*words):
        done = subprocess.run([ctl_path, "--config", config, *words], capture_output=True, text=True)
        return done.stdout

    def validator(command):
        return jsonschema.Draft202012Validator({**schema, "$ref": f"#/$defs/{command}"})

    def take(command, text):
        document = json.loads(text)
        error = jsonschema.exceptions.best_match(validator(command).iter_errors(document))
        if error:
            faults.append(f"{command}: {error.json_path}: {error.message}")
        if document == []:
            faults.append(f"{command}: nothing was printed, so nothing was tried")
            return
        spoilt = copy.deepcopy(document)
        (spoilt[0] if isinstance(spoilt, list) else spoilt)["unknown"] = 1
        if validator(command).is_valid(spoilt):
            faults.append(f"{command}: the schema takes any key")

    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as folder:
        config = os.path.join(folder, "config")
        path = os.path.join(folder, "floor.mv")
        ctl("new", path)
        ctl("add", path, "--type", "Printer", "Name=laser", "IPAddress=127.0.0.1", "ReminderDate=2026-11-22 14:30")
        ctl("add", path, "--type", "Location Marker", "Comment=Hall 1")
        ctl("ranges", path, "--add", "127.0.0.1", "127.0.0.3")
        ctl("applications", path, "--add", "ping", "ping $mvI")
        words = {
            "records": [path], "list": [path], "find": [path, "laser"], "check": [path, "--repair"],
            "criteria": [path], "applications": [path], "ranges": [path], "sweep": [path, "--dry-run"],
            "test": [path, "1", "0"],
        }
        for command, arguments in words.items():
            take(command, ctl(command, *arguments, "--json"))
        for line in ctl("station", path, "--live-stat", "--loops", "3", "--json").splitlines():
            take("station", line)
        # Without a network: this computer's own name is looked up.
        own = subprocess.run(["unshare", "-n", ctl_path, "--config", config, "doctor", path, "--json"],
                             capture_output=True, text=True)
        if own.stdout:
            take("doctor", own.stdout)
        else:
            print("doctor was not tried: no network namespace of its own")

        tried = {*words, "station", "doctor"}
        commands = set(re.findall(r"^  ([a-z]+) {2,}\S", ctl("--help"), re.M))
        having = {command for command in commands if "\n  --json" in ctl(command, "--help")}
        for command in having ^ tried:
            faults.append(f"{command}: it has --json and is not tried, or the other way round")
        for command in having ^ (set(schema["$defs"]) - {"record"}):
            faults.append(f"{command}: it has --json and no schema, or the other way round")
        print(f"{len(having)} commands with --json")
        for fault in faults:
            print("FAULT:", fault)
        sys.exit(1 if faults else 0)


main()
