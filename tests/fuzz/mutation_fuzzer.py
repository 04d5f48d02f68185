#!/usr/bin/env python3
"""Mutation fuzzing of whole jobs over the built program.

Each case is a seed job (control file, data files, command line) with one to
four random changes: numbers replaced by boundary values, fields and lines
deleted or repeated, files cut short, characters inserted. The program runs
the case in a scratch folder with standard input closed. A case is a finding
when the run
  - reports a sanitizer error or ends on a signal or with an exit status
    other than 0 (normal end) and 2 (stop on an error),
  - runs past its limit of processor time (the machine may be shared: the
    limit is on processor seconds, with a wall-clock limit four times as long),
  - ends on an error after changing one of its input files,
  - ends normally with a control file that the next run of the same command
    cannot read.
A finding whose key (class and first report line) is new is kept as a folder
under the findings folder, with ARGS and report.txt, in the form of the jobs
of ../shared/fuzz. Keys already kept there are not kept again.

Usage: mutation_fuzzer.py --binary build-sanitize/corvinet --seconds 3600
                          --findings fuzz-findings [--seed 1] [--timeout 20]
"""

import argparse
import hashlib
import os
import random
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
REPO = os.path.dirname(os.path.dirname(HERE))
SHARED = os.path.join(os.path.dirname(REPO), "shared")

# Values that break careless integer and real handling.
INTEGERS = ["0", "-1", "1", "2", "3", "7", "10", "99", "1000", "5000", "32767", "-32768",
            "99999999", "-99999999", "100000000", "999999999", "2147483647", "-2147483648",
            "2147483648", "-2147483649", "4294967296"]
REALS = ["0.0", "-0.0", "1e-30", "-1e-30", "1e30", "-1e30", "1e38", "3.5e38", "1e300",
         "-1e300", "1e-45", "0.00001", "180.0", "360.0", "-90.0", "1e6", "nan", "inf",
         "-inf", "NaN", "Infinity"]
NUMBER = re.compile(r"[-+]?(\d+\.?\d*|\.\d+)([eEdD][-+]?\d+)?")

ENVIRONMENT = dict(os.environ)
ENVIRONMENT.pop("CORVINET", None)
ENVIRONMENT["ASAN_OPTIONS"] = "detect_leaks=0:abort_on_error=0:exitcode=86"
ENVIRONMENT["UBSAN_OPTIONS"] = "print_stacktrace=1:halt_on_error=1:exitcode=87"


class Seed:
    """One job: its files (name -> bytes) and its command-line words."""

    def __init__(self, name, files, args):
        self.name = name
        self.files = files
        self.args = args


def read_files(folder, names):
    files = {}
    for name in names:
        with open(os.path.join(folder, name), "rb") as f:
            files[name] = f.read()
    return files


def repository_seeds(binary, work):
    """The jobs of the repository: the example, the head and cycle tests, the rutile jobs."""
    seeds = []
    example = os.path.join(REPO, "examples", "anglesite-xray")
    seeds.append(Seed("anglesite", read_files(example, ["anglesite.pcr", "anglesite.dat"]),
                      ["anglesite"]))
    head = os.path.join(REPO, "tests", "data", "head")
    seeds.append(Seed("single", read_files(head, ["single.pcr", "single.dat"]), ["single"]))
    seeds.append(Seed("multi", read_files(head, ["multi.pcr", "data_a.dat", "data_b.dat"]),
                      ["multi"]))
    cycle = os.path.join(REPO, "tests", "data", "cycle")
    for job in ["cycle1", "cycle3", "stop"]:
        seeds.append(Seed(job, read_files(cycle, [job + ".pcr", "cycle.dat"]), [job, "cycle"]))
    report = os.path.join(REPO, "tests", "data", "report")
    simulated = simulated_rutile(binary, work, report)
    seeds.append(Seed("rutile_sim", {**read_files(report, ["rutile_sim.pcr"]),
                                     "rutile_sim.dat": b""}, ["rutile_sim"]))
    if simulated is not None:
        for job in ["rutile", "matching", "diverge"]:
            seeds.append(Seed(job, {**read_files(report, [job + ".pcr"]),
                                    job + ".dat": simulated}, [job]))
    return seeds


def simulated_rutile(binary, work, report):
    """The pattern the rutile calculation job simulates, as data for the rutile refinements."""
    folder = os.path.join(work, "simulate")
    os.makedirs(folder, exist_ok=True)
    shutil.copy(os.path.join(report, "rutile_sim.pcr"), folder)
    open(os.path.join(folder, "rutile_sim.dat"), "wb").close()
    subprocess.run([binary, "rutile_sim"], cwd=folder, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=ENVIRONMENT,
                   timeout=120)
    path = os.path.join(folder, "rutile_sim.sim")
    if not os.path.exists(path):
        return None
    with open(path, "rb") as f:
        return f.read()


def shared_seeds():
    """The minimal jobs of ../shared/fuzz, when the shared folder is there."""
    seeds = []
    root = os.path.join(SHARED, "fuzz")
    if not os.path.isdir(root):
        return seeds
    for name in sorted(os.listdir(root)):
        folder = os.path.join(root, name)
        if not os.path.isfile(os.path.join(folder, "ARGS")):
            continue
        with open(os.path.join(folder, "ARGS")) as f:
            args = f.read().split()
        names = [n for n in os.listdir(folder)
                 if n not in ("ARGS", "expected.txt", "REREAD", "LONG")]
        seeds.append(Seed(name, read_files(folder, names), args))
    return seeds


def mutate_line(rng, line):
    """One change inside a line."""
    numbers = list(NUMBER.finditer(line))
    choice = rng.random()
    if numbers and choice < 0.55:
        m = rng.choice(numbers)
        value = rng.choice(REALS if "." in m.group(0) or rng.random() < 0.2 else INTEGERS)
        return line[:m.start()] + value + line[m.end():]
    if numbers and choice < 0.65:
        m = rng.choice(numbers)
        return line[:m.start()] + line[m.end():]
    if numbers and choice < 0.75:
        m = rng.choice(numbers)
        return line[:m.end()] + " " + m.group(0) + line[m.end():]
    if numbers and choice < 0.85:
        m = rng.choice(numbers)
        digits = [i for i in range(m.start(), m.end()) if line[i].isdigit()]
        i = rng.choice(digits)
        return line[:i] + str(rng.randrange(10)) + line[i + 1:]
    at = rng.randrange(len(line) + 1)
    return line[:at] + rng.choice(" \t-+.eE0!,x*") + line[at:]


def mutate_text(rng, data):
    """One change of a text file: a line changed, deleted, repeated, or the file cut short."""
    lines = data.decode("latin-1").split("\n")
    useful = [i for i, l in enumerate(lines) if l.strip() and not l.startswith("!")]
    if not useful:
        return data
    i = rng.choice(useful)
    choice = rng.random()
    if choice < 0.80:
        lines[i] = mutate_line(rng, lines[i])
    elif choice < 0.88:
        del lines[i]
    elif choice < 0.95:
        lines.insert(i, lines[i])
    else:
        lines = lines[:i]
    return "\n".join(lines).encode("latin-1")


def mutate(rng, seed):
    files = dict(seed.files)
    names = sorted(files)
    controls = [n for n in names if n.endswith(".pcr")]
    for _ in range(rng.choice([1, 1, 1, 2, 2, 3, 4])):
        pick = rng.choice(controls) if controls and rng.random() < 0.7 else rng.choice(names)
        files[pick] = mutate_text(rng, files[pick])
    return files


def run(binary, folder, args, timeout):
    """Runs the program; returns (status or None past the time limit, output text)."""
    seconds = int(timeout)

    def limit_processor_time():
        resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))

    try:
        done = subprocess.run([binary] + args, cwd=folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env=ENVIRONMENT, timeout=4 * timeout,
                              preexec_fn=limit_processor_time)
    except subprocess.TimeoutExpired as expired:
        out = expired.output or b""
        return None, out.decode("latin-1", "replace")
    if done.returncode in (-24, -9):  # SIGXCPU, or SIGKILL past the hard limit
        return None, done.stdout.decode("latin-1", "replace")
    return done.returncode, done.stdout.decode("latin-1", "replace")


SANITIZER = re.compile(r"(runtime error: .*|ERROR: AddressSanitizer: [\w-]+)")
SOURCE = re.compile(r"(\S+\.(?:cpp|h):\d+)")
READ_FAILURE = re.compile(r"(FindFMT: .*|Not FATAL End of file !,  logical unit:   1|"
                          r"does not read back.*)")


def generalise(text):
    return re.sub(r"-?\d+", "N", text.strip())


def classify(binary, folder, seed, files, timeout):
    """Runs one case; returns None or (class, key, report)."""
    status, output = run(binary, folder, seed.args, timeout)
    if status is None:
        return "timeout", "timeout", output[-3000:]
    found = SANITIZER.search(output)
    if found:
        where = SOURCE.search(output[found.end():])
        key = generalise(found.group(1)) + (" @ " + where.group(1) if where else "")
        return "sanitizer", key, output[-6000:]
    if status not in (0, 2):
        last = [l for l in output.splitlines() if l.strip()][-1:] or [""]
        return "crash", "status %d: %s" % (status, generalise(last[0])), output[-6000:]
    changed = [n for n in files if read_files(folder, [n])[n] != files[n]]
    if status == 2 and changed:
        return "touched", "stop after changing " + ", ".join(changed), output[-3000:]
    control = seed.args[0] + ".pcr"
    if status == 0 and control in changed:
        again, second = run(binary, folder, seed.args, timeout)
        failure = READ_FAILURE.search(second)
        if again == 2 and failure:
            return "reread", "re-read: " + generalise(failure.group(1)), (
                "first run: end\n\nrewritten control file:\n" +
                read_files(folder, [control])[control].decode("latin-1") +
                "\n\nre-read:\n" + second[-3000:])
    return None


def keep(findings, seed, files, kind, key, report):
    digest = hashlib.sha1(key.encode()).hexdigest()[:10]
    folder = os.path.join(findings, "%s-%s" % (kind, digest))
    if os.path.exists(folder):
        return False
    os.makedirs(folder)
    for name, data in files.items():
        with open(os.path.join(folder, name), "wb") as f:
            f.write(data)
    with open(os.path.join(folder, "ARGS"), "w") as f:
        f.write(" ".join(seed.args) + "\n")
    with open(os.path.join(folder, "report.txt"), "w") as f:
        f.write("class: %s\nkey: %s\nseed: %s\n\n%s\n" % (kind, key, seed.name, report))
    return True


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--binary", required=True)
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--findings", default="fuzz-findings")
    parser.add_argument("--seed", type=int, default=None)
    parser.add_argument("--timeout", type=float, default=20)
    options = parser.parse_args()
    binary = os.path.abspath(options.binary)
    findings = os.path.abspath(options.findings)
    os.makedirs(findings, exist_ok=True)
    rng = random.Random(options.seed)
    work = tempfile.mkdtemp(prefix="corvinet-fuzz-")
    try:
        seeds = repository_seeds(binary, work) + shared_seeds()
        print("seeds: %d" % len(seeds), flush=True)
        end = time.time() + options.seconds
        cases = 0
        outcomes = {}
        new = 0
        case_dir = os.path.join(work, "case")
        while time.time() < end:
            seed = rng.choice(seeds)
            files = mutate(rng, seed)
            shutil.rmtree(case_dir, ignore_errors=True)
            os.makedirs(case_dir)
            for name, data in files.items():
                with open(os.path.join(case_dir, name), "wb") as f:
                    f.write(data)
            result = classify(binary, case_dir, seed, files, options.timeout)
            cases += 1
            kind = result[0] if result else "clean"
            outcomes[kind] = outcomes.get(kind, 0) + 1
            if result and keep(findings, seed, files, *result):
                new += 1
                print("new finding: %s: %s" % (result[0], result[1]), flush=True)
            if cases % 500 == 0:
                print("cases %d, outcomes %s, new findings %d" % (cases, outcomes, new),
                      flush=True)
        print("cases %d, outcomes %s, new findings %d" % (cases, outcomes, new), flush=True)
        return 0
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
