"""Installs the build, builds a stranger's host against the package, and looks at the picture that it writes."""

import argparse
import os
import shutil
import struct
import subprocess
import sys
import zlib


def call(*command, **settings):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False,
                            **settings)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}\n{result.stdout}\nends with {result.returncode}")
    return result.stdout


def read_png(path):
    """Width, height and rows of RGB triples of an 8-bit RGB file, by the standard alone."""
    with open(path, "rb") as file:
        data = file.read()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", "no PNG file"
    position, packed, width, height = 8, b"", 0, 0
    while position < len(data):
        size, kind = struct.unpack(">I4s", data[position:position + 8])
        content = data[position + 8:position + 8 + size]
        position += 12 + size
        if kind == b"IHDR":
            width, height, depth, colour = struct.unpack(">IIBB", content[:10])
            assert (depth, colour) == (8, 2), "not 8-bit RGB"
        elif kind == b"IDAT":
            packed += content
    raw, stride, rows, before, at = zlib.decompress(packed), width * 3, [], bytearray(width * 3), 0
    for _ in range(height):
        method, line = raw[at], bytearray(raw[at + 1:at + 1 + stride])
        at += 1 + stride
        for i in range(stride):
            left = line[i - 3] if i >= 3 else 0
            up, corner = before[i], before[i - 3] if i >= 3 else 0
            if method == 1:
                add = left
            elif method == 2:
                add = up
            elif method == 3:
                add = (left + up) // 2
            elif method == 4:
                guess = left + up - corner
                add = min((left, up, corner), key=lambda c, g=guess: abs(g - c))
            else:
                add = 0
            line[i] = (line[i] + add) & 255
        rows.append(line)
        before = line
    return width, height, rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--work", required=True)
    parser.add_argument("--scan", required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--flags", default="")
    arguments = parser.parse_args()

    here = os.path.dirname(os.path.abspath(__file__))
    shutil.rmtree(arguments.work, ignore_errors=True)
    prefix = os.path.join(arguments.work, "prefix")
    host = os.path.join(arguments.work, "host")
    call("cmake", "--install", arguments.build, "--prefix", prefix)
    with open(os.path.join(here, "..", "..", "README.md"), encoding="utf-8") as file:
        readme = file.read()
    os.makedirs(arguments.work, exist_ok=True)
    with open(os.path.join(arguments.work, "readme.cpp"), "w", encoding="utf-8") as file:
        file.write(readme.split("```cpp\n")[1].split("```")[0])
    with open(os.path.join(here, "..", "..", "docs", "coming-from-opensg.md"), encoding="utf-8") as file:
        page = file.read()
    with open(os.path.join(arguments.work, "ported.cpp"), "w", encoding="utf-8") as file:
        file.write(page.split("```cpp\n")[1].split("```")[0])
    call("cmake", "-S", os.path.join(here, "host"), "-B", host, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
         f"-DREADME_HOST={os.path.join(arguments.work, 'readme.cpp')}",
         f"-DPORTED_HOST={os.path.join(arguments.work, 'ported.cpp')}",
         f"-DCMAKE_CXX_COMPILER={arguments.compiler}", f"-DCMAKE_CXX_FLAGS={arguments.flags}",
         "-DCMAKE_BUILD_TYPE=Release")
    call("cmake", "--build", host)
    for program in ("host", "readme"):
        picture = os.path.join(arguments.work, program + ".png")
        call(os.path.join(host, program), arguments.scan, picture)
        check_picture(picture, (26, 26, 51) if program == "host" else (0, 0, 0))
    ported = os.path.join(arguments.work, "ported.png")
    call(os.path.join(host, "ported"), ported)
    check_torus(ported)
    check_library(prefix)
    check_readers(os.path.join(host, "files"), arguments.work)


def check_readers(program, work):
    # Files that are none: the module must be found and loaded to say so, where the build has it.
    names = [os.path.join(work, "broken." + suffix) for suffix in ("tif", "nrrd", "dcm", "ply")]
    for name in names:
        with open(name, "wb") as file:
            file.write(b"nothing of the kind, but long enough to be looked at " * 8)
    said = call(program, *names)
    for name in names:
        lines = [line for line in said.splitlines() if name in line]
        assert len(lines) == 1, f"{name}: {lines}\n{said}"
        assert "not installed" not in lines[0] and "can't be loaded" not in lines[0], lines[0]
    if 'window "' in said:
        assert 'window "host" closed' in said, said


def check_picture(picture, sky):
    width, height, rows = read_png(picture)
    assert (width, height) == (640, 480), (width, height)

    def pixel(x, y):
        return tuple(rows[y][3 * x:3 * x + 3])

    # The corners show the sky.
    for x, y in ((2, 2), (637, 2), (2, 477), (637, 477)):
        assert all(abs(a - b) <= 2 for a, b in zip(pixel(x, y), sky)), (x, y, pixel(x, y))
    # The bar sticks out of the head on both sides, in the middle of the height, brighter than the sky.
    for x in (140, 500):
        assert min(pixel(x, 240)) > 100, (x, pixel(x, 240))
    # The head covers the middle and is neither sky nor a flat colour.
    head = {pixel(x, y) for x in range(260, 380, 4) for y in range(170, 310, 4)}
    assert len(head) > 100, f"{len(head)} colours in the middle"
    # Above the bar the head is there as well, below it too.
    assert pixel(320, 150) != pixel(2, 2) and pixel(320, 330) != pixel(2, 2)


def check_torus(picture):
    width, height, rows = read_png(picture)
    assert (width, height) == (640, 480), (width, height)
    sky = (51, 77, 102)

    def is_sky(x, y):
        return all(abs(a - b) <= 2 for a, b in zip(rows[y][3 * x:3 * x + 3], sky))

    # The ring, seen from above its edge, has sky around and in its hole.
    assert all(is_sky(x, y) for x, y in ((2, 2), (637, 2), (2, 477), (637, 477))), "the corners"
    across = [is_sky(x, height // 2) for x in range(width)]
    changes = sum(a != b for a, b in zip(across, across[1:]))
    assert changes == 4, f"{changes} changes along the middle row, a ring has 4"
    assert across[width // 2], "the hole"


def check_library(prefix):
    # Nothing that a host may not reach is installed, and what the library exports is what it should.
    names = set(os.listdir(os.path.join(prefix, "include", "Tessaly")))
    assert "OSGVolumeNode.h" in names and "VolumeNodeHandler.h" not in names, names
    library = os.path.join(prefix, "lib", "libTessaly.so")
    for folder, _, files in os.walk(prefix):
        if "libTessaly.so" in files:
            library = os.path.join(folder, "libTessaly.so")
    symbols = call("nm", "-DC", "--defined-only", library)
    assert "osg::initTessalyExtention()" in symbols
    assert "osg::VolumeNodeBase::create()" in symbols and "osg::VolumeNode::createVolume()" in symbols
    for hidden in (" VolumeData::", " Transferfunction::", " VolumeNodeHandler::", " BlockVolume::", " tessaly::"):
        assert hidden not in symbols, f"{hidden} is exported"


if __name__ == "__main__":
    main()
