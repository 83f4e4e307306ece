"""./dev build and ./dev demo."""

import os
import sys

import workshop

DEFAULT_PRESETS = ["host-release", "windows"]


def build(presets):
    for preset in presets or DEFAULT_PRESETS:
        workshop.step(f"build {preset}", workshop.build, preset)


def demo(arguments):
    workshop.step("build the demo", workshop.build, "host-release", "slotbus_demo", "oxdiagreport",
                  "oxdiagctl", "oxdiag-view")
    program = workshop.tree("host-release") / "examples/slotbus/slotbus_demo"
    os.execv(program, ["slotbus_demo", *arguments])


if __name__ == "__main__":
    {"build": build, "demo": demo}[sys.argv[1]](sys.argv[2:])
