#!/usr/bin/env python3
"""Checks the chemistry tables of the data folder against each other and against known masses.

Usage: check_chemistry.py [FOLDER]

FOLDER holds element.ini, aa.ini, modification.ini and quant.ini; without it the data folder
of the source tree is taken. Every fault is printed on a line of its own. The exit status is 0
when there is none, 1 when there is any and 2 when a table cannot be read.

The tables are parsed here from their format alone, not with the library, and the known masses
below are published values, so that a slip in a composition is caught as well as one in a mass.
"""

import pathlib
import re
import sys

ANY_RESIDUE = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"

# The ion offsets are built on exactly these masses.
EXACT_ELEMENTS = {
    "H": 1.007825035, "C": 12.0, "N": 14.003074, "O": 15.99491463, "P": 30.973762,
    "S": 31.9720707, "2H": 2.014101779, "13C": 13.00335483, "15N": 15.00010897,
    "16O": 15.99491463, "18O": 17.9991603,
}

KNOWN_ELEMENTS = {
    "Li": 7.016004, "B": 11.009305, "F": 18.998403, "Na": 22.989770, "Mg": 23.985042,
    "Al": 26.981538, "Si": 27.976927, "Cl": 34.968853, "K": 38.963707, "Ca": 39.962591,
    "Cr": 51.940512, "Mn": 54.938050, "Fe": 55.934942, "Co": 58.933200, "Ni": 57.935348,
    "Cu": 62.929601, "Zn": 63.929147, "As": 74.921596, "Se": 79.916522, "Br": 78.918338,
    "Mo": 97.905408, "Ag": 106.905093, "Cd": 113.903358, "I": 126.904468, "Pt": 194.964774,
    "Au": 196.966552, "Hg": 201.970626, "Ru": 101.904350, "Pd": 105.903483,
}

KNOWN_RESIDUES = {
    "A": 71.037114, "C": 103.009185, "D": 115.026943, "E": 129.042593, "F": 147.068414,
    "G": 57.021464, "H": 137.058912, "I": 113.084064, "K": 128.094963, "L": 113.084064,
    "M": 131.040485, "N": 114.042927, "O": 237.147727, "P": 97.052764, "Q": 128.058578,
    "R": 156.101111, "S": 87.032028, "T": 101.047679, "U": 150.953636, "V": 99.068414,
    "W": 186.079313, "Y": 163.063329,
}

THREE_LETTERS = {
    "Ala": "A", "Arg": "R", "Asn": "N", "Asp": "D", "Cys": "C", "Gln": "Q", "Glu": "E",
    "Gly": "G", "His": "H", "Ile": "I", "Leu": "L", "Lys": "K", "Met": "M", "Phe": "F",
    "Pro": "P", "Ser": "S", "Thr": "T", "Trp": "W", "Tyr": "Y", "Val": "V",
}

# Monoisotopic shift by the name before the site. Substitutions follow from the residues.
KNOWN_SHIFTS = {
    "Phospho": 79.966331, "Acetyl": 42.010565, "Methyl": 14.015650, "Dimethyl": 28.031300,
    "Trimethyl": 42.046950, "GG": 114.042927, "QQTGG": 471.207762, "Citrullination": 0.984016,
    "Hydroxylation": 15.994915, "Sulfo": 79.956815, "Nitro": 44.985078, "Nitrosyl": 28.990164,
    "HexNAc": 203.079373, "O-GlcNAc": 203.079373, "Hex": 162.052823, "dHex": 146.057909,
    "HexHexNAc": 365.132196, "Glutathione": 305.068156, "Cysteinyl": 119.004099,
    "Persulfide": 31.972071, "Dehydro": -1.007825, "Palmitoyl": 238.229666,
    "Myristoyl": 210.198366, "Farnesyl": 204.187801, "Geranylgeranyl": 272.250401,
    "Malonyl": 86.000394, "Succinyl": 100.016044, "Glutaryl": 114.031694, "Propionyl": 56.026215,
    "Butyryl": 70.041865, "Crotonyl": 68.026215, "Lactyl": 72.021129,
    "Hydroxyisobutyryl": 86.036779, "Biotin": 226.077598, "Lipoyl": 188.032956,
    "Phosphopantetheine": 340.085794, "PyridoxalPhosphate": 229.014009,
    "ADP-Ribosyl": 541.061110, "Adenylyl": 329.052520, "Uridylyl": 306.025302,
    "Carboxy": 43.989829, "Glutamyl": 129.042593, "Hypusine": 87.068414,
    "Cys->Oxoalanine": -17.992806, "Amidated": -0.984016, "Met-loss": -131.040485,
    "Met-loss+Acetyl": -89.029920, "Oxidation": 15.994915, "Dioxidation": 31.989829,
    "Trioxidation": 47.984744, "Kynurenine": 3.994915, "Hydroxykynurenine": 19.989829,
    "Dethiomethyl": -48.003371, "Pro->pyro-Glu": 13.979265, "Allysine": -1.031634,
    "Arg->GluSA": -43.053433, "Carboxyethyl": 72.021129, "Hydroimidazolone": 54.010565,
    "HNE": 156.115030, "Chloro": 33.961028, "Bromo": 77.910511, "Iodo": 125.896648,
    "Deamidated": 0.984016, "Gln->pyro-Glu": -17.026549, "Glu->pyro-Glu": -18.010565,
    "Pyro-carbamidomethyl": 39.994915, "Ammonia-loss": -17.026549, "Dehydrated": -18.010565,
    "Carbamyl": 43.005814, "Formyl": 27.994915, "Formaldehyde": 12.000000, "Ethyl": 28.031300,
    "Guanidinyl": 42.021798, "AEBSF": 183.035399, "Ammonium": 17.026549, "Cation:Na": 21.981943,
    "Cation:K": 37.955882, "Cation:MgII": 21.969392, "Cation:CaII": 37.946941,
    "Cation:FeIII": 52.911464, "Cation:CuI": 61.921774, "Cation:ZnII": 61.913495,
    "Carbamidomethyl": 57.021464, "Carboxymethyl": 58.005479, "Propionamide": 71.037114,
    "Methylthio": 45.987721, "Nethylmaleimide": 125.047679, "Pyridylethyl": 105.057849,
    "Ethanolyl": 44.026215, "iTRAQ4plex": 144.102063, "iTRAQ8plex": 304.205360,
    "TMT0plex": 224.152478, "TMT2plex": 225.155833, "TMT6plex": 229.162932,
    "TMT10plex": 229.162932, "TMTproZero": 295.189592, "TMTpro16plex": 304.207146,
    "iodoTMT6plex": 329.226595, "ICAT-C": 227.126991, "ICAT-C:13C9": 236.157185,
    "Dimethyl:2H4": 32.056407, "Dimethyl:13C2-2H4": 34.063117, "Dimethyl:13C2-2H6": 36.075670,
    "Acetyl:2H3": 45.029395, "Methyl:13C1-2H3": 18.037835, "Label:2H4": 4.025107,
    "Label:13C6": 6.020129, "Label:13C6-15N2": 8.014199, "Label:13C6-15N4": 10.008269,
    "Label:18O1": 2.004246, "Label:18O2": 4.008491, "Label:16O1": 0.0, "Label:16O2": 0.0,
    "Label:13C6-15N1": 7.017164, "Label:2H3": 3.018830, "Label:13C5-15N1": 6.013809,
    "Label:13C9": 9.030193, "Label:13C9-15N1": 10.027228, "Label:13C5": 5.016774,
    "mTRAQ": 140.094963, "mTRAQ:13C3-15N1": 144.102063, "mTRAQ:13C6-15N2": 148.109162,
    "Pent": 132.042259, "dHexHexNAc": 349.137281, "HexNAc2": 406.158745,
    "Hex3HexNAc2": 892.317216, "Hex5HexNAc2": 1216.422863, "HexHexNAcNeuAc": 656.227613,
    "HexHexNAcNeuAc2": 947.323029, "LRGG": 383.228103, "Dehydroalanine": -33.987721,
}

KNOWN_AVERAGES = {
    "Oxidation[M]": 15.9994, "Carbamidomethyl[C]": 57.0513, "Phospho[S]": 79.9799,
    "Acetyl[K]": 42.0367, "Deamidated[N]": 0.9848, "GG[K]": 114.1026,
    "Dimethyl[K]": 28.0532, "Palmitoyl[C]": 238.4088, "TMT6plex[K]": 229.2634,
    "iTRAQ4plex[K]": 144.1544, "HexNAc[N]": 203.1925, "Methylthio[C]": 46.0916,
}

KNOWN_LOSSES = {"Phospho[S]": [97.976896], "Phospho[T]": [97.976896], "Phospho[Y]": []}

REQUIRED_MODIFICATIONS = [
    "Oxidation[M]", "Deamidated[N]", "Acetyl[ProteinN-term]", "Gln->pyro-Glu[AnyN-termQ]",
    "Carbamidomethyl[C]",
]

# Label to the shift of each residue that it changes; every other residue stays as it is.
KNOWN_RESIDUE_SHIFTS = {
    "None": {},
    "SILAC-K6": {"K": 6.020129},
    "SILAC-R6": {"R": 6.020129},
    "SILAC-K8": {"K": 8.014199},
    "SILAC-R10": {"R": 10.008269},
    "SILAC-K6R6": {"K": 6.020129, "R": 6.020129},
    "SILAC-K6R10": {"K": 6.020129, "R": 10.008269},
    "SILAC-K8R10": {"K": 8.014199, "R": 10.008269},
    "SILAC-L6": {"L": 6.020129},
    "SILAC-L7": {"L": 7.017164},
    "Dimethyl-Medium": {},
    "Dimethyl-13C2-2H4": {},
    "18O1": {},
    "18O2": {},
    "Acetyl-13C2": {},
    "Propionyl-13C3": {},
}

# Label and modification to the whole mass of the labelled modification.
KNOWN_LABELLED_MODIFICATIONS = {
    ("Dimethyl-Medium", "Dimethyl[K]"): 32.056407,
    ("Dimethyl-Medium", "Dimethyl[AnyN-term]"): 32.056407,
    ("Dimethyl-13C2-2H4", "Dimethyl[K]"): 34.063117,
    ("Dimethyl-13C2-2H4", "Dimethyl[AnyN-term]"): 34.063117,
    ("18O1", "Label:16O1[AnyC-term]"): 2.004246,
    ("18O2", "Label:16O2[AnyC-term]"): 4.008491,
    ("Acetyl-13C2", "Acetyl[K]"): 44.017274,
    ("Acetyl-13C2", "Acetyl[AnyN-term]"): 44.017274,
    ("Propionyl-13C3", "Propionyl[K]"): 59.036279,
    ("Propionyl-13C3", "Propionyl[AnyN-term]"): 59.036279,
    ("SILAC-R10", "Citrullination[R]"): -0.013019,
    ("SILAC-K8R10", "Lys->Arg[K]"): 30.000218,
    ("15N", "GG[K]"): 116.036997,
    ("15N", "Hex3HexNAc2[N]"): 894.311286,
    ("15N", "Deamidated[N]"): -0.013019,
    ("15N", "Gln->pyro-Glu[AnyN-termQ]"): -18.023584,
}

# Nitrogen that comes from a reagent stays light in a metabolic label.
REAGENT_MODIFICATIONS = [
    "Carbamidomethyl[C]", "Carbamyl[K]", "Propionamide[C]", "TMT6plex[K]", "iTRAQ4plex[K]",
]

# What they take from the peptide came with an earlier reagent.
REAGENT_LOSSES = ["Ammonia-loss[AnyN-termC]"]

NITROGEN_SHIFT = 15.00010897 - 14.003074

faults = []
checks = 0


def check(holds, text):
    """Counts one check and notes the text as a fault if it does not hold."""
    global checks
    checks += 1
    if not holds:
        faults.append(text)


def check_close(value, wanted, tolerance, text):
    check(abs(value - wanted) <= tolerance, f"{text}: {value:.7f}, expected {wanted:.7f}")


def lines_of(path):
    data = path.read_bytes()
    check(b"\r" not in data, f"{path.name}: carriage return")
    check(data.endswith(b"\n"), f"{path.name}: no line end at the end of the file")
    check(all(byte == 10 or 32 <= byte <= 126 or byte == 9 for byte in data),
          f"{path.name}: byte that is not printable")
    return data.decode("ascii", "replace").splitlines()


def groups_of(composition, where):
    """Composition text as a list of (symbol, count); its syntax is checked."""
    whole = re.fullmatch(r"(?:[^(){},|\s]+\(-?[1-9][0-9]*\))+", composition)
    check(whole is not None, f"{where}: malformed composition \"{composition}\"")
    groups = [(s, int(n)) for s, n in re.findall(r"([^()]+)\((-?\d+)\)", composition)]
    symbols = [symbol for symbol, _ in groups]
    check(len(set(symbols)) == len(symbols), f"{where}: symbol twice in \"{composition}\"")
    return groups


def weight(groups, masses, where):
    for symbol, _ in groups:
        check(symbol in masses, f"{where}: element {symbol} is not in the table")
    return sum(masses.get(symbol, 0.0) * count for symbol, count in groups)


def read_elements(path):
    """The masses of the most abundant isotopes and the mean masses, by symbol."""
    masses, means = {}, {}
    lines = lines_of(path)
    records = [line for line in lines if line.startswith("E")]
    check(f"@NUMBER_ELEMENT={len(records)}" in lines, f"{path.name}: count line is wrong")
    for number, line in enumerate(records, 1):
        match = re.fullmatch(r"E(\d+)=([^(){},|=\s]+)\|((?:[\d.]+,)+)\|((?:[\d.]+,)+)\|", line)
        check(match is not None, f"{path.name}: malformed record \"{line}\"")
        if match is None:
            continue
        symbol = match[2]
        isotopes = [float(text) for text in match[3].split(",") if text]
        shares = [float(text) for text in match[4].split(",") if text]
        check(int(match[1]) == number, f"{path.name}: {symbol} is not record {number}")
        check(symbol not in masses, f"{path.name}: {symbol} occurs twice")
        check(len(isotopes) == len(shares), f"{path.name}: {symbol}: lists differ in length")
        check(isotopes == sorted(isotopes), f"{path.name}: {symbol}: masses do not ascend")
        check_close(sum(shares), 1.0, 5e-4, f"{path.name}: {symbol}: sum of abundances")
        masses[symbol] = isotopes[shares.index(max(shares))]
        means[symbol] = sum(m * s for m, s in zip(isotopes, shares)) / sum(shares)
    for symbol, mass in EXACT_ELEMENTS.items():
        check(masses.get(symbol) == mass, f"{path.name}: {symbol} is not exactly {mass}")
    for symbol, mass in KNOWN_ELEMENTS.items():
        check_close(masses.get(symbol, 0.0), mass, 2e-5, f"{path.name}: {symbol}")
    unknown = set(masses) - set(EXACT_ELEMENTS) - set(KNOWN_ELEMENTS)
    check(not unknown, f"{path.name}: no known mass for {sorted(unknown)}")
    return masses, means


def read_residues(path, masses):
    """The composition groups of each residue letter."""
    residues = {}
    lines = lines_of(path)
    records = [line for line in lines if line.startswith("R")]
    check(lines[:1] == [f"@NUMBER_RESIDUE={len(records)}"], f"{path.name}: first line is wrong")
    for number, line in enumerate(records, 1):
        match = re.fullmatch(r"R(\d+)=([A-Z])\|([^|]+)\|", line)
        check(match is not None, f"{path.name}: malformed record \"{line}\"")
        if match is None:
            continue
        letter = match[2]
        check(int(match[1]) == number, f"{path.name}: {letter} is not record {number}")
        check(letter not in residues, f"{path.name}: {letter} occurs twice")
        residues[letter] = groups_of(match[3], f"{path.name}: {letter}")
        mass = weight(residues[letter], masses, f"{path.name}: {letter}")
        check_close(mass, KNOWN_RESIDUES.get(letter, 0.0), 1e-5, f"{path.name}: {letter}")
    check(set(residues) == set(KNOWN_RESIDUES), f"{path.name}: residues missing or too many")
    return residues


def check_site(where, site, sites, position):
    """The site in the name must say the same as the sites and the position."""
    terms = {"AnyN-term": "PEP_N", "AnyC-term": "PEP_C", "ProteinN-term": "PRO_N",
             "ProteinC-term": "PRO_C"}
    term = next((text for text in terms if site.startswith(text)), None)
    if term is None:
        check(position == "NORMAL" and site == sites and len(site) == 1,
              f"{where}: sites or position do not agree with the name")
        return
    check(position == terms[term], f"{where}: position does not agree with the name")
    check(sites == (site[len(term):] or ANY_RESIDUE), f"{where}: sites do not agree with the name")


def check_name(where, name):
    check(re.fullmatch(r"[!-~]+", name) is not None, f"{where}: blank or unprintable in the name")
    check(not set(name) & set("=;#(){}|,/\\"), f"{where}: character not allowed in the name")
    check(not name.startswith(("name", "Label_", "@", "NULL")), f"{where}: reserved beginning")


def substitution_groups(name, residues):
    """What the substitution of this name does to the composition; None for another name."""
    match = re.fullmatch(r"(...)->(...)\[(.)\]", name)
    if match is None:
        return None
    old, new = THREE_LETTERS.get(match[1]), THREE_LETTERS.get(match[2])
    if old is None or new is None or old != match[3]:
        return []
    counts = dict(residues[new])
    for symbol, count in residues[old]:
        counts[symbol] = counts.get(symbol, 0) - count
    return [(symbol, count) for symbol, count in counts.items() if count != 0]


def read_modification(name, value, masses, means, residues):
    """Checks one definition and gives its composition groups."""
    where = f"modification.ini: {name}"
    check_name(where, name)
    match = re.fullmatch(r"(.+)\[([^\[\]]+)\]", name)
    check(match is not None, f"{where}: no site in square brackets")
    tokens = value.split(" ")
    losses = int(tokens[4]) if len(tokens) > 4 and tokens[4].isdigit() else 0
    check(len(tokens) == 6 + 2 * losses, f"{where}: wrong number of fields")
    if match is None or len(tokens) != 6 + 2 * losses:
        return []
    check_site(where, match[2], tokens[0], tokens[1])
    for text in tokens[2:4] + tokens[5:-1]:
        check(re.fullmatch(r"-?\d+\.\d{6}", text) is not None, f"{where}: number {text}")
    mono, average = float(tokens[2]), float(tokens[3])
    groups = groups_of(tokens[-1], where)
    check_close(mono, weight(groups, masses, where), 1e-5, f"{where}: mass and composition")
    check_close(average, weight(groups, means, where), 1e-3, f"{where}: average mass")
    swap = substitution_groups(name, residues)
    if swap is not None:
        check(sorted(swap) == sorted(groups), f"{where}: not the difference of its residues")
    else:
        check(match[1] in KNOWN_SHIFTS, f"{where}: no known mass")
        check_close(mono, KNOWN_SHIFTS.get(match[1], 0.0), 1e-5, f"{where}: known mass")
    if name in KNOWN_AVERAGES:
        check_close(average, KNOWN_AVERAGES[name], 1.5e-3, f"{where}: known average mass")
    lossMasses = [float(text) for text in tokens[5:-1]]
    for lossMono, lossAverage in zip(lossMasses[::2], lossMasses[1::2]):
        near = max(0.5, 0.001 * lossMono)
        check(lossMono > 0 and abs(lossMono - lossAverage) < near, f"{where}: implausible loss")
    if name in KNOWN_LOSSES:
        check(lossMasses[::2] == KNOWN_LOSSES[name], f"{where}: neutral losses")
    return groups


def read_modifications(path, masses, means, residues):
    """The composition groups of each modification name."""
    mods = {}
    lines = lines_of(path)
    entries = [line for line in lines if "=" in line]
    check(all(line.startswith("# ") for line in lines if "=" not in line),
          f"{path.name}: a line that is neither entry nor comment")
    check(lines[:1] == entries[:1], f"{path.name}: the count is not the first line")
    check(entries[0] == f"@NUMBER_MODIFICATION={(len(entries) - 1) // 2}",
          f"{path.name}: count line is wrong")
    for number, (index, definition) in enumerate(zip(entries[1::2], entries[2::2]), 1):
        name, value = definition.split("=", 1)
        check(re.fullmatch(f"name{number}={re.escape(name)}\t[01]", index) is not None,
              f"{path.name}: \"{index}\" does not announce {name}")
        check(name not in mods, f"{path.name}: {name} occurs twice")
        mods[name] = read_modification(name, value, masses, means, residues)
    for name in REQUIRED_MODIFICATIONS:
        check(name in mods, f"{path.name}: {name} is missing")
    flagged = sum(1 for line in entries if line.endswith("\t1"))
    check(10 <= flagged <= 30, f"{path.name}: {flagged} entries are marked as common")
    return mods


def parse_label(where, value):
    """The items (kind, target, element, replacement) of a label."""
    if value in ("", "none"):
        return []
    items = re.findall(r"(.)(.)([^{}]*)\{([^{},]+),([^{},]+)\}", value)
    check("".join(f"{k}{c}{t}{{{a},{b}}}" for k, c, t, a, b in items) == value,
          f"{where}: cannot be cut into items")
    check(all(k in "RM" and c == ":" for k, c, _, _, _ in items), f"{where}: unknown kind")
    return [(kind, target, old, new) for kind, _, target, old, new in items]


def targets_of(where, kind, target, residues, mods):
    table = residues if kind == "R" else mods
    if target in ("*", "+", "-"):
        return list(table)
    names = list(target) if kind == "R" else [target]
    for name in names:
        check(name in table, f"{where}: unknown target {name}")
    return [name for name in names if name in table]


def apply_label(where, value, masses, residues, mods):
    """What a label maps: (kind, name) to element to replacement."""
    result = {}
    for kind, target, old, new in parse_label(where, value):
        check(old in masses and new in masses and old != new, f"{where}: elements {old},{new}")
        for name in targets_of(where, kind, target, residues, mods):
            groups = dict(residues[name] if kind == "R" else mods[name])
            check(old in groups, f"{where}: {name} holds no {old}")
            entry = result.setdefault((kind, name), {})
            check(old not in entry, f"{where}: {old} of {name} is replaced twice")
            entry[old] = new
    return result


def labelled_mass(groups, entry, masses):
    return sum(masses.get(entry.get(symbol, symbol), 0.0) * count for symbol, count in groups)


def check_lost_atoms(where, mapping, mods):
    """A modification that takes a replaced element from a labelled residue takes it heavy.

    Substitutions are let be: what enters and what leaves cannot be told apart in a difference.
    """
    for name, groups in mods.items():
        site = re.fullmatch(r".+\[(?:[^\[\]]*term)?([A-Z])\]", name)
        if site is None or name.startswith("Label:") or name in REAGENT_LOSSES:
            continue
        if name[:3] in THREE_LETTERS and len(name) == 11:
            continue
        for old, new in mapping.get(("R", site[1]), {}).items():
            heavy = mapping.get(("M", name), {}).get(old)
            check(dict(groups).get(old, 0) >= 0 or heavy == new,
                  f"{where}: {name} takes light {old} from a heavy residue")


def check_metabolic_label(where, mapping, residues, mods):
    """All nitrogen of the cell is heavy, that of reagents is not."""
    for letter in residues:
        check(mapping.get(("R", letter)) == {"N": "15N"}, f"{where}: {letter} is not heavy")
    for name in REAGENT_MODIFICATIONS:
        check(name in mods and ("M", name) not in mapping, f"{where}: {name} is not light")
    for name, groups in mods.items():
        if name[:3] in THREE_LETTERS and len(name) == 11 and "N" in dict(groups):
            check(("M", name) in mapping, f"{where}: {name} is not heavy")


def check_label(name, value, masses, residues, mods):
    where = f"quant.ini: {name}"
    mapping = apply_label(where, value, masses, residues, mods)
    known = KNOWN_RESIDUE_SHIFTS.get(name)
    if name == "15N":
        known = {r: dict(groups)["N"] * NITROGEN_SHIFT for r, groups in residues.items()}
        check_metabolic_label(where, mapping, residues, mods)
    check(known is not None, f"{where}: no known shift")
    check_lost_atoms(where, mapping, mods)
    for letter, groups in residues.items():
        shift = (labelled_mass(groups, mapping.get(("R", letter), {}), masses)
                 - labelled_mass(groups, {}, masses))
        check_close(shift, (known or {}).get(letter, 0.0), 1e-5, f"{where}: shift of {letter}")
    for (label, mod), mass in KNOWN_LABELLED_MODIFICATIONS.items():
        if label == name:
            heavy = labelled_mass(mods.get(mod, []), mapping.get(("M", mod), {}), masses)
            check_close(heavy, mass, 1e-5, f"{where}: {mod}")


def check_labels(path, masses, residues, mods):
    labels = {}
    lines = lines_of(path)
    for line in lines[1:]:
        name, sign, value = line.partition("=")
        check(sign == "=" and name != "", f"{path.name}: \"{line}\" defines nothing")
        check(re.fullmatch(r"[!-~]+", name) is not None and "|" not in name,
              f"{path.name}: character not allowed in the name {name}")
        check(name not in labels, f"{path.name}: {name} occurs twice")
        labels[name] = value
        check_label(name, value, masses, residues, mods)
    check(lines[1:2] == ["None=none"], f"{path.name}: second line is not None=none")
    for name in KNOWN_RESIDUE_SHIFTS:
        check(name in labels, f"{path.name}: {name} is missing")
    return labels


def main():
    source = pathlib.Path(__file__).resolve().parent.parent.parent / "data"
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else source
    try:
        masses, means = read_elements(folder / "element.ini")
        residues = read_residues(folder / "aa.ini", masses)
        mods = read_modifications(folder / "modification.ini", masses, means, residues)
        labels = check_labels(folder / "quant.ini", masses, residues, mods)
    except (OSError, IndexError) as error:
        print(f"cannot read the tables: {error}")
        return 2
    for text in faults:
        print(text)
    print(f"{len(masses)} elements, {len(residues)} residues, {len(mods)} modifications, "
          f"{len(labels)} labels: {checks} checks, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
