# SPDX-License-Identifier: LGPL-2.1-or-later
"""Finds what can be mutated in a C++ source, by clang's syntax tree."""

import re
from dataclasses import dataclass, field

from clang.cindex import CursorKind as Kind
from clang.cindex import Index, TypeKind

RELATIONS = {"<": ("less", "<=", ">="), "<=": ("lessEqual", "<", ">"),
             ">": ("greater", ">=", "<="), ">=": ("greaterEqual", ">", "<"),
             "==": ("equal", "!="), "!=": ("unequal", "==")}
ARITHMETIC = {"+": ("sum", "-"), "-": ("difference", "+"), "*": ("product", "/"),
              "/": ("quotient", "*"), "%": ("remainder", "*"), "<<": ("shiftedLeft", ">>"),
              ">>": ("shiftedRight", "<<"), "&": ("bitAnd", "|"), "|": ("bitOr", "&")}
STEPS = {("++", True): "increment", ("--", True): "decrement",
         ("++", False): "postIncrement", ("--", False): "postDecrement"}
NUMBER = re.compile(r"(0[xX][0-9a-fA-F']+|[0-9][0-9'.]*(e[0-9]+)?)[uUlLfFzZ]*")
NEUTRAL = re.compile(r"nullptr|std::nullopt|\{\}|[0.]+[uUlLfF]*|true|false|\w+\{\}")
NEUTRAL_RETURN = "return nothing or 0"
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR,
             Kind.CONVERSION_FUNCTION}
ARITHMETIC_TYPES = {TypeKind.BOOL, TypeKind.ENUM} | {
    kind for kind in (getattr(TypeKind, name) for name in (
        "CHAR_U UCHAR CHAR16 CHAR32 USHORT UINT ULONG ULONGLONG CHAR_S SCHAR WCHAR SHORT INT LONG "
        "LONGLONG FLOAT DOUBLE LONGDOUBLE").split())}


@dataclass
class Site:
    """A place, how it is rewritten ({0} is the first of its mutants' numbers), and its mutants."""
    start: int
    end: int
    before: str
    after: str
    mutants: list
    middle: tuple = None  # (start, end, text): the operator between two operands
    first: int = 0


@dataclass
class Source:
    path: str
    text: str
    sites: list = field(default_factory=list)
    skipped: int = 0

    def line(self, offset):
        return self.text.count("\n", 0, offset) + 1

    def kept(self, dropped):
        """`dropped`: for lines that do not compile, 1 for their returns alone and 2 for all."""
        def is_kept(site):
            level = dropped.get(self.line(site.start), 0)
            return level == 0 or (level == 1 and site.mutants != [NEUTRAL_RETURN])
        return [site for site in self.sites if is_kept(site)]

    def line_text(self, offset):
        start = self.text.rfind("\n", 0, offset) + 1
        return self.text[start:self.text.find("\n", offset)].strip()


class Finder:
    def __init__(self, path, text):
        self.source = Source(path, text.decode("latin-1"))  # one character a byte, as offsets count
        self.seen = set()
        self.declarations = {}

    def find(self, unit):
        for cursor in unit.cursor.get_children():
            location = cursor.location
            if location.file and location.file.name.endswith("/" + self.source.path):
                self.visit(cursor, True, None)
        return self.source

    # --- text

    def text(self, cursor):
        return self.source.text[cursor.extent.start.offset:cursor.extent.end.offset]

    def follows(self, cursor):
        return self.source.text[cursor.extent.end.offset:].lstrip()[:1]

    def add(self, start, end, before, after, mutants, middle=None):
        key = (start, end, before.split("(")[0] if middle is None else middle[0])
        if start >= end or key in self.seen:
            return
        self.seen.add(key)
        if not self.is_runtime:
            self.source.skipped += len(mutants)
            return
        self.source.sites.append(Site(start, end, before, after, mutants, middle))

    def wrap(self, cursor, function, mutants, cast=""):
        before = "mutant::" + function + "({0}, " + (cast + "(" if cast else "")
        self.add(cursor.extent.start.offset, cursor.extent.end.offset, before,
                 "))" if cast else ")", mutants)

    # --- tree

    def visit(self, cursor, runtime, function):
        """`function` is the one that a return statement would leave."""
        if cursor.kind in FUNCTIONS or cursor.kind == Kind.LAMBDA_EXPR:
            function = cursor
        runtime = runtime and not self.is_constant(cursor)
        self.is_runtime = runtime
        self.at(cursor, function)
        for number, child in enumerate(cursor.get_children()):
            label = cursor.kind == Kind.CASE_STMT and number == 0
            self.visit(child, runtime and not label, function)

    def is_constant(self, cursor):
        if cursor.kind in (Kind.STATIC_ASSERT, Kind.ENUM_DECL, Kind.FIELD_DECL, Kind.PARM_DECL,
                           Kind.FUNCTION_TEMPLATE, Kind.CLASS_TEMPLATE):
            return True
        if cursor.kind == Kind.IF_STMT:  # one branch of it is not compiled
            return self.text(cursor).startswith("if constexpr")
        if cursor.kind in FUNCTIONS or cursor.kind == Kind.VAR_DECL:
            return bool(re.search(r"\bconst(expr|init|eval)\b", self.head(cursor)))
        return False

    def head(self, cursor):
        """A declaration up to its name."""
        name = cursor.location.offset
        path = cursor.location.file.name if cursor.location.file else ""
        if path not in self.declarations:
            with open(path, encoding="latin-1") as file:
                self.declarations[path] = file.read()
        return self.declarations[path][cursor.extent.start.offset:name]

    def at(self, cursor, function):
        kind = cursor.kind
        if kind in (Kind.COMPOUND_STMT, Kind.IF_STMT, Kind.FOR_STMT, Kind.WHILE_STMT,
                    Kind.CXX_FOR_RANGE_STMT, Kind.CASE_STMT, Kind.DEFAULT_STMT):
            self.statements(cursor)
        if kind in (Kind.IF_STMT, Kind.WHILE_STMT, Kind.FOR_STMT, Kind.CONDITIONAL_OPERATOR):
            self.condition(cursor)
        elif kind in (Kind.BINARY_OPERATOR, Kind.CALL_EXPR):
            self.operator(cursor)
        elif kind == Kind.COMPOUND_ASSIGNMENT_OPERATOR:
            self.compound_assignment(cursor)
        elif kind == Kind.UNARY_OPERATOR:
            self.unary(cursor)
        elif kind in (Kind.INTEGER_LITERAL, Kind.FLOATING_LITERAL):
            if NUMBER.fullmatch(self.text(cursor)):
                self.number(cursor)
        elif kind == Kind.CXX_BOOL_LITERAL_EXPR and self.text(cursor) in ("true", "false"):
            self.wrap(cursor, "negated", [f"{self.text(cursor)} negated"])
        elif kind == Kind.DECL_REF_EXPR:
            self.constant(cursor)
        elif kind == Kind.RETURN_STMT:
            self.returned(cursor, function)

    def statements(self, cursor):
        """The statements right below this one that are expressions: calls and assignments."""
        children = list(cursor.get_children())
        if cursor.kind == Kind.IF_STMT:
            children = [child for child in children[1:] if self.follows(child) == ";"]
        elif cursor.kind != Kind.COMPOUND_STMT:
            children = children[-1:]
        for child in children:
            if not child.kind.is_expression() or self.text(child).startswith("throw"):
                continue  # without it a function may end that never returns
            if self.follows(child) == ";":
                self.add(child.extent.start.offset, child.extent.end.offset,
                         "if (mutant::on({0})) {{}} else ", "", ["statement removed"])

    def condition(self, cursor):
        children = list(cursor.get_children())
        loop = cursor.kind in (Kind.WHILE_STMT, Kind.FOR_STMT)
        if cursor.kind == Kind.FOR_STMT:
            found = [child for child in children[:-1]
                     if child.kind.is_expression() and self.follows(child) == ";"][-1:]
        else:
            found = children[:1] if children and children[0].kind.is_expression() else []
        for child in found:
            if self.text(child) in ("true", "false"):
                continue
            if loop:  # forced true it never ends
                self.add(child.extent.start.offset, child.extent.end.offset,
                         "!mutant::on({0}) && static_cast<bool>(", ")", ["condition forced false"])
            else:
                self.wrap(child, "forced", ["condition forced true", "condition forced false"],
                          "static_cast<bool>")

    def operands(self, cursor):
        children = [child for child in cursor.get_children()
                    if not child.spelling.startswith("operator")
                    or self.text(child) not in {**RELATIONS, **ARITHMETIC}]
        if len(children) != 2:
            return None
        left, right = sorted(children, key=lambda child: child.extent.start.offset)
        return left, right

    def operator(self, cursor):
        operands = self.operands(cursor)
        if not operands:
            return
        left, right = operands
        start, end = left.extent.end.offset, right.extent.start.offset
        if start >= end:
            return
        gap = self.source.text[start:end]
        token = gap.strip()
        if token in RELATIONS:
            name, *others = RELATIONS[token]
            self.between(left, right, gap, name, [f"{token} to {other}" for other in others])
        elif token in ("&&", "||") and cursor.kind == Kind.BINARY_OPERATOR:
            self.logical(left, right, gap, token)
        elif token in ARITHMETIC and all(self.is_arithmetic(one) for one in operands):
            name, other = ARITHMETIC[token]
            self.between(left, right, gap, name, [f"{token} to {other}"])

    @staticmethod
    def is_arithmetic(cursor):
        return cursor.type.get_canonical().kind in ARITHMETIC_TYPES

    def between(self, left, right, gap, name, mutants):
        start, end = left.extent.end.offset, right.extent.start.offset
        self.add(left.extent.start.offset, right.extent.end.offset,
                 "mutant::" + name + "({0}, (", "))", mutants,
                 (start, end, self.lines_of(gap, "), (")))

    def logical(self, left, right, gap, token):
        """a && b is (a ? b : false), a || b is (a ? true : b): the two differ in one value."""
        start, end = left.extent.end.offset, right.extent.start.offset
        value = "mutant::on({0})" if token == "&&" else "!mutant::on({0})"
        self.add(left.extent.start.offset, right.extent.end.offset, "((static_cast<bool>(",
                 ") : " + value + ")", [f"{token} to {'||' if token == '&&' else '&&'}"],
                 (start, end, self.lines_of(gap, ") != " + value + ") ? static_cast<bool>(")))

    @staticmethod
    def lines_of(gap, text):
        return text + "\n" * gap.count("\n")  # a line keeps its number

    def compound_assignment(self, cursor):
        left, right = cursor.get_children()
        token = self.source.text[left.extent.end.offset:right.extent.start.offset].strip()
        if token in ("+=", "-=") and self.is_arithmetic(right):
            self.wrap(right, "opposite", [f"{token} to {'-=' if token == '+=' else '+='}"])

    def unary(self, cursor):
        text = self.text(cursor)
        child = next(iter(cursor.get_children()), None)
        if child is None:
            return
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        if text.startswith("!") and not text.startswith("!="):
            self.wrap(cursor, "negated", ["! removed"])
        elif text[:2] in ("++", "--") or text[-2:] in ("++", "--"):
            prefix = text[:2] in ("++", "--")
            token = text[:2] if prefix else text[-2:]
            place = (start, start + 2, "") if prefix else (end - 2, end, "")
            other = "--" if token == "++" else "++"
            self.add(start, end, "mutant::" + STEPS[token, prefix] + "({0}, ", ")",
                     [f"{token} to {other}"], place)

    def number(self, cursor):
        text = self.text(cursor)
        self.wrap(cursor, "number", [f"{text} to {text} + 1", f"{text} to {text} - 1"])

    def constant(self, cursor):
        """A use of a constant whose declaration cannot be switched at run time."""
        declaration = cursor.referenced
        if declaration is None or declaration.kind != Kind.VAR_DECL:
            return
        if not self.is_arithmetic(cursor) or not declaration.location.file:
            return
        if "constexpr" in self.head(declaration):
            self.number(cursor)

    def returned(self, cursor, function):
        expression = next(iter(cursor.get_children()), None)
        if expression is None or function is None or NEUTRAL.fullmatch(self.text(expression)):
            return
        in_lambda = function.kind == Kind.LAMBDA_EXPR
        result = (expression.type if in_lambda else function.result_type).get_canonical()
        if result.kind == TypeKind.BOOL:
            self.wrap(expression, "forced", ["return true", "return false"], "static_cast<bool>")
        elif not in_lambda and result.kind not in (TypeKind.LVALUEREFERENCE,
                                                   TypeKind.RVALUEREFERENCE):
            self.add(cursor.extent.start.offset, cursor.extent.end.offset,
                     "if (mutant::on({0})) return {{}}; else ", "", [NEUTRAL_RETURN])


def find_sites(path, absolute, arguments):
    with open(absolute, "rb") as file:
        text = file.read()
    unit = Index.create().parse(absolute, args=arguments)
    errors = [str(one) for one in unit.diagnostics if one.severity >= 3]
    if errors:
        raise SystemExit("mutate: clang cannot read " + path + "\n" + "\n".join(errors))
    return Finder(path, text).find(unit)
