"""Writes the man page of a program: its options by help2man from what --help prints, the rest from an include file.

What CLI11 prints is brought into the form that help2man knows first: "-o,--output FILE" becomes "-o, --output=FILE", what an
option needs or excludes becomes a sentence, and the line "Exit status: 0 ..., 1 ..." becomes a section."""

import argparse
import os
import re
import subprocess
import sys
import tempfile


def reshape(text):
    """The help text in help2man's form, and its exit statuses as pairs of number and meaning."""
    lines, statuses = [], []
    for line in text.splitlines():
        if line.startswith("Exit status:"):
            statuses = re.findall(r"(\d+) ([^,.]*(?:,(?! \d)[^,.]*)*)", line)
            continue
        if line == "Positionals:":
            line = "Arguments:"
        lines.append(option_line(line))
    return "\n".join(lines) + "\n", statuses


def option_line(line):
    match = re.match(r"  (\S+)(.*)", line)
    if not match or line.startswith("   ") or not match[1].startswith("-"):
        return line
    names = re.sub(r"\{.*?\}", "", match[1]).replace(",--", ", --")
    rest = match[2]
    # The column of descriptions is kept apart by two blanks at least; a long option has its own on the next line.
    form, gap, description = re.match(r"(.*?)(\s{2,}|$)(.*)", rest).groups()
    form = form.strip()
    notes = ""
    for word, sentence in (("Excludes", "Not with {}."), ("Needs", "Needs {}.")):
        found = re.search(word + r":((?: --?[\w-]+)+)", form)
        if found:
            notes += " " + sentence.format(" and ".join(found[1].split()))
            form = form.replace(found[0], "").strip()
    if form:
        names += "=" + form
    if notes and description:
        description = description.rstrip(".") + "." + notes
    elif notes:
        # The description follows on a line of its own; the notes come ahead of it.
        return f"  {names}\n{' ' * 34}{notes.strip()}"
    return f"  {names}{gap or ''}{description}"


def printed(program, option):
    result = subprocess.run([program, option], stdout=subprocess.PIPE, text=True, check=False)
    if result.returncode != 0:
        sys.exit(f"{program} {option} ends with {result.returncode}")
    return result.stdout


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--help2man", required=True)
    parser.add_argument("--program", required=True)
    parser.add_argument("--include", required=True)
    parser.add_argument("--output", required=True)
    arguments = parser.parse_args()

    text, statuses = reshape(printed(arguments.program, "--help"))
    if not statuses:
        sys.exit("--help tells no exit statuses")
    name = os.path.basename(arguments.program)
    with tempfile.TemporaryDirectory() as folder:
        # help2man asks a program: this one says what was reshaped.
        stand_in = os.path.join(folder, name)
        for option, content in (("--help", text), ("--version", printed(arguments.program, "--version"))):
            with open(stand_in + option, "w", encoding="utf-8") as file:
                file.write(content)
        with open(stand_in, "w", encoding="utf-8") as file:
            file.write('#!/bin/sh\nexec cat "$0$1"\n')
        os.chmod(stand_in, 0o755)
        include = stand_in + ".h2m"
        with open(arguments.include, encoding="utf-8") as file:
            content = file.read()
        content += "\n[EXIT STATUS]\n" + "".join(f".TP\n.B {number}\n{meaning}\n" for number, meaning in statuses)
        with open(include, "w", encoding="utf-8") as file:
            file.write(content)
        result = subprocess.run([arguments.help2man, "--no-info", "--locale=C.UTF-8", "--include=" + include, stand_in],
                                stdout=subprocess.PIPE, text=True, check=False)
        if result.returncode != 0:
            sys.exit(result.returncode)
    with open(arguments.output, "w", encoding="utf-8") as file:
        file.write(result.stdout)


if __name__ == "__main__":
    main()
