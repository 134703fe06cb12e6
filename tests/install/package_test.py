"""Packs the build as Debian packages, looks into them, unpacks them all into one folder and works with what lies there: the
viewer draws a scan, a stranger's host builds and draws, Python imports the module."""

import argparse
import glob
import gzip
import os
import re
import shutil
import struct
import sys

from install_test import call, read_png


def write_scan(path):
    """A NIfTI file of 32 x 32 x 32 bytes: a ball."""
    edge, header = 32, bytearray(352)
    struct.pack_into("<i", header, 0, 348)
    struct.pack_into("<8h", header, 40, 3, edge, edge, edge, 1, 1, 1, 1)
    struct.pack_into("<hh", header, 70, 2, 8)
    struct.pack_into("<8f", header, 76, 1, 1, 1, 1, 1, 1, 1, 1)
    struct.pack_into("<fff", header, 108, 352, 1, 0)
    header[344:348] = b"n+1\0"
    middle = (edge - 1) / 2
    voxels = bytes(max(0, min(200, int(40 * (13 - ((x - middle) ** 2 + (y - middle) ** 2 + (z - middle) ** 2) ** 0.5))))
                   for z in range(edge) for y in range(edge) for x in range(edge))
    with open(path, "wb") as file:
        file.write(header + voxels)


def fields(package):
    text = call("dpkg-deb", "--field", package)
    return {key: value for key, value in re.findall(r"(?m)^([\w-]+): (.*(?:\n .*)*)", text)}


def check_package(package, root, names):
    told = fields(package)
    name, version = told["Package"], told["Version"]
    assert os.path.basename(package) == f"{name}_{version}_{told['Architecture']}.deb", package
    assert told["Maintainer"] == "Tessaly developers <tessaly@example.org>", told["Maintainer"]
    assert told["Section"] and "\n" in told["Description"], told
    if name != "libtessaly1":
        assert f"libtessaly1 (= {version})" in told["Depends"], told["Depends"]
    call("dpkg-deb", "--extract", package, root)
    docs = os.path.join(root, "usr", "share", "doc", name)
    assert os.path.getsize(os.path.join(docs, "copyright")) > 0
    with gzip.open(os.path.join(docs, "changelog.Debian.gz"), "rt", encoding="utf-8") as file:
        assert file.readline().startswith(f"tessaly ({version})")

    # Owners, rights and places as in any package.
    for line in call("dpkg-deb", "--contents", package).splitlines():
        rights, owner, *_, = line.split()
        path = line.split(" ./", 1)[1]
        assert owner == "root/root", line
        assert path.startswith("usr/"), line
        wanted = {"d": "drwxr-xr-x", "l": "lrwxrwxrwx"}.get(rights[0], "-rwxr-xr-x" if "/bin/" in path else "-rw-r--r--")
        assert rights == wanted, line
    control = os.path.join(root, "control", name)
    os.makedirs(os.path.dirname(control), exist_ok=True)
    call("dpkg-deb", "--control", package, control)
    with open(os.path.join(control, "md5sums"), encoding="utf-8") as file:
        assert "usr/" in file.read()
    names[name] = told
    return control


def check_binaries(root, build):
    """Every ELF file: stripped, without a search path, and without the name of the tree it was built in."""
    count = 0
    for folder, _, files in os.walk(os.path.join(root, "usr")):
        for name in files:
            path = os.path.join(folder, name)
            if os.path.islink(path):
                continue
            with open(path, "rb") as file:
                content = file.read()
            assert os.path.abspath(build).encode() not in content, f"{path} names the build tree"
            if content[:4] != b"\x7fELF":
                continue
            count += 1
            assert "PATH)" not in call("readelf", "-d", path), f"{path} has a search path"
            assert ".symtab" not in call("readelf", "-SW", path), f"{path} is not stripped"
            if "/OSGFormats/" not in path and re.search(r"/lib[^/]*\.so", path):
                assert ".so.1]" in call("readelf", "-d", path), f"{path}: no versioned soname"
    assert count >= 5, f"{count} binaries"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("--work", required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--libdir", required=True)
    parser.add_argument("--viewer", action="store_true")
    parser.add_argument("--python", default="")
    arguments = parser.parse_args()

    here = os.path.dirname(os.path.abspath(__file__))
    shutil.rmtree(arguments.work, ignore_errors=True)
    os.makedirs(arguments.work)
    call("cpack", "-G", "DEB", "-B", arguments.work, cwd=arguments.build)

    root, told = os.path.join(arguments.work, "root"), {}
    for package in sorted(glob.glob(os.path.join(arguments.work, "*.deb"))):
        control = check_package(package, root, told)
        if "libtessaly1_" in package:
            with open(os.path.join(control, "shlibs"), encoding="utf-8") as file:
                assert re.search(r"(?m)^libTessaly 1 libtessaly1 ", file.read())
            with open(os.path.join(control, "triggers"), encoding="utf-8") as file:
                assert file.read() == "activate-noawait ldconfig\n"
    wanted = {"libtessaly1", "libtessaly-dev"}
    wanted |= {"tessaly-view"} if arguments.viewer else set()
    wanted |= {"python3-tessaly"} if arguments.python else set()
    assert set(told) == wanted, sorted(told)
    for need in ("libc6", "libstdc++6", "libopengl0", "libegl1", "libpng16-16", "libniftiio2"):
        assert re.search(rf"(^|, ){re.escape(need)}( |,|$)", told["libtessaly1"]["Depends"]), need
    for need in ("libgl-dev", "libopengl-dev", "libglu1-mesa-dev"):
        assert need in told["libtessaly-dev"]["Depends"], need
    check_binaries(root, arguments.build)

    # No package can be installed here: the libraries are named to the loader instead.
    usr = os.path.join(root, "usr")
    libraries = os.path.join(usr, arguments.libdir)
    settings = dict(os.environ, LD_LIBRARY_PATH=libraries)
    scan = os.path.join(arguments.work, "ball.nii")
    write_scan(scan)
    if arguments.viewer:
        picture = os.path.join(arguments.work, "ball.png")
        program = os.path.join(usr, "bin", "tessaly-view")
        assert os.path.join(libraries, "libTessaly.so.1") in call("ldd", program, env=settings)
        call(program, scan, "--output", picture, "--size", "160,120", "-q", env=settings)
        check_ball(picture, 160, 120)
    if arguments.python:
        told = call(arguments.python, "-c", "import tessaly; print(tessaly.__file__)",
                    env=dict(settings, PYTHONPATH=os.path.join(usr, "lib", "python3", "dist-packages")))
        assert told.startswith(usr), told

    host = os.path.join(arguments.work, "host")
    call("cmake", "-S", os.path.join(here, "host"), "-B", host, "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={usr}",
         f"-DREADME_HOST={os.path.join(here, 'host', 'host.cpp')}", f"-DPORTED_HOST={os.path.join(here, 'host', 'host.cpp')}",
         f"-DCMAKE_CXX_COMPILER={arguments.compiler}",
         "-DCMAKE_BUILD_TYPE=Release")
    call("cmake", "--build", host, "--target", "host")
    picture = os.path.join(arguments.work, "host.png")
    call(os.path.join(host, "host"), scan, picture, env=settings)
    width, height, _ = read_png(picture)
    assert (width, height) == (640, 480)


def check_ball(picture, width, height):
    seen_width, seen_height, rows = read_png(picture)
    assert (seen_width, seen_height) == (width, height)
    sky = bytes(rows[2][:3])
    middle = bytes(rows[height // 2][3 * (width // 2):3 * (width // 2) + 3])
    assert max(abs(a - b) for a, b in zip(sky, middle)) > 60, (sky, middle)
    assert bytes(rows[-3][-3:]) == sky


if __name__ == "__main__":
    sys.exit(main())
