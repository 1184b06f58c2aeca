#!/usr/bin/env python3
"""Properties is open on a screen while a colleague changes, and then deletes, the same device.

The real program runs on an X server of its own and is driven by keys; mirovanectl is the colleague, as a
second process on the same datafile. What was typed must be stored, what the colleague changed elsewhere must
stay his, and a device that he deleted must stay deleted, whatever is typed and pressed after that.

usage: properties_reload.py BIN_FOLDER [--shots FOLDER]
"""

import argparse
import json
import os
import subprocess
import sys
import tempfile
import time

# The window looks at the datafile every three to seven seconds.
LOOKS_AGAIN = 9
PATIENCE = 30


class Screen:
    """An X server with a window manager, and the keys of its user."""

    def __init__(self, folder):
        self.server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-screen", "0", "1280x900x24"],
                                       stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.env = dict(os.environ, DISPLAY=":" + self.server.stdout.readline().decode().strip(),
                        QT_QPA_PLATFORM="xcb", HOME=folder)
        ready = os.path.join(folder, "manager-is-ready")
        self.manager = subprocess.Popen(["openbox", "--startup", f"touch {ready}"], env=self.env,
                                        stderr=subprocess.DEVNULL)
        until(lambda: os.path.exists(ready), "a window manager")

    def tool(self, *words):
        try:
            done = subprocess.run(words, env=self.env, capture_output=True, text=True, timeout=5)
            return done.stdout.strip()
        except subprocess.TimeoutExpired:
            return ""  # a search among windows that come and go may hang; it is asked again

    def active(self):
        return self.tool("xdotool", "getactivewindow", "getwindowname")

    def key(self, *names):
        self.tool("xdotool", "key", "--delay", "80", *names)

    def close(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait(10)


def until(holds, what):
    end = time.monotonic() + PATIENCE
    while not holds():
        if time.monotonic() > end:
            sys.exit(f"waited {PATIENCE} s for {what}")
        time.sleep(0.1)


class Trial:
    def __init__(self, options, folder):
        self.bin, self.shots = options.bin, options.shots
        self.config = os.path.join(folder, "config")
        self.file = os.path.join(folder, "floor.mv")
        self.faults = []
        os.mkdir(self.config)
        with open(os.path.join(self.config, "mirovane.ini"), "w", encoding="ascii") as settings:
            settings.write("[Settings]\nLSAutoStart=0\nLSAutoPerform=0\n")  # nothing goes to the network
        self.screen = Screen(folder)

    def ctl(self, *words):
        done = subprocess.run([os.path.join(self.bin, "mirovanectl"), "--config", self.config + "-ctl", *words],
                              capture_output=True, text=True)
        if done.returncode != 0:
            self.faults.append(f"mirovanectl {' '.join(words)}: {done.stderr.strip()}")
        return done.stdout

    def device(self, rec_id):
        records = json.loads(self.ctl("records", self.file, "--json"))
        return next((each for each in records if each["RecID"] == rec_id and each["Type"] > 0), None)

    def start(self, name):
        """The first start opens the window, each later one selects a device in it."""
        return subprocess.Popen([os.path.join(self.bin, "mirovane"), "--config", self.config, "--find", name, self.file],
                                env=self.screen.env)

    def open_properties(self):
        until(lambda: self.screen.active() == "floor.mv - Mirovane", "the main window")
        self.screen.key("alt+Return")
        until(lambda: self.screen.active() == "Properties", "Properties")

    def type(self, text):
        self.screen.tool("xdotool", "type", "--delay", "50", text)

    def shot(self, name):
        if self.shots:
            self.screen.tool("import", "-window", "root", os.path.join(self.shots, name + ".png"))

    def expect(self, what, found, wanted):
        print(f"{what}: {found}")
        if found != wanted:
            self.faults.append(f"{what}: {found} instead of {wanted}")

    def run(self):
        self.ctl("new", self.file)
        for name in ("pc-1", "pc-2"):
            self.ctl("add", self.file, "--type", "Computer", f"Name={name}", "Position=100,100")
        program = self.start("pc-1")
        self.edited_meanwhile()
        self.deleted_meanwhile()
        program.terminate()
        program.wait(PATIENCE)
        self.screen.close()

    def edited_meanwhile(self):
        self.open_properties()
        self.type("mine")
        self.ctl("set", self.file, "1", "Name=theirs", "Username=bob", "Comment=moved")
        time.sleep(LOOKS_AGAIN)
        self.shot("properties-changed-meanwhile")
        self.screen.key("Return")
        until(lambda: self.screen.active() == "floor.mv - Mirovane", "the main window")
        stored = self.device(1)
        self.expect("both edited", [stored[field] for field in ("Name", "Username", "Comment")],
                    ["mine", "bob", "moved"])

    def deleted_meanwhile(self):
        if self.start("pc-2").wait(PATIENCE) != 0:
            self.faults.append("the window that is open did not take the device")
        self.open_properties()
        self.type("ghost")
        self.ctl("delete", self.file, "2")
        time.sleep(LOOKS_AGAIN)
        self.shot("properties-deleted-meanwhile")
        self.screen.key("Return")
        self.expect("Enter after the device was deleted", self.screen.active(), "Properties")
        self.screen.key("Escape")
        until(lambda: self.screen.active() == "floor.mv - Mirovane", "the main window")
        self.screen.key("ctrl+s")
        time.sleep(1)
        self.expect("the deleted device", self.device(2), None)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("bin")
    parser.add_argument("--shots", help="keep screenshots here")
    options = parser.parse_args()
    options.bin = os.path.abspath(options.bin)
    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as folder:
        trial = Trial(options, folder)
        trial.run()
        for fault in trial.faults:
            print("FAULT:", fault)
        sys.exit(1 if trial.faults else 0)


main()
