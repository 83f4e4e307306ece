"""The step `documents`: what pages and headers name is there, and their tables are true."""

import re

import headerPages
import limits
import statusCodes
import workshop

PLACES = ["*.md", "docs/*.md", "examples/*/*.md", "platform/*/*.md"]
LINK = re.compile(r"\[[^\]]*\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ (.*)$", re.MULTILINE)
FENCED = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
ROOMS = "docs|include|source|platform|tests|tools|examples|bench|cmake"
PATH = re.compile(rf"(?<![\w/.\-\\])((?:{ROOMS})/[\w./*-]*\w|CONTRIBUTING\.md|CHANGELOG\.md|README\.md)")
HEADER = re.compile(r'(?<![\w/.<-])((?:oxdiagk|vexk|qelmk|ntoshost|vexkhost|vexkwindows)/\w+\.h)')
COMMENT = re.compile(r"^\s*//.*$", re.MULTILINE)
# What ./dev docs makes.
COMPOSED = {"classes.md", "reference/index.html"}
ANY = re.compile(r"/[A-Z]{2,}(/|\.\w+$|$)")  # as in tests/fuzz/words/TARGET.txt


def pages():
    return sorted(page for place in PLACES for page in workshop.TOP.glob(place))


def anchor(heading):
    """As mkdocs names a heading."""
    text = re.sub(r"[^\w\s-]", "", re.sub(r"[`*]", "", heading)).strip().lower()
    return re.sub(r"[-\s]+", "-", text)


def anchors(page):
    return {anchor(heading) for heading in HEADING.findall(FENCED.sub("", page.read_text()))}


def link_complaints(page):
    for target in LINK.findall(FENCED.sub("", page.read_text())):
        place, _, name = target.partition("#")
        if re.match(r"https?:", target) or place in COMPOSED:
            continue
        goal = (page.parent / place).resolve() if place else page
        if not goal.exists():
            yield f"{target} is not there"
        elif name and name not in anchors(goal):
            yield f"{target}: no such heading"


def is_there(name, folder):
    if "*" in name:
        return any(folder.glob(name))
    return any((folder / f"{name}{end}").exists() for end in ("", ".h", ".cpp", ".md"))


def name_complaints(text, folder=workshop.TOP):
    """Paths and headers that are named and are not there, from the top or from the folder."""
    known = headerPages.headers()
    yield from (f"{name} is not there" for name in sorted(set(PATH.findall(text)))
                if not ANY.search(name) and not any(is_there(name, top)
                                                    for top in (workshop.TOP, folder)))
    yield from (f"{name} is no header" for name in set(HEADER.findall(text)) if name not in known)


def page_complaints(page):
    return [*link_complaints(page), *name_complaints(page.read_text(), page.parent)]


def header_complaints(path):
    return list(name_complaints("\n".join(COMMENT.findall(path.read_text()))))


def site_complaints():
    """The navigation has each page of docs/ once."""
    navigation = re.findall(r": ([\w-]+\.md)$", (workshop.TOP / "tools/handbook/mkdocs.yml").read_text(),
                            re.MULTILINE)
    wanted = [page.name for page in (workshop.TOP / "docs").glob("*.md")]
    wanted += ["classes.md", "overview.md", "contributing.md", "changelog.md"]
    return [f"{name} is not once in the navigation" for name in sorted({*wanted, *navigation})
            if navigation.count(name) != wanted.count(name)]


def step_complaints():
    """docs/testing.md has one row for each step of ./dev test."""
    page = (workshop.TOP / "docs/testing.md").read_text()
    table = page[page.index("| step |"):].split("\n\n", 1)[0]
    rows = re.findall(r"^\| `([\w-]+)` \|", table, re.MULTILINE)
    steps = re.findall(r'^    "([\w-]+)": \(', (workshop.TOP / "tools/dev/check.py").read_text(), re.MULTILINE)
    return [f"{name}: {rows.count(name)} rows, {steps.count(name)} steps"
            for name in sorted({*rows, *steps}) if rows.count(name) != 1 or steps.count(name) != 1]


def results():
    """(name of the check, complaints) of each."""
    for page in pages():
        yield f"links of {page.relative_to(workshop.TOP)}", page_complaints(page)
    headers = [f"{name}: {wrong}" for name, path in headerPages.headers().items()
               for wrong in header_complaints(path)]
    yield "what headers name", headers
    yield "a page for every header", headerPages.complaints()
    yield "a place for every page", site_complaints()
    yield "a row for every step", step_complaints()
    yield "docs/status-codes.md", statusCodes.complaints()
    yield "docs/limits.md", limits.complaints()


def check():
    found = list(results())
    failed = [name for name, complaints in found if complaints]
    output = "\n".join(f"{name}: {wrong}" for name, complaints in found for wrong in complaints)
    return workshop.Outcome(len(found) - len(failed), failed, output)


if __name__ == "__main__":
    print(check())
