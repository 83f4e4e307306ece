"""The samples in the documents are code that compiles.

The ```cpp blocks of one document are one source, in their order: the first one includes what it
needs, and each is complete at the top level.
"""

import re

import workshop

BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PLACES = ["*.md", "docs/*.md", "examples/*/*.md", "platform/*/*.md"]


def documents():
    pages = sorted(page for place in PLACES for page in workshop.TOP.glob(place))
    return [page for page in pages if BLOCK.search(page.read_text())]


def sample_source(page):
    """The blocks at the line numbers that they have in the document."""
    text = page.read_text()
    pieces = [f'#line {text[:block.start()].count(chr(10)) + 2} "{page.name}"\n{block.group(1)}'
              for block in BLOCK.finditer(text)]
    return "".join(pieces)


def sample_check(job):
    target, page = job
    code, output = target.compile(sample_source(page), "-Wno-unused-function")
    return f"samples of {page.name}, {target.name}", code == 0, output
