"""Whether tools/debugger/oxdiagk.natvis is XML of its schema's elements, and whether each of its
expressions is one that the compiler takes in a member function of its type: for Windows, with the
layouts that the debugger will see."""

import re
import xml.etree.ElementTree as ElementTree

import compileChecks
import workshop

FILE = workshop.TOP / "tools/debugger/oxdiagk.natvis"
SPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"

# Types of a list or tree, whose expressions are of the nodes, by the type that has them.
NODES = {"_STL::list<*,*>": "node", "_STL::map<*,*,*,*>": "node",
         "nOXDIAG100::tTraceFilter": "nOXDIAG100::tTraceFilterTerm",
         "nOXDIAG100::tStatus2Heap": "tBlock"}
OF_NODES = {"NextPointer", "LeftPointer", "RightPointer", "ValueNode"}
EXPRESSIONS = {"Item", "ExpandedItem", "Size", "ValuePointer", "HeadPointer", "StringView",
               *OF_NODES}
OTHERS = {"Type", "DisplayString", "Expand", "ArrayItems", "LinkedListItems", "TreeItems",
          "Synthetic"}

# What a * stands for here.
INSTANCES = {"_STL::basic_string<char,*>": "_STL::string",
             "_STL::basic_string<wchar_t,*>": "_STL::wstring",
             "_STL::list<*,*>": "_STL::list<$T1,$T2>",
             "_STL::map<*,*,*,*>": "_STL::map<$T1,$T2,$T3,$T4>",
             "nOXDIAG100::tIntrinsicTypeReportable<*>": "nOXDIAG100::tIntrinsicTypeReportable<u32>"}

ARGUMENTS = {"_STL::list<*,*>": ["i32", "kMemLongLived"],
             "_STL::map<*,*,*,*>": ["i32", "u64", "_STL::less<i32>", "kMemLongLived"]}

HEADERS = ["oxdiagk/oxdiagk.h", "status/tStatus2Implementation.h",
           "status/tStatus2DescriptionImplementation.h", "trace/tTraceFilterTerm.h",
           "stl/list.h", "stl/map.h", "stl/single_vector.h"]

# The block of the heap is known to its source only.
HEAP_BLOCK = re.compile(r"struct tStatus2Heap::tBlock \{.*?\};", re.S)
HEAP_SOURCE = workshop.TOP / "source/status/tStatus2Heap.cpp"

FORMAT = re.compile(r",(\[\w+\])?\w*$")  # behind an expression: how it is shown


def in_braces(text):
    """The expressions in a DisplayString; two braces are one that is shown."""
    return re.findall(r"\{([^{}]+)\}", text.replace("{{", "").replace("}}}", "}"))


def expressions_of(kind):
    """Pairs of an element's name and an expression in it."""
    for element in kind.iter():
        name = element.tag.removeprefix(SPACE)
        if "Condition" in element.attrib:
            yield name, element.attrib["Condition"]
        if name == "DisplayString":
            yield from ((name, expression) for expression in in_braces(element.text))
        elif name in EXPRESSIONS:
            yield name, element.text


def check_of(number, kind, name, expression):
    """Functions with the expression in them, and with the size that its format names."""
    sizes = re.findall(r",\[(\w+)\]", expression)
    plain = FORMAT.sub("", expression)
    owner = INSTANCES.get(kind, kind.replace("*", "i32"))
    scope = owner
    if name in OF_NODES:
        node = NODES[kind]
        scope = node if "::" in node else f"{owner}::{node}"
    # Members are seen from a class that derives.
    for index, text in enumerate([plain, *sizes]):
        line = (f"struct tView{number}_{index} : {scope} {{ "
                f"auto view() {{ return sizeof({text}); }} }};")
        for place, argument in enumerate(ARGUMENTS.get(kind, []), 1):
            line = line.replace(f"$T{place}", argument)
        yield line


def complaints():
    try:
        root = ElementTree.parse(FILE).getroot()
    except ElementTree.ParseError as error:
        return [str(error)]
    wrong = [f"there is no element {element.tag}" for element in list(root.iter())[1:]
             if element.tag.removeprefix(SPACE) not in EXPRESSIONS | OTHERS]
    lines = [f'#include "{header}"' for header in HEADERS]
    block = re.sub(r"//.*|\n", " ", HEAP_BLOCK.search(HEAP_SOURCE.read_text())[0])
    lines.append(f"namespace nOXDIAG100 {{ {block} }}")
    places = {}
    for kind in root:
        type_name = kind.attrib["Name"]
        for name, expression in expressions_of(kind):
            for line in check_of(len(lines), type_name, name, expression):
                lines.append(line)
                places[len(lines)] = f"{type_name}: {expression}"
    code, output = compileChecks.Target("windows").compile(
        "\n".join(lines) + "\n", "-fno-access-control", "-Dfinal=", f"-I{workshop.TOP}/source",
        "-Wno-everything", "-ferror-limit=0")
    found = re.findall(r"^<stdin>:(\d+):\d+: error: (.*)$", output, re.M)
    wrong += [f"{places.get(int(line), line)}: {text}" for line, text in found]
    return wrong if code == 0 or found else [output]


def check():
    workshop.configure("windows")
    wrong = complaints()
    count = len([1 for kind in ElementTree.parse(FILE).getroot() for _ in expressions_of(kind)]) \
        if not wrong else 0
    return workshop.Outcome(count, [line.split(": ")[0] for line in wrong], "\n".join(wrong))
