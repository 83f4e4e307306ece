"""./dev build, ./dev demo and ./dev bench."""

import os
import sys

import workshop

DEFAULT_PRESETS = ["host-release", "windows"]


def build(presets):
    for preset in presets or DEFAULT_PRESETS:
        workshop.step(f"build {preset}", workshop.build, preset)


def demo(arguments):
    workshop.step("build the demo", workshop.build, "host-release", "slotbus_demo")
    program = workshop.tree("host-release") / "examples/slotbus/slotbus_demo"
    os.execv(program, ["slotbus_demo", *arguments])


def bench(arguments):
    workshop.step("build the benchmarks", workshop.build, "host-release", "bench/all")
    folder = workshop.tree("host-release") / "bench"
    programs = sorted(path for path in folder.iterdir()
                      if path.is_file() and os.access(path, os.X_OK))
    codes = [os.spawnv(os.P_WAIT, path, [path.name, *arguments]) for path in programs]
    sys.exit(0 if codes and not any(codes) else 1)


if __name__ == "__main__":
    {"build": build, "demo": demo, "bench": bench}[sys.argv[1]](sys.argv[2:])
