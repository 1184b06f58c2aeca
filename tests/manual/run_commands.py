#!/usr/bin/env python3
"""Runs the commands of the manual's pages, so that none of them is wrong.

usage: run_commands.py BIN [PAGE]...     BIN: the folder of the built programs

Each page has a folder of its own with a copy of the demo site. The commands run in a network namespace that has nothing
but its loopback device, an SNMP agent and a file of host names: what they ask goes nowhere else.

    ```sh       commands: each must end with status 0
    ```console  commands behind "$ " and what they print; "..." stands for anything, in a line or for lines
    ```bash     commands that need a desktop, root or a network: only their grammar is checked

Exit status 77, "skipped", where no network namespace can be made.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

here = pathlib.Path(__file__).resolve().parent
root = here.parent.parent
fence = re.compile(r"^```(sh|console|bash)\n(.*?)^```$", re.M | re.S)
inside = "MIROVANE_MANUAL_NAMESPACE"


def enter_namespace():
    """This program again, in a namespace of its own; comes back only within it."""
    if os.environ.get(inside):
        return
    for options in (["-nm"], ["-rnm"]):
        unshare = ["unshare", *options]
        if subprocess.run([*unshare, "true"], capture_output=True).returncode == 0:
            os.environ[inside] = "1"
            os.execvp("unshare", [*unshare, sys.executable, __file__, *sys.argv[1:]])
    print("SKIPPED: no network namespace can be made here")
    sys.exit(77)


def start_agent(folder):
    subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
    hosts = folder / "hosts"
    hosts.write_text("127.0.0.1 localhost\n127.0.0.42 pc-1\n")
    nowhere = folder / "resolv.conf"
    nowhere.write_text("nameserver 127.0.0.1\noptions timeout:1 attempts:1\n")
    for own, system in ((hosts, "/etc/hosts"), (nowhere, "/etc/resolv.conf")):
        subprocess.run(["mount", "--bind", own, os.path.realpath(system)], check=True)
    agent = subprocess.Popen(
        ["snmpd", "-f", "-Lo", "-C", "-c", here / "snmpd.conf", "-p", folder / "snmpd.pid"],
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        env={**os.environ, "PATH": os.environ["PATH"] + ":/usr/sbin:/sbin", "SNMP_PERSISTENT_DIR": str(folder)})
    for _ in range(50):
        if subprocess.run(["mirovanectl", "snmpget", "127.0.0.40", "public", "1.3.6.1.2.1.1.5.0"],
                          capture_output=True).returncode == 0:
            return agent
        time.sleep(0.1)
    agent.terminate()
    sys.exit("the SNMP agent does not answer")


def bash(commands, folder, *options):
    return subprocess.run(["bash", "-euo", "pipefail", *options, "-c", commands], cwd=folder, text=True, timeout=60,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)


def fits(awaited, printed):
    pattern = "".join(
        r"(?:.*\n)*?" if line == "..." else re.escape(line).replace(re.escape("..."), ".*") + r"[ ]*\n"
        for line in awaited)
    return re.fullmatch(pattern, printed) is not None


def console_faults(text, folder):
    for part in re.split(r"^\$ ", text, flags=re.M)[1:]:
        lines = part.splitlines()
        done = bash(lines[0], folder)
        if not fits(lines[1:], done.stdout):
            yield f"$ {lines[0]}\nprinted:\n{done.stdout}instead of:\n" + "\n".join(lines[1:])


def faults(kind, text, folder):
    if kind == "console":
        yield from console_faults(text, folder)
        return
    done = bash(text, folder, *(["-n"] if kind == "bash" else ["-v"]))
    if done.returncode != 0:
        yield f"{text}ended with {done.returncode}:\n{done.stdout}"


def check_page(page, folder):
    for name in ("office.mv", "office.bmp"):
        shutil.copy(root / "demo" / name, folder / name)
        (folder / name).chmod(0o644)
    os.environ.update(HOME=str(folder / "home"), XDG_RUNTIME_DIR=str(folder))
    (folder / "home").mkdir()
    found = [fault for kind, text in fence.findall(page.read_text()) for fault in faults(kind, text, folder)]
    for fault in found:
        print(f"== {page.name}: {fault}\n")
    return found


def main():
    enter_namespace()
    os.environ["PATH"] = os.path.abspath(sys.argv[1]) + ":" + os.environ["PATH"]
    os.environ.update(LC_ALL="C.UTF-8", QT_QPA_PLATFORM="offscreen")
    for name in ("XDG_CONFIG_HOME", "XDG_STATE_HOME"):
        os.environ.pop(name, None)
    pages = [pathlib.Path(name) for name in sys.argv[2:]] or sorted((root / "docs" / "manual").glob("*.md"))
    blocks = sum(len(fence.findall(page.read_text())) for page in pages)
    with tempfile.TemporaryDirectory() as scratch:
        agent = start_agent(pathlib.Path(scratch))
        try:
            found = []
            for page in pages:
                folder = pathlib.Path(scratch) / page.stem
                folder.mkdir()
                found += check_page(page, folder)
        finally:
            agent.terminate()
            agent.wait()
    print(f"{len(pages)} pages, {blocks} blocks of commands, {len(found)} faults")
    sys.exit(1 if found or not blocks else 0)


main()
