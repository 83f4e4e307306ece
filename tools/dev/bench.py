"""./dev bench: the library beside its floors and peers, and held against its targets.

usage: ./dev bench              the tables, and last the targets: a few minutes
       ./dev bench --growth     what grows with the number of something, and a picture of it
       ./dev bench --write      both, and writes docs/performance.md and docs/growth.svg
       ./dev bench OPTIONS      a run with options of Google Benchmark, and its tables

But for the last, every benchmark runs many times for about 1 ms, others in between, and its shortest
run counts: one of them is disturbed by nothing, also on a machine that is busy."""

import json
import pathlib
import subprocess
import sys

import workshop

sys.path.insert(0, str(workshop.TOP / "bench"))

import growthCurves  # noqa: E402
import ratios  # noqa: E402
import results  # noqa: E402
import targets  # noqa: E402

PRESET = "host-release"
GROWTH = "/[0-9]+$"  # the names that end with a number
PAGE = workshop.TOP / "docs/performance.md"
PICTURE = workshop.TOP / "docs/growth.svg"
RUNS = 9
REPETITIONS = 25  # in each run
INTERLEAVED = ["--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.001"]

TEXT = """# Performance

This page is written by `./dev bench --write`, on this machine:

- processor: {processor}
- compiler: {compiler}

Times depend on the machine; the ratios in the table hardly do, since both sides of each were
measured in the same minutes, {repetitions} times for about 1 ms in random order, and the shortest
of each counts. Instructions depend on neither: `./dev budget` counts them, see
[testing.md](testing.md).

A *floor* is the same work written by hand for this one case, without the library: the least that it
can cost. A *peer* is somebody else's library that does the same work for its users. What exactly each
of them does is said in the sources in `bench`.

| peer | work |
|---|---|
| spdlog | a line with component, line and file, formatted into memory by its sink; each line has a time |
| snprintf | the C library's formatted text, into memory |
| flag | one flag in memory is tested, without category |
| absl | a status with one payload, made, copied and dropped; it has neither origin nor call stack |
| msgpack | the values of a description as a tree of objects, packed into bytes, unpacked, cloned |
| fmt | the text of a report, into memory |

{summary}.

{table}

## What holds up the rows that are not met

Seen by leaving one part after the other out, on the same machine:

- *macro, shown*: 22 ns are the destination slot, which sees to it that a destination can be switched,
  closed and destroyed while other threads write. 15 of these are the one locked instruction by which
  a text says that it is on the way. The copy that keeps a line apart from what its destination traces
  is 4 ns. Without both a line takes as long as its floor, which is 0.3 of spdlog's time.
- *macro, line mutex*: the same, and the lock.
- *six calls, shown*: the same, and a prefix that is written field by field.
- *error made, copied, dropped*: two lock pairs of the status heap, 21 ns each. Its blocks are told apart
  and joined under the lock, and a block that is given back twice is refused.

These are times of the library on Linux. `./dev kernel bench` puts lines of a driver under Wine beside
their floors.

## Growth

How the time grows with the number of something: 0 is the power of what does not grow, 1 of what
grows as the number does, the dashed lines.

![time over number](growth.svg)
"""


def report_file():
    return workshop.tree(PRESET) / "bench/report.json"


def program(options):
    return [workshop.tree(PRESET) / "bench/oxdiag_bench", f"--benchmark_out={report_file()}",
            "--benchmark_out_format=json", *options]


def read_report():
    try:
        return results.best_times(json.loads(report_file().read_text()))
    except results.Failed as failure:
        raise workshop.Failure(f"bench: {failure}") from failure


def measure(names, runs, repetitions):
    """The best of many short repetitions: they end between two turns of what else the machine does.
    Several runs, since one chooses once how often a benchmark's work is done in a repetition, and
    chooses badly when it is disturbed then."""
    return results.best_of(measure_once(names, repetitions) for _ in range(runs))


def measure_once(names, repetitions):
    workshop.demand(program([*INTERLEAVED, f"--benchmark_repetitions={repetitions}",
                             f"--benchmark_filter={names}"]))
    return read_report()


def run_pairs():
    times = workshop.step("run the benchmarks", measure, f"-{GROWTH}", RUNS, REPETITIONS)
    print(ratios.tables(times))
    print()
    print(targets.tables(times))
    return times


def run_growth():
    times = workshop.step("run the growing ones", measure, GROWTH, 3, 10)
    print(ratios.tables(times))
    return times


def run_some(options):
    """What the options choose, as they want it; the output of the program is shown."""
    if subprocess.run(program(options), check=False).returncode != 0:
        sys.exit(1)
    if report_file().stat().st_size != 0:
        print(ratios.tables(workshop.step("read the report", read_report)))


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.partition(": ")[2]
    return "an unknown processor"


def write(pairs, growth):
    cells, missing = targets.rows(pairs, targets.read_targets())
    if missing:
        sys.exit(f"bench: not measured: {', '.join(missing)}")
    compiler = workshop.demand(["g++", "--version"]).splitlines()[0]
    PAGE.write_text(TEXT.format(processor=processor(), compiler=compiler, repetitions=RUNS * REPETITIONS,
                                summary=targets.summary(cells), table=targets.as_markdown(cells)))
    PICTURE.write_text(growthCurves.draw(growth))
    print(f"written: {PAGE.relative_to(workshop.TOP)}, {PICTURE.relative_to(workshop.TOP)}")


def main(arguments):
    if arguments[:1] in (["-h"], ["--help"]):
        print(__doc__)
        return
    workshop.step("build the benchmarks", workshop.build, PRESET, "oxdiag_bench")
    if arguments == ["--write"]:
        write(run_pairs(), run_growth())
    elif arguments == ["--growth"]:
        picture = workshop.tree(PRESET) / "bench/growth.svg"
        picture.write_text(growthCurves.draw(run_growth()))
        print(f"written: {picture.relative_to(workshop.TOP)}")
    elif arguments:
        run_some(arguments)
    else:
        run_pairs()


if __name__ == "__main__":
    main(sys.argv[1:])
