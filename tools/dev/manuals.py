"""The manual pages: sound, and with the options that the programs say they have."""

import re

import workshop

HELPS = {"oxdiagctl": [["--help"], ["trace", "--help"], ["assert", "--help"]]}
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


def lint_complaints(page):
    code, output = workshop.run(["mandoc", "-T", "lint", "-W", "warning", page])
    return [output] if code != 0 or output else []


def options_of_page(page):
    text = workshop.demand(["mandoc", "-T", "ascii", page])
    return set(OPTION.findall(re.sub(".\b", "", text)))


def options_of_program(program):
    helps = HELPS.get(program.name, [["--help"]])
    # An example may be of another program.
    texts = [workshop.demand([program, *words]).split("\nExamples:")[0] for words in helps]
    return set(OPTION.findall("\n".join(texts)))


def complaints(page, program):
    ours, theirs = options_of_page(page), options_of_program(program)
    return lint_complaints(page) + \
        [f"{page.name} does not name {option}" for option in sorted(theirs - ours)] + \
        [f"{page.name} names {option}, which {program.name} does not" for option in
         sorted(ours - theirs)]
