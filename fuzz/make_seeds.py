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
