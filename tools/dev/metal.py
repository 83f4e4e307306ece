"""./dev metal [TEXT]: the serial destination on an emulated PC, one run of the emulator for each case."""

import sys

import emulator
import workshop

sys.path.insert(0, str(workshop.TOP / "tests/metal"))

import metalCases  # noqa: E402

RUNS = workshop.tree("metal") / "runs"


def complaints(job):
    number, case = job
    run = emulator.run(RUNS / f"{number:02}", case.line, case.port, case.clock)
    return case.complaints(run)


def results(text=""):
    """(title, what is wrong) for every case with this text in its title."""
    cases = [case for case in metalCases.cases() if text in case.title]
    return list(zip([case.title for case in cases],
                    workshop.in_parallel(complaints, enumerate(cases))))


def lines_of(title, wrong):
    head = f"FAILED metal: {title}" if wrong else f"ok {title}"
    return [head, *(f"    {text}" for text in wrong)]


def check():
    """The step of ./dev test."""
    workshop.build("metal")
    found = results()
    failed = [(title, wrong) for title, wrong in found if wrong]
    output = "\n".join(line for title, wrong in failed for line in lines_of(title, wrong))
    return workshop.Outcome(len(found) - len(failed), [f"metal: {title}" for title, _ in failed],
                            output)


def main(text=""):
    workshop.step("build the image for the bare machine", workshop.build, "metal")
    found = workshop.step("run its cases in the emulator", results, text)
    for title, wrong in found:
        print("\n".join(lines_of(title, wrong)))
    if not found:
        print(f"no case has '{text}' in its name")
    failed = sum(bool(wrong) for _, wrong in found)
    print(f"{len(found) - failed} passed, {failed} failed")
    return 0 if found and not failed else 1


if __name__ == "__main__":
    sys.exit(main(" ".join(sys.argv[1:])))
