"""The samples in the documents are code that compiles.

The ```cpp blocks of one document are one source, in their order: the first one includes what it
needs, and each is complete at the top level. Samples that control the host are for the host alone.
"""

import re

import samples
import workshop

PLACES = ["*.md", "docs/*.md", "examples/*/*.md", "platform/*/*.md"]


ON_HOST = re.compile(r'^#include "(vexk|ntos)host/', re.MULTILINE)


def documents():
    pages = sorted(page for place in PLACES for page in workshop.TOP.glob(place))
    return [page for page in pages if samples.sample_source(page)]


def is_for(page, target):
    if samples.uses_kit(samples.sample_source(page)):
        return False  # besideKit.py compiles them
    return target.name.startswith("host") or not ON_HOST.search(page.read_text())


def sample_check(job):
    target, page = job
    code, output = target.compile(samples.sample_source(page), "-Wno-unused-function",
                                  "-Wno-global-constructors")  # tests are objects
    return f"samples of {page.name}, {target.name}", code == 0, output
