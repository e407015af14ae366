#!/usr/bin/env python3
"""Tells Snakemake the state of a Slurm job: running, success or failed."""

import re
import subprocess
import sys

ENDED_WELL = ("COMPLETED",)
UNDER_WAY = ("PENDING", "CONFIGURING", "RUNNING", "COMPLETING", "SUSPENDED", "REQUEUED", "RESIZING")


def ask(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False)


def state_of(job):
    controller = ask("scontrol", "--oneliner", "show", "job", job)
    state = re.search(r"\bJobState=(\w+)", controller.stdout)
    if state is None:
        # The controller is busy, or has forgotten the job: a site with accounting knows it still.
        accounting = ask("sacct", "--noheader", "--allocations", "--parsable2", "--format=State",
                         f"--jobs={job}")
        state = re.search(r"^(\w+)", accounting.stdout)
    if state:
        return state[1]
    # Who is busy answers later; who has forgotten the job never will.
    return "FAILED" if "Invalid job id" in controller.stderr else "RUNNING"


def main():
    word = state_of(sys.argv[1].partition(";")[0])
    print("success" if word in ENDED_WELL else "running" if word in UNDER_WAY else "failed")


if __name__ == "__main__":
    main()
