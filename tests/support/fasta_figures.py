#!/usr/bin/env python3
"""Figures of a FASTA database and of the target-decoy database that belongs to it.

Usage: fasta_figures.py FASTA

Prints the number of entries and residues of the database, then the length in bytes and the
CRC-32 (hexadecimal) of its target-decoy database. The file is parsed here from the format
alone, not with the library.
"""

import re
import sys
import zlib


def entries_of(data):
    """Accession, description and sequence of each entry."""
    if data.startswith(b"\xef\xbb\xbf"):
        data = data[3:]
    entries = []
    for line in data.split(b"\n"):
        if line.startswith(b">"):
            header = re.sub(rb"\r\Z", b"", line[1:])
            accession, _, description = re.match(rb"([^ \t]*)([ \t]?)(.*)", header, re.S).groups()
            entries.append([accession, description.strip(b" \t"), b""])
        elif entries:
            entries[-1][2] += re.sub(rb"[ \t\n\v\f\r]", b"", line)
    return entries


def target_decoy(entries):
    pieces = []
    for number, (accession, description, sequence) in enumerate(entries, 1):
        pieces.append(b">%s\t%s\t\n%s\n" % (accession, description, sequence))
        pieces.append(b">REV_%s\t_REV%d\n%s\n" % (accession, number, sequence[::-1]))
    return b"".join(pieces)


def main():
    with open(sys.argv[1], "rb") as file:
        entries = entries_of(file.read())
    database = target_decoy(entries)
    residues = sum(len(sequence) for _, _, sequence in entries)
    print(f"{len(entries)} {residues} {len(database)} {zlib.crc32(database):08x}")


if __name__ == "__main__":
    main()
