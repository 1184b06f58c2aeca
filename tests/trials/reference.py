#!/usr/bin/env python3
"""Manual pages and completions, as readers and shells take them.

The pages are formatted without a complaint (man, and mandoc where it is installed) and name every option of every
command. A real bash, and a real zsh where it is installed, complete each command, its options and their values.

usage: reference.py BIN_FOLDER BUILD_FOLDER
"""

import os
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time

PAGES = ["mirovane.1", "mirovanectl.1", "mirovane.mv.5"]
faults = []


def expect(what, true):
    if not true:
        faults.append(what)


def help_of(ctl):
    """Command: its options, as --help has them."""
    def run(*words):
        return subprocess.run([ctl, *words, "--help"], capture_output=True, text=True).stdout
    commands = re.findall(r"^  ([a-z]+) {2,}\S", run(), re.M)
    return {command: re.findall(r"^  (-[a-z-]+)", run(command), re.M) for command in commands}


def pages(folder, commands):
    for page in PAGES:
        path = os.path.join(folder, "man", page)
        done = subprocess.run(["man", "--warnings=w", "-l", path], capture_output=True, text=True,
                              env=dict(os.environ, MANWIDTH="100", LC_ALL="C.UTF-8"))
        expect(f"man {page}: {done.stderr.strip()}", done.returncode == 0 and not done.stderr)
        if shutil.which("mandoc"):
            lint = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", path], capture_output=True, text=True)
            expect(f"mandoc {page}: {lint.stdout.strip()}", not lint.stdout)
        if page == "mirovanectl.1":
            parts = re.split(r"^   ([a-z]+)$", done.stdout, flags=re.M)
            described = dict(zip(parts[1::2], parts[2::2]))
            for command, options in commands.items():
                for option in options:
                    if option not in ("--config", "--help"):
                        expect(f"mirovanectl.1: {command} {option} is missing",
                               re.search(r"^ +" + option + r"\b", described.get(command, ""), re.M))


def bash(folder, commands, work):
    script = os.path.join(folder, "completion", "bash", "mirovanectl")

    def completed(*words):
        quoted = " ".join("'" + word + "'" for word in words)
        ask = (f". {script}; compopt() {{ :; }}; cd {work}; COMP_WORDS=({quoted}); COMP_CWORD={len(words) - 1}; "
               f"_${{COMP_WORDS[0]}}; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        done = subprocess.run(["bash", "-c", ask], capture_output=True, text=True)
        expect(f"bash {words}: {done.stderr}", not done.stderr)
        return sorted(word for word in done.stdout.splitlines() if word)

    expect("bash: commands", completed("mirovanectl", "") == sorted([*commands, "--config", "--help", "--version"]))
    for command, options in commands.items():
        expect(f"bash: options of {command}", completed("mirovanectl", command, "-") == sorted(options))
    expect("bash: types", completed("mirovanectl", "list", "--type", "L") == ["Laptop", "Location Marker"])
    expect("bash: --type=", completed("mirovanectl", "list", "--type", "=", "Pr") == ["Printer"])
    expect("bash: datafiles", completed("mirovanectl", "check", "") == ["floor.mv", "folder"])
    expect("bash: other files behind", completed("mirovanectl", "import", "floor.mv", "no") == ["notes.txt"])
    expect("bash: settings", completed("mirovanectl", "station", "--settings", "s") == ["site.conf"])
    expect("bash: the window", "--render" in completed("mirovane", "--re"))


def zsh(folder, commands, work):
    if not shutil.which("zsh"):
        print("zsh is not installed and was not tried")
        return
    child, terminal = pty.fork()
    if child == 0:
        os.chdir(work)
        os.execvpe("zsh", ["zsh", "-f", "-i"], dict(os.environ, TERM="dumb", HOME=work, LC_ALL="C.UTF-8", COLUMNS="200"))

    def read_until(text, seconds=20):
        got, end = "", time.monotonic() + seconds
        while text not in got and time.monotonic() < end:
            if select.select([terminal], [], [], 0.2)[0]:
                got += os.read(terminal, 65536).decode(errors="replace")
        return got

    def send(line):
        os.write(terminal, line.encode())

    functions = os.path.join(folder, "completion", "zsh")
    send(f"stty -echo; PS1=; fpath=({functions} $fpath); autoload -U compinit && compinit -u -D; LISTMAX=10000; "
         "zstyle ':completion:*' list-prompt ''; zmodload zsh/complist; unsetopt prompt_cr; echo rea''dy\n")
    read_until("ready")

    def listed(line, wanted):
        send(line + "\t\t")
        missing = list(wanted)
        got, end = "", time.monotonic() + 20
        while missing and time.monotonic() < end:
            if select.select([terminal], [], [], 0.2)[0]:
                got += os.read(terminal, 65536).decode(errors="replace")
            missing = [word for word in wanted if word not in got]
        expect(f"zsh: {line!r} lists no {missing}: {got[-500:]!r}", not missing)
        send("\x15\n")

    listed("mirovanectl ", commands)
    for command, options in commands.items():
        listed(f"mirovanectl {command} -", options)
    listed("mirovanectl list --type L", ["Laptop", "Location"])
    listed("mirovanectl check ", ["floor.mv"])
    listed("mirovane --re", ["render"])
    os.write(terminal, b"exit\n")
    os.close(terminal)
    os.waitpid(child, 0)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    commands = help_of(os.path.join(sys.argv[1], "mirovanectl"))
    expect("no commands", len(commands) > 20)
    pages(sys.argv[2], commands)
    with tempfile.TemporaryDirectory(prefix="mirovane-trial-") as work:
        os.mkdir(os.path.join(work, "folder"))
        for name in ("floor.mv", "notes.txt", "site.conf"):
            open(os.path.join(work, name), "w").close()
        bash(sys.argv[2], commands, work)
        zsh(sys.argv[2], commands, work)
    print(f"{len(commands)} commands, {sum(map(len, commands.values()))} options")
    for fault in faults:
        print("FAULT:", fault)
    sys.exit(1 if faults else 0)


main()
