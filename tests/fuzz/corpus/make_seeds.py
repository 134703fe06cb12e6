#!/usr/bin/env python3
"""Writes the seed files of the image readers' fuzz targets beside this script. They are checked in; run it to add to them.

Those of JPEG are libjpeg's, of quality 60, since nothing in Python's own library writes any.
"""

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


def tiff(entries, voxels, order="<", pages=1):
    """Pages of the same entries (tag, type 3 or 4, value), which all share the voxels at byte 8."""
    data = (b"II" if order == "<" else b"MM") + struct.pack(order + "HI", 42, 8 + len(voxels)) + voxels
    for page in range(pages):
        size = 2 + 12 * len(entries) + 4
        following = 0 if page == pages - 1 else len(data) + size
        data += struct.pack(order + "H", len(entries))
        for tag, kind, value in entries:
            number = struct.pack(order + ("HH" if kind == 3 else "I"), *((value, 0) if kind == 3 else (value,)))
            data += struct.pack(order + "HHI", tag, kind, 1) + number
        data += struct.pack(order + "I", following)
    return data


def grey_tiff(bits, photometric, voxels, order="<", pages=1, compression=1, kind=1):
    return tiff([(256, 3, 2), (257, 3, 2), (258, 3, bits), (259, 3, compression), (262, 3, photometric), (273, 4, 8),
                 (277, 3, 1), (278, 3, 2), (279, 4, len(voxels)), (339, 3, kind)], voxels, order, pages)


def nrrd(kind, sizes, voxels, more="encoding: raw"):
    text = f"NRRD0004\ntype: {kind}\ndimension: {len(sizes.split())}\nsizes: {sizes}\nendian: big\n{more}\n\n"
    return text.encode() + voxels


def dicom(syntax, elements, pixels, order="<", explicit=True):
    """A file of elements (tag, representation, value as bytes), ahead of the pixels, which are an element as bytes."""
    def element(tag, kind, value, order="<", explicit=True):
        value += (b"\0" if kind in (b"UI", b"OB") else b" ") * (len(value) % 2)
        head = struct.pack(order + "2H", tag >> 16, tag & 0xffff)
        if not explicit:
            return head + struct.pack(order + "I", len(value)) + value
        if kind in (b"OB", b"OW"):
            return head + kind + struct.pack(order + "HI", 0, len(value)) + value
        return head + kind + struct.pack(order + "H", len(value)) + value

    meta = element(0x00020003, b"UI", b"1.2.3") + element(0x00020010, b"UI", syntax)
    body = b"".join(element(tag, kind, value, order, explicit) for tag, kind, value in elements)
    last = pixels if isinstance(pixels, bytes) else element(0x7fe00010, *pixels, order, explicit)
    return bytes(128) + b"DICM" + element(0x00020000, b"UL", struct.pack("<I", len(meta))) + meta + body + last


def slice_of(bits, sign, order="<", columns=2, rows=2, photometric=b"MONOCHROME2", more=()):
    def short(value):
        return struct.pack(order + "H", value)

    elements = [(0x00080060, b"CS", b"CT"), (0x00200032, b"DS", b"0\\0\\5"), (0x00200037, b"DS", b"1\\0\\0\\0\\1\\0"),
                (0x00280002, b"US", short(1)), (0x00280004, b"CS", photometric), (0x00280010, b"US", short(rows)),
                (0x00280011, b"US", short(columns)), (0x00280030, b"DS", b"0.5\\0.75"), (0x00280100, b"US", short(bits)),
                (0x00280101, b"US", short(bits)), (0x00280102, b"US", short(bits - 1)), (0x00280103, b"US", short(sign)),
                (0x00281052, b"DS", b"-1024"), (0x00281053, b"DS", b"1")]
    return sorted(elements + list(more))


def fragments(*parts):
    items = b"".join(struct.pack("<2HI", 0xfffe, 0xe000, len(part)) + part for part in (b"",) + parts)
    return struct.pack("<2H", 0x7fe0, 0x10) + b"OB" + struct.pack("<HI", 0, 0xffffffff) + items + struct.pack(
        "<2HI", 0xfffe, 0xe0dd, 0)


save("dicom/int16.dcm", dicom(b"1.2.840.10008.1.2.1", slice_of(16, 1), (b"OW", struct.pack("<4h", -1000, 0, 5, 3000))))
save("dicom/implicit.dcm", dicom(b"1.2.840.10008.1.2", slice_of(16, 0), (b"OW", struct.pack("<4H", 0, 1, 2, 4095)),
                                 explicit=False))
save("dicom/big.dcm", dicom(b"1.2.840.10008.1.2.2", slice_of(16, 1, ">"), (b"OW", struct.pack(">4h", -5, 0, 5, 30)), ">"))
save("dicom/frames.dcm", dicom(b"1.2.840.10008.1.2.1", slice_of(8, 0, photometric=b"MONOCHROME1", more=[
    (0x00280008, b"IS", b"3")]), (b"OB", bytes(range(12)))))
save("dicom/rle.dcm", dicom(b"1.2.840.10008.1.2.5", slice_of(8, 0, columns=4, rows=2), fragments(
    struct.pack("<16I", 1, 64, *[0] * 14) + bytes([0xfd, 7, 3, 1, 2, 3, 4, 0]))))

GREY = (HERE / "jpeg/grey.jpg").read_bytes()
save("dicom/jpeg.dcm", dicom(b"1.2.840.10008.1.2.4.50", slice_of(8, 0, columns=9, rows=5), fragments(GREY + b"\0" * (len(GREY) % 2))))

save("tiff/uint8.tif", grey_tiff(8, 1, bytes(range(4))))
save("tiff/int16_big_stack.tif", grey_tiff(16, 0, struct.pack(">4h", -1000, 0, 5, 3000), ">", 3, 1, 2))
save("tiff/bits_packbits.tif", grey_tiff(1, 1, b"\1\x80\x40", compression=32773))
save("tiff/deflate_float.tif", grey_tiff(32, 1, zlib.compress(struct.pack("<4f", 0, 1, -1, 3)), compression=8, kind=3))

save("nrrd/uint8.nrrd", nrrd("uchar", "2 2 2", bytes(range(8)), "encoding: raw\nspacings: 0.5 1 nan"))
save("nrrd/int16_gzip.nrrd", nrrd("short", "2 2 1", gzip.compress(bytes(8), mtime=0), "encoding: gzip"))
save("nrrd/rgb_directions.nrrd", nrrd(
    "uint8", "3 2 2 1", bytes(range(12)),
    "kinds: RGB-color domain domain domain\nspace dimension: 3\nspace directions: none (1,0,0) (0,2,0) (0,0,3)\nencoding: raw"))
save("nrrd/ascii_float.nrrd", nrrd("float", "2 2", b"1 2.5 -3 nan\n", "encoding: ascii\ncontent: seed"))

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
