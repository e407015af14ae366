#!/usr/bin/env python3
"""Prints figures of a well-formed MGF file, found without the library:

    python3 tests/support/mgf_figures.py examples/ecoli/ecoli.mgf
"""

import sys

PROTON = 1.00727647012


def blocks_of(path):
    """The blocks of the file, each its keys and its peaks."""
    blocks = []
    with open(path, encoding="ascii") as file:
        for line in file.read().splitlines():
            if line == "BEGIN IONS":
                blocks.append(({}, []))
            elif "=" in line:
                key, value = line.split("=", 1)
                blocks[-1][0][key] = value
            elif line and line != "END IONS":
                mz, intensity = line.split()
                blocks[-1][1].append((float(mz), float(intensity)))
    return blocks


def total(numbers):
    """The sum in list order, rounded at every step; sum() of newer versions is more exact."""
    result = 0.0
    for number in numbers:
        result += number
    return result


def main():
    blocks = blocks_of(sys.argv[1])
    charges = [int(keys["CHARGE"].rstrip("+")) for keys, _ in blocks]
    precursors = [float(keys["PEPMASS"].split()[0]) for keys, _ in blocks]
    mzs = [mz for _, peaks in blocks for mz, _ in peaks]
    masses = [c * mz - (c - 1) * PROTON for c, mz in zip(charges, precursors)]
    scans = [int(keys["TITLE"].split(".")[1]) for keys, _ in blocks]
    intensities = [intensity for _, peaks in blocks for _, intensity in peaks]
    print("spectra", len(blocks))
    print("peaks", len(mzs))
    print("sum of charges", sum(charges))
    print("sum of MH+", repr(total(masses)))
    print("sum of m/z", repr(total(mzs)))
    print("sum of intensities", repr(total(intensities)))
    print("scan numbers: first, last, sum", scans[0], scans[-1], sum(scans))
    print("entries in all indexes", sum(int(max(p)[0]) + 1 for _, p in blocks))
    print("peaks out of order", sum(a > b for _, p in blocks for (a, _), (b, _) in zip(p, p[1:])))


if __name__ == "__main__":
    main()
