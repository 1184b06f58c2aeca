#!/usr/bin/env python3
"""Ten processes work on one datafile while they are killed at random; afterwards nobody's edit may be missing.

Four headless stations with Live Stat, three users who keep the datafile open (shared_editor) and three scripts
that call `mirovanectl add` and `set` over and over. About once a second one of them dies by SIGKILL and is
started again. At the end the datafile must be whole, no RecID double, and every acknowledged edit be in it,
overwritten by a later one, or named in somebody's message log.

usage: shared_datafile.py BIN_FOLDER [--seconds N] [--folder DIR] [--seed N]
"""

import argparse
import json
import os
import random
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time

SHARED = 20
FIELDS = ["Comment", "Username", "MACAddress", "SlashText"]


class Worker:
    """One process that is started again whenever it ends; its lines carry the moment they were printed."""

    def __init__(self, trial, name, command):
        self.trial, self.name, self.command = trial, name, command
        self.generation = 0
        self.lines = []
        self.stopping = False
        self.start()

    def start(self):
        self.generation += 1
        # Without a run-time folder in common they do not know of each other, as on computers of their own.
        alone = dict(os.environ, XDG_RUNTIME_DIR=self.trial.config(self.name))
        self.process = subprocess.Popen(self.command(self), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        text=True, errors="replace", env=alone)
        self.lines_before = len(self.lines)
        self.reader = threading.Thread(target=self.read, args=(self.process,), daemon=True)
        self.reader.start()

    def read(self, process):
        for line in process.stdout:
            self.lines.append(line.rstrip("\n"))

    def kill(self):
        self.process.kill()
        self.process.wait()
        self.reader.join()
        self.start()

    def stop(self):
        self.process.send_signal(signal.SIGTERM)
        try:
            self.process.wait(30)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.trial.faults.append(f"{self.name} did not end within 30 s of SIGTERM")
            return
        self.reader.join()
        # Started anew a moment ago it may not have come as far as to take signals.
        had_begun = len(self.lines) > self.lines_before
        if self.process.returncode != 0 and (had_begun or self.process.returncode != -signal.SIGTERM):
            self.trial.faults.append(f"{self.name} ended with {self.process.returncode}: {self.lines[-3:]}")


class Script(threading.Thread):
    """Calls mirovanectl over and over, as a cron job would; its call in flight may be killed."""

    def __init__(self, trial, name):
        super().__init__(daemon=True)
        self.trial, self.name = trial, name
        self.random = random.Random(f"{trial.seed} {name}")
        self.process = None
        self.stopping = False
        self.lines = []
        self.count = 0

    def say(self, text):
        self.lines.append(f"{time.monotonic_ns()} {text}")

    def call(self, *words):
        self.process = subprocess.Popen([self.trial.ctl, "--config", self.trial.config(self.name), *words],
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        out, err = self.process.communicate()
        if self.process.returncode not in (0, -signal.SIGKILL):
            self.say(f"refused {self.process.returncode}: {err.strip()}")
            self.trial.refusals += 1
        return self.process.returncode == 0

    def run(self):
        while not self.stopping:
            self.count += 1
            token = f"{self.name}-{self.count}"
            if self.random.random() < 0.4:
                what, words = f"add {token}", ["add", self.trial.file, "--type", "Switch", f"Name={token}"]
            else:
                device, field = self.random.randint(1, SHARED), self.random.choice(FIELDS)
                what = f"set shared-{device} {field} {token}"
                words = ["set", self.trial.file, str(device), f"{field}={token}"]
            self.say(f"try {what}")
            if self.call(*words):
                self.say(f"ack {what}")
            time.sleep(self.random.uniform(0.02, 0.2))

    def kill(self):
        if self.process and self.process.poll() is None:
            self.process.kill()

    def stop(self):
        self.stopping = True
        self.join(30)


class Trial:
    def __init__(self, options, folder):
        self.ctl = os.path.join(options.bin, "mirovanectl")
        self.editor = os.path.join(options.bin, "shared_editor")
        self.seed = options.seed
        self.folder = folder
        self.scratch = tempfile.mkdtemp(prefix="mirovane-trial-config-")
        self.file = os.path.join(folder, "shared.mv")
        self.faults = []
        self.refusals = 0
        self.kills = 0

    def config(self, name):
        return os.path.join(self.scratch, name)

    def run_ctl(self, *words):
        return subprocess.run([self.ctl, "--config", self.config("driver"), *words], capture_output=True, text=True)

    def prepare(self):
        if os.path.exists(self.file):
            os.remove(self.file)
        for words in [["new", self.file]] + [
                ["add", self.file, "--type", "Switch", f"Name=shared-{i}", f"IPAddress=127.0.7.{i}"]
                for i in range(1, SHARED + 1)]:
            done = self.run_ctl(*words)
            if done.returncode != 0:
                sys.exit(f"cannot prepare the datafile: {done.stderr}")

    def start(self):
        def station(worker):
            return [self.ctl, "--config", self.config(worker.name), "station", self.file, "--live-stat", "--take-over",
                    "--run-sec", "1"]

        def editor(worker):
            return [self.editor, self.file, f"{worker.name}.{worker.generation}", str(random.randrange(2**31))]

        self.workers = [Worker(self, f"station{i}", station) for i in range(4)]
        self.workers += [Worker(self, f"editor{i}", editor) for i in range(3)]
        self.scripts = [Script(self, f"script{i}") for i in range(3)]
        for script in self.scripts:
            script.start()

    def disturb(self, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            time.sleep(random.uniform(0.5, 1.5))
            random.choice(self.workers + self.scripts).kill()
            self.kills += 1

    def stop(self):
        for worker in self.scripts + self.workers:
            worker.stop()

    # ---- afterwards

    def records(self):
        done = self.run_ctl("records", self.file, "--json")
        if done.returncode != 0:
            self.faults.append(f"the datafile cannot be read: {done.stderr}")
            return []
        return [record for record in json.loads(done.stdout) if record["Type"] > 0]

    def events(self):
        """(time, kind, words) of tries and acknowledgements, and the tokens that log lines name."""
        events, log = [], []
        for worker in self.workers + self.scripts:
            for line in worker.lines:
                words = line.split(" ")
                if len(words) > 2 and words[0].isdigit() and words[1] in ("try", "ack"):
                    events.append((int(words[0]), words[1], words[2:]))
                else:
                    log.append(line)
        events += self.kept(events)
        return sorted(events, key=lambda event: event[0]), set(re.findall(r"[\w.]+-\d+", "\n".join(log)))

    def kept(self, events):
        """A desktop's edit whose save did not succeed stays in its memory and goes with a later save: unless the
        process died right after it, it counts as acknowledged."""
        acknowledged = {words[-1 if words[0] == "set" else 1] for _, kind, words in events if kind == "ack"}
        last = {}
        tries = [(when, words, words[-1]) for when, kind, words in sorted(events, key=lambda e: e[0])
                 if kind == "try" and words[-1].startswith("editor")]
        for when, words, token in tries:
            last[token.rsplit("-", 1)[0]] = token
        return [(when, "ack", words) for when, words, token in tries
                if words[0] != "del" and token not in acknowledged and last[token.rsplit("-", 1)[0]] != token]

    def judge(self):
        checked = self.run_ctl("check", self.file)
        if checked.returncode != 0:
            self.faults.append(f"check: {checked.stdout}{checked.stderr}")
        devices = self.records()
        ids = [device["RecID"] for device in devices]
        if len(ids) != len(set(ids)):
            self.faults.append("a RecID is there twice")
        events, log = self.events()
        self.judge_adds(devices, events, log)
        self.judge_sets(devices, events, log)
        self.acknowledged = sum(kind == "ack" for _, kind, _ in events)

    def judge_adds(self, devices, events, log):
        names = [device["Name"] for device in devices]
        deleted = {words[1] for _, _, words in events if words[0] == "del"}
        for _, kind, words in events:
            if kind == "ack" and words[0] == "add" and words[1] not in deleted and words[1] not in log:
                if names.count(words[1]) != 1:
                    self.faults.append(f"{words[1]} was added and is there {names.count(words[1])} times")
            if kind == "ack" and words[0] == "del" and words[1] in names:
                self.faults.append(f"{words[1]} was deleted and is there again")

    def judge_sets(self, devices, events, log):
        by_name = {device["Name"]: device for device in devices}
        ended = {}  # token -> when its edit was over at the latest
        for when, kind, words in events:
            if words[0] == "set":
                ended[words[3]] = when if kind == "ack" else ended.get(words[3], float("inf"))
        for index, (when, kind, words) in enumerate(events):
            if kind != "ack" or words[0] != "set":
                continue
            _, name, field, token = words
            if name not in by_name:
                self.faults.append(f"{name} is gone")
                continue
            final = by_name[name][field]
            tried = next(t for t, k, w in events if k == "try" and w == words)
            if final != token and token not in log and not ended.get(final, -1) >= tried:
                self.faults.append(f"{name} {field}: {token} is lost, the file holds \"{final}\"")

    def merges(self):
        return sum("Merged changes from data file" in line for worker in self.workers for line in worker.lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("bin")
    parser.add_argument("--seconds", type=float, default=60)
    parser.add_argument("--folder")
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    random.seed(options.seed)
    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as scratch:
        trial = Trial(options, options.folder or scratch)
        trial.prepare()
        trial.start()
        trial.disturb(options.seconds)
        trial.stop()
        trial.judge()
        left = [name for name in os.listdir(trial.folder) if name != "shared.mv"]
        print(f"{options.seconds:.0f} s, {trial.kills} kills, {trial.acknowledged} edits acknowledged, "
              f"{trial.merges()} merges, {trial.refusals} refused, {len(trial.records())} devices, "
              f"left in the folder: {left or 'nothing'}")
        for fault in trial.faults:
            print("FAULT:", fault)
        if trial.acknowledged == 0:
            sys.exit("nothing was edited")
        sys.exit(1 if trial.faults else 0)


main()
