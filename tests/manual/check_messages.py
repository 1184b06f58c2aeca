#!/usr/bin/env python3
"""Compares docs/manual/messages.md with the sources: every line that the program logs is explained there, and every message
that is explained there is one of the program's.

usage: check_messages.py
"""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parent.parent.parent
literal = re.compile(r'"((?:[^"\\\n]|\\.)*)"')
shortest = 5  # letters; what is shorter proves nothing


def plain(text):
    """A C++ literal, or a cell of the page, as people see it."""
    return text.replace('\\"', '"').replace("\\n", " ").replace("\\#", "#").replace("  ", " ")


def source_texts():
    for path in sorted((root / "src").rglob("*.cpp")):
        text = re.sub(r"^\s*//.*$", "", path.read_text(), flags=re.M)
        yield path.relative_to(root), re.sub(r'"\s*\n\s*"', "", text)


def logged(text):
    """The literals of each call of LogMessage, up to its end."""
    for call in re.finditer(r"\bLogMessage\(([^;]*);", text):
        yield from (plain(words) for words in literal.findall(call.group(1)))


def cells(page):
    for line in page.splitlines():
        if line.startswith("| ") and not line.startswith("|--"):
            yield line.split(" | ")[0].strip("| ")


def pieces(cell):
    return [piece.strip(' ",.:;()') for piece in re.split(r"…|, (?=[A-Z…])|\. (?=[A-Z])", cell)]


def main():
    page = plain((root / "docs" / "manual" / "messages.md").read_text())
    sources = dict(source_texts())
    spoken = "\n".join(plain(words) for text in sources.values() for words in literal.findall(text))
    faults = [f"{path}: \"{words}\" is not explained"
              for path, text in sources.items() for words in logged(text)
              if len(words.strip()) > shortest and words.strip(" .(),;:") not in page]
    headings = {"message", "cannot"}
    causes = {"send pings", "look up names", "send SNMP queries", "read files"}
    faults += [f"messages.md: \"{piece}\" is not a message of the program"
               for cell in cells(page) if cell not in headings for piece in pieces(cell)
               if len(piece) > shortest and piece not in causes and piece not in spoken]
    for fault in faults:
        print(fault)
    print(f"{len(list(cells(page)))} messages, {len(faults)} faults")
    sys.exit(1 if faults else 0)


main()
