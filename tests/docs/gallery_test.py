"""The gallery tells the truth: its excerpts are in the programs, its pictures are what the programs draw, and every class
is there."""

import argparse
import os
import re
import subprocess
import sys
import tempfile
import textwrap

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "install"))
from install_test import read_png  # noqa: E402


def dedented_runs(lines, length):
    for first in range(len(lines) - length + 1):
        yield textwrap.dedent("\n".join(lines[first:first + length]))


def check_text(root):
    with open(os.path.join(root, "docs", "gallery.md"), encoding="utf-8") as file:
        sections = file.read().split("\n## ")[1:]
    named = set()
    for section in sections:
        title, text = section.split("\n", 1)
        named.update(title.split(", "))
        example = re.search(r"\(\.\./examples/([\w-]+)/main\.cpp\)", text)[1]
        with open(os.path.join(root, "examples", example, "main.cpp"), encoding="utf-8") as file:
            lines = file.read().split("\n")
        excerpts = re.findall(r"```cpp\n(.*?)\n```", text, re.S)
        assert excerpts, f"{title}: no code"
        for excerpt in excerpts:
            found = excerpt in dedented_runs(lines, excerpt.count("\n") + 1)
            assert found, f"{title}: not in examples/{example}/main.cpp:\n{excerpt}"
        pictures = re.findall(r"\]\(pictures/([\w-]+\.png)\)", text)
        assert pictures, f"{title}: no picture"
        for picture in pictures:
            assert os.path.exists(os.path.join(root, "docs", "pictures", picture)), picture

    classes = set()
    for _, _, files in os.walk(os.path.join(root, "tessaly")):
        classes.update(f[3:-4] for f in files if f.startswith("OSG") and f.endswith(".fcd"))
    assert len(classes) == 23, sorted(classes)
    assert classes <= named, f"not in the gallery: {sorted(classes - named)}"

    folder = os.path.join(root, "docs", "pictures")
    size = sum(os.path.getsize(os.path.join(folder, name)) for name in os.listdir(folder))
    assert size < 3 << 20, f"docs/pictures takes {size} bytes"


def check_picture(root, programs, example):
    with tempfile.TemporaryDirectory() as folder:
        drawn = os.path.join(folder, "drawn.png")
        subprocess.run([os.path.join(programs, "example-" + example), drawn], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        width, height, rows = read_png(drawn)
    expected = read_png(os.path.join(root, "docs", "pictures", example + ".png"))
    assert (width, height) == expected[:2], (example, width, height, expected[:2])
    # Drivers round edges and blends differently in a few places.
    far = sum(max(abs(a - b) for a, b in zip(one[x:x + 3], other[x:x + 3])) > 2
              for one, other in zip(rows, expected[2]) if one != other for x in range(0, 3 * width, 3))
    assert far <= 0.005 * width * height, f"{example}: {far} pixels of {width * height} differ by more than 2"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--root", required=True)
    parser.add_argument("--programs", required=True)
    parser.add_argument("examples", nargs="+")
    arguments = parser.parse_args()
    check_text(arguments.root)
    for example in arguments.examples:
        check_picture(arguments.root, arguments.programs, example)


if __name__ == "__main__":
    main()
