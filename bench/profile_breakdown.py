#!/usr/bin/env python3
"""Where the time of one cycle of the large triclinic job goes, by part of the cycle.

Runs three benchmarks of build/corvinet_bench under `perf record` (the pass over the points, the
Bragg R-factors of the cycle's report, the solution of the equations), sorts the samples of each
by function into the parts of a cycle and prints each part's share and its CPU milliseconds per
cycle (share times the benchmark's CPU time). Needs `perf` (Debian: linux-perf).

    python3 bench/profile_breakdown.py [build/corvinet_bench]
"""
import json
import os
import re
import subprocess
import sys
import tempfile

# The parts of a cycle, by the functions (regular expressions) their time is spent in.
PARTS = [
    ("reflections and structure factors",
     r"ComputeAngleReflection|ComputeReflection|EvaluateStructureFactor|AddOperator|"
     r"SumOperators|PrepareOperators|SpeciesFormFactor|AtomDerivatives|__sincos|sincos|"
     r"__ieee754_exp_fma|^exp@|PeakWidth|PreparePeakShape|IntensityFactors|LorentzPolarisation|"
     r"ReflectionStructureF2|SetRowSpan|PseudoVoigtWidths|BroadeningOf|SizeStrain|TchWidths"),
    ("ordering of the reflections", r"OrderReflections|PeakIntervalOf"),
    ("profile values", r"ProfileValueWithSlopes|CalculatePointRow|__expf|ShapeParameterSlopes|"
                       r"PeakAtPoint|FamilySlopes|BackgroundDerivatives|BackgroundAt|"
                       r"CalculateChunkPoints|RowEnd"),
    ("derivative rows", r"AddScaledSpan|AddReflectionRow"),
    ("accumulation", r"AddBlockRows|AddPointRows|FlushBlockRows|FlushNormalBlock|AccumulateChunk"),
    ("solve", r"SolveNormalEquations|SolveNormalSums|SolveCycleEquations|^Solve$|Equilibrate|"
              r"ChoosePivot|^Exchange$"),
    ("Bragg R-factors (report)", r"PartitionReflection|ProfileValue$|PeakValueAt|PointLoopProfile|"
                                 r"PassProfile|SumPhaseShares|ComputeBraggFactors"),
]

# Each benchmark with the part its unsorted samples belong to (None: left as other).
BENCHES = [
    ("pass over the points", "BM_LargeJobCycle/1/real_time", None),
    ("Bragg R-factors", "BM_LargeJobBraggFactors", None),
    ("solve", "BM_LargeJobSolve", "solve"),
]


def cpu_ms(binary, name):
    out = subprocess.run([binary, "--benchmark_filter=^" + re.escape(name) + "$",
                          "--benchmark_repetitions=3", "--benchmark_report_aggregates_only=true",
                          "--benchmark_format=json"], capture_output=True, text=True, check=True)
    for b in json.loads(out.stdout)["benchmarks"]:
        if b.get("aggregate_name") == "median":
            scale = {"ms": 1.0, "us": 1e-3, "ns": 1e-6, "s": 1e3}[b["time_unit"]]
            return b["cpu_time"] * scale
    raise RuntimeError("no median for " + name)


def symbol_shares(binary, name, folder):
    data = os.path.join(folder, "perf.data")
    subprocess.run(["perf", "record", "-q", "-o", data, binary,
                    "--benchmark_filter=^" + re.escape(name) + "$", "--benchmark_min_time=3"],
                   capture_output=True, check=True)
    report = subprocess.run(["perf", "report", "-i", data, "--no-children", "--stdio",
                             "--sort", "sym", "--percent-limit", "0.05"],
                            capture_output=True, text=True, check=True).stdout
    shares = {}
    for line in report.splitlines():
        m = re.match(r"\s+([0-9.]+)%\s+\[[.k]\]\s+(.*)$", line)
        if m:
            shares[m.group(2).strip()] = float(m.group(1))
    return shares


def part_of(symbol):
    short = re.sub(r"\(.*$", "", symbol).split("::")[-1]
    for part, pattern in PARTS:
        if re.search(pattern, short) or re.search(pattern, symbol):
            return part
    return "other (the benchmark's set-up, libraries)"


def main():
    binary = sys.argv[1] if len(sys.argv) > 1 else "build/corvinet_bench"
    total = 0.0
    with tempfile.TemporaryDirectory() as folder:
        for title, name, whole in BENCHES:
            ms = cpu_ms(binary, name)
            parts = {}
            for symbol, share in symbol_shares(binary, name, folder).items():
                part = whole or part_of(symbol)
                parts[part] = parts.get(part, 0.0) + share
            print(f"{title} ({name}): {ms:.2f} ms CPU per call")
            for part, share in sorted(parts.items(), key=lambda x: -x[1]):
                print(f"  {part:45s} {share:5.1f} %  {share * ms / 100.0:7.2f} ms")
            total += ms
        whole = cpu_ms(binary, "BM_LargeJobWholeCycle/1/real_time")
        print(f"whole cycle (BM_LargeJobWholeCycle/1): {whole:.2f} ms CPU")
        print(f"  update, cycle report and the rest: {whole - total:.2f} ms "
              "(the whole cycle less the three parts above)")


if __name__ == "__main__":
    main()
