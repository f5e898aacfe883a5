#!/usr/bin/env python3
"""Writes the small hand-made seed files of the text import formats into corpus/."""
import os

here = os.path.dirname(os.path.abspath(__file__))


def put(target, name, text):
    d = os.path.join(here, "corpus", target)
    os.makedirs(d, exist_ok=True)
    with open(os.path.join(d, name), "wb") as f:
        f.write(text.encode("latin-1"))


counts = [50, 52, 60, 80, 120, 100, 70, 55, 45, 42, 40]


def kratos(shapes, background="Linear", low="281", high="289"):
    t = "Dataset:\tsample.des\r\nObject name:\tC 1s\r\n# ord = 11\r\nComment = Test sample\r\n"
    t += "Excitation energy = 1486.6\r\n"
    if shapes is not None:
        t += ("Regions\r\nRegion number = 3\r\nName = C 1s fit\r\nx = 0\r\nLow = %s\r\nHigh = %s\r\n"
              "x = 0\r\nx = 0\r\nBackground = %s\r\nx = 0\r\nx = 0\r\nx = 0\r\n" % (low, high, background))
        t += "Components = %d\r\nList =\r\n" % len(shapes)
        for c, shape in enumerate(shapes):
            for v in range(1, 28):
                value = {1: "C%d" % c, 2: shape, 13: str(283 + 2 * c), 19: "50", 25: "1.5"}.get(v, "0")
                t += "f%d = %s\r\n" % (v, value)
    t += "Energy (Counts)\r\n"
    for i, n in enumerate(counts):
        t += "  %d.6 %d\r\n" % (1196 + i, n)
    return t


put("kratos", "data_only.des", kratos(None))
put("kratos", "fit_linear.des", kratos(["Gau/Lor mix", "Lorentzian", "GL(30)"], low="289", high="281"))
put("kratos", "fit_shirley.des", kratos(["Gaussian"], background="Shirley"))


def leybold_region(caption, n, first, step):
    t = "1\n%s\nPoints = %d\n" % (caption, n)
    for i in range(n):
        t += "%f, %d\n" % (first + i * step, 10 + i)
    return t


put("leybold", "two_regions.dat",
    "\"Sample, annealed\"\nRegions = 2\n" + leybold_region("C 1s", 5, 280, 1) + leybold_region("O 1s", 4, 535, -1))


def phi_region(caption, n, start, step):
    t = "Phi 5600, \"Sample 7\"\n%s\n1 %f %f %d\n" % (caption, start, step, n)
    for i in range(n):
        t += str(20 + i) + ("\n" if i % 4 == 3 else " ")
    return t + "\n0\n"


put("phi", "two_regions.asc", phi_region("C 1s", 6, 280, 0.5) + phi_region("O 1s", 5, 535, -1))


put("ascii", "two_columns.txt", "".join("%d %d\r\n" % (290 - i, n) for i, n in enumerate(counts)))
put("ascii", "header_and_tabs.xy", "# energy\tcounts\n" + "".join("%.2f\t%d\n" % (285 - 0.25 * i, n) for i, n in enumerate(counts)))

# Binary seeds of the older layouts, laid out from the record descriptions.
import struct


class Le:
    def __init__(self):
        self.b = bytearray()

    def raw(self, s):
        self.b += s.encode("latin-1")
        return self

    def i16(self, v):
        self.b += struct.pack("<h", v)
        return self

    def i32(self, v):
        self.b += struct.pack("<i", v)
        return self

    def f32(self, v):
        self.b += struct.pack("<f", v)
        return self

    def f64(self, v):
        self.b += struct.pack("<d", v)
        return self

    def text20(self, s):
        return self.raw(s[:20].ljust(20))

    def array(self, values):
        self.i16(1).i32(len(values)).i32(0)
        for v in values:
            self.f32(v)
        return self

    def block(self, values):  # 2001 Singles, the older layout's fixed arrays
        for v in values:
            self.f32(v)
        for _ in range(2001 - len(values)):
            self.f32(-999.0)
        return self


def put_bytes(target, name, data):
    d = os.path.join(here, "corpus", target)
    os.makedirs(d, exist_ok=True)
    with open(os.path.join(d, name), "wb") as f:
        f.write(bytes(data))


def region_middle(b, has_background, peak_count, first_peak, range_count):
    b.f32(290).f32(288).f32(30).f32(10).i16(has_background).i16(peak_count).i16(first_peak)
    for _ in range(9):
        b.i16(0)
    b.i16(1).f32(288).f32(290).f32(-10).i16(1).i16(3).i16(range_count)
    b.f32(20).f32(0).f32(0.2).f32(4.5)


def peak_head(b, position, region):
    b.i16(-1).text20("old peak").i16(1).f32(0).f32(position).f32(500).f32(60).f32(1.2)
    b.i16(30).i16(0).i16(1).i16(0).i16(1).i16(region)


def constraint_v4(b):
    for g in range(4):
        b.i16(0).i16(0).i16(0).i16(0).i16(g).f32(1.5).i16(-1).f32(-1).f32(g)


# Version 3.0: one region in slot 1 with background, one peak in slot 4.
b = Le().raw("MOLVERA 3.0").raw("DA").raw("DP").i16(3)
b.i16(-1).i16(0).text20("Region two").i16(3).array([0, 290, 289, 288]).array([0, 10, 20, 30])
region_middle(b, -1, 1, 4, 3)
for base in (100, 200, 300, 400, 500, 600):
    b.array([0, base + 1, base + 2, base + 3])
b.f32(30).f32(10).i16(1).f32(0).f32(0.125)
for _ in range(2, 10):
    b.raw("DA")
for s in range(51):
    if s != 4:
        b.raw("DA")
        continue
    b.raw("DP").i16(3)
    peak_head(b, 289.0, 1)
    b.array([0, 1, 2, 3])
    constraint_v4(b)
b.i16(4)
peak_head(b, 288.5, 1)
b.array([0, 7, 8, 9]).i16(1).f32(4.5).f32(3).i16(1).i16(8).i16(3).raw("old")
put_bytes("project", "version30.xps", b.b)

# The unversioned "SF" layout: fixed blocks, 21 peak slots, short constraint groups.
b = Le().raw("SF").raw("DP").i16(-1).i16(2).text20("SF region").i16(3)
b.block([0, 290, 289, 288]).block([0, 10, 20, 30])
region_middle(b, -1, 1, 20, 2)
for base in (100, 200, 300, 400, 500, 600):
    b.block([0, base + 1, base + 2, base + 3])
b.f32(30).f32(10).i16(0).f32(0).f32(0.25)
for _ in range(1, 10):
    b.raw("DA")
for s in range(21):
    if s != 20:
        b.raw("DA")
        continue
    b.raw("DP")
    peak_head(b, 289.5, 0)
    b.block([0, 5, 6])
    for g in range(4):
        b.i16(1 if g == 1 else 0).i16(g).i16(7 if g == 2 else 0).i16(0).i16(2).f32(2.5)
b.i16(20)
peak_head(b, 289.25, 0)
b.block([0, 8, 9]).i16(1).f32(4.5).f32(0).i16(0).i16(8).i16(2).raw("sf")
put_bytes("project", "old_sf.xps", b.b)

# Region parameters, older tagged layout: two 3.0-form peaks, tagged counts and energy.
b = Le().i16(2).i16(2).i16(3).i32(7).i16(-1).i16(1).f32(300.0).i16(5).f64(282.0)
for position in (284.25, 290.5):
    b.i16(-1).text20("old").i16(3)
    for v in (2.5, position, 640.0, 30.0, 1.75):
        b.f32(v)
    for v in (55, 1, 0, 1, 0, 8):
        b.i16(v)
    b.array([0.0] * 8)
    constraint_v4(b)
put_bytes("regionparams", "older_tagged.rpa", b.b)
