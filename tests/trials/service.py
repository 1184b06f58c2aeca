#!/usr/bin/env python3
"""A station as a service manager sees it: this program plays the manager and the journal.

It starts a station from a settings file with a notification socket, a watchdog and a journal, has it read other
settings, wrong ones, and another datafile, takes its socket away, stops its main loop, and ends it. Everything
that the station told is printed; what was missing is a FAULT.

usage: service.py BIN_FOLDER
"""

import json
import os
import re
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time

WATCHDOG_SECONDS = 1.5


class Manager:
    """A notification socket, and one pipe as the journal."""

    def __init__(self, bin_folder, folder):
        self.ctl_path = os.path.join(bin_folder, "mirovanectl")
        self.folder = folder
        self.config = os.path.join(folder, "config")
        self.settings = os.path.join(folder, "site.conf")
        self.address = os.path.join(folder, "notify")
        self.faults, self.told, self.journal = [], [], []
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.socket.bind(self.address)
        self.began = time.monotonic()

    def ctl(self, *words):
        done = subprocess.run([self.ctl_path, "--config", self.config, *words], capture_output=True, text=True)
        return done.stdout

    def datafile(self, name, *devices):
        path = os.path.join(self.folder, name)
        self.ctl("new", path)
        for device in devices:
            self.ctl("add", path, "--type", "Printer", f"Name={device}", "IPAddress=127.0.0.1")
        return path

    def write(self, *lines):
        with open(self.settings, "w") as file:
            file.write("".join(line + "\n" for line in lines))

    def start(self):
        out, err = os.pipe()
        status = os.fstat(err)
        environment = dict(os.environ, NOTIFY_SOCKET=self.address, JOURNAL_STREAM=f"{status.st_dev}:{status.st_ino}",
                           WATCHDOG_USEC=str(int(WATCHDOG_SECONDS * 1e6)))
        self.process = subprocess.Popen(
            [self.ctl_path, "--config", self.config, "station", "--settings", self.settings], stdout=err, stderr=err,
            env=environment)
        os.close(err)
        self.pipe, self.rest = out, b""

    def pump(self, seconds):
        """Takes in what is told and logged for so long, or until something new came."""
        sources = [self.socket] + ([self.pipe] if self.pipe is not None else [])
        ready, _, _ = select.select(sources, [], [], seconds)
        if self.socket in ready:
            for line in self.socket.recv(4096).decode().splitlines():
                self.told.append(line)
                self.show("manager", line)
        if self.pipe in ready:
            got = os.read(self.pipe, 65536)
            if not got:
                os.close(self.pipe)
                self.pipe = None
            *lines, self.rest = (self.rest + got).split(b"\n")
            for line in lines:
                self.journal.append(line.decode())
                self.show("journal", self.journal[-1])

    def show(self, who, line):
        if line != "WATCHDOG=1" and not line.startswith("MONOTONIC"):
            print(f"{time.monotonic() - self.began:6.2f} {who}: {line}")

    def wait(self, what, lines, pattern, seconds=10):
        """Until a line fits that came since the last wait."""
        end, at = time.monotonic() + seconds, len(lines) if lines is None else self.seen.get(id(lines), 0)
        while time.monotonic() < end:
            for place in range(at, len(lines)):
                if re.search(pattern, lines[place]):
                    self.seen[id(lines)] = place + 1
                    return True
            self.pump(0.2)
        self.faults.append(f"{what}: nothing like {pattern!r} within {seconds} s")
        return False

    seen = {}

    def end(self, what, number=signal.SIGTERM, seconds=5.0):
        began = time.monotonic()
        self.process.send_signal(number)
        while self.process.poll() is None and time.monotonic() < began + 30:
            self.pump(0.1)
        took = time.monotonic() - began
        print(f"{what}: ended {took:.2f} s after the signal, status {self.process.returncode}")
        if took > seconds:
            self.faults.append(f"{what}: took {took:.1f} s")
        while self.pipe is not None:
            self.pump(0.1)


def reloads(manager, first, second):
    metrics = ["live-stat=yes", "run-sec=1", f"export={manager.folder}/list.txt"]
    manager.write("# a site", f"datafile = {first}", *metrics)
    manager.start()
    manager.wait("start", manager.told, "^READY=1")
    manager.wait("what it does", manager.told, r"^STATUS=Live Stat runs, loop \d+; Live Discover is off; 1 device")
    manager.wait("signs of life", manager.told, "^WATCHDOG=1")
    manager.wait("a line's priority", manager.journal, r"^<7>Live Stat Priority")
    if not os.path.exists(f"{manager.folder}/list.txt"):
        manager.faults.append("the export that the settings name was not written")

    manager.write(f"datafile={first}", "live-stat=no", "log=info")
    manager.process.send_signal(signal.SIGHUP)
    manager.wait("reload", manager.told, "^RELOADING=1")
    manager.wait("the order of reloads", manager.told, r"^MONOTONIC_USEC=\d+")
    manager.wait("end of the reload", manager.told, "^READY=1")
    manager.wait("Live Stat goes off", manager.told, "^STATUS=Live Stat is off")
    if any("Loaded from data file" in line for line in manager.journal):
        manager.faults.append("the datafile was read again although it is the same")

    manager.write(f"datafile={first}", "run-sec=soon")
    manager.process.send_signal(signal.SIGHUP)
    manager.wait("wrong settings", manager.journal, r'^<3>.*site.conf line 2, key run-sec: "soon" is not a number')
    manager.write(f"datafile={manager.folder}/nowhere/floor.mv")
    manager.process.send_signal(signal.SIGHUP)
    manager.wait("a datafile that is not there", manager.journal, r"^<4>mirovanectl: .* the station stays with .*first.mv")

    manager.write(f"datafile={second}", "live-stat=yes", "run-sec=1")
    manager.process.send_signal(signal.SIGHUP)
    manager.wait("another datafile", manager.told, r"^STATUS=Live Stat runs.*2 devices.*second.mv")
    for i in range(30):  # in the middle of whatever it does
        manager.process.send_signal(signal.SIGHUP)
        manager.pump(0.01)
    manager.end("SIGTERM after 30 reloads")
    if "STOPPING=1" not in manager.told or manager.process.returncode != 0:
        manager.faults.append("it did not end as it should")
    for path in (first, second):
        if json.loads(manager.ctl("check", path, "--json"))["oddities"]:
            manager.faults.append(f"{path} is damaged")


def stuck_loop(manager):
    manager.start()
    manager.wait("start", manager.told, "^READY=1")
    manager.process.send_signal(signal.SIGSTOP)
    while manager.socket in select.select([manager.socket], [], [], 0)[0]:
        manager.pump(0)  # what was under way
    told = len(manager.told)
    manager.pump(WATCHDOG_SECONDS * 1.2)
    if len(manager.told) != told:
        manager.faults.append("a stuck loop gives signs of life")
    manager.process.send_signal(signal.SIGCONT)
    manager.socket.close()
    os.unlink(manager.address)
    manager.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)  # nobody is told any more
    manager.wait("work without a manager", manager.journal, "Live Stat Priority")
    manager.process.send_signal(signal.SIGHUP)
    manager.wait("reload without a manager", manager.journal, "Settings read again")
    manager.end("SIGTERM without a manager")


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as folder:
        manager = Manager(sys.argv[1], folder)
        reloads(manager, manager.datafile("first.mv", "laser-1"), manager.datafile("second.mv", "laser-2", "laser-3"))
        stuck_loop(manager)
        for fault in manager.faults:
            print("FAULT:", fault)
        sys.exit(1 if manager.faults else 0)


main()
