"""The ```cpp blocks of a document as one source, each at the line number that it has there.

usage: samples.py DOCUMENT OUTPUT
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"^```cpp\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def sample_source(page):
    text = page.read_text()
    pieces = [f'#line {text[:block.start()].count(chr(10)) + 2} "{page.name}"\n{block.group(1)}'
              for block in BLOCK.finditer(text)]
    return "".join(pieces)


if __name__ == "__main__":
    document, output = map(pathlib.Path, sys.argv[1:])
    source = sample_source(document)
    if not output.exists() or output.read_text() != source:  # else nothing is compiled again
        output.write_text(source)
