"""./dev build, ./dev demo and ./dev bench."""

import os
import sys

import workshop

DEFAULT_PRESETS = ["host-release", "windows"]


def build(presets):
    for preset in presets or DEFAULT_PRESETS:
        workshop.step(f"build {preset}", workshop.build, preset)


def demo(arguments):
    workshop.step("build the demo", workshop.build, "host-release", "slotbus_demo", "oxdiagreport",
                  "oxdiagctl")
    program = workshop.tree("host-release") / "examples/slotbus/slotbus_demo"
    os.execv(program, ["slotbus_demo", *arguments])


def bench(arguments):
    """The benchmarks, and then the library beside its peers in the same run."""
    workshop.step("build the benchmarks", workshop.build, "host-release", "oxdiag_bench")
    folder = workshop.tree("host-release") / "bench"
    report = folder / "report.json"
    code = os.spawnv(os.P_WAIT, folder / "oxdiag_bench", [
        "oxdiag_bench", f"--benchmark_out={report}", "--benchmark_out_format=json", *arguments])
    if code == 0:
        print(workshop.demand([sys.executable, workshop.TOP / "bench/ratios.py", report]), end="")
    sys.exit(code)


if __name__ == "__main__":
    {"build": build, "demo": demo, "bench": bench}[sys.argv[1]](sys.argv[2:])
