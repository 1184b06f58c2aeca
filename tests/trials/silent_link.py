#!/usr/bin/env python3
"""A sweep of a link on which almost nobody lives, in network namespaces of its own.

    tests/trials/silent_link.py build/dev/bin [--prefix 20]

Asks every address of 10.200.0.0/PREFIX through a pair of virtual cards. 200 hosts live at its end, the others are
silent. Meanwhile another program sends each living host one datagram. Fails when an address was not asked, a living host
not found, a datagram lost, or the sweep took more than 5 % of a core. Needs root and iproute2. A /16 takes 9 minutes.
"""

import argparse
import ipaddress
import json
import os
import random
import select
import signal
import socket
import subprocess
import sys
import tempfile
import time

LIVING = 200
PORT = 9999


def run(*words, **options):
    subprocess.run(words, check=True, **options)


def far_side():
    """What happens behind the cable: notes who is asked for and which datagrams arrive."""
    link = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(0x0806))
    link.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 8 << 20)
    link.bind(("far", 0x0806))
    mail = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    mail.bind(("", PORT))
    asked, letters = set(), set()
    ended = []
    signal.signal(signal.SIGTERM, lambda *_: ended.append(True))
    print("ready", flush=True)
    while not ended:
        for readable in select.select([link, mail], [], [], 0.2)[0]:
            packet = readable.recv(2048)
            if readable is mail:
                letters.add(packet.decode())
            elif packet[20:22] == b"\0\1":
                asked.add(socket.inet_ntoa(packet[38:42]))
    print(json.dumps({"asked": sorted(asked), "letters": sorted(letters)}), flush=True)


def make_network(network):
    """Two cards and the far side's process; its namespace goes with it."""
    far = subprocess.Popen(["unshare", "-n", "sleep", "infinity"])
    time.sleep(0.3)
    run("ip", "link", "add", "near", "type", "veth", "peer", "name", "far", "netns", str(far.pid))
    run("ip", "link", "set", "lo", "up")
    run("ip", "addr", "add", f"{network[-2]}/{network.prefixlen}", "dev", "near")
    run("ip", "link", "set", "near", "up")
    hosts = random.sample(list(network.hosts())[:-2], LIVING)
    lines = "".join(f"addr add {host}/{network.prefixlen} dev far\n" for host in hosts) + "link set far up\n"
    run("nsenter", "-t", str(far.pid), "-n", "ip", "-batch", "-", input=lines.encode())
    return far, [str(host) for host in hosts]


def sweep(bin_folder, folder, network, hosts):
    """Runs the sweep and, beside it, the other program. Seconds, CPU seconds, what it printed, failed sends."""
    datafile = os.path.join(folder, "floor.mv")
    ctl = [os.path.join(bin_folder, "mirovanectl"), "--config", folder]
    run(*ctl, "new", datafile)
    run(*ctl, "ranges", datafile, "--add", str(network[1]), str(network[-3]), stdout=subprocess.DEVNULL)
    output = open(os.path.join(folder, "out"), "w+")
    begun = time.monotonic()
    sweeping = subprocess.Popen([*ctl, "sweep", datafile, "--rate", "10000"], stdout=output)
    mail = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    refused = 0
    pause = max(0.02, network.num_addresses / 133 / LIVING * 0.9)
    for host in random.sample(hosts, len(hosts)):
        try:
            mail.sendto(host.encode(), (host, PORT))
        except OSError:
            refused += 1
        time.sleep(pause)
    _, status, usage = os.wait4(sweeping.pid, 0)
    took = time.monotonic() - begun
    output.seek(0)
    return took, usage.ru_utime + usage.ru_stime, output.read(), status, refused


def trial(bin_folder, prefix):
    network = ipaddress.ip_network(f"10.200.0.0/{prefix}")
    far, hosts = make_network(network)
    watcher = subprocess.Popen(
        ["nsenter", "-t", str(far.pid), "-n", sys.executable, os.path.abspath(__file__), "--far-side", "."],
        stdout=subprocess.PIPE, text=True)
    try:
        watcher.stdout.readline()
        with tempfile.TemporaryDirectory() as folder:
            took, cpu, printed, status, refused = sweep(bin_folder, folder, network, hosts)
        time.sleep(1)
        watcher.send_signal(signal.SIGTERM)
        seen = json.loads(watcher.stdout.readline())
    finally:
        watcher.kill()
        far.kill()
    wanted = {str(host) for host in list(network.hosts())[:-2]}
    missed = wanted - set(seen["asked"])
    unfound = [host for host in hosts if host not in printed]
    lost = set(hosts) - set(seen["letters"])
    print(f"{len(wanted)} addresses in {took:.0f} s, {cpu:.2f} s of CPU = {100 * cpu / took:.1f} % of a core")
    print(f"not asked: {len(missed)}, living and not found: {len(unfound)} of {LIVING}, "
          f"datagrams lost: {len(lost)} of {LIVING} ({refused} refused)")
    return 0 if status == 0 and not missed and not unfound and not lost and cpu / took < 0.05 else 1


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("bin_folder")
    parser.add_argument("--prefix", type=int, default=20)
    parser.add_argument("--far-side", action="store_true")
    arguments = parser.parse_args()
    if arguments.far_side:
        return far_side()
    if os.environ.get("OWN_NETWORK") != "1":
        os.environ["OWN_NETWORK"] = "1"
        os.execvp("unshare", ["unshare", "-n", sys.executable, *sys.argv])
    return trial(arguments.bin_folder, arguments.prefix)


if __name__ == "__main__":
    sys.exit(main())
