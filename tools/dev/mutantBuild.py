"""The test programs of a preset with all mutants of the product woven in: each source is compiled
once, and a number in the environment chooses the mutant when a program runs."""

import hashlib
import json
import pathlib
import re
import shlex
import shutil

import workshop

PRESET = "host-plain"
TREE = workshop.tree(PRESET)
HERE = workshop.OUT / "mutants"
KIT = workshop.TOP / "tests/mutants"
# Debian's Python, which sees Debian's python3-clang whichever Python runs the workshop.
PYTHON = "/usr/bin/python3"

FOLDERS = ["source", "platform/vexk/common", "platform/qelmk/common", "platform/vexk/host"]
# The library as image_tests loads it: a file of its own, compiled once more.
IMAGE = "tests/host/image/liboxdiagk_image.so"
IMAGE_PROGRAM, IMAGE_LOADER = "image_tests", "tests/host/image/tImage.cpp"
SCHEDULED = "schedules."  # programs whose parts have a point of a schedule at each atomic operation
# What is not in the library of the host, but in the one program that tests it there.
ALONE = {"platform/vexk/windows/tImageHeaders.cpp": "vexk.imageHeaders"}
ARCHIVES = {"source/": "source/liboxdiagk.a", "platform/vexk/": "platform/vexk/libvexk.a",
            "platform/qelmk/": "platform/qelmk/libqelmk.a"}
NUMBERS_OF_A_FILE = 1024
MOST_FILES = 512
# Stacks as deep as without the wrapping of every expression, or nearly.
OPTIONS = ["-O1", "-g0", "-Wno-narrowing", "-Werror=vla", "-include", KIT / "mutant.h"]
# What an error of the compiler names.
PLACE_OF_ERROR = re.compile(r"^([^\s:]+\.(?:cpp|h)):(\d+):(?:(\d+):)?( error:)?", re.MULTILINE)
MOST_ROUNDS = 12
OBJECTS = (".o", ".obj")


class Source:
    """One file of the product, as the preset compiles it."""

    tree, here, options = TREE, HERE, OPTIONS
    parsed = ("-I", "-D", "-std", "-f")  # words that the weaving needs too

    def __init__(self, command, number):
        self.file = pathlib.Path(command["file"])
        self.name = str(self.file.relative_to(workshop.TOP))
        self.words, self.object = words_of(command)
        self.base = 1 + number * NUMBERS_OF_A_FILE
        self.woven = self.here / "code" / self.name
        self.made = self.here / "objects" / self.name
        self.record = self.here / "places" / f"{self.name}.json"

    def digest(self):
        digest = hashlib.sha256(self.file.read_bytes())
        for part in (KIT / "mutant.h", workshop.TOP / "tools/dev/mutantPlaces.py"):
            digest.update(part.read_bytes())
        return digest.hexdigest()

    def mutants(self):
        return json.loads(self.record.read_text())["mutants"]

    def is_woven(self, digest):
        if not self.record.exists() or not self.made_object().exists():
            return False
        record = json.loads(self.record.read_text())
        newest = max(header.stat().st_mtime for header in headers())
        return (record["digest"], record["base"]) == (digest, self.base) and \
            self.made_object().stat().st_mtime > newest

    def made_object(self):
        return self.made.parent / (pathlib.Path(self.object).name)

    def weave(self, dropped):
        options = [word for before, word in zip(self.words, self.words[1:])
                   if word.startswith(self.parsed) and before != "-Xclang"]
        options += ["-Wno-unknown-warning-option", *self.headers_of_compiler()]
        return json.loads(workshop.demand(
            [PYTHON, workshop.TOP / "tools/dev/mutantPlaces.py", self.file,
             ",".join(map(str, sorted(dropped))), *options]))

    def headers_of_compiler(self):
        """The options that name them, where the weaving does not find them itself."""
        return []

    def compile(self):
        return workshop.run(self.compilation(self.words, self.made_object()), cwd=self.tree)

    def compilation(self, words, made):
        return [*words, *self.options, f"-DOXDIAG_MUTANT_BASE={self.base}",
                "-iquote", self.file.parent, "-o", made, "-c", self.woven]

    def make(self):
        """Weaves until it compiles: what the compiler objects to is left out."""
        digest = self.digest()
        if self.is_woven(digest):
            return
        dropped = set()
        for path in (self.woven, self.made, self.record):
            path.parent.mkdir(parents=True, exist_ok=True)
        for _ in range(MOST_ROUNDS):
            weaving = self.weave(dropped)
            self.woven.write_text(weaving["text"])
            code, output = self.compile()
            if code == 0:
                break
            wrong = objected(self.file, output, dict(weaving["spans"])) - dropped
            if not wrong:
                raise workshop.Failure(f"{self.name} does not compile with its mutants\n{output}")
            dropped |= wrong
        else:
            raise workshop.Failure(f"{self.name}: {MOST_ROUNDS} rounds did not make it compile")
        self.record.write_text(json.dumps({
            "digest": digest, "base": self.base, "mutants": self.mutants_of(weaving, dropped)}))

    def mutants_of(self, weaving, dropped):
        mutants = [dict(mutant, place=place[0]["number"], compiled=order not in dropped)
                   for order, place in enumerate(weaving["places"]) for mutant in place]
        if len(mutants) >= NUMBERS_OF_A_FILE:
            raise workshop.Failure(f"{self.name} has {len(mutants)} mutants")
        return mutants


def objected(file, output, spans):
    """The places that the compiler's errors are within, the innermost of each error; those of the
    line where an error has none around it."""
    found = set()
    for name, line, column, is_error in PLACE_OF_ERROR.findall(output):
        if pathlib.Path(name).name != file.name:
            continue
        where = (int(line), int(column or 0))
        around = [(start, order) for order, (start, end) in spans.items()
                  if tuple(start) <= where <= tuple(end)]
        if around:
            found.add(max(around)[1])
        elif is_error or not column:
            found |= {order for order, (start, end) in spans.items() if start[0] <= where[0] <= end[0]}
    return found


def headers():
    found = [workshop.TOP / "tests/mutants/mutant.h"]
    for folder in ("include", "source", "platform"):
        found += (workshop.TOP / folder).rglob("*.h")
    return found


def words_of(command):
    """The words of a compilation but for warnings, and the object that it makes."""
    words = [word for word in shlex.split(command["command"])
             if not word.startswith(("-W", "-g")) and word not in ("-o", "-c")]
    made = next(word for word in words if word.endswith(OBJECTS))
    return [word for word in words if not word.endswith((*OBJECTS, ".cpp"))], made


def commands_of(targets):
    """The compilations of the preset for these targets, by the names of the sources."""
    commands = json.loads((TREE / "compile_commands.json").read_text())
    return {str(pathlib.Path(command["file"]).relative_to(workshop.TOP)): command for command in commands
            if re.search(rf"({targets})\.dir/", command["command"]) is not None}


def sources():
    """Every source of the folders that the preset builds into the library, in the order of names,
    and those that one program has alone."""
    found = {name: command for name, command in commands_of("oxdiagk|vexk|qelmk").items()
             if name.startswith(tuple(folder + "/" for folder in FOLDERS))}
    alone = {name: commands_of(re.escape(program))[name] for name, program in ALONE.items()}
    commands = [found[name] for name in sorted(found)] + [alone[name] for name in sorted(alone)]
    return [Source(command, number) for number, command in enumerate(commands)]


def archive(all_sources):
    """The preset's archives with the woven objects in the place of theirs."""
    for prefix, name in ARCHIVES.items():
        made = HERE / name
        made.parent.mkdir(parents=True, exist_ok=True)
        objects = [source.made_object() for source in all_sources
                   if source.name.startswith(prefix) and source.name not in ALONE]
        newest = max(path.stat().st_mtime for path in [TREE / name, *objects])
        if made.exists() and made.stat().st_mtime >= newest:
            continue
        members = workshop.demand(["ar", "t", TREE / name]).split()
        names = [path.name for path in objects]
        if len(set(members)) != len(members) or not set(names) <= set(members):
            raise workshop.Failure(f"{name} has members of one name, or lacks a source")
        made.unlink(missing_ok=True)
        shutil.copy(TREE / name, made)
        workshop.demand(["ar", "rs", made, *objects])


def link_command(target):
    """The words by which the preset links a target."""
    lines = workshop.demand(["ninja", "-C", TREE, "-t", "commands", target])
    return shlex.split(lines.strip().splitlines()[-1].removeprefix(": && ").removesuffix(" && :"))


class Anew:
    """The woven sources that a target of the preset compiles once more, in its own way."""

    def __init__(self, target, all_sources):
        commands = commands_of(target)
        self.folder = HERE / "anew" / target
        self.parts = [(source, *words_of(commands[source.name])) for source in all_sources
                      if source.name in commands]
        self.made = {name: self._made(source) for source, _, name in self.parts}

    def make(self):
        workshop.in_parallel(self._compile, self.parts)
        return self.made

    def _made(self, source):
        return self.folder / f"{source.name}.o"

    def _compile(self, part):
        source, words, _ = part
        made = self._made(source)
        if made.exists() and made.stat().st_mtime >= source.made_object().stat().st_mtime:
            return
        made.parent.mkdir(parents=True, exist_ok=True)
        workshop.demand(source.compilation(words, made), cwd=TREE)


def make_image(made):
    """The library that image_tests loads, of these objects in the place of the preset's; what takes
    their place in image_tests. There the mutant is chosen for both."""
    image = HERE / pathlib.Path(IMAGE).name
    newest = max(path.stat().st_mtime for path in [TREE / IMAGE, *made.values()])
    if not image.exists() or image.stat().st_mtime < newest:
        words = [str(made.get(word, word)) for word in link_command(IMAGE)]
        words[words.index("-o") + 1] = image
        workshop.demand([*words, "-Wl,--strip-debug"], cwd=TREE)
    words, known = words_of(commands_of(IMAGE_PROGRAM)[IMAGE_LOADER])
    words = [word for word in words if not word.startswith("-DOXDIAG_IMAGE=")]
    loader = HERE / "loader.o"
    if not loader.exists() or loader.stat().st_mtime < image.stat().st_mtime:
        workshop.demand([*words, f'-DOXDIAG_IMAGE="{image}"', "-o", loader, "-c",
                         workshop.TOP / IMAGE_LOADER], cwd=TREE)
    return {known: loader}


def choice():
    made = HERE / "choice.o"
    workshop.demand(["g++", "-std=c++20", "-O1", "-fno-rtti", f"-I{KIT}",
                     f"-DOXDIAG_MUTANT_NUMBERS={NUMBERS_OF_A_FILE * MOST_FILES}",
                     "-c", KIT / "mutantChoice.cpp", "-o", made])
    return made


class Program:
    """One test program, linked with the woven archives."""

    def __init__(self, name):
        self.name = name
        self.original = TREE / "tests/host/bin" / name
        self.path = HERE / "bin" / name
        self.log = HERE / "reached" / name

    def link(self, choice_object, anew):
        """True if it had to be. `anew`: object -> what takes its place."""
        replaced = {name: HERE / name for name in ARCHIVES.values()} | anew
        made_of = [*replaced.values(), self.original, choice_object]
        newest = max(path.stat().st_mtime for path in made_of)
        if self.path.exists() and self.path.stat().st_mtime >= newest:
            return False
        words = [str(replaced.get(word, word)) for word in link_command(f"tests/host/bin/{self.name}")]
        linked = self.path.with_name(self.name + ".linked")  # the one before may be at work
        words[words.index("-o") + 1] = linked
        self.path.parent.mkdir(parents=True, exist_ok=True)
        workshop.demand([*words, choice_object, "/usr/lib/x86_64-linux-gnu/libgtest.a",
                         "-fuse-ld=lld", "-Wl,--strip-debug"], cwd=TREE)
        linked.rename(self.path)
        self.log.unlink(missing_ok=True)
        return True


def program_names():
    """The programs that the preset's tests are."""
    listed = json.loads(workshop.demand(["ctest", "--test-dir", TREE, "--show-only=json-v1"]))
    return sorted({test["name"] for test in listed["tests"]})


def build():
    workshop.build(PRESET, "host_tests")


def make(users):
    """All programs, woven; and their sources. `users`: of a program, what takes the place of its own
    objects because it uses woven headers."""
    found = sources()
    workshop.in_parallel(Source.make, found)
    archive(found)
    chosen = HERE / "choice.o"
    if not chosen.exists() or chosen.stat().st_mtime < max(
            path.stat().st_mtime for path in KIT.glob("mutant*")):
        choice()
    image = make_image(Anew("oxdiagk_image", found).make())
    scheduled = Anew("scheduled_parts", found).make()
    programs = [Program(name) for name in program_names()]
    workshop.in_parallel(
        lambda program: program.link(chosen, {**anew_in(program.name, image, scheduled),
                                              **alone_in(program.name, found), **users.get(program.name, {})}),
        programs)
    return found, programs


def anew_in(name, image, scheduled):
    """What takes the place of objects in a program."""
    if name == IMAGE_PROGRAM:
        return image
    return scheduled if name.startswith(SCHEDULED) else {}


def alone_in(name, all_sources):
    return {source.object: source.made_object() for source in all_sources if ALONE.get(source.name) == name}
