"""./dev docs: the handbook as a site in out/site, which needs no network.

The pages of docs/ become pages of the site, the public headers its reference. Where a page names
another page, a header or a class, the site has a link, and each page ends with the headers of its
idea. Doxygen's first warning is the end of it.
"""

import json
import os
import pathlib
import re
import shutil
import sys
import xml.etree.ElementTree

import doxygenFilter
import headerPages
import statusCodes
import workshop

HOME = workshop.TOP / "tools/handbook"
WORK = workshop.OUT / "handbook"
PAGES = WORK / "pages"
SITE = workshop.OUT / "site"
REFERENCE = SITE / "reference"

# Debian's package of the theme names scripts that it does not have.
SCRIPTS = {"jquery-3.6.0.min.js": pathlib.Path("/usr/share/javascript/jquery/jquery.min.js"),
           "theme_extra.js": HOME / "theme_extra.js"}

# Pages that stand elsewhere, or are composed.
OTHERS = {"README.md": "overview.md", "CONTRIBUTING.md": "contributing.md",
          "CHANGELOG.md": "changelog.md"}
NAMED_PAGE = re.compile(r"(?<![\w/\[`])(?<!\]\()`?(?:docs/([\w-]+\.md)|((?:README|CONTRIBUTING|CHANGELOG)\.md))"
                        r"`?(?![\w/\]])")
CODE = re.compile(r"(?<!`)`([^`\n]+)`(?!`)")
HEADER = re.compile(r"(?:include/)?((?:oxdiagk/|vexk/|qelmk/|stl/|ntos/|ntoshost/|vexkhost/|vexkwindows/)?\w+\.h)")
CLASS = re.compile(r"(?:nOXDIAG100::|nQELM100::|_STL::|ntoshost::|vexkhost::)?([A-Za-z]\w+)")
NAMED_BLOCK = re.compile(r"^(```\w+) \w+$")  # the name is for the tests
FENCE = re.compile(r"^(```|    )")
PICTURE = re.compile(r"\]\(docs/([\w-]+\.svg)\)")  # as README.md shows it


class Index:
    """Where the reference tells of what: from Doxygen's own list."""

    def __init__(self, path):
        self.files, self.classes, self.members = {}, {}, {}
        paths = {str(path): name for name, path in headerPages.headers().items()}
        for compound in xml.etree.ElementTree.parse(path).getroot().iter("compound"):
            place = compound.findtext("filename")
            if compound.get("kind") == "file":
                name = paths.get(compound.findtext("path") + compound.findtext("name"))
                if name:
                    self.files[name] = place
                    self.members[name] = [each.text for each in compound.findall("class")]
            elif compound.get("kind") in ("class", "struct", "union"):
                self.classes[compound.findtext("name")] = place
        short = {}
        for name in self.classes:
            short.setdefault(name.split("::")[-1], []).append(name)
        self.short = {word: names[0] for word, names in short.items() if len(names) == 1}
        self.files.update({name.split("/")[-1]: place for name, place in self.files.items()
                           if name.startswith("oxdiagk/")})

    def classes_of(self, header):
        """Those of a header that clients name: no class within another one, no specialization."""
        own = [name for name in self.members.get(header, []) if "<" not in name]
        return [name for name in own if name.rpartition("::")[0] not in own]

    def link_to(self, code):
        """Where the reference tells of a piece of code, or an empty text."""
        header = HEADER.fullmatch(code)
        if header:
            return self.files.get(header[1], "")
        word = CLASS.match(code)
        if not word or not re.fullmatch(r"[\w:<>]+(\(\))?", code):
            return ""
        return self.classes.get(self.short.get(word[1], ""), "")


def first_sentence(header):
    """What the first comment of a header says first."""
    lines = headerPages.headers()[header].read_text().splitlines()
    for index, line in enumerate(lines):
        if doxygenFilter.COMMENT.match(line):
            text, _ = doxygenFilter.take_comment(lines, index)
            paragraph = " ".join(text).split("  ")[0]
            return re.split(r"(?<=[.:])\s", paragraph)[0].rstrip(":.") + "."
    return ""


def for_table(text):
    return text.replace("|", "\\|").replace("<", "&lt;").replace("*", "\\*").replace("_", "\\_")


def reference_rows(names, index):
    yield "| header | classes | what it is about |"
    yield "|---|---|---|"
    for name in names:
        classes = ", ".join(f"[{each.split('::')[-1]}](reference/{index.classes[each]})"
                            for each in index.classes_of(name) if each in index.classes)
        yield f"| [{name}](reference/{index.files[name]}) | {classes} | {for_table(first_sentence(name))} |"


def with_links(line, index, page):
    """A line of prose, where pages, headers and classes that are named have links."""
    def page_link(match):
        target = match[1] or OTHERS[match[2]]
        return match[0] if target == page else f"[{title_of(target)}]({target})"

    def code_link(match):
        place = index.link_to(match[1])
        return f"[`{match[1]}`](reference/{place})" if place else match[0]

    if line.startswith("#"):
        return line
    line = NAMED_PAGE.sub(page_link, line)
    pieces = re.split(r"(\[[^\]]*\]\([^)]*\))", line)  # what is a link stays
    return "".join(piece if number % 2 else CODE.sub(code_link, piece)
                   for number, piece in enumerate(pieces))


def title_of(page):
    if page == OTHERS["README.md"]:
        return "Overview"
    source = next((name for name, target in OTHERS.items() if target == page), f"docs/{page}")
    path = workshop.TOP / source
    return path.read_text().split("\n", 1)[0].lstrip("# ") if path.exists() else page


def composed(text, index, page):
    lines, within = [], False
    for line in text.splitlines():
        within ^= line.startswith("```")
        line = NAMED_BLOCK.sub(r"\1", line)
        is_code = within or FENCE.match(line) is not None
        lines.append(line if is_code else with_links(PICTURE.sub(r"](\1)", line), index, page))
    return "\n".join(lines) + "\n"


def write_pages(index):
    by_page = headerPages.by_page()
    sources = {path.name: path for path in sorted((workshop.TOP / "docs").glob("*.md"))}
    sources.update({target: workshop.TOP / source for source, target in OTHERS.items()})
    for name, path in sources.items():
        text = composed(path.read_text(), index, name)
        headers = by_page.get(name[:-3], [])
        if headers:
            text += "\n## Reference\n\n" + "\n".join(reference_rows(headers, index)) + "\n"
        (PAGES / name).write_text(text)
    (PAGES / "classes.md").write_text(class_page(by_page, index))
    for path in [*(workshop.TOP / "docs").glob("*.svg"), HOME / "handbook.css"]:
        shutil.copy(path, PAGES)
    for name, path in SCRIPTS.items():
        (PAGES / "js").mkdir(exist_ok=True)
        shutil.copy(path, PAGES / "js" / name)


def class_page(by_page, index):
    """Every public header and class, by the page of its idea."""
    text = "# Classes and headers\n\nEvery public header, by the page that tells its idea. The " \
           "[reference](reference/index.html) has them by name.\n"
    for page, headers in by_page.items():
        if page:
            rows = "\n".join(reference_rows(headers, index))
            text += f"\n## {title_of(page + '.md')}\n\nThe idea: [{title_of(page + '.md')}]({page}.md).\n\n{rows}\n"
    return text


MAIN_PAGE = """# The public headers

Every class, function and macro that a client may use, from the comments of the headers.

- [Classes by name](annotated.html)
- [Headers](files.html)
- [The handbook](../index.html), which tells the ideas; its page
  [Classes and headers](../classes.html) has each header beside the page of its idea.
"""


def run_doxygen():
    shutil.rmtree(SITE, ignore_errors=True)
    SITE.mkdir(parents=True)
    layout = WORK / "layout.xml"
    workshop.demand(["doxygen", "-l", layout], cwd=WORK)
    (WORK / "mainpage.md").write_text(MAIN_PAGE)
    tab = '<tab type="user" visible="yes" url="../index.html" title="Handbook"/>'
    text = re.sub(r'<tab type="mainpage"[^>]*/>', tab, layout.read_text())
    layout.write_text(re.sub(r"<nestedclasses [^>]*/>", "", text))  # it links to private ones
    folders = [workshop.TOP / folder for folder in headerPages.FOLDERS]
    inputs = " ".join(str(path) for path in headerPages.headers().values())
    settings = (HOME / "Doxyfile").read_text() + f"""
INPUT = {WORK}/mainpage.md {inputs}
USE_MDFILE_AS_MAINPAGE = {WORK}/mainpage.md
INCLUDE_PATH = {" ".join(map(str, folders))}
STRIP_FROM_PATH = {" ".join(map(str, folders))}
STRIP_FROM_INC_PATH = {" ".join(map(str, folders))}
INPUT_FILTER = "{sys.executable} {workshop.TOP}/tools/dev/doxygenFilter.py"
OUTPUT_DIRECTORY = {SITE}
HTML_OUTPUT = reference
GENERATE_TAGFILE = {WORK}/reference.xml
LAYOUT_FILE = {layout}
"""
    workshop.demand(["doxygen", "-"], input=settings, cwd=WORK)
    return Index(WORK / "reference.xml")


def run_mkdocs():
    """mkdocs empties the folder of the site, but for what was put beside it."""
    kept = WORK / "reference"
    shutil.rmtree(kept, ignore_errors=True)
    shutil.move(REFERENCE, kept)
    environment = dict(os.environ, SOURCE_DATE_EPOCH="0")
    output = workshop.demand(["mkdocs", "build", "--clean", "-q", "-f", HOME / "mkdocs.yml"],
                             env=environment)
    shutil.move(kept, REFERENCE)
    return output


def put_search():
    """Ours in place of mkdocs', which cannot read its index when the site is opened as a file."""
    folder = SITE / "search"
    found = json.loads((folder / "search_index.json").read_text())["docs"]
    sections = [each for each in found if "#" in each["location"]]  # the others are whole pages
    shutil.rmtree(folder)
    folder.mkdir()
    (folder / "index.js").write_text("window.handbookIndex = " + json.dumps(sections) + ";\n")
    shutil.copy(HOME / "search.js", folder / "main.js")


def build():
    """Doxygen's and mkdocs' complaints end it. Returns the site's first page."""
    shutil.rmtree(WORK, ignore_errors=True)
    PAGES.mkdir(parents=True)
    wrong = headerPages.complaints()
    if wrong:
        raise workshop.Failure("\n".join(wrong))
    write_pages(run_doxygen())
    complaints = [line for line in run_mkdocs().splitlines() if "reference/" not in line]
    if complaints:
        raise workshop.Failure("\n".join(complaints))
    put_search()
    return SITE / "index.html"


CONDITIONAL = re.compile(r"<!--\[if.*?<!\[endif\]-->", re.DOTALL)
LINK = re.compile(r'(?:href|src)="([^"]+)"')
NAME = re.compile(r'(?:id|name)="([^"]+)"')


def site_complaints():
    """Links of the site to what is not in it. Those to other places are for people to follow, and
    none of them is fetched when a page is shown."""
    texts = {path: path.read_text(errors="replace") for path in SITE.rglob("*.html")}
    names = {path: set(NAME.findall(text)) for path, text in texts.items()}
    for path, text in texts.items():
        for link in sorted(set(LINK.findall(CONDITIONAL.sub("", text)))):
            place, _, name = link.partition("#")
            if re.match(r"[a-z]+:", link) or place.startswith("/"):
                continue
            goal = (path.parent / place.partition("?")[0]).resolve() if place else path
            if not goal.exists() or name and goal in names and name not in names[goal]:
                yield f"{path.relative_to(SITE)}: {link}"


FETCHED = re.compile(r'(?:src="|<link [^>]*href="|url\(["\']?)(?:https?:)?//[^"\')]+')


def fetched_complaints():
    for path in SITE.rglob("*"):
        if path.suffix in (".html", ".css"):
            yield from (f"{path.relative_to(SITE)} fetches {each}"
                        for each in FETCHED.findall(path.read_text(errors="replace")))


def class_complaints():
    """Classes of public headers that the page of their idea, or the list, does not lead to."""
    index = Index(WORK / "reference.xml")
    wrong = []
    for page, headers in headerPages.by_page().items():
        if not headers:
            continue
        texts = {name: (SITE / f"{name}.html").read_text() for name in (page, "classes")}
        wrong += [f"{name} is not in {place}.html" for header in headers
                  for name in index.classes_of(header) if name in index.classes
                  for place, text in texts.items()
                  if f'href="reference/{index.classes[name]}"' not in text]
    return wrong if index.members else ["the reference has no headers"]


def check():
    build()
    results = [("links of the site", list(site_complaints())),
               ("nothing is fetched", list(fetched_complaints())),
               ("every class has its page", class_complaints())]
    failed = [f"handbook: {name}" for name, complaints in results if complaints]
    output = "\n".join(wrong for _, complaints in results for wrong in complaints)
    return workshop.Outcome(len(results) + 1 - len(failed), failed, output)


def main(arguments):
    if arguments == ["--write"]:
        statusCodes.write()
        return 0
    if arguments:
        print(f"dev docs: '{arguments[0]}' is not --write", file=sys.stderr)
        return 2
    print(workshop.step("build the handbook", build))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
