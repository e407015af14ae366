#!/usr/bin/env python3
"""Tells Snakemake the state of a Slurm job: running, success or failed."""

import re
import subprocess
import sys

ENDED_WELL = ("COMPLETED",)
UNDER_WAY = ("PENDING", "CONFIGURING", "RUNNING", "COMPLETING", "SUSPENDED", "REQUEUED", "RESIZING")


def main():
    job = sys.argv[1].partition(";")[0]
    done = subprocess.run(["scontrol", "--oneliner", "show", "job", job], capture_output=True,
                          text=True, check=False)
    state = re.search(r"\bJobState=(\w+)", done.stdout)
    if state is None:
        # The controller is busy, or has forgotten the job: a site with accounting knows it still.
        done = subprocess.run(["sacct", "--noheader", "--allocations", "--parsable2",
                               "--format=State", f"--jobs={job}"], capture_output=True, text=True,
                              check=False)
        state = re.search(r"^(\w+)", done.stdout)
    word = state[1] if state else "RUNNING"
    print("success" if word in ENDED_WELL else "running" if word in UNDER_WAY else "failed")


if __name__ == "__main__":
    main()
