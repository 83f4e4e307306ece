"""./dev soak: everything at the front door at once, for a time, under both kinds of sanitizers."""

import sys

import programs
import workshop

PROGRAM = "soak.frontDoor"
PRESETS = ["host-tsan", "host-debug"]
SECONDS = 300
SECONDS_TO_END = 120  # to unload, and to print a finding

USAGE = "usage: ./dev soak [SECONDS]     of each run, 300 if not given"


def environment(seconds):
    """The first finding ends the run."""
    return dict(programs.environment(), OXDIAG_SOAK_SECONDS=str(seconds),
                TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1")


def soak(preset, seconds):
    workshop.step(f"build {PROGRAM} of {preset}", workshop.build, preset, PROGRAM)
    folder = workshop.tree(preset) / "runs" / PROGRAM
    folder.mkdir(parents=True, exist_ok=True)
    program = workshop.tree(preset) / "tests/host/bin" / PROGRAM
    limit = ["timeout", "-k", "5", seconds + SECONDS_TO_END]
    code, output = workshop.run([*limit, *programs.without_random_layout(preset), program],
                                cwd=folder, env=environment(seconds))
    told = [line for line in output.splitlines() if line.startswith("soak: ")]
    print(f"{preset}: " + ("\n".join(told) if code == 0 and told else
                           f"FINDING, exit code {code}\n{output}"), flush=True)
    return code == 0 and bool(told)


def main(arguments):
    seconds = arguments[0] if arguments else str(SECONDS)
    if len(arguments) > 1 or not seconds.isdecimal() or int(seconds) == 0:
        print(USAGE, file=sys.stderr)
        return 2
    return 0 if all(soak(preset, int(seconds)) for preset in PRESETS) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
