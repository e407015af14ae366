#!/usr/bin/env python3
"""Compares what a library exports with exports.txt, the list of what the public headers promise.

    check_exports.py LIBRARY NM_OR_OBJDUMP HEADER_FOLDER

LIBRARY is a shared object (the program is nm) or a DLL (objdump). Names that the standard library's
templates leave in it are not compared. Every name behind TESSEL_API in the headers must be in the
list, and the list may hold nothing else.
"""

import pathlib
import re
import subprocess
import sys

LIST = pathlib.Path(__file__).with_name("exports.txt")
# What the compiler makes of a class: its address tables and names of types.
PREFIXES = ("vtable for ", "typeinfo for ", "typeinfo name for ")


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def exported_names(library, program):
    if library.suffix == ".dll":
        tables = run(program, "-p", library)
        table = tables.split("[Ordinal/Name Pointer] Table", 1)[1].split("\n\n", 1)[0]
        mangled = [line.split()[-1] for line in table.splitlines()[1:] if line.strip()]
    else:
        lines = run(program, "--dynamic", "--defined-only", library).splitlines()
        mangled = [line.split()[-1] for line in lines]
    return run("c++filt", text="\n".join(mangled)).splitlines()


def readable(name):
    """One spelling for both systems, with the short names of standard types."""
    for long, short in (
        (r"\[abi:cxx11\]", ""),
        (r"std::(__cxx11::)?basic_string<char, std::char_traits<char>, std::allocator<char> ?>",
         "std::string"),
        (r"std::basic_ifstream<char, std::char_traits<char> ?>", "std::ifstream"),
        (r"\b(_IO_FILE|_iobuf)\b", "FILE"),
        (r"\bunsigned long( long)?\b", "size_t"),
    ):
        name = re.sub(long, short, name)
    container = re.compile(r"std::(vector|set)<([^<>]+)(?:, std::less<\2>)?, std::allocator<\2 ?> ?>")
    while container.search(name):
        name = container.sub(r"std::\1<\2>", name)
    return name


def without_prefix(name):
    for prefix in PREFIXES:
        name = name.removeprefix(prefix)
    return name


def belongs_to_standard_library(name):
    name = without_prefix(name)
    return not name.startswith("tessel::") and not (
        "tessel::" in name and "std::" not in name and "__gnu_cxx::" not in name)


def qualified_name(function):
    return function.split("(")[0].removeprefix("tessel::")


# ---- What the headers declare ----


def closing_brace(text, opening):
    depth = 0
    for position in range(opening, len(text)):
        depth += {"{": 1, "}": -1}.get(text[position], 0)
        if depth == 0:
            return position
    raise ValueError("braces do not match")


def declared_functions(body):
    """Names of the functions that a class declares and leaves to a source file to define."""
    while "{" in body:  # what is defined in the class ends with "@"
        opening = body.index("{")
        body = body[:opening] + "@" + body[closing_brace(body, opening) + 1:]
    for declaration in re.findall(r"[^;@]*[;@]", body):
        if declaration.endswith("@") or re.search(r"\busing\b|=\s*(default|delete|0)\s*;", declaration):
            continue
        function = re.search(r"(~?\w+|operator\W+)\s*\(", declaration)
        if function:
            yield function.group(1)


def promised_by_headers(folder):
    classes, functions = set(), set()
    for header in folder.rglob("*.h"):
        text = re.sub(r'//.*|^#.*|"[^"\n]*"', "", header.read_text(), flags=re.MULTILINE)
        for match in re.finditer(r"class TESSEL_API (\w+)[^;{]*{", text):
            body = text[match.end():closing_brace(text, match.end() - 1)]
            classes.add(match.group(1))
            functions |= {f"{match.group(1)}::{name}" for name in declared_functions(body)}
        functions |= set(re.findall(r"^TESSEL_API [^(;]*?(\w+)\(", text, flags=re.MULTILINE))
    return classes, functions


def report(title, names):
    for name in sorted(names):
        print(f"{title}: {name}")
    return bool(names)


def main(library, program, header_folder):
    listed = {line for line in LIST.read_text().splitlines() if line and not line.startswith("#")}
    listed_names = {qualified_name(function) for function in listed}
    exported = {readable(name) for name in exported_names(pathlib.Path(library), program)
                if not belongs_to_standard_library(name)}
    types = {name for name in exported if name.startswith(PREFIXES)}
    functions = exported - types
    classes, declared = promised_by_headers(pathlib.Path(header_folder))
    faults = [
        report("listed, but not exported", listed - functions),
        report("exported, but not listed", functions - listed),
        report("exported type that no header promises", {
            name for name in types if without_prefix(name).removeprefix("tessel::") not in classes}),
        report("declared in a header, but not listed", declared - listed_names),
        report("listed, but declared in no header", listed_names - declared),
    ]
    print(f"{len(listed)} functions of {len(classes)} classes and of the namespace")
    return int(any(faults))


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
