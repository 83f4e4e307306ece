"""Shows the objects of oxdiagk in GDB: statuses, descriptions and their values, filters, the status
heap, and the containers.

    (gdb) source oxdiagk-gdb.py
    (gdb) print status

An object that is cut, freed or never was one is shown as far as its memory makes sense: nothing here
raises an error to GDB, reads more than a bounded number of elements, or follows a ring for ever.
"""

import datetime
import re

import gdb
import gdb.printing

MOST_ELEMENTS = 256
MOST_CHARACTERS = 4096  # of one text
MOST_DEPTH = 64  # of a tree
FRAMES = 10

# What GDB raises for memory that is not there, for members that the debugging information does not
# have, and for numbers that are none.
FAILURES = (gdb.error, RuntimeError, ValueError, OverflowError, MemoryError, TypeError, KeyError)

UNREADABLE = "<unreadable>"


def guarded(method):
    """The method, which answers with a text when its object makes no sense."""
    def answer(self):
        try:
            return method(self)
        except FAILURES:
            return UNREADABLE
    return answer


def guarded_children(method):
    """The same for a generator of children: what was found before the nonsense stays. GDB would read
    a child later, out of this guard."""
    def children(self):
        try:
            for name, child in method(self):
                if isinstance(child, gdb.Value):
                    child.fetch_lazy()
                yield name, child
        except FAILURES:
            yield "...", UNREADABLE
    return children


def shown(text):
    """A text that GDB prints as it is: the memory may be a stranger's, and steers no terminal."""
    return "".join(character if character.isprintable() else ascii(character)[1:-1]
                   for character in text)


def read(address, size):
    return bytes(gdb.selected_inferior().read_memory(int(address), size))


def text_at(pointer, length, width):
    """The text of that many characters; a pointer to nothing is no text."""
    if int(pointer) == 0 or length == 0:
        return ""
    kept = min(length, MOST_CHARACTERS)
    encoding = "utf-8" if width == 1 else "utf-16-le"
    text = read(pointer, kept * width).decode(encoding, "replace")
    return text if kept == length else text + "..."


def text_in(array):
    """The terminated text in an array of characters."""
    content = read(array.address, array.type.sizeof)
    return shown(content.split(b"\0")[0].decode("utf-8", "replace"))


def terminated_text(pointer):
    for length in range(MOST_CHARACTERS):
        if read(int(pointer) + length, 1) == b"\0":
            return shown(text_at(pointer, length, 1))
    return shown(text_at(pointer, MOST_CHARACTERS, 1)) + "..."


def word_of(words, number, otherwise):
    return words[int(number)] if 0 <= int(number) < len(words) else otherwise


def dynamic(pointer):
    """What a pointer to an interface points to; an interface has no objects of its own."""
    kind = pointer.dynamic_type
    if kind != pointer.type:
        return pointer.cast(kind).dereference()
    return by_table(int(pointer)) or "<of a class that is not known>"


def by_table(place):
    """The object that an interface there is part of, by the name of its table of virtual operations.
    GDB does not find all by itself: the symbol of a template's instance says 4u where g++ tells the
    debugger 4."""
    table = int.from_bytes(read(place, 8), "little")
    found = re.match(r"vtable for (.*) \+ \d+", gdb.execute(f"info symbol {table}", to_string=True))
    if found is None:
        return None
    kind = gdb.lookup_type(re.sub(r"\b(\d+)u\b", r"\1", found[1]))
    to_start = int.from_bytes(read(table - 16, 8), "little", signed=True)
    return gdb.Value(place + to_start).cast(kind.pointer()).dereference()


def elements_of(pointer, count):
    for index in range(min(count, MOST_ELEMENTS)):
        yield f"[{index}]", (pointer + index).dereference()
    if count > MOST_ELEMENTS:
        yield "...", f"<{count - MOST_ELEMENTS} more>"


class Printer:
    def __init__(self, value):
        self.value = value


class TextPrinter(Printer):
    @guarded
    def to_string(self):
        width = self.value["text_"].type.target().sizeof
        return text_at(self.value["text_"], int(self.value["size_"]), width)

    def display_hint(self):
        return "string"


class VectorPrinter(Printer):
    def list(self):
        return self.value

    @guarded
    def to_string(self):
        return f"{int(self.list()['size_'])} elements"

    @guarded_children
    def children(self):
        if int(self.list()["items_"]) != 0:
            yield from elements_of(self.list()["items_"], int(self.list()["size_"]))

    def display_hint(self):
        return "array"


class SingleVectorPrinter(VectorPrinter):
    def list(self):
        return self.value["list_"]


class ListPrinter(Printer):
    @guarded
    def to_string(self):
        return f"{int(self.value['size_'])} elements"

    @guarded_children
    def children(self):
        node = gdb.lookup_type(str(self.value.type.strip_typedefs().unqualified()) + "::node")
        end = int(self.value["ring_"].address)
        link = self.value["ring_"]["next"]
        for index in range(min(int(self.value["size_"]), MOST_ELEMENTS)):
            if int(link) == end:
                yield "...", "<the ring ends here>"
                return
            yield f"[{index}]", link.cast(node.pointer())["item"]
            link = link["next"]

    def display_hint(self):
        return "array"


class MapPrinter(Printer):
    @guarded
    def to_string(self):
        return f"{int(self.value['tree_']['size_'])} entries"

    @guarded_children
    def children(self):
        name = str(self.value.type.strip_typedefs().unqualified())
        node = gdb.lookup_type(name + "::node").pointer()
        index = 0
        for found in self.in_order(self.value["tree_"]["root_"], 0):
            if index == MOST_ELEMENTS:
                return
            item = found.cast(node)["item"]
            yield f"[{index}].key", item["key"]
            yield f"[{index}].value", item["value"]
            index += 1

    def in_order(self, node, depth):
        if int(node) == 0 or depth == MOST_DEPTH:
            return
        yield from self.in_order(node["child"][0], depth + 1)
        yield node
        yield from self.in_order(node["child"][1], depth + 1)

    def display_hint(self):
        return "map"


class DetailPrinter(Printer):
    """A tStatus2Implementation."""

    @guarded
    def to_string(self):
        return (f"{int(self.value['code'])}, {text_in(self.value['componentName'])}, "
                f"{text_in(self.value['fileName'])}:{int(self.value['line'])}")

    @guarded_children
    def children(self):
        yield "references", self.value["referenceCount"]
        if int(self.value["description"]) != 0:
            yield "description", dynamic(self.value["description"])
        for index in range(FRAMES):
            address = self.value["stackTrace"][index]
            if int(address) != 0:
                code = gdb.lookup_type("void").pointer()
                yield f"frame {index}", address.cast(code).format_string(symbols=True)


class StatusPrinter(Printer):
    @guarded
    def to_string(self):
        code = int(self.value["code"])
        kind = "error" if code < 0 else "warning" if code > 0 else "success"
        if int(self.value["implementation"]) == 0:
            return f"{kind} {code}" if code != 0 else kind
        detail = DetailPrinter(self.value["implementation"].dereference()).to_string()
        return f"{kind} {code}, {detail.split(', ', 1)[-1]}"

    @guarded_children
    def children(self):
        if int(self.value["implementation"]) != 0:
            yield from DetailPrinter(self.value["implementation"].dereference()).children()


class ItemPrinter(Printer):
    """A tReportItemContent."""

    @guarded
    def to_string(self):
        reportable = self.value["reportable"]
        usage = f"usage {int(self.value['usageType'])}"
        return usage if int(reportable) != 0 else f"{usage}, nothing"

    @guarded_children
    def children(self):
        if int(self.value["reportable"]) != 0:
            value = dynamic(self.value["reportable"])
            # A description is no value: its items might lead back here, and each of theirs again.
            is_value = "tStatus2Description" not in str(getattr(value, "type", ""))
            yield "value", value if is_value else UNREADABLE


class ReportItemPrinter(Printer):
    def content(self):
        return ItemPrinter(self.value["content"])

    @guarded
    def to_string(self):
        return self.content().to_string()

    @guarded_children
    def children(self):
        yield from self.content().children()


class DescriptionPrinter(Printer):
    def items(self):
        if int(self.value["implementation"]) == 0:
            return None
        return self.value["implementation"].dereference()["items"]

    @guarded
    def to_string(self):
        items = self.items()
        return "no items" if items is None else f"{int(items['size_'])} items"

    @guarded_children
    def children(self):
        if self.items() is not None:
            yield from VectorPrinter(self.items()).children()

    def display_hint(self):
        return "array"


class DescriptionImplementationPrinter(DescriptionPrinter):
    def items(self):
        return self.value["items"]


class ValuesPrinter(Printer):
    """A reportable: its members and not its bases."""

    def to_string(self):
        return str(self.value.type.strip_typedefs().unqualified()).split("::", 1)[-1]

    @guarded_children
    def children(self):
        for field in self.value.type.strip_typedefs().fields():
            if not field.is_base_class and hasattr(field, "bitpos") and not field.artificial:
                yield field.name, self.value[field.name]


class WideTextListPrinter(Printer):
    @guarded
    def to_string(self):
        return f"{int(self.value['lengths']['size_'])} texts"

    @guarded_children
    def children(self):
        lengths, characters = self.value["lengths"], self.value["characters"]["text_"]
        left = int(self.value["characters"]["size_"])
        for index in range(min(int(lengths["size_"]), MOST_ELEMENTS)):
            length = int((lengths["items_"] + index).dereference())
            if length > left:
                yield "...", UNREADABLE
                return
            yield f"[{index}]", f'"{shown(text_at(characters, length, 2))}"'
            characters += length + 1
            left -= length + 1

    def display_hint(self):
        return "array"


class GuidPrinter(Printer):
    @guarded
    def to_string(self):
        rest = "".join(f"{int(self.value['data4'][index]):02X}" for index in range(8))
        return (f"{{{int(self.value['data1']):08X}-{int(self.value['data2']):04X}-"
                f"{int(self.value['data3']):04X}-{rest[:4]}-{rest[4:]}}}")


class TimePrinter(Printer):
    """A tSSTimeAbsolute: seconds since 1601, and 2^-64 of one."""

    @guarded
    def to_string(self):
        words = [int(self.value["words"][index]) for index in range(4)]
        seconds, fraction = words[3] << 32 | words[2], words[1] << 32 | words[0]
        try:
            start = datetime.datetime(1601, 1, 1)
            text = (start + datetime.timedelta(seconds=seconds)).isoformat()
        except OverflowError:
            return f"{seconds} s since 1601"
        return f"{text}.{(fraction >> 32) * 10_000_000 >> 32:07}Z"


class VersionPrinter(Printer):
    @guarded
    def to_string(self):
        packed = int(self.value["packed"])
        phase = word_of("dfba", packed >> 12 & 0xF, "?")
        return (f"{packed >> 24}.{packed >> 20 & 0xF}.{packed >> 16 & 0xF}"
                f"{phase}{packed & 0xFFF}")


FIELDS = ["compname", "compver", "linenumber", "filename", "threadid", "verbosity"]
OPERATORS = ["==", "!=", ">", "<", ">=", "<="]
CONNECTORS = ["", "&& ", "|| "]


class FilterTermPrinter(Printer):
    @guarded
    def to_string(self):
        text = self.value["text"]
        operand = str(int(self.value["number"])) if int(text) == 0 else terminated_text(text)
        return (word_of(CONNECTORS, self.value["connector"], "? ")
                + word_of(FIELDS, self.value["field"], "?")
                + word_of(OPERATORS, self.value["operation"], " without operator ") + operand)


class FilterPrinter(Printer):
    def terms(self):
        term, known = self.value["first"], set()
        while int(term) != 0 and int(term) not in known and len(known) < MOST_ELEMENTS:
            known.add(int(term))
            yield term.dereference()
            term = term["next"]

    @guarded
    def to_string(self):
        return "empty, every line is shown" if int(self.value["first"]) == 0 else "terms"

    @guarded_children
    def children(self):
        for index, term in enumerate(self.terms()):
            yield f"[{index}]", term

    def display_hint(self):
        return "array"


class HeapPrinter(Printer):
    @guarded
    def to_string(self):
        return (f"{int(self.value['usedUnits'])} of {int(self.value['totalUnits'])} units used, "
                f"{int(self.value['allocatedBlocks'])} blocks, "
                f"{int(self.value['freeBlocks'])} free fragments")

    @guarded_children
    def children(self):
        start = int(self.value["arena"])
        block, known = self.value["arena"], set()
        while int(block) not in known and len(known) < MOST_ELEMENTS:
            known.add(int(block))
            if int(block["units"]) != 0:
                yield f"free at {int(block) - start}", f"{int(block['units'])} units"
            block = block["next"]


PRINTERS = [
    ("text", r"^_STL::basic_string<.*>$", TextPrinter),
    ("vector", r"^_STL::vector<.*>$", VectorPrinter),
    ("single_vector", r"^_STL::single_vector<.*>$", SingleVectorPrinter),
    ("list", r"^_STL::list<.*>$", ListPrinter),
    ("map", r"^_STL::map<.*>$", MapPrinter),
    ("tStatus2", r"^nOXDIAG100::tStatus2$", StatusPrinter),
    ("tStatus2Implementation", r"^nOXDIAG100::tStatus2Implementation$", DetailPrinter),
    ("tStatus2Description", r"^nOXDIAG100::tStatus2Description$", DescriptionPrinter),
    ("tStatus2DescriptionImplementation", r"^nOXDIAG100::tStatus2DescriptionImplementation$",
     DescriptionImplementationPrinter),
    ("tReportItemContent", r"^nOXDIAG100::tReportItemContent$", ItemPrinter),
    ("tReportItem", r"^nOXDIAG100::tReportItem$", ReportItemPrinter),
    ("reportable", r"^nOXDIAG100::t\w+Reportable(<.*>)?$", ValuesPrinter),
    ("tWideTextList", r"^nOXDIAG100::tWideTextList$", WideTextListPrinter),
    ("tStatus2Heap", r"^nOXDIAG100::tStatus2Heap$", HeapPrinter),
    ("tTraceFilter", r"^nOXDIAG100::tTraceFilter$", FilterPrinter),
    ("tTraceFilterTerm", r"^nOXDIAG100::tTraceFilterTerm$", FilterTermPrinter),
    ("tGUID", r"^nQELM100::tGUID$", GuidPrinter),
    ("tSSTimeAbsolute", r"^tSSTimeAbsolute$", TimePrinter),
    ("tSSVersion", r"^tSSVersion$", VersionPrinter),
]


def register():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("oxdiagk")
    for name, expression, printer in PRINTERS:
        printers.add_printer(name, expression, printer)
    gdb.printing.register_pretty_printer(None, printers, replace=True)


register()
