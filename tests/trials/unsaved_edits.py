#!/usr/bin/env python3
"""A user edits while the share of his datafile comes and goes, and his program is killed at random instants.

Each round starts a program (shared_editor) on the datafile, takes the share away after a moment, kills the
program while edits go on, and brings the share back; some rounds kill it before or after that. Every fourth
program ends by SIGTERM. A colleague changes another field whenever the share is there. At the end the
datafile is opened once more, and every edit that the user was told is saved or kept must be in it.

usage: unsaved_edits.py BIN_FOLDER [--kills N] [--seed N]
"""

import argparse
import json
import os
import random
import signal
import subprocess
import sys
import tempfile
import threading
import time

SHARED = 20


class Editor:
    """One life of the user's program."""

    def __init__(self, trial, number):
        self.process = subprocess.Popen(
            [trial.editor, trial.file, f"editor.{number}", str(random.randrange(2**31)), trial.state],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.acknowledged = threading.Event()
        self.lines = trial.lines
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        for line in self.process.stdout:
            self.lines.append(line.rstrip("\n"))
            if " ack " in line:
                self.acknowledged.set()
        self.acknowledged.set()

    def end(self, by):
        self.process.send_signal(by)
        try:
            self.process.wait(30)
        except subprocess.TimeoutExpired:
            self.process.kill()
            sys.exit(f"the program did not end within 30 s of signal {by}")
        self.reader.join()


class Trial:
    def __init__(self, options, folder):
        self.ctl = os.path.join(options.bin, "mirovanectl")
        self.editor = os.path.join(options.bin, "shared_editor")
        self.config = os.path.join(folder, "config")
        self.state = os.path.join(self.config, "state")
        self.share = os.path.join(folder, "share")
        self.gone = os.path.join(folder, "unmounted")
        self.file = os.path.join(self.share, "floor.mv")
        self.lines = []
        self.faults = []
        self.colleague = {}
        self.kept = 0
        os.mkdir(self.share)

    def run_ctl(self, *words):
        done = subprocess.run([self.ctl, "--config", self.config, *words], capture_output=True, text=True)
        if done.returncode != 0:
            self.faults.append(f"{words}: {done.stderr.strip()}")
        return done.stdout

    def prepare(self):
        self.run_ctl("new", self.file)
        for i in range(1, SHARED + 1):
            self.run_ctl("add", self.file, "--type", "Switch", f"Name=shared-{i}")

    def work_of_colleague(self, number):
        device = random.randint(1, SHARED)
        self.run_ctl("set", self.file, str(device), f"HorzText=colleague-{number}")
        self.colleague[device] = f"colleague-{number}"

    def round(self, number):
        editor = Editor(self, number)
        if not editor.acknowledged.wait(30):
            sys.exit("the program does nothing")
        by = signal.SIGTERM if number % 4 == 3 else signal.SIGKILL
        when = random.random()
        if when < 0.1:
            time.sleep(random.uniform(0, 0.05))
            return editor.end(by)
        os.rename(self.share, self.gone)
        time.sleep(random.uniform(0, 0.25))
        if when < 0.85:
            editor.end(by)
            self.kept += any(name.endswith(".edits") for name in os.listdir(self.state))
        os.rename(self.gone, self.share)
        if when >= 0.85:
            time.sleep(random.uniform(0, 0.3))
            editor.end(by)
        return None

    def run(self, kills):
        for number in range(kills):
            self.round(number)
            if number % 5 == 0:
                self.work_of_colleague(number)

    def judge(self):
        self.run_ctl("station", self.file, "--for", "1")
        left = [name for name in os.listdir(self.state) if ".edits" in name] if os.path.exists(self.state) else []
        if left:
            self.faults.append(f"left in the state folder: {left}")
        self.run_ctl("check", self.file)
        devices = [record for record in json.loads(self.run_ctl("records", self.file, "--json"))
                   if record["Type"] > 0]
        names = [device["Name"] for device in devices]
        events = [line.split(" ")[1:] for line in self.lines]
        events = [words for words in events if words[0] in ("try", "ack")]
        self.judge_devices(names, events)
        self.judge_fields({device["Name"]: device for device in devices}, events)
        self.acknowledged = sum(words[0] == "ack" for words in events)

    def judge_devices(self, names, events):
        tried_away = {words[2] for words in events if words[1] == "del"}
        for words in events:
            if words[:2] == ["ack", "add"] and words[2] not in tried_away and names.count(words[2]) != 1:
                self.faults.append(f"{words[2]} was added and is there {names.count(words[2])} times")
            if words[:2] == ["ack", "del"] and words[2] in names:
                self.faults.append(f"{words[2]} was deleted and is there again")
        if len(names) != len(set(names)):
            self.faults.append("a device is there twice")

    def judge_fields(self, by_name, events):
        """The last acknowledged value, or one that was tried after it."""
        possible = {}
        for words in events:
            if words[1] != "set":
                continue
            place = (words[2], words[3])
            if words[0] == "ack":
                tried = possible.get(place, [])
                possible[place] = tried[tried.index(words[4]):]
            else:
                possible.setdefault(place, [""]).append(words[4])
        for (name, field), values in possible.items():
            if by_name[name][field] not in values:
                self.faults.append(f"{name} {field}: {values[0]} is lost, the file holds {by_name[name][field]!r}")
        for device, value in self.colleague.items():
            if by_name[f"shared-{device}"]["HorzText"] != value:
                self.faults.append(f"the colleague's {value} is lost")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("bin")
    parser.add_argument("--kills", type=int, default=300)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    random.seed(options.seed)
    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as folder:
        trial = Trial(options, folder)
        trial.prepare()
        trial.run(options.kills)
        trial.judge()
        print(f"{options.kills} kills, {trial.kept} of them with unsaved edits on disk, "
              f"{trial.acknowledged} edits acknowledged")
        for fault in trial.faults:
            print("FAULT:", fault)
        if trial.kept == 0:
            sys.exit("no edit was ever kept")
        sys.exit(1 if trial.faults else 0)


main()
