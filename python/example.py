#!/usr/bin/env python3
"""Three looks at a volume that NumPy makes: side by side in one picture. Needs no display.

    python3 example.py [picture.png]
"""

import sys

import numpy as np
import tessaly

# Axes z, y, x: a torus of a soft inside, and a hard ball in its hole.
depth, height, width = 96, 160, 160
z, y, x = np.mgrid[-0.6 : 0.6 : depth * 1j, -1 : 1 : height * 1j, -1 : 1 : width * 1j]
torus = 1 - np.hypot(np.hypot(x, y) - 0.62, z) / 0.26
ball = 1 - np.sqrt(x**2 + y**2 + z**2) / 0.3
volume = np.clip(np.maximum(150 * torus, np.clip(1500 * ball, 0, 250)), 0, 255).astype(np.uint8)

# Positions are shares of the 256 values that a voxel can have.
function = {
    "opacity": [(0, 0), (0.05, 0), (0.15, 0.05), (0.6, 0.35), (0.75, 0.9), (1, 0.9)],
    "color": [
        (0, 0.1, 0.3, 0.9),
        (0.3, 0.2, 0.8, 0.9),
        (0.6, 0.95, 0.9, 0.6),
        (0.75, 0.9, 0.3, 0.1),
        (1, 1, 0.6, 0.2),
    ],
}

with tessaly.Viewer(
    volume,
    spacing=(1.2 / depth, 2 / height, 2 / width),
    size=(400, 400),
    transfer_function=function,
    camera=tessaly.Camera(elevation=20),
) as viewer:
    pictures = [viewer.render()]

    # The same from the other side, with the soft inside taken away by the gradient.
    viewer.camera = viewer.camera.replace(azimuth=120, elevation=50)
    viewer.set(gradient_modulation=True, retained_opacity=0, boundary_opacity=1.5)
    pictures.append(viewer.render())

    # Maximum intensity, in a table of grey.
    viewer.set(gradient_modulation=None, retained_opacity=None, boundary_opacity=None, shading="mip")
    viewer.transfer_function = np.linspace(0, 1, 256)[:, None] * np.ones(4)
    pictures.append(viewer.render())

    name = sys.argv[1] if len(sys.argv) > 1 else "pictures.png"
    side_by_side = np.hstack(pictures)


def write_png(name, picture):
    """Writes an (h, w, 3) uint8 array with what Python has on board."""
    import struct
    import zlib

    rows = np.pad(picture.reshape(len(picture), -1), ((0, 0), (1, 0)))
    chunks = (
        (b"IHDR", struct.pack(">IIBBBBB", picture.shape[1], picture.shape[0], 8, 2, 0, 0, 0)),
        (b"IDAT", zlib.compress(rows.tobytes())),
        (b"IEND", b""),
    )
    with open(name, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n")
        for kind, data in chunks:
            file.write(
                struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
            )


write_png(name, side_by_side)
