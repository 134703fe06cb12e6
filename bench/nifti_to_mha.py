"""Writes the voxels of a NIfTI file of single bytes, .nii or .nii.gz, as MetaImage.

    nifti_to_mha.py SCAN TARGET
"""

import gzip
import struct
import sys


def convert(source, target):
    """Puts the volume's middle to the origin and returns its three extents.

    A file of another kind ends the program with one line.
    """
    with (gzip.open if source.endswith(".gz") else open)(source, "rb") as file:
        data = file.read()
    order = "<" if struct.unpack("<i", data[:4])[0] == 348 else ">"
    sides = struct.unpack(order + "3h", data[42:48])
    kind = struct.unpack(order + "h", data[70:72])[0]
    spacing = struct.unpack(order + "3f", data[80:92])
    offset = int(struct.unpack(order + "f", data[108:112])[0])
    count = sides[0] * sides[1] * sides[2]
    if kind != 2 or len(data) < offset + count:
        sys.exit(f"{source}: no whole volume of bytes")
    corner = [-0.5 * (side - 1) * step for side, step in zip(sides, spacing)]
    with open(target, "wb") as file:
        file.write(("ObjectType = Image\nNDims = 3\nBinaryData = True\nBinaryDataByteOrderMSB = False\n"
                    "CompressedData = False\n"
                    f"DimSize = {sides[0]} {sides[1]} {sides[2]}\n"
                    f"Offset = {corner[0]} {corner[1]} {corner[2]}\n"
                    f"ElementSpacing = {spacing[0]} {spacing[1]} {spacing[2]}\n"
                    "ElementType = MET_UCHAR\nElementDataFile = LOCAL\n").encode("ascii"))
        file.write(data[offset:offset + count])
    return [side * step for side, step in zip(sides, spacing)]


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    convert(sys.argv[1], sys.argv[2])
