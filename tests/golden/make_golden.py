#!/usr/bin/env python3
"""Writes the golden datafiles beside this script: the same few records in each of the four layouts, and what the layouts
before 2008 become when they are written again; and small seeds for the fuzzer. Independent of the program's own writer on
purpose; run it only when a record is added here, and look at the difference."""

import pathlib
import struct

TEXTS_FIRST = ("ToJack", "Name", "IPAddress", "MACAddress", "Username", "Comment")
TEXTS_SECOND = ("SlashText", "BackslashText", "HorzText", "VertText")


def text(value):
    if isinstance(value, str):  # the wide form, as stations of another platform may write it
        units = value.encode("utf-16-le")
        return b"\xff\xfe\xff" + bytes([len(units) // 2]) + units
    if len(value) < 0xFF:
        return bytes([len(value)]) + value
    if len(value) < 0xFFFE:
        return b"\xff" + struct.pack("<H", len(value)) + value
    return b"\xff\xff\xff" + struct.pack("<I", len(value)) + value


def narrow(value):
    return value.encode("utf-8") if isinstance(value, str) else value


def record_bytes(r, version, again=False):
    get = lambda name: r.get(name, 0)
    string = lambda name: text(narrow(r.get(name, b"")) if again else r.get(name, b""))
    order = ("Type", "State") if version < 2004 else ("State", "Type")
    out = struct.pack("<ii", *(get(n) for n in order))
    out += struct.pack("<ii", *r.get("Position", (0, 0)))
    out += b"".join(string(n) for n in TEXTS_FIRST)
    out += struct.pack("<iii", get("RecID"), get("Modified"), get("StampsModified"))
    stamps = list(r.get("RuleStamps", [0] * 12))
    out += struct.pack("<%di" % (11 if version == 2002 else 12), *stamps[: 11 if version == 2002 else 12])
    out += b"".join(string(n) for n in TEXTS_SECOND)
    out += struct.pack("<iiiii", get("SlashDraw"), get("BackslashDraw"), get("VertDraw"), get("HorzDraw"),
                       get("ReminderOn"))
    out += struct.pack("<id", *r.get("ReminderDate", (2, 0.0)))
    out += string("ToDo")
    if version == 2008:
        out += struct.pack("<i", r.get("Priority", 1))
    return out


def file_bytes(records, version, again=False):
    out = struct.pack("<H", len(records))
    for i, r in enumerate(records):
        out += b"\xff\xff\x01\x00\x09\x00CHardware" if i == 0 else b"\x01\x80"
        out += record_bytes(r, version, again)
    return out


def records_of(version):
    first = {"Type": -6, "State": version, "Modified": 1199145600}
    if version < 2004:
        # The number that tells the version is the first of the file, which is the Type in these layouts.
        first = {"Type": version, "State": -6, "Modified": 1199145600}
    device = {
        "Type": 2, "State": 1, "Position": (640, -480), "ToJack": b"A-17", "Name": b"accounts-01",
        "IPAddress": b"127.0.3.17", "MACAddress": b"02:00:5E:10:00:01", "Username": b"M\xfcller",
        "Comment": b"second floor\r\nwindow", "RecID": 7, "Modified": 1200000001, "StampsModified": 1200000002,
        "RuleStamps": list(range(1100000000, 1100000012)), "SlashText": b"slash", "BackslashText": b"backslash",
        "HorzText": b"horizontal", "VertText": b"vertical", "SlashDraw": 1, "BackslashDraw": 2, "VertDraw": 3,
        "HorzDraw": 4, "ReminderOn": 1, "ReminderDate": (0, 39500.75), "ToDo": b"replace the fan", "Priority": 4,
    }
    misc = {"Type": 1009, "RecID": 3, "Name": b"n" * 254, "Comment": b"c" * 255, "ToDo": b"", "Modified": -1,
            "ReminderDate": (1, -2.5), "Priority": 1}
    wide = {"Type": 6, "RecID": 9, "Name": "gr\u00fc\u00dfe \U0001F5A7", "Username": "", "Priority": 2}
    special = [
        {"Type": -1, "Name": b"floor.bmp", "Username": b"photos"},
        {"Type": -2, "State": 1, "Name": b"Browse", "ToJack": b'browser "http://$mvI"'},
        {"Type": -4, "Name": b"127.0.0.1", "IPAddress": b"127.0.0.254"},
        {"Type": -3, "State": 1, "Name": b"HOST-A", "Username": b"admin", "Modified": 1200000003},
        {"Type": -5, "IPAddress": b"127.0.0.9", "Modified": 1200000004},
        {"Type": -120, "State": 2, "Name": b"Search in Text File", "IPAddress": b"/srv/list.txt", "Username": b"\\t",
         "MACAddress": b"$mvN", "Comment": b"On", "ReminderOn": 1},
    ]
    return [first, device, *special, misc, wide]


def main():
    folder = pathlib.Path(__file__).parent
    for version in (2002, 2003, 2004, 2008):
        records = records_of(version)
        (folder / f"floor-{version}.mv").write_bytes(file_bytes(records, version))
        if version < 2008:
            for r in records:
                r["Priority"] = 5
        if version == 2002:
            for r in records:
                r["RuleStamps"] = list(r.get("RuleStamps", [0] * 12))[:11] + [0]
        (folder / f"floor-{version}-again.mv").write_bytes(file_bytes(records, 2008, again=True))


    seeds = folder.parent.parent / "fuzz" / "corpus" / "datafile"
    seeds.mkdir(parents=True, exist_ok=True)
    for version in (2002, 2003, 2004, 2008):
        first, device = records_of(version)[0], {"Type": 1, "RecID": 1, "Name": "w\u00e4nd", "Comment": b"c" * 255}
        (seeds / f"small-{version}.mv").write_bytes(file_bytes([first, device], version))
    (seeds / "long-count.mv").write_bytes(b"\xff\xff" + file_bytes([records_of(2008)[0]], 2008)[:40])


if __name__ == "__main__":
    main()
