"""Measures the library against memory, and its pictures against other renderers, and prints one table.

Every figure is a ratio of two things done in turn within one run, so that what else the machine does meets
both; the table gives its median and quartiles. bench/run builds what this needs and calls it.
"""

import argparse
import json
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import nifti_to_mha

HERE = os.path.dirname(os.path.abspath(__file__))
SCAN = "/usr/share/mricron/templates/ch2better.nii.gz"
# The system's Python has the packages of the system, whichever other one comes first.
PYTHON = "/usr/bin/python3"
PICTURE = 512


def say(text):
    print("  " + text, file=sys.stderr, flush=True)


def begin_table():
    print("| what | against | median | quartiles | at most | |\n|---|---|---|---|---|---|", flush=True)


def add_row(what, against, median, low, high, limit):
    verdict = "" if limit is None else "holds" if median <= limit else "falls short"
    bound = "" if limit is None else f"{limit:.2f}"
    spread = f"{low:.2f} to {high:.2f}"
    print(f"| {what} | {against} | {median:.2f} | {spread} | {bound} | {verdict} |", flush=True)


def add_ratios(what, against, ratios, limit=None):
    ratios = sorted(ratios)
    low, high = ratios[len(ratios) // 4], ratios[(3 * len(ratios)) // 4]
    add_row(what, against, statistics.median(ratios), low, high, limit)


def measure_passes(binaries):
    with tempfile.NamedTemporaryFile(suffix=".json") as file:
        subprocess.run([os.path.join(binaries, "bench_passes"), "--benchmark_out=" + file.name,
                        "--benchmark_out_format=json"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        results = json.load(file)
    for result in results["benchmarks"]:
        what, against = (part.strip() for part in result["name"].split("/")[:2])
        add_row(what, against, result["ratio"], result["low"], result["high"], result["limit"])


class Display:
    """An X server of our own for the peers, which can't do without. `number` is None where there is none."""

    def __init__(self):
        self.server, self.number = None, None
        if shutil.which("Xvfb") is None:
            return
        readable, writable = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-displayfd", str(writable), "-screen", "0", "1024x768x24"],
                                       pass_fds=[writable], stdout=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)
        os.close(writable)
        with os.fdopen(readable) as file:
            number = file.readline().strip()
        self.number = ":" + number if number else None

    def environment(self):
        return dict(os.environ, DISPLAY=self.number)

    def close(self):
        if self.server is not None:
            self.server.terminate()
            self.server.wait()


class Renderer:
    """A process that draws a frame when it is told to, and waits in between."""

    def __init__(self, command, environment=None):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        env=environment, text=True)
        self.ready = ""
        while not self.ready.startswith("ready"):
            self.ready = self.process.stdout.readline()
            if not self.ready:
                raise RuntimeError("ends before its first frame: " + " ".join(command))

    def ask(self, command):
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().strip()

    def frame(self, angle):
        """Seconds on the clock and of the processors."""
        return [float(word) for word in self.ask(f"frame {angle:.4f}").split()]

    def picture(self, name):
        self.ask("picture " + name)
        with open(name, "rb") as file:
            return file.read()

    def close(self):
        self.process.stdin.close()
        self.process.wait()


def compare_frames(what, against, ours, theirs, rounds, limit):
    """Draws in turn, from a new angle each time."""
    pairs = []
    for turn in range(rounds):
        angle = 0.3 + 0.02 * turn
        pairs.append((ours.frame(angle), theirs.frame(angle)))
    add_ratios(what, against, [mine[0] / other[0] for mine, other in pairs], limit)
    add_ratios(what + ", processor time", against, [mine[1] / other[1] for mine, other in pairs])
    mine, other = (statistics.median(pair[side][0] for pair in pairs) for side in (0, 1))
    say(f"{what}: {mine:.3f} s against {other:.3f} s")


def compare_pictures(what, ours, theirs, folder):
    """Without a light, whose model differs between renderers, ours must be the square of theirs."""
    mine = ours.picture(os.path.join(folder, "ours"))
    other = theirs.picture(os.path.join(folder, "theirs"))
    apart = sum(abs(a - b * b / 255) for a, b in zip(mine, other)) / len(mine)
    say(f"{what}: the pictures are {apart:.2f} of 255 apart")
    if len(mine) != len(other) or max(mine) < 64 or apart > 1.5:
        raise RuntimeError("the two don't draw the same picture")


def has_vtk():
    return os.path.exists(PYTHON) and subprocess.run([PYTHON, "-c", "import vtk"], check=False,
                                                     stderr=subprocess.DEVNULL).returncode == 0


def measure_frames(binaries, display, folder):
    program = os.path.join(binaries, "bench_frame")
    if display.number is None or not has_vtk():
        say("frames: not measured, no VTK for Python or no X server")
        return
    cases = [("DVR, whole volume visible", "full", "dvr", "gpu", 15, 1.0),
             ("lit DVR, whole volume visible", "full", "lit", "gpu", 9, 1.0),
             ("DVR, sparse volume", "shell", "dvr", "cpu", 31, 1.0),
             ("DVR, sparse volume", "shell", "dvr", "gpu", 9, None),
             ("lit DVR, sparse volume", "shell", "lit", "cpu", 31, 1.0),
             ("lit DVR, sparse volume", "shell", "lit", "gpu", 9, None)]
    for case, volume, way, kind, rounds, limit in cases:
        what, against = "a frame, " + case, f"VTK's {kind.upper()} mapper"
        voxels = os.path.join(folder, volume + ".raw")
        if not os.path.exists(voxels):
            subprocess.run([program, "write", volume, voxels], check=True)
        ours = Renderer([program, "serve", volume, way])
        theirs = Renderer([PYTHON, os.path.join(HERE, "vtk_frame.py"), voxels, volume, way, kind],
                          display.environment())
        _, share, driver = ours.ready.strip().split(" ", 2)
        say(f"{what}: {100 * float(share):.1f} % of the blocks visible; {driver}; {theirs.ready.strip()}")
        compare_frames(what, against, ours, theirs, rounds, limit)
        if way == "dvr":
            compare_pictures(what, ours, theirs, folder)
        ours.close()
        theirs.close()


def run_once(command, environment):
    """Seconds on the clock, seconds of the processors, bytes at the peak."""
    with open(os.devnull, "wb") as nowhere:
        begin = time.perf_counter()
        actions = [(os.POSIX_SPAWN_DUP2, nowhere.fileno(), output) for output in (1, 2)]
        process = os.posix_spawnp(command[0], command, environment, file_actions=actions)
        _, status, used = os.wait4(process, 0)
        seconds = time.perf_counter() - begin
    if status != 0:
        raise RuntimeError("fails: " + " ".join(command))
    return seconds, used.ru_utime + used.ru_stime, used.ru_maxrss * 1024


def compare_processes(what, ours, theirs, environment, limited):
    # The first of each finds files and compiled shaders not yet in memory.
    run_once(ours, os.environ)
    run_once(theirs, environment)
    pairs = [(run_once(ours, os.environ), run_once(theirs, environment)) for _ in range(9)]
    for i, name, limit in ((0, "time", 0.5), (1, "processor time", None), (2, "peak memory", 1 / 3)):
        add_ratios(f"{what}: {name}", "F3D", [mine[i] / other[i] for mine, other in pairs],
                   limit if limited else None)
    for side, renderer in ((0, "ours"), (1, "F3D")):
        seconds, used, peak = (statistics.median(pair[side][i] for pair in pairs) for i in range(3))
        say(f"{what}: {renderer} {seconds:.2f} s, {used:.2f} s of the processors, {peak / 2 ** 20:.0f} MiB")


def measure_process(binaries, display, folder):
    if shutil.which("f3d") is None or display.number is None:
        say("whole process: not measured, no f3d or no X server")
        return
    scan = os.path.join(folder, "scan.mha")
    extent = nifti_to_mha.convert(SCAN, scan)
    # The ball around the volume fits the picture, so that both see all of it at the same size.
    away = 0.5 * sum(side * side for side in extent) ** 0.5 / 0.25882
    eye = ",".join(f"{away * part:.1f}" for part in (0.5, -0.75, 0.433))
    camera = ["--camera-position=" + eye, "--camera-focal-point=0,0,0", "--camera-view-up=0,0,1",
              "--camera-view-angle=30"]
    size = f"{PICTURE},{PICTURE}"
    ours = [os.path.join(binaries, "tessaly-view"), SCAN, "--size=" + size,
            "--output=" + os.path.join(folder, "ours.png")]
    theirs = ["f3d", "--dry-run", "--quiet", "--volume", "--resolution=" + size,
              "--output=" + os.path.join(folder, "f3d.png"), scan]
    what, environment = "scan file to PNG", display.environment()
    compare_processes(what + ", lit", ours + camera, theirs + camera, environment, True)
    compare_processes(what + ", not lit", ours + camera + ["--shading=dvr"], theirs + camera, environment,
                      True)
    compare_processes(what + ", lit, each from where it likes", ours, theirs, environment, False)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--bin", required=True, help="folder of the programs")
    parser.add_argument("--parts", default="all", choices=["all", "passes", "frames", "process"])
    arguments = parser.parse_args()
    wanted = ["passes", "frames", "process"] if arguments.parts == "all" else [arguments.parts]

    os.environ["LIBGL_ALWAYS_SOFTWARE"] = "1"
    begin_table()
    if "passes" in wanted:
        measure_passes(arguments.bin)
    if wanted == ["passes"]:
        return
    display = Display()
    try:
        with tempfile.TemporaryDirectory() as folder:
            if "frames" in wanted:
                measure_frames(arguments.bin, display, folder)
            if "process" in wanted:
                measure_process(arguments.bin, display, folder)
    finally:
        display.close()


if __name__ == "__main__":
    main()
