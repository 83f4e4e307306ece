"""The containers of platform/stl with their mutants: templates, which are compiled where they are used.
So the headers are woven, and the programs that test them are compiled with these."""

import json
import pathlib
import re

import mutantBuild
import workshop

FOLDER = workshop.TOP / "platform/stl/include"
HERE = mutantBuild.HERE / "headers"
# Behind the sources, which may become more.
FIRST = mutantBuild.MOST_FILES - 32
USERS = re.compile(r"tests/(host/stl/.*|conformance/stl\w+|host/faults/containers)\.cpp")


class Header(mutantBuild.Source):
    """One header, as the first of the programs compiles it."""

    def __init__(self, file, number, words):
        super().__init__({"file": str(file), "command": f"{words[0]} -o none.o"}, number)
        self.words = words
        self.woven = HERE / file.relative_to(FOLDER)
        self.dropped = set()

    def headers_of_compiler(self):
        return ["-xc++"]

    def is_made(self, digest):
        if not (self.record.exists() and self.woven.exists()):
            return False
        record = json.loads(self.record.read_text())
        return (record["digest"], record["base"]) == (digest, self.base)

    def write(self):
        self.weaving = self.weave(self.dropped)
        self.woven.parent.mkdir(parents=True, exist_ok=True)
        self.woven.write_text(self.weaving["text"].replace("OXDIAG_MUTANT_BASE", str(self.base)))

    def keep(self):
        self.record.parent.mkdir(parents=True, exist_ok=True)
        self.record.write_text(json.dumps({
            "digest": self.digest(), "base": self.base,
            "mutants": self.mutants_of(self.weaving, self.dropped)}))

    def drop(self, output):
        """Whether the compiler objects to more places; lines are too long for its columns to matter."""
        wrong = mutantBuild.objected(self.file, output, dict(self.weaving["spans"])) - self.dropped
        self.dropped |= wrong
        return bool(wrong)


class User:
    """A source of a test that uses the headers, and the program that it is part of."""

    def __init__(self, command):
        self.file = pathlib.Path(command["file"])
        self.words, self.object = mutantBuild.words_of(command)
        self.program = re.search(r"/([^/]+)\.dir/", self.object)[1]
        self.made = HERE / "objects" / f"{self.program}.{self.file.stem}.o"

    def compile(self, *options):
        return workshop.run([*self.words[:1], f"-I{HERE}", *self.words[1:], *mutantBuild.OPTIONS, *options,
                             self.file], cwd=mutantBuild.TREE)

    def make(self, newest):
        if self.made.exists() and self.made.stat().st_mtime > newest:
            return
        self.made.parent.mkdir(parents=True, exist_ok=True)
        code, output = self.compile("-o", self.made, "-c")
        if code != 0:
            raise workshop.Failure(f"{self.file} does not compile with mutants of the containers\n{output}")


def users():
    commands = json.loads((mutantBuild.TREE / "compile_commands.json").read_text())
    names = {str(pathlib.Path(command["file"]).relative_to(workshop.TOP)): command for command in commands
             if "/compile/" not in command["file"]}
    return [User(names[name]) for name in sorted(names) if USERS.fullmatch(name)]


def headers(all_users):
    files = sorted(FOLDER.rglob("*.h"))
    return [Header(file, FIRST + number, all_users[0].words) for number, file in enumerate(files)]


def weave(found, all_users):
    """Until all programs compile: what the compiler objects to is left out."""
    for header in found:
        header.write()
    left = list(all_users)
    for _ in range(mutantBuild.MOST_ROUNDS * len(found)):
        if not left:
            break
        code, output = left[0].compile("-fsyntax-only")
        if code == 0:
            left.pop(0)
            continue
        wrong = [header for header in found if header.drop(output)]
        if not wrong:
            raise workshop.Failure(f"{left[0].file} does not compile with mutants of the containers\n{output}")
        for header in wrong:
            header.write()
    else:
        raise workshop.Failure(f"{left[0].file}: no end of what does not compile")
    for header in found:
        header.keep()


def make():
    """The headers; and for each program which objects take the place of its own."""
    all_users = users()
    found = headers(all_users)
    if not all(header.is_made(header.digest()) for header in found):
        weave(found, all_users)
    newest = max(path.stat().st_mtime for path in [*mutantBuild.headers(), *(header.woven for header in found),
                                                   *(user.file for user in all_users)])
    replaced = {}
    for user in all_users:
        user.make(newest)
        replaced.setdefault(user.program, {})[user.object] = user.made
    return found, replaced
