"""The page of a trace in a browser without a window."""

import re
import sys

import workshop

TEST = workshop.TOP / "tests/browser/pageTest.py"
PICTURES = workshop.OUT / "browser"
COUNT = re.compile(r"^Ran (\d+) tests? in", re.MULTILINE)
FAILED = re.compile(r"^(?:FAIL|ERROR): (\S+ \(\S+\))", re.MULTILINE)


def check():
    workshop.build(workshop.PROGRAMS, "slotbus_demo", "oxdiag-view")
    programs = workshop.tree(workshop.PROGRAMS)
    code, output = workshop.run([sys.executable, TEST,
                                 programs / "examples/slotbus/slotbus_demo",
                                 programs / "tools/oxdiagview/oxdiag-view", PICTURES])
    ran = COUNT.search(output)
    failed = list(dict.fromkeys(FAILED.findall(output)))
    if ran is None or (code != 0 and not failed):
        failed.append("the page in a browser: the test did not come to its end")
    passed = max(0, int(ran[1]) - len(failed)) if ran else 0
    return workshop.Outcome(passed, failed, output)
