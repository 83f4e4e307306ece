"""The ```cpp blocks of a document as one source, each at the line number that it has there. A block
with a name behind the word, ```cpp framework, belongs to the source of that name instead.

usage: samples.py DOCUMENT OUTPUT
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^```cpp(?: (\w+))?\n(.*?)^```$", re.MULTILINE | re.DOTALL)
KIT_HEADER = re.compile(r"^#include <(ntddk|wdm|ntifs|wdf)\.h>", re.MULTILINE)


def blocks(page):
    """(name, line number, code) of each block."""
    text = page.read_text()
    return [(block.group(1) or "", text[:block.start()].count("\n") + 2, block.group(2))
            for block in BLOCK.finditer(text)]


def named_samples(page):
    return sorted({name for name, _, _ in blocks(page)})


def sample_source(page, name=""):
    return "".join(f'#line {line} "{page.name}"\n{code}'
                   for each, line, code in blocks(page) if each == name)


def uses_kit(source):
    """Whether the source wants the driver kit's own headers."""
    return KIT_HEADER.search(source) is not None


if __name__ == "__main__":
    document, output = map(pathlib.Path, sys.argv[1:])
    source = sample_source(document)
    if not output.exists() or output.read_text() != source:  # else nothing is compiled again
        output.write_text(source)
