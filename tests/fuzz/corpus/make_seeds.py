#!/usr/bin/env python3
"""Writes the seed files of the image readers' fuzz targets beside this script. They are checked in; run it to add to them."""

import gzip
import pathlib
import struct
import zlib

HERE = pathlib.Path(__file__).resolve().parent


def save(name, data):
    path = HERE / name
    path.parent.mkdir(exist_ok=True)
    path.write_bytes(data)


def png(width, height, bits, colour, lines, between=(), interlaced=0):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    head = struct.pack(">IIBBBBB", width, height, bits, colour, 0, 0, interlaced)
    middle = b"".join(chunk(kind, data) for kind, data in between)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + middle + chunk(b"IDAT", zlib.compress(lines))
            + chunk(b"IEND", b""))


def nifti(dims, kind, bits, voxels, order="<", slope=0.0, inter=0.0):
    head = bytearray(352)
    sizes = list(dims) + [1] * (7 - len(dims))
    struct.pack_into(order + "i", head, 0, 348)
    struct.pack_into(order + "8h", head, 40, len(dims), *sizes)
    struct.pack_into(order + "2h", head, 70, kind, bits)
    struct.pack_into(order + "4f", head, 76, 1.0, 0.5, 0.5, 2.0)
    struct.pack_into(order + "3f", head, 108, 352.0, slope, inter)
    head[344:348] = b"n+1\0"
    return bytes(head) + voxels


def dat(model, kind, voxels, more=""):
    text = f"ObjectFileName: v.raw\nResolution: 2 2 2\nSliceThickness: 1 1 2.5\nFormat: {kind}\nObjectModel: {model}\n"
    return (text + more).encode() + b"\0" + voxels


save("png/rgb8.png", png(2, 2, 8, 2, bytes(range(14)).replace(b"\x07", b"\x00")))
save("png/grey1.png", png(9, 2, 1, 0, b"\0\xaa\x80\0\x55\x00"))
save("png/grey16_interlaced.png", png(2, 2, 16, 0, b"\0\1\2\0\3\4\0\5\6\7\x08", interlaced=1))
save("png/palette_alpha.png", png(3, 1, 2, 3, b"\0\x18", [(b"PLTE", bytes(range(9))), (b"tRNS", b"\x10\x20")]))
save("png/rgba16.png", png(1, 1, 16, 6, bytes(9)))

save("nifti/uint8.nii", nifti((2, 2, 2), 2, 8, bytes(range(8))))
save("nifti/int16_big.nii", nifti((2, 2), 4, 16, struct.pack(">4h", -1000, 0, 5, 3000), ">"))
save("nifti/float32_slope.nii", nifti((4,), 16, 32, struct.pack("<4f", 0.0, -1.0, float("nan"), 2.5), "<", 2.0, 1.0))
save("nifti/frames.nii", nifti((2, 1, 1, 3), 2, 8, bytes(6)))
save("nifti/rgb_packed.nii.gz", gzip.compress(nifti((2, 1, 1), 128, 24, bytes(range(6))), mtime=0))

save("dat/uchar.bin", dat("I", "UCHAR", bytes(range(8))))
save("dat/ushort_big.bin", dat("DENSITY", "USHORT", bytes(16), "Endian: BIG\n"))
save("dat/rgba.bin", dat("RGBA", "UCHAR", bytes(32)))
save("dat/float.bin", dat("L", "FLOAT", struct.pack("<8f", *range(8))))
