"""Measures how much the probe slows down runs of all samples with the stand-in.

probe_ratio.py ROOT RUNS. Runs all samples RUNS times for each of three kinds: without the probe, with the
probe, and with a probe that also records tag look-ups. Prints the median times of each kind, and their
ratios to the times without the probe. Exits with 1 if a ratio is above 1.5.
"""

import os
import re
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

BAR = 1.5
PROCESS = re.compile(r"\bprocess ([0-9.]+) ms")


def run(root, build, options):
    """Runs all samples once. Returns the seconds of the whole run, and the seconds spent in processImage."""
    samples = sorted((root / "samples").glob("*.json"))
    begin = time.monotonic()
    # The status is ignored: without the probe there are no events, so ./run can't give a verdict.
    output = subprocess.run([root / "run", "--wide", *options, *samples], env={**os.environ, "ORLU_BUILD": str(build)},
                            capture_output=True, text=True, check=False).stdout
    seconds = time.monotonic() - begin
    shares = [float(share) / 1000 for share in PROCESS.findall(output)]
    if len(shares) != len(samples):
        sys.exit(f"{len(shares)} of {len(samples)} samples ran:\n{output}")
    return seconds, sum(shares)


def main():
    root, runs = Path(sys.argv[1]), int(sys.argv[2])
    built = root / "build/dev"
    with tempfile.TemporaryDirectory() as work:
        # A build without the probe.
        bare = Path(work, "bare")
        bare.mkdir()
        for folder in ("lib", "java"):
            (bare / folder).symlink_to(built / folder)
        out = ["--out", str(Path(work, "out"))]
        kinds = {"without the probe": (bare, out), "with the probe": (built, out),
                 "with look-ups too": (built, out + ["--events", str(Path(work, "events"))])}
        taken = {kind: [] for kind in kinds}
        for _ in range(runs):
            for kind, (build, options) in kinds.items():
                taken[kind].append(run(root, build, options))
    medians = {kind: [statistics.median(column) for column in zip(*rows)] for kind, rows in taken.items()}
    plain = medians["without the probe"]
    ratios = {kind: [seconds / base for seconds, base in zip(row, plain)] for kind, row in medians.items()}
    for kind, (whole, share) in medians.items():
        print(f"{kind}: {whole:.2f} s, ratio {ratios[kind][0]:.2f}; "
              f"in processImage {share:.3f} s, ratio {ratios[kind][1]:.2f}")
    return max(max(row) for row in ratios.values()) > BAR


if __name__ == "__main__":
    sys.exit(main())
