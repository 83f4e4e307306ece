"""Programs for Windows, under Wine: oxdiagctl as far as nobody has to answer it, oxdiagreport beside
the one for Linux, oxdiag-view, and the branch of platform/compiler for the vendor's compiler."""

import pathlib
import re
import shutil
import subprocess
import tempfile

import demos
import versions
import wine
import workshop

PRESET = "windows-tools"
PROGRAM = workshop.tree(PRESET) / "tools/oxdiagctl/oxdiagctl.exe"
REPORT = workshop.tree(PRESET) / "tools/oxdiagreport/oxdiagreport.exe"
REPORT_HERE = workshop.tree(workshop.PROGRAMS) / "tools/oxdiagreport/oxdiagreport"
VIEW = workshop.tree(PRESET) / "tools/oxdiagview/oxdiag-view.exe"
DEFAULT = r"\\.\oxdiag"
FOLDER = r"C:\windows"  # opening one as a file is denied
FILE = r"C:\windows\win.ini"  # no device: it knows no device controls

# Name, arguments, exit code, the whole of standard error, a part of standard output.
CASES = [
    ("help", ["--help"], 0, "", "Usage: oxdiagctl"),
    ("help of a command", ["trace", "--help"], 0, "", "  --timestamp [on|off] "),
    ("words for the shell", ["words", "assert"], 0, "", "--terminate\n"),
    ("no command", [], 64, "a command is needed: list, trace, assert or version\n"
     "Run with --help for more information.\n", ""),
    ("an unknown word", ["trace", "--timestmp"], 4,
     "oxdiagctl: '--timestmp' is no option, perhaps --timestamp.\n", ""),
    ("a path of Windows", ["trace", "--destination", "file", "/x.out"], 4,
     "oxdiagctl: '/x.out' is neither overwrite nor append nor a name of 127 characters at most "
     "such as C:/rack.out.\n", ""),
    ("nobody listens", ["list"], 2, f"oxdiagctl: nobody listens at {DEFAULT}; as an administrator, "
     "start the driver with 'sc start oxdiagcontrol'.\n", ""),
    ("nobody listens elsewhere", ["trace", "--at", r"\\.\nobody", "--off"], 2,
     "oxdiagctl: nobody listens at \\\\.\\nobody.\n", ""),
    ("access is denied", ["--at", FOLDER, "list"], 3,
     f"oxdiagctl: access to {FOLDER} is denied; administrators only, run it as one.\n", ""),
    ("something else listens", ["--at", FILE, "list"], 1,
     f"oxdiagctl: at {FILE}, something else listens.\n", ""),
]


# What oxdiag-view shows of a trace with line ends of a file of Windows.
TRACE = (b"[rack--17--a.cpp--0x1A--5000000000000--100----------] the first\r\n"
         b"[rack--18--a.cpp--0x1A--5000000016000--60-----------] open; {\r\n"
         b"[rack--19--a.cpp--0x1A--5000000017000--140----------]   \xC3\xA4 failed\r\n")
SHOWN = ("   0.000000                 0x1A   100  rack a.cpp:17         the first\n"
         "   0.000016    +16.0 \u00B5s     0x1A    60  rack a.cpp:18         open; {\n"
         "   0.000017    +1.00 \u00B5s     0x1A   140  rack a.cpp:19           \u00E4 failed\n")

# Name, arguments in front of the trace's name, exit code, the whole of standard output or a part.
VIEW_CASES = [
    ("a trace", ["--rate", "1GHz"], 0, SHOWN),
    ("the library's filter", ["--rate", "1GHz", "--filter", "verb>=140 && file==a.cpp"], 0,
     "   0.000000                 0x1A   140  rack a.cpp:19           \u00E4 failed\n"),
    ("a dump without a recorder", ["--dump"], 1, ""),
    ("slices", ["--perfetto", "-"], 0, '"name":"open","ph":"X"'),
    ("a summary", ["--rate", "1GHz", "--summary"], 0, "3 lines, of which 3 with a prefix"),
    ("lines of JSON", ["--rate", "1GHz", "--jsonl"], 0, '{"Body":"\u00E4 failed","SeverityNumber":17,'),
    ("no trace", ["nowhere.out", "--filter", "verb>=1", "--follow"], 64, ""),
]


# gcc has not all of the vendor's intrinsics, clang does; the one header that neither has comes last.
BRANCH = workshop.TOP / "tests/compile/kit/vendorBranch.cpp"
BRANCH_PROGRAM = workshop.tree(PRESET) / "vendorBranch.exe"
KERNEL_CALLS = workshop.tree(PRESET) / "tests/program/kernelCalls.exe"
BRANCH_COMPILER = [
    "clang++", "--target=x86_64-w64-mingw32", "-fms-extensions", "-std=c++20", "-O2", "-Wall",
    "-Wextra", "-Werror", "-fno-exceptions", "-fno-rtti", "-nostdinc++",
    "-idirafter", workshop.TOP / "tests/compile/kit/msvc",
    f"-I{workshop.TOP}/platform/compiler/include",
    f"-I{workshop.TOP}/platform/compiler/windows/include"]


# Name, arguments of oxdiagreport in a folder with statuses, whether they come as standard input.
REPORTS = [
    ("text", ["whole"], False),
    ("JSON in German", ["--format", "json", "--language", "german", "wh\u00f6le \u03b1"], False),
    ("standard input", [], True),
    ("help", ["--help"], False),
    ("a file that is cut off", ["cut"], False),
    ("an empty file", ["empty"], False),
    ("no statuses", ["noise"], False),
    ("a folder", ["."], False),
    ("no such file", ["nothing"], False),
    ("a path", ["/nowhere/nothing"], False),
    ("a wrong word", ["--format", "yaml", "whole"], False),
]

# What every Windows has.
SYSTEM_LIBRARIES = {"kernel32.dll", "msvcrt.dll", "ntdll.dll", "user32.dll", "advapi32.dll",
                    "ws2_32.dll"}


def every_program():
    """The programs that the build makes, by their paths."""
    rules = (workshop.tree(PRESET) / "build.ninja").read_text()
    return [workshop.tree(PRESET) / path
            for path in sorted(set(re.findall(r"^build (tools/\S+\.exe):", rules, re.M)))]


def build_branch():
    made = BRANCH_PROGRAM.with_suffix(".o")
    workshop.demand([*BRANCH_COMPILER, "-c", BRANCH, "-o", made])
    workshop.demand(["x86_64-w64-mingw32-g++", "-static", made, "-o", BRANCH_PROGRAM])


def run_program(arguments, program=PROGRAM):
    environment = dict(wine.environment(), WINEDEBUG="-all", LC_ALL="C.UTF-8")
    done = subprocess.run(["wine", program, *arguments], env=environment, encoding="utf-8",
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=wine.CALL_LIMIT)
    return done.returncode, done.stdout.replace("\r", ""), done.stderr.replace("\r", "")


def write_statuses(folder):
    demos.save_on_host(folder / "whole")
    raw = (folder / "whole").read_bytes()
    (folder / "wh\u00f6le \u03b1").write_bytes(raw)
    (folder / "cut").write_bytes(raw[:777])
    (folder / "empty").write_bytes(b"")
    (folder / "noise").write_bytes(bytes(range(256)) * 4096)


def run_report(program, case, folder, **more):
    """Exit code, standard output to the byte, and what it complained of."""
    _, arguments, has_input = case
    environment = dict(wine.environment(), WINEDEBUG="-all", LC_ALL="C.UTF-8", **more)
    with open(folder / ("whole" if has_input else "empty"), "rb") as file:
        done = subprocess.run([*program, *arguments], cwd=folder, env=environment, stdin=file,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=wine.CALL_LIMIT)
    return done.returncode, done.stdout, done.stderr.replace(b"\r", b"")


def report_check(case, folder):
    ours = run_report([REPORT_HERE], case, folder)
    theirs = run_report(["wine", REPORT], case, folder)
    return f"oxdiagreport.exe {case[0]}", "" if ours == theirs else f"{ours}\n{theirs}"


def symbols_checks(folder):
    """A symbolizer is taken from PATH, and none that lies beside the statuses. Modules are found in
    a folder with a name that no code page has. The symbolizer here knows nothing."""
    symbols = folder / "s\u00f6 \u03b1"
    symbols.mkdir()
    shutil.copyfile(demos.DEMO, symbols / demos.DEMO.name)
    shutil.copyfile(REPORT, folder / "llvm-symbolizer.exe")
    demos.save_on_host(folder / "modules", "--modules")
    named = (folder / "modules").read_bytes()
    (folder / "strange").write_bytes(named.replace(b"slotbus_demo", b"slotbus\xff\xed\xa0\x80\xc3"))
    on_path = {"WINEPATH": f"Z:{folder}"}
    runs = {"no symbolizer": ({}, "modules", b"demo+0x", b"llvm-symbolizer is not on PATH"),
            "a symbolizer": (on_path, "modules", b" (no symbols for it)\n", b""),
            "strange bytes": (on_path, "strange", b" (no such file in the folder)\n", b"")}
    for name, (more, file, part, sentence) in runs.items():
        case = ("", ["--symbols", symbols.name, file], False)
        code, output, errors = seen = run_report(["wine", REPORT], case, folder, **more)
        is_said = sentence in errors and bool(sentence) == bool(errors)
        is_good = code == 0 and part in output and is_said
        yield f"oxdiagreport.exe {name}", "" if is_good else str(seen)


def report_checks():
    """Both programs say the same of the same files."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        write_statuses(folder)
        return [*(report_check(case, folder) for case in REPORTS), *symbols_checks(folder)]


def alone_check(program):
    """No library of the compiler's has to come with it."""
    text = workshop.demand(["llvm-readobj", "--coff-imports", program])
    names = {name.lower() for name in re.findall(r"^\s+Name: (\S+\.dll)$", text, re.M | re.I)}
    extra = [name for name in names - SYSTEM_LIBRARIES if not name.startswith("api-ms-win-")]
    return f"{program.name} needs what every Windows has", ", ".join(sorted(extra))


def property_check(program):
    title, wrong = versions.property_check(program)
    return title, ", ".join(wrong)


def check_case(case):
    """Nothing when the case holds, otherwise what was seen."""
    name, arguments, code, errors, part = case
    seen = run_program(arguments)
    if seen[0] == code and seen[2] == errors and part in seen[1]:
        return ""
    return f"{name}: exit code {seen[0]}\n{seen[1]}{seen[2]}"


def check_view(case):
    """The same for oxdiag-view. It has written bytes as they are: no line has another end."""
    name, arguments, code, part = case
    with tempfile.TemporaryDirectory() as folder:
        trace = pathlib.Path(folder) / "trace.out"
        trace.write_bytes(TRACE)
        seen = run_program([*arguments, trace], VIEW)
    if seen[0] == code and part in seen[1] and (part or not seen[1]):
        return ""
    return f"oxdiag-view, {name}: exit code {seen[0]}\n{seen[1]}{seen[2]}"


def view_name_checks():
    """A trace and a page with names that no code page has; the page tells that of the trace."""
    with tempfile.TemporaryDirectory() as name:
        trace = pathlib.Path(name) / "tr\u00e4ce \u03b1.out"
        page = pathlib.Path(name) / "p\u00e4ge \u03b1.html"
        trace.write_bytes(TRACE)
        for title, arguments, code, part in [
                ("a page with any name", ["--html", page, trace], 0, ""),
                ("the trace is not written over", ["--html", trace, trace], 64, "is the trace itself"),
                ("no file with any name", [page.with_suffix(".out")], 2, "p\u00e4ge \u03b1.out")]:
            seen = run_program(arguments, VIEW)
            is_good = seen[0] == code and part in seen[2] and bool(part) == bool(seen[2])
            yield f"oxdiag-view.exe {title}", "" if is_good else str(seen)
        text = page.read_text("utf-8") if page.exists() else ""
        told = trace.name in text and "\u00e4 failed" in text and trace.read_bytes() == TRACE
        yield "oxdiag-view.exe tells the name", "" if told else text[:2000]


def check_faults(program):
    """The same of a program that counts its faults itself."""
    code, seen, errors = run_program([], program)
    return "" if (code, seen) == (0, "0 faults\n") else f"{program.name}: {code}\n{seen}{errors}"


def control_checks():
    yield from ((f"oxdiagctl.exe {case[0]}", check_case(case)) for case in CASES)
    yield "the vendor's branch runs", check_faults(BRANCH_PROGRAM)


def program_checks():
    yield from report_checks()
    yield from ((f"oxdiag-view.exe {case[0]}", check_view(case)) for case in VIEW_CASES)
    yield from view_name_checks()
    yield "the kernel calls of programs", check_faults(KERNEL_CALLS)


def outcome_of(checks, programs):
    """The checks under Wine, and what each of the files must be."""
    with wine.alone():
        wine.create_prefix()
        try:
            results = list(checks)
        finally:
            wine.stop_server()
    for program in programs:
        results += [property_check(program), alone_check(program)]
    failed = [title for title, complaint in results if complaint]
    return workshop.Outcome(len(results) - len(failed), failed,
                            "\n".join(complaint for _, complaint in results if complaint))


def check():
    workshop.build(PRESET, "oxdiagctl")
    build_branch()
    return outcome_of(control_checks(), [PROGRAM])


def check_programs():
    """Those that have the library within them, which takes a minute to build."""
    workshop.build(PRESET)
    workshop.build(workshop.PROGRAMS, "slotbus_demo", "oxdiagreport")
    return outcome_of(program_checks(), [program for program in every_program()
                                         if program != PROGRAM])
