"""What the scripts that check the source tree have in common: how they start and how they end."""

import pathlib
import sys


def report(check):
    """Prints the faults that check(root of the tree) finds. The exit status: 0 for none, 1 for some, 2
    for a tree that cannot be read."""
    root = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]
    try:
        faults = list(check(root))
    except (OSError, KeyError) as error:
        print(error, file=sys.stderr)
        return 2
    for fault in faults:
        print(fault)
    return 1 if faults else 0
