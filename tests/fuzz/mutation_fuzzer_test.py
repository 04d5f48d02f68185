#!/usr/bin/env python3
"""Checks of the mutation fuzzer's judgement of a run, on small stand-in programs."""

import os
import random
import stat
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import mutation_fuzzer as fuzzer  # noqa: E402


def program(folder, name, body):
    path = os.path.join(folder, name)
    with open(path, "w") as f:
        f.write("#!/bin/sh\n" + body + "\n")
    os.chmod(path, os.stat(path).st_mode | stat.S_IEXEC)
    return path


def judge(binary, files, args=("job",), timeout=2):
    case = tempfile.mkdtemp(prefix="fuzz-case-")
    for name, data in files.items():
        with open(os.path.join(case, name), "wb") as f:
            f.write(data)
    seed = fuzzer.Seed("job", files, list(args))
    return fuzzer.classify(binary, case, seed, files, timeout)


def main():
    folder = tempfile.mkdtemp(prefix="fuzz-programs-")
    files = {"job.pcr": b"1 2 3\n", "job.dat": b"10 20\n"}
    failures = []

    def expect(name, result, kind):
        got = result[0] if result else None
        if got != kind:
            failures.append("%s: expected %s, got %s" % (name, kind, result))

    expect("normal end", judge(program(folder, "clean", "exit 0"), files), None)
    expect("stop", judge(program(folder, "stop", "echo ' Error'; exit 2"), files), None)
    expect("sanitizer", judge(program(folder, "ubsan",
                                      "echo 'x.cpp:3:5: runtime error: negation of -2147483648';"
                                      " echo '    #0 0x1 in F src/x.cpp:3'; exit 87"), files),
           "sanitizer")
    expect("signal", judge(program(folder, "abort", "kill -ABRT $$"), files), "crash")
    expect("time", judge(program(folder, "spin", "while :; do :; done"), files, timeout=1),
           "timeout")
    expect("touched", judge(program(folder, "touch", "echo x >> job.dat; exit 2"), files),
           "touched")
    # A control file rewritten so that the next run of the command cannot read it.
    rewrite = program(folder, "rewrite",
                      "if grep -q stars job.pcr; then echo 'FindFMT: invalid character in a "
                      "numeric field !'; exit 2; fi; echo stars > job.pcr; exit 0")
    expect("reread", judge(rewrite, files), "reread")

    # Mutations change the files of a seed and keep their names.
    rng = random.Random(1)
    seed = fuzzer.Seed("job", {"job.pcr": b"! head\n   1   2   3\n 0.5 1.5\n"}, ["job"])
    changed = sum(fuzzer.mutate(rng, seed)["job.pcr"] != seed.files["job.pcr"] for _ in range(50))
    if changed < 40:
        failures.append("mutations changed the control file %d times of 50" % changed)

    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
