"""What only the compiler can show: headers that stand alone, code that must not compile, code that
must compile without warning, the samples of the documents, and kernel structures laid out as in the
driver kit.

A source beside this file is compiled for Linux and for Windows with the flags of the product:

  // expect-error: TEXT    at the end of a line: the compiler must refuse that line with a message
                           that contains TEXT, and must refuse no other line
  (no such comment)        the file must compile without a warning, also by g++ with its
                           undefined-behaviour sanitizer, for which less is a constant

What begins with ddk is compiled against the driver kit headers of mingw-w64 instead. Nothing is
linked.
"""

import json
import pathlib
import re
import shlex

import documents
import workshop

HERE = pathlib.Path(__file__).resolve().parent
DRIVER_KIT = pathlib.Path("/usr/share/mingw-w64/include")
EXPECTATION = re.compile(r"// expect-error: (.+?)\s*$", re.MULTILINE)
ERROR_LINE = re.compile(r"^(.+?):(\d+):\d+: (?:fatal )?error: (.*)$", re.MULTILINE)


class Target:
    """The compiler call of the product on one target, as a client of its headers makes it, perhaps
    with more options."""

    def __init__(self, preset, *more):
        self.name = " ".join([preset, *more])
        database = json.loads((workshop.tree(preset) / "compile_commands.json").read_text())
        product = f"{workshop.TOP}/source/"
        entry = next(entry for entry in database if entry["file"].startswith(product))
        words = shlex.split(entry["command"])
        words = words[:words.index("-o")] + words[words.index("-o") + 2:]
        self.command = [word for word in words if word not in ("-c", entry["file"])
                        and not re.fullmatch(r"-D\w+_BUILD", word)] + [*more]
        self.folder = entry["directory"]

    def public_folders(self):
        folders = [pathlib.Path(word[2:]) for word in self.command if word.startswith("-I")]
        return [folder for folder in folders if folder.name == "include"]

    def compile(self, source, *more):
        return workshop.run([*self.command, "-fsyntax-only", *more, "-x", "c++", "-"],
                            cwd=self.folder, input=source)


def header_check(job):
    """A header alone, and again behind itself: it names all it needs and guards itself."""
    target, header = job
    code, output = target.compile(f'#include "{header}"\n#include "{header}"\n')
    return f"{header} alone, {target.name}", code == 0, output


def header_jobs(target):
    """All but those for the vendor's compiler alone, which besideKit.py looks at."""
    return [(target, path.relative_to(folder))
            for folder in target.public_folders() for path in sorted(folder.rglob("*.h"))
            if path.parent.name != "msvc"]


def expected_errors(source):
    lines = source.splitlines()
    found = {number: EXPECTATION.search(line) for number, line in enumerate(lines, 1)}
    return {number: match.group(1) for number, match in found.items() if match}


def seen_errors(output):
    return [(place, int(number), text) for place, number, text in ERROR_LINE.findall(output)]


def errors_are_as_expected(expected, seen):
    """Every expected line is refused in the expected words, every refused line was expected."""
    met = {number for _, number, text in seen if expected.get(number, "\n") in text}
    lines = {number for place, number, _ in seen if place == "<stdin>"}
    return met == set(expected) and lines == set(expected) and len(lines) > 0


def refusal_check(job):
    target, path = job
    source = path.read_text()
    code, output = target.compile(source, f"-I{HERE}", "-ferror-limit=0")
    held = code != 0 and errors_are_as_expected(expected_errors(source), seen_errors(output))
    return f"{path.name} is refused, {target.name}", held, output or "compiled without an error"


def acceptance_check(job):
    target, path = job
    code, output = target.compile(path.read_text(), f"-I{HERE}")
    return f"{path.name} compiles, {target.name}", code == 0, output


def layout_check(path):
    ntos = workshop.TOP / "platform/ntos"
    code, output = workshop.run([
        "clang++", "--target=x86_64-w64-mingw32", "-std=c++20", "-fms-extensions",
        "-Wall", "-Wextra", "-Werror", "-isystem", DRIVER_KIT, "-isystem", DRIVER_KIT / "ddk",
        f"-I{ntos}/include", f"-I{ntos}/windows/include", f"-I{workshop.tree('windows')}/source/generated",
        "-fsyntax-only", path])
    return f"{path.name} against the driver kit", code == 0, output


def source_checks(targets, accepting):
    """(check, job) for every source in this folder; the targets `accepting` refuse in other words."""
    for path in sorted(HERE.glob("*.cpp")):
        if path.name.startswith("ddk"):
            yield layout_check, path
            continue
        if EXPECTATION.search(path.read_text()):
            yield from ((refusal_check, (target, path)) for target in targets)
        else:
            yield from ((acceptance_check, (target, path)) for target in [*targets, *accepting])


def outcome(results):
    failed = [(name, output) for name, held, output in results if not held]
    text = "\n".join(f"{name}:\n{output}" for name, output in failed)
    return workshop.Outcome(len(results) - len(failed), [name for name, _ in failed], text)


def check_headers():
    for preset in ("host-plain", "windows"):
        workshop.configure(preset)
    jobs = header_jobs(Target("host-plain")) + header_jobs(Target("windows"))
    return outcome(workshop.in_parallel(header_check, jobs))


def check_sources():
    for preset in ("host-clang", "host-plain", "windows"):
        workshop.configure(preset)
    targets = [Target("host-clang"), Target("windows")]
    work = list(source_checks(targets, [Target("host-plain", "-fsanitize=undefined")]))
    work += [(documents.sample_check, (target, page))
             for page in documents.documents() for target in targets
             if documents.is_for(page, target)]
    return outcome(workshop.in_parallel(lambda item: item[0](item[1]), work))
