"""The man page has every option of the program, its sections, and nothing that groff or man warn of."""

import argparse
import re
import subprocess
import sys


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--page", required=True)
    parser.add_argument("--program", required=True)
    arguments = parser.parse_args()

    text = subprocess.run(["man", "-l", "--warnings", "-P", "cat", arguments.page], check=True, capture_output=True,
                          text=True, env={"LC_ALL": "C.UTF-8", "MANWIDTH": "400", "PATH": "/usr/bin:/bin"})
    assert text.stderr == "", text.stderr
    for section in ("NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "ENVIRONMENT", "FILES", "EXAMPLES"):
        assert f"\n{section}\n" in text.stdout, f"no section {section}"
    for group in ("Camera:", "Look:", "Rays:", "Opaque object:"):
        assert f"\n   {group}\n" in text.stdout, f"no group {group}"
    told = subprocess.run([arguments.program, "--help"], check=True, capture_output=True, text=True).stdout
    options = set(re.findall(r"(?m)^  (?:-\w,)?(--[\w-]+)", told))
    assert len(options) > 20, options
    missing = [o for o in options if not re.search(rf"(?m)^ +(?:-\w, )?{o}(?![\w-])", text.stdout)]
    assert not missing, f"not on the page: {missing}"
    for status in ("0 +success", "1 +something", "2 +the command line"):
        assert re.search(rf"(?m)^ +{status}", text.stdout), status
    print(f"{len(options)} options")


if __name__ == "__main__":
    sys.exit(main())
