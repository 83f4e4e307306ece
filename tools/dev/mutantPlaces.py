"""Where a source can be mutated, and the source with every mutant woven into it."""

import collections
import json
import pathlib
import re
import sys

import clang.cindex
from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

# What the number of a mutant within its file chooses, and how the list of survivors names it.
Mutant = collections.namedtuple("Mutant", "number line function text kind before after")
# One wrapping of the source's text: edits, and the mutants that it gives.
Place = collections.namedtuple("Place", "edits mutants line")

FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR,
             Kind.FUNCTION_TEMPLATE, Kind.CONVERSION_FUNCTION}
SCOPES = {Kind.NAMESPACE, Kind.CLASS_DECL, Kind.STRUCT_DECL, Kind.CLASS_TEMPLATE,
          Kind.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION, Kind.LINKAGE_SPEC, Kind.UNEXPOSED_DECL}
UNEVALUATED = {Kind.STATIC_ASSERT, Kind.CXX_UNARY_EXPR, Kind.TYPE_ALIAS_DECL, Kind.TYPEDEF_DECL,
               Kind.ENUM_DECL, Kind.ASM_STMT}
LITERALS = {Kind.INTEGER_LITERAL, Kind.CHARACTER_LITERAL, Kind.CXX_BOOL_LITERAL_EXPR}
RELATIONS = {"<": ("less", "<="), "<=": ("atMost", "<"), ">": ("greater", ">="), ">=": ("atLeast", ">")}
ARITHMETIC = {"+": ("plus", "-"), "-": ("minus", "+"), "*": ("times", "+"), "/": ("over", "*"),
              "%": ("rest", "/"), "&": ("both", "|"), "|": ("any", "&"), "^": ("one", "|"),
              "<<": ("up", ">>"), ">>": ("down", "<<")}
INTEGERS = {TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.USHORT, TypeKind.UINT, TypeKind.ULONG,
            TypeKind.ULONGLONG, TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.WCHAR, TypeKind.SHORT,
            TypeKind.INT, TypeKind.LONG, TypeKind.LONGLONG}
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)


class Weaver:
    """Reads one source and collects its places in the order of the text."""

    def __init__(self, file, arguments):
        self.file = str(file)
        self.bytes = pathlib.Path(file).read_bytes()
        index = clang.cindex.Index.create()
        options = clang.cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD
        self.unit = index.parse(self.file, arguments, options=options)
        errors = [str(note) for note in self.unit.diagnostics if note.severity >= 3]
        if errors:
            raise ValueError(f"{self.file}: " + "; ".join(errors))
        self.macros = self._macro_uses()
        self.lines = self.bytes.decode().splitlines()
        self.places = []
        self.numbers = 0
        self.function = ""
        for cursor in self.unit.cursor.get_children():
            self._scope(cursor, "")

    def _macro_uses(self):
        return [self._span(cursor) for cursor in self.unit.cursor.get_children()
                if cursor.kind == Kind.MACRO_INSTANTIATION and self._is_here(cursor)]

    def _is_here(self, cursor):
        file = cursor.location.file
        return file is not None and file.name == self.file

    @staticmethod
    def _span(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def _text(self, span):
        return self.bytes[span[0]:span[1]].decode()

    def _words(self, span):
        return COMMENT.sub(" ", self._text(span))

    def _is_in_macro(self, span):
        return any(start <= span[0] and span[1] <= end for start, end in self.macros)

    # Declarations.

    def _scope(self, cursor, outer):
        if not self._is_here(cursor):
            return
        if cursor.kind in SCOPES:
            name = outer
            if cursor.kind not in (Kind.NAMESPACE, Kind.LINKAGE_SPEC, Kind.UNEXPOSED_DECL):
                name = f"{outer}{cursor.spelling}::"
            for child in cursor.get_children():
                self._scope(child, name)
        elif cursor.kind in FUNCTIONS and cursor.is_definition():
            self._define(cursor, outer)

    def _define(self, cursor, outer):
        children = list(cursor.get_children())
        bodies = [child for child in children if child.kind in (Kind.COMPOUND_STMT, Kind.CXX_TRY_STMT)]
        span = self._span(cursor)
        if not bodies or self._is_in_macro(span):
            return
        head = self._words((span[0], self._span(bodies[-1])[0]))
        if re.search(r"\bconst(expr|eval)\b", head):
            return
        self.function = outer + self._qualified(cursor)
        self.result = cursor.result_type.get_canonical()
        for child in children:
            if child.kind.is_expression() or child is bodies[-1]:
                self._visit(child, cursor, False)

    @staticmethod
    def _qualified(cursor):
        parent = cursor.semantic_parent
        if parent is None or parent == cursor.lexical_parent or parent.kind == Kind.NAMESPACE:
            return cursor.spelling
        return f"{parent.spelling}::{cursor.spelling}"

    # Statements and expressions.

    def _visit(self, cursor, parent, is_wrapped):
        """is_wrapped: the parent has made a condition or a returned value of the whole."""
        if cursor.kind in UNEVALUATED or self._is_skipped(cursor):
            return
        handler = getattr(self, f"_at_{cursor.kind.name.lower()}", None)
        if handler is not None:
            handler(cursor, is_wrapped)
        elif cursor.kind in LITERALS:
            self._literal(cursor, parent)
        else:
            self._children(cursor, is_wrapped and cursor.kind in (Kind.UNEXPOSED_EXPR, Kind.PAREN_EXPR))

    def _is_skipped(self, cursor):
        span = self._span(cursor)
        if cursor.kind == Kind.VAR_DECL:
            return re.search(r"^[^=({]*\b(constexpr|static|constinit)\b", self._words(span)) is not None
        return cursor.kind.is_expression() and self._is_in_macro(span)

    def _children(self, cursor, is_wrapped=False):
        for child in cursor.get_children():
            self._visit(child, cursor, is_wrapped)

    def _at_compound_stmt(self, cursor, _):
        for child in cursor.get_children():
            self._statement(child)

    def _at_case_stmt(self, cursor, _):
        self._statement(list(cursor.get_children())[-1])

    def _at_default_stmt(self, cursor, _):
        self._statement(list(cursor.get_children())[-1])

    def _at_if_stmt(self, cursor, _):
        children = list(cursor.get_children())
        head = self._words((self._span(cursor)[0], self._span(children[0])[0]))
        rest = children
        if children[0].kind.is_expression() and "constexpr" not in head:
            self._condition(children[0], "branch" if len(children) > 2 else "truth")
            rest = children[1:]
        for child in rest:
            self._statement(child)

    def _at_while_stmt(self, cursor, _):
        children = list(cursor.get_children())
        if children[0].kind.is_expression():
            self._condition(children[0], "truth")
            children = children[1:]
        for child in children:
            self._statement(child)

    def _at_do_stmt(self, cursor, _):
        body, condition = cursor.get_children()
        self._statement(body)
        self._condition(condition, "truth")

    def _at_for_stmt(self, cursor, _):
        children = list(cursor.get_children())
        start, end = self._for_condition(cursor)
        for child in children[:-1]:
            span = self._span(child)
            if start <= span[0] and span[1] <= end:
                self._condition(child, "truth")
            else:
                self._visit(child, cursor, False)
        self._statement(children[-1])

    def _for_condition(self, cursor):
        """The span between the two semicolons."""
        tokens = [token for token in cursor.get_tokens()
                  if token.spelling in "(){};" and token.kind.name == "PUNCTUATION"]
        depth, found = 0, []
        for token in tokens:
            depth += {"(": 1, "{": 1, ")": -1, "}": -1}.get(token.spelling, 0)
            if token.spelling == ";" and depth == 1:
                found.append(token.extent.start.offset)
        return found[0], found[1]

    def _at_conditional_operator(self, cursor, _):
        condition, *values = cursor.get_children()
        self._condition(condition, "branch")
        for value in values:
            self._visit(value, cursor, False)

    def _at_var_decl(self, cursor, _):
        start, end = cursor.location.offset, self._span(cursor)[1]
        first = re.search(r"[={(]|$", self._text((start, end)))
        # The dimensions of an array are before that.
        children = [child for child in cursor.get_children()
                    if self._span(child)[0] >= start + first.start()]
        if not children:
            return
        is_truth = cursor.type.get_canonical().kind == TypeKind.BOOL
        for child in children:
            if is_truth and child == children[-1] and self._inner(child).kind.name in (
                    "BINARY_OPERATOR", "CALL_EXPR", "UNARY_OPERATOR"):
                self._condition(child, "truth")
            else:
                self._visit(child, cursor, False)

    def _at_return_stmt(self, cursor, _):
        for child in cursor.get_children():
            inner = self._inner(child)
            result = child.type.get_canonical().kind
            is_plain = inner.kind in LITERALS or inner.kind in (
                Kind.CXX_NULL_PTR_LITERAL_EXPR, Kind.INIT_LIST_EXPR, Kind.LAMBDA_EXPR)
            if is_plain or self.result.kind in (TypeKind.LVALUEREFERENCE, TypeKind.RVALUEREFERENCE):
                self._visit(child, cursor, False)
            elif result == TypeKind.BOOL:
                self._condition(child, "truth", "return")
            elif result in INTEGERS:
                self._wrap(child, "number", "return", ["0", "{} + 1"])
                self._visit(child, cursor, True)
            elif result in (TypeKind.POINTER, TypeKind.ENUM):
                self._wrap(child, "value", "return", ["0"])
                self._visit(child, cursor, True)
            else:
                self._visit(child, cursor, False)

    def _at_binary_operator(self, cursor, _):
        left, right = cursor.get_children()
        operator = self._operator(left, right)
        if operator in ("&&", "||"):
            for child in (left, right):
                self._operand(child, operator)
            return
        if operator in RELATIONS:
            self._infix(cursor, left, right, operator, *RELATIONS[operator], "boundary")
        elif operator in ARITHMETIC:
            self._infix(cursor, left, right, operator, *ARITHMETIC[operator], "operator")
        for child in (left, right):
            self._visit(child, cursor, operator in RELATIONS)

    def _at_decl_ref_expr(self, cursor, is_wrapped):
        named = cursor.referenced
        if is_wrapped or named is None or named.kind != Kind.VAR_DECL:
            return
        is_number = named.type.get_canonical().kind in INTEGERS and named.type.is_const_qualified()
        if is_number and self._is_constant(named):
            self._wrap(cursor, "constant", "constant", ["{} + 1"])

    @staticmethod
    def _is_constant(named):
        words = [token.spelling for token in named.get_tokens()]
        return "constexpr" in words[:words.index("=")] if "=" in words else "constexpr" in words

    def _literal(self, cursor, parent):
        text = self._text(self._span(cursor))
        if cursor.kind == Kind.CXX_BOOL_LITERAL_EXPR:
            other = "false" if text == "true" else "true"
        else:
            other = "0" if text in ("1", "1u", "1U") else "{} + 1"
        is_compared = parent.kind == Kind.BINARY_OPERATOR and self._operator(*parent.get_children()) in RELATIONS
        if not is_compared:
            self._wrap(cursor, "constant", "constant", [other])

    def _statement(self, cursor):
        inner = self._inner(cursor)
        kind = self._effect(inner)
        if kind and not self._is_in_macro(self._span(cursor)):
            self._add(cursor, "(nMUTANT::is({id}) ? void() : void(", "))", kind, [""])
        self._visit(cursor, cursor, False)

    def _effect(self, inner):
        if inner.kind in (Kind.CALL_EXPR, Kind.CXX_DELETE_EXPR):
            return "call"
        if inner.kind == Kind.COMPOUND_ASSIGNMENT_OPERATOR:
            return "store"
        if inner.kind == Kind.BINARY_OPERATOR:
            return "store" if self._operator(*inner.get_children()) == "=" else None
        if inner.kind == Kind.UNARY_OPERATOR:
            text = self._text(self._span(inner))
            return "store" if re.match(r"\+\+|--", text) or text.endswith(("++", "--")) else None
        if inner.kind == Kind.UNEXPOSED_EXPR and self._text(self._span(inner)).startswith("__atomic_"):
            return "store"
        return None

    def _inner(self, cursor):
        """Without what the compiler adds around an expression."""
        while cursor.kind == Kind.UNEXPOSED_EXPR:
            children = list(cursor.get_children())
            if len(children) != 1 or self._span(children[0]) != self._span(cursor):
                break
            cursor = children[0]
        return cursor

    def _operator(self, left, right):
        return self._words((self._span(left)[1], self._span(right)[0])).strip()

    def _operand(self, cursor, operator):
        """Of && and ||: its other value is that of the whole. One of the same operator has its own."""
        inner = self._inner(cursor)
        if inner.kind == Kind.BINARY_OPERATOR and self._operator(*inner.get_children()) == operator:
            self._visit(cursor, cursor, True)
            return
        name, after = ("always", "true") if operator == "&&" else ("never", "false")
        self._add(cursor, f"nMUTANT::{name}({{id}}, bool(", "))", "condition", [after])
        self._visit(cursor, cursor, True)

    def _condition(self, cursor, name, kind="condition"):
        if self._inner(cursor).kind not in LITERALS:
            afters = ["true", "false"] + (["!({})"] if name == "branch" else [])
            self._add(cursor, f"nMUTANT::{name}({{id}}, bool(", "))", kind, afters)
        self._visit(cursor, cursor, True)

    def _wrap(self, cursor, name, kind, afters):
        self._add(cursor, f"nMUTANT::{name}({{id}}, ", ")", kind, afters)

    def _infix(self, cursor, left, right, operator, name, other, kind):
        span, gap = self._span(cursor), (self._span(left)[1], self._span(right)[0])
        where = gap[0] + self._text(gap).index(operator)
        edits = [(span[0], span[0], f"nMUTANT::{name}({{id}}, "),
                 (where, where + len(operator), ","), (span[1], span[1], ")")]
        after = f"{self._text((span[0], gap[0]))} {other} {self._text((gap[1], span[1]))}"
        self._place(cursor, edits, kind, [after])

    def _add(self, cursor, before, behind, kind, afters):
        span = self._span(cursor)
        text = self._text(span)
        self._place(cursor, [(span[0], span[0], before), (span[1], span[1], behind)], kind,
                    [after.replace("{}", text) for after in afters])

    def _place(self, cursor, edits, kind, afters):
        line = cursor.extent.start.line
        shown = " ".join(self._text(self._span(cursor)).split())
        mutants = []
        for after in afters:
            mutants.append(Mutant(self.numbers, line, self.function, self.lines[line - 1].strip(), kind,
                                  shown, " ".join(after.split())))
            self.numbers += 1
        self.places.append(Place(edits, mutants, line))

    # The woven source.

    def woven(self, dropped):
        """The source with the places whose number (in their order) is not in `dropped`; lines stay
        where they are. And the spans of the places in it, as (line, from column, to column)."""
        edits = []
        for order, place in enumerate(self.places):
            if order in dropped:
                continue
            first, last = place.edits[0], place.edits[-1]
            edits.append((first[0], 1, order, first, order))
            edits += [(edit[0], 2, order, edit, order) for edit in place.edits[1:-1]]
            edits.append((last[0], 0, -order, last, order))
        edits.sort(key=lambda edit: edit[:3])
        parts, done = [], 0
        spans = {}
        written = _Position()
        for _, _, _, (start, end, text), order in edits:
            between = self.bytes[done:start].decode()
            parts.append(between)
            written.past(between)
            number = self.places[order].mutants[0].number
            text = text.replace("{id}", f"OXDIAG_MUTANT_BASE + {number}")
            spans.setdefault(order, []).append((written.line, written.column))
            parts.append(text)
            written.past(text)
            spans[order].append((written.line, written.column))
            done = end
        parts.append(self.bytes[done:].decode())
        text = f'#line 1 "{self.file}"\n' + "".join(parts)
        return text, {order: (marks[0], marks[-1]) for order, marks in spans.items()}


class _Position:
    """Line and column, both from 1, of a text that grows."""

    def __init__(self):
        self.line, self.column = 1, 1

    def past(self, text):
        self.line += text.count("\n")
        self.column = len(text.encode()) - text.encode().rfind(b"\n") if "\n" in text \
            else self.column + len(text.encode())


def main(arguments):
    """FILE DROPPED OPTIONS...: what `woven` makes of a file, for the workshop's own Python."""
    file, dropped, *options = arguments
    weaver = Weaver(file, options)
    text, spans = weaver.woven({int(number) for number in dropped.split(",") if number})
    mutants = [[mutant._asdict() for mutant in place.mutants] for place in weaver.places]
    json.dump({"text": text, "spans": list(spans.items()), "places": mutants}, sys.stdout)


if __name__ == "__main__":
    main(sys.argv[1:])
