#!/usr/bin/env python3
"""A user's day with the real window, on a screen and with a window manager of its own.

Opens a copy of the demo site, finds a device by part of its user's name, sets a reminder that comes due,
adds a device, drags one from the Discovered/Misc window onto the floor, takes that back and makes it again,
prints into a PDF file, exports, and quits. Then the datafile, the export, the pages and some pixels must be
what the user was shown. All by keys and mouse; nothing of the program is reached in another way.

usage: desktop.py BIN_FOLDER [--shots DIR]     pictures of the screen on the way go to DIR
Needs Xvfb, openbox, xdotool and ImageMagick's import. Without them it says so and exits with 77.
"""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
import time

SKIPPED = 77
WIDTH, HEIGHT = 1400, 900
SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
MAIN = r"^(office\.mv - Mirovane|Reminder Due:[0-9]+)$"
MISC = r"^Discovered/Misc Device - Mirovane$"
USER_PART = "petro"
SECOND_ICON = (100, 42)  # in the Discovered/Misc window: below its menu, in the second cell of 80 pixels
DROP = (420, 590)  # on the map: a corridor without devices
SELECTED = bytes((0, 0, 255))  # around the icon of a selected device


class Screen:
    """An X server with a window manager, keys and a mouse."""

    def __init__(self, folder, shots):
        self.folder, self.shots = folder, shots
        self.environment = dict(os.environ, XDG_RUNTIME_DIR=folder, HOME=folder, LC_ALL="C.UTF-8")
        self.environment.pop("WAYLAND_DISPLAY", None)
        self.environment["QT_QPA_PLATFORM"] = "xcb"
        self.environment["CUPS_SERVER"] = "127.0.0.1:1"  # nobody's printer: what is left is a PDF file
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", f"{WIDTH}x{HEIGHT}x24"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.environment["DISPLAY"] = ":" + self.server.stdout.readline().strip()
        ready = os.path.join(folder, "manager-is-ready")
        self.manager = subprocess.Popen(["openbox", "--startup", "touch " + ready], env=self.environment,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: os.path.exists(ready), "the window manager is ready")

    def close(self):
        for process in (self.manager, self.server):
            process.terminate()
            process.wait()

    def tool(self, *words):
        done = subprocess.run(["xdotool", *map(str, words)], env=self.environment, capture_output=True,
                              text=True)
        return done.stdout.split()

    def windows(self, title):
        return self.tool("search", "--onlyvisible", "--name", title)

    def active(self, title):
        """The window with this title has the keyboard."""
        return set(self.tool("getactivewindow")) & set(self.windows(title))

    def activate(self, title):
        def try_it():
            for window in self.windows(title):
                self.tool("windowactivate", window)
            return self.active(title)
        wait_until(try_it, f"{title} is active")

    def wait_for(self, title):
        wait_until(lambda: self.active(title), f"{title} comes up")

    def wait_until_gone(self, title):
        wait_until(lambda: not self.windows(title), f"{title} goes away")

    def keys(self, *keys):
        self.tool("key", "--delay", "80", *keys)

    def type(self, text):
        self.tool("type", "--delay", "40", text)

    def drag(self, title, start, end):
        """From a point of a window to one of the screen."""
        self.tool("mousemove", "--window", self.windows(title)[-1], *start, "mousedown", "1")
        place = dict(word.split(":") for word in self.tool("getmouselocation"))
        start = int(place["x"]), int(place["y"])
        for step in range(1, 13):
            self.tool("mousemove", *(a + (b - a) * step // 12 for a, b in zip(start, end)))
            time.sleep(0.04)  # a drag that is faster than any hand is taken for a click
        self.tool("mouseup", "1")

    def picture(self, name=None):
        if name and self.shots:
            subprocess.run(["import", "-window", "root", os.path.join(self.shots, name + ".png")],
                           env=self.environment, check=True)
        return subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], env=self.environment,
                              capture_output=True, check=True).stdout

    def selected_pixels(self):
        picture = self.picture()
        return sum(picture[place:place + 3] == SELECTED for place in range(0, len(picture), 3))


def wait_until(condition, what, seconds=20):
    end = time.monotonic() + seconds
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError(f"{what}: not within {seconds} s")
        time.sleep(0.1)


class Day:
    def __init__(self, bin_folder, folder, screen):
        self.bin, self.folder, self.screen = bin_folder, folder, screen
        self.config = os.path.join(folder, "config")
        self.file = os.path.join(folder, "office.mv")
        os.mkdir(self.config)
        with open(os.path.join(self.config, "mirovane.ini"), "w") as settings:
            settings.write("[Settings]\nLSAutoStart=0\nLSAutoPerform=0\n")  # what is On or Off stays
        for name in ("office.mv", "office.bmp"):
            shutil.copy(os.path.join(SOURCE, "demo", name), folder)
        os.chmod(self.file, 0o600)
        self.before = self.devices()
        self.program = subprocess.Popen(
            [os.path.join(bin_folder, "mirovane"), "--config", self.config, self.file],
            env=screen.environment)

    def ctl(self, *words):
        done = subprocess.run([os.path.join(self.bin, "mirovanectl"), "--config", self.config, *words],
                              capture_output=True, text=True, check=True)
        return done.stdout

    def devices(self):
        records = json.loads(self.ctl("records", self.file, "--json"))
        return {record["RecID"]: record for record in records if record["Type"] > 0}

    def wait_for_devices(self, condition, what):
        return wait_until(lambda: condition(self.devices()), what)

    def changed(self, devices):
        return {number for number, device in devices.items()
                if {**device, "Modified": 0} != {**self.before.get(number, {}), "Modified": 0}}

    # ---- the day

    def opens(self):
        self.screen.wait_for(MAIN)
        self.map_corner = wait_until(self.find_map, "the floor map is on the screen")

    def find_map(self):
        """Where the map's corner is: the room name in its title is drawn once, and no device is on it."""
        left, top, width, height = 40, 20, 120, 30
        part = f"{width}x{height}+{left}+{top}"
        crop = subprocess.run(
            ["convert", os.path.join(self.folder, "office.bmp"), "-crop", part, "-depth", "8", "rgb:-"],
            capture_output=True, check=True).stdout
        rows = [crop[3 * width * row:3 * width * (row + 1)] for row in range(height)]
        inked = next(row for row in range(height) if len(set(rows[row])) > 20)
        place = self.screen.picture().find(rows[inked])
        if place < 0:
            return None
        x, y = place // 3 % WIDTH, place // 3 // WIDTH
        return x - left, y - top - inked

    def finds(self):
        before = self.screen.selected_pixels()
        empty = self.screen.picture()
        self.screen.keys("ctrl+k")
        wait_until(lambda: self.screen.picture() != empty, "the quick find opens")
        self.screen.type(USER_PART)
        self.screen.picture("quick-find")
        self.screen.keys("Return")
        self.found, = [number for number, device in self.before.items() if USER_PART in device["Username"]]
        wait_until(lambda: self.screen.selected_pixels() > before + 200, "what was found is selected")

    def sets_a_reminder(self):
        self.screen.wait_for(MAIN)
        self.screen.keys("alt+Return")
        self.screen.wait_for("^Properties$")
        self.screen.keys("alt+r")
        self.screen.picture("properties")
        self.screen.keys("Return")
        self.screen.wait_until_gone("^Properties$")
        self.wait_for_devices(lambda devices: devices[self.found]["ReminderOn"] == 1, "the reminder is saved")
        wait_until(lambda: self.screen.windows("^Reminder Due:2$"), "the title tells of two due reminders")
        self.screen.picture("due")

    def adds(self):
        self.screen.activate(MAIN)
        self.screen.keys("alt+t", "c")
        devices = self.wait_for_devices(
            lambda now: len(now) == len(self.before) + 1 and now, "the new computer is saved")
        self.added, = set(devices) - set(self.before)
        assert devices[self.added]["Type"] == 2, devices[self.added]

    def drags(self):
        self.screen.activate(MAIN)
        self.screen.keys("ctrl+Home", "ctrl+d")
        self.screen.wait_for(MISC)
        self.screen.picture("discovered")
        waiting = [number for number, device in self.before.items() if device["Type"] > 1000]
        self.dragged = waiting[1]
        to = tuple(a + b for a, b in zip(DROP, self.map_corner))
        self.screen.drag(MISC, SECOND_ICON, to)
        self.wait_for_devices(lambda now: now[self.dragged]["Type"] < 1000, "the drop is on the floor")
        place = self.devices()[self.dragged]["Position"]
        assert place == list(DROP), f"dropped at {DROP}, lies at {place}"
        self.screen.keys("Escape")
        self.screen.wait_until_gone(MISC)

    def undoes(self):
        self.screen.activate(MAIN)
        self.screen.keys("ctrl+z")
        self.wait_for_devices(lambda now: now[self.dragged]["Type"] > 1000, "the drop is undone")
        self.screen.keys("ctrl+y")
        self.wait_for_devices(lambda now: now[self.dragged]["Type"] < 1000, "the drop is redone")

    def prints(self):
        self.pages = os.path.join(self.folder, "office.pdf")
        self.screen.activate(MAIN)
        self.screen.keys("ctrl+p")
        self.screen.wait_for("^Print$")
        self.screen.picture("print")
        self.screen.keys("alt+f")
        self.screen.keys("ctrl+a")
        self.screen.type(self.pages)
        self.screen.keys("Return")
        self.screen.wait_until_gone("^Print$")
        wait_until(lambda: os.path.exists(self.pages), "the pages are printed")
        with open(self.pages, "rb") as pages:
            assert pages.read(5) == b"%PDF-"

    def exports(self):
        self.exported = os.path.join(self.folder, "office.txt")
        self.screen.activate(MAIN)
        self.screen.keys("alt+f", "e")
        self.screen.wait_for("^Export$")
        self.screen.keys("alt+f", "ctrl+a")
        self.screen.type(self.exported)
        self.screen.picture("export")
        self.screen.keys("Return")
        self.screen.wait_until_gone("^Export$")
        wait_until(lambda: os.path.exists(self.exported), "the rows are exported")

    def quits(self):
        self.screen.activate(MAIN)
        self.screen.picture("end")
        self.screen.keys("alt+f", "x")
        assert self.program.wait(20) == 0, f"exit status {self.program.returncode}"

    def compare(self):
        after = self.devices()
        assert self.changed(after) == {self.found, self.added, self.dragged}, self.changed(after)
        assert USER_PART in after[self.found]["Username"]
        own_export = os.path.join(self.folder, "again.txt")
        self.ctl("export", self.file, own_export)
        with open(self.exported, "rb") as shown, open(own_export, "rb") as again:
            rows = shown.read()
            assert rows == again.read(), "the window and mirovanectl export different rows"
        assert rows.count(b"\r\n") == len(after), "a row for each device"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("bin")
    parser.add_argument("--shots")
    options = parser.parse_args()
    for tool in ("Xvfb", "openbox", "xdotool", "import", "convert"):
        if not shutil.which(tool):
            print(f"SKIPPED: {tool} is not installed")
            return SKIPPED
    if options.shots:
        os.makedirs(options.shots, exist_ok=True)
    with tempfile.TemporaryDirectory() as folder:
        screen = Screen(folder, options.shots)
        day = None
        try:
            day = Day(os.path.abspath(options.bin), folder, screen)
            for step in (day.opens, day.finds, day.sets_a_reminder, day.adds, day.drags, day.undoes,
                         day.prints, day.exports, day.quits, day.compare):
                started = time.monotonic()
                step()
                print(f"{step.__name__}: done ({time.monotonic() - started:.1f} s)", flush=True)
        except AssertionError as fault:
            screen.picture("fault")
            print(f"FAILED in {step.__name__ if day else 'start'}: {fault}")
            return 1
        finally:
            if day and day.program.poll() is None:
                day.program.kill()
                day.program.wait()
            screen.close()
    print("the day went as it should")
    return 0


if __name__ == "__main__":
    sys.exit(main())
