"""Reads the samples of `gainsmithctl move -o` and compares their score with the one it printed."""
import csv
import json
import math
import sys

KEYS = {"peak_error_pulses", "rms_error_while_moving_pulses", "settling_time_after_the_profile_ms"}


def score(rows, band):
    reference = [float(r["position_reference_pulses"]) for r in rows]
    error = [abs(float(r["position_error_pulses"])) for r in rows]
    time = [float(r["time_ms"]) for r in rows]
    changes = [i for i in range(1, len(rows)) if reference[i] != reference[i - 1]]
    begin, end, after = changes[0] - 1, None, len(rows)
    for last, following in zip(changes, changes[1:] + [None]):
        if following != last + 1:
            end, after = last, following or len(rows)
            break
    moving = error[begin:end]
    settled = None
    for i in range(after - 1, end - 1, -1):
        if error[i] > band:
            break
        settled = i
    return {
        "peak_error_pulses": max(error[begin:after]),
        "rms_error_while_moving_pulses": math.sqrt(sum(e * e for e in moving) / len(moving)),
        "settling_time_after_the_profile_ms": None if settled is None else time[settled] - time[end],
    }


scores = json.load(open(sys.argv[1]))
samples = list(csv.DictReader(open(sys.argv[2])))
for printed in scores:
    rows = [r for r in samples if int(r["recording"]) == printed["recording"]]
    own = score(rows, printed["in_position_pulses"])
    for key in KEYS:
        same = printed[key] == own[key] or (
            own[key] is not None and printed[key] is not None
            and math.isclose(printed[key], own[key], rel_tol=1e-6))
        if not same:
            sys.exit(f"{key}: printed {printed[key]}, from the samples {own[key]}")
print(f"{len(scores)} recording(s) agree")
