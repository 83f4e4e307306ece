"""Sources that clang-tidy reads together, as one: most of what it reads of a test is GoogleTest and
the C++ library, and so it reads them once for several tests.

Sources fit together when the same compiler call makes them and no two define the same name. That is
told from their text, which is a guess; a group that is not clean, for whatever reason, has each of
its members looked at alone."""

import functools
import pathlib
import re
import shlex
import shutil

import workshop

FOLDER = workshop.OUT / "tidy/tests"
# Only the tests: the analyser, which they go without, looks at functions of the main source alone.
PRESET, TESTS = "host-tidy", workshop.TOP / "tests"
LARGEST = 8

# A name defined at the left margin, as clang-format leaves it: of a class, function or constant.
NAMES = re.compile(r"^(?!TEST|TYPED_TEST|namespace|using [\w:]+;|[\s/#}])"
                   r"[^\n({=;:]*?(?:::[^\n({=;:]*?)*(\w+)(?:\[\w*\])?(?: final)? ?(?:[({=;]|:(?!:))",
                   re.MULTILINE)
INCLUDE = re.compile(r'^#include "(.+)"', re.MULTILINE)
SWITCH = re.compile(r"^#define ", re.MULTILINE)  # may set what the headers behind it are to be


@functools.cache
def names(path):
    return frozenset(NAMES.findall(path.read_text()))


@functools.cache
def includes(path, folders):
    """The headers of ours that a file includes, itself or through others."""
    found = set()
    for name in INCLUDE.findall(path.read_text()):
        header = next((folder / name for folder in folders if (folder / name).exists()), None)
        if header and header != path:
            found |= {header} | includes(header, folders)
    return frozenset(found)


def words_of(unit):
    """The compiler call without the source and the object; the same for all that fit together."""
    words = shlex.split(unit.command)
    place = words.index("-o")
    return [word for word in words[:place] + words[place + 2:] if word not in ("-c", unit.file)]


def may_join(unit):
    path = pathlib.Path(unit.file)
    return (unit.preset == PRESET and TESTS in path.parents
            and not SWITCH.search(path.read_text()))


class Group:
    """Units that clang-tidy reads as one source, which includes each of them."""

    def __init__(self, unit):
        self.units, self.own, self.read = [], set(), set()
        self.words = words_of(unit)

    def takes(self, unit):
        """Joins the unit if it fits: what it defines, the others neither define nor include."""
        path = pathlib.Path(unit.file)
        folders = tuple(pathlib.Path(word[2:]) for word in self.words if word.startswith("-I"))
        own = names(path)
        read = frozenset().union(*map(names, includes(path, (path.parent, *folders))))
        if (len(self.units) == LARGEST or words_of(unit) != self.words
                or own & (self.own | self.read) or read & self.own):
            return False
        self.units.append(unit)
        self.own |= own
        self.read |= read
        return True

    def write(self, number):
        """The source, beside the settings of the tests."""
        FOLDER.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(TESTS / ".clang-tidy", FOLDER / ".clang-tidy")
        path = FOLDER / f"group{number}.cpp"
        path.write_text("".join(f'#include "{unit.file}"  // NOLINT\n' for unit in self.units))
        return path

    def is_clean(self, number):
        code, _ = workshop.run(["clang-tidy", "--quiet", self.write(number), "--", *self.words],
                               cwd=workshop.tree(PRESET))
        return code == 0


def join(units):
    """(groups of at least two, units that stay alone)."""
    groups, alone = [], []
    for unit in units:
        if not may_join(unit):
            alone.append(unit)
        elif not any(group.takes(unit) for group in groups):
            groups.append(Group(unit))
            groups[-1].takes(unit)
    alone += [unit for group in groups if len(group.units) == 1 for unit in group.units]
    return [group for group in groups if len(group.units) > 1], alone
