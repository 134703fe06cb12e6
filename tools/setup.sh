# What ./run, ./test and bench/run share: the packages they need and how they build. Sourced, not run.

# Installs those of the named Debian packages that are missing, and says so.
need() {
    missing=
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "installing:$missing"
    as_root=
    [ "$(id -u)" = 0 ] || as_root=sudo
    # Package lists may be too old to install from, or not there at all.
    { $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends $missing ||
        { $as_root apt-get update -qq &&
            $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -qq -y --no-install-recommends $missing; }
    } >/dev/null 2>"${TMPDIR:-/tmp}/tessaly-install.log" ||
        { cat "${TMPDIR:-/tmp}/tessaly-install.log" >&2; echo "can't install:$missing" >&2; exit 1; }
}

# The first two lines are needed in any case. Without the others the build goes on, and leaves out the window, or the
# readers of TIFF, NRRD, DICOM and meshes.
build_packages="g++ cmake ninja-build python3 pkg-config ccache libegl-dev libgl-dev libglu1-mesa-dev libegl1 libgl1-mesa-dri
    libpng-dev libjpeg-dev libnifti-dev zlib1g-dev libcli11-dev
    libglfw3-dev libimgui-dev libglx-mesa0
    libtiff-dev libteem-dev libgdcm-dev libassimp-dev nlohmann-json3-dev"

# The Python module, the man page, the packages and the API reference.
package_packages="doxygen python3-dev pybind11-dev python3-numpy help2man man-db dpkg-dev file"

test_packages="libgtest-dev mricron-data xvfb libx11-dev libxtst-dev"

# Configures (once) and builds a preset: build_preset NAME [ninja target ...]
build_preset() {
    preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >"build-$preset.log" 2>&1 ||
        { cat "build-$preset.log" >&2; rm -f "build-$preset.log"; exit 1; }
    rm -f "build-$preset.log"
    ninja -C "build/$preset" --quiet "$@"
}
