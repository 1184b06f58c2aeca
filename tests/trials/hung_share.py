#!/usr/bin/env python3
"""A station goes on while a share hangs: nothing answers below its folder, not even with an error.

First the share of text files that one device type's rules search hangs: the 200 devices of another type are
checked all the same, few threads wait, and SIGTERM ends the station. Then the share of the datafile itself
hangs: SIGTERM ends the station, and when the share is back, the next one works on. Last a user edits on: his
edits wait for nothing, and are in the datafile when the share is back.

usage: hung_share.py BIN_FOLDER
"""

import json
import os
import signal
import subprocess
import sys
import tempfile
import time

PRINTERS, PHONES = 200, 12


class Trial:
    def __init__(self, bin_folder, folder):
        self.bin, self.folder = bin_folder, folder
        self.flag = os.path.join(folder, "hangs")
        self.texts = os.path.join(folder, "texts")
        self.local = os.path.join(folder, "local")
        self.faults = []
        os.mkdir(self.texts)
        os.mkdir(self.local)
        self.file = os.path.join(self.local, "floor.mv")
        lines = [f"Name=printer-{i}\0IPAddress=127.0.1.{i}" for i in range(1, PRINTERS + 1)]
        self.ctl("new", self.file)
        for line in lines:
            self.ctl("add", self.file, "--type", "Printer", *line.split("\0"))
        for i in range(PHONES):
            self.ctl("add", self.file, "--type", "Phone", f"Name=phone-{i}", f"IPAddress=127.0.2.{i + 1}")
        text = os.path.join(self.texts, "$mvN.txt")
        for column, value in (("Command", "Search in Text File"), ("Argument", text), ("Condition", "On/Off")):
            self.ctl("criteria", self.file, "--type", "Phone", "--set", "6", column, value)

    def ctl(self, *words):
        config = os.path.join(self.folder, "config")
        done = subprocess.run([os.path.join(self.bin, "mirovanectl"), "--config", config, *words],
                              capture_output=True, text=True)
        if done.returncode != 0:
            self.faults.append(f"{words}: {done.stderr.strip()}")
        return done.stdout

    def hang(self, on):
        if on:
            open(self.flag, "w").close()
        else:
            os.remove(self.flag)

    def station(self, share):
        return subprocess.Popen(
            [os.path.join(self.bin, "mirovanectl"), "--config", os.path.join(self.folder, "config"), "station",
             self.file, "--live-stat", "--take-over", "--run-sec", "1", "--per-run", "10"],
            env=self.preloaded(share), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)

    def on(self):
        records = json.loads(self.ctl("records", self.file, "--json"))
        return sum(record["State"] == 1 and record["Name"].startswith("printer") for record in records)

    def wait_until(self, what, seconds, true):
        end = time.monotonic() + seconds
        while not true():
            if time.monotonic() > end:
                self.faults.append(f"{what} did not happen within {seconds} s")
                return
            time.sleep(0.5)

    def preloaded(self, share):
        return dict(os.environ, LD_PRELOAD=os.path.join(self.bin, "hanging_share.so"), HANG_FOLDER=share,
                    HANG_FLAG=self.flag)

    def end(self, process, what):
        began = time.monotonic()
        process.send_signal(signal.SIGTERM)
        try:
            output, _ = process.communicate(timeout=30)
        except subprocess.TimeoutExpired:
            process.kill()
            self.faults.append(f"{what}: SIGTERM did not end the station within 30 s")
            return ""
        print(f"{what}: ended {time.monotonic() - began:.1f} s after SIGTERM, status {process.returncode}")
        return output

    def texts_hang(self):
        self.hang(True)
        station = self.station(self.texts)
        self.wait_until("the check of the other devices", 90, lambda: self.on() == PRINTERS)
        threads = len(os.listdir(f"/proc/{station.pid}/task"))
        print(f"{self.on()} of {PRINTERS} other devices are On while {PHONES} rules hang; {threads} threads")
        if threads > 25:
            self.faults.append(f"{threads} threads: they pile up")
        self.end(station, "hung text files")
        self.hang(False)

    def datafile_hangs(self):
        station = self.station(self.local)
        time.sleep(4)
        self.hang(True)
        time.sleep(8)
        output = self.end(station, "hung datafile")
        if "does not answer" not in output and "Error reading" not in output:
            self.faults.append(f"nobody was told: {output[-500:]}")
        self.hang(False)
        self.ctl("check", self.file)
        if self.on() != PRINTERS:
            self.faults.append("the datafile lost what it held")

    def user_edits_on(self):
        for i in range(1, 21):
            self.ctl("add", self.file, "--type", "Switch", f"Name=shared-{i}")
        state = os.path.join(self.folder, "config", "state")
        said = os.path.join(self.folder, "said")
        with open(said, "w") as out:  # a pipe that nobody empties would hold the program up, too
            editor = subprocess.Popen([os.path.join(self.bin, "shared_editor"), self.file, "editor", "7", state],
                                      env=self.preloaded(self.local), stdout=out)
        time.sleep(2)
        hung = time.monotonic_ns()
        self.hang(True)
        time.sleep(10)
        self.end(editor, "a user's program")
        self.hang(False)
        with open(said) as lines_said:
            lines = [line.split(" ") for line in lines_said.read().splitlines()]
        times = [int(words[0]) for words in lines if int(words[0]) > hung]
        gaps = sorted((b - a) / 1e6 for a, b in zip(times, times[1:]))
        edits = [words for words in lines if words[1] == "ack" and int(words[0]) > hung]
        longest = ", ".join(f"{gap:.0f}" for gap in gaps[-3:])
        print(f"{len(edits)} edits while the datafile hung; the longest waits were {longest} ms")
        if len(edits) < 50 or gaps[-1] > 250 or gaps[-3] > 100:
            self.faults.append("the user had to wait")
        self.ctl("station", self.file, "--for", "1")
        names = [record["Name"] for record in json.loads(self.ctl("records", self.file, "--json"))]
        gone = {words[3] for words in lines if words[1] == "try" and words[2] == "del"}
        for words in edits:
            if words[2] == "add" and words[3] not in gone and words[3] not in names:
                self.faults.append(f"{words[3]} is lost")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as folder:
        trial = Trial(sys.argv[1], folder)
        trial.texts_hang()
        trial.datafile_hangs()
        trial.user_edits_on()
        for fault in trial.faults:
            print("FAULT:", fault)
        sys.exit(1 if trial.faults else 0)


main()
