"""What gdb shows of TVNMath's objects: containers with shape, orientation and elements, results, errors and texts.

Installed beside the library, where gdb loads it together with the library once the folder is allowed:

    add-auto-load-safe-path /opt/tvnmath/lib        (in ~/.config/gdb/gdbinit)

Otherwise `source` this file. Elements are cut where `set print elements` says, and v[2] works on containers although no
operator[] may have been compiled. Nothing in the program is called, so core dumps print as well as running programs.

A compiler describes a polymorphic class only where its virtual functions are, which is in the library, and the installed
library has no debug information. So this file knows the layout of the legacy family and its data objects, of the legacy
texts and errors, and of the error categories; a test holds it to that.
"""

import os

import gdb
import gdb.printing
import gdb.xmethod

POINTER = 8
DOUBLE = 8
ORIENTATION = {0: "row", 1: "column"}


def double_pointer(address):
    return gdb.Value(int(address)).cast(gdb.lookup_type("double").pointer())


def number_at(address, type_name):
    return int(gdb.Value(int(address)).cast(gdb.lookup_type(type_name).pointer()).dereference())


def pointer_at(address):
    return number_at(address, "unsigned long")


def shape_of_vector(orientation, length):
    return f"{ORIENTATION.get(int(orientation), 'vector')} of length {length}"


class Elements:
    """Numbers in memory: `length` elements of `parts` doubles each."""

    def __init__(self, address, length, parts=1):
        self.first = double_pointer(address)
        self.length = int(length)
        self.parts = parts

    def __getitem__(self, i):
        if self.parts == 1:
            return (self.first + i).dereference()
        real, imaginary = float(self.first[2 * i]), float(self.first[2 * i + 1])
        sign = "-" if str(imaginary).startswith("-") else "+"
        return f"{real:.17g} {sign} {abs(imaginary):.17g}i"

    def children(self):
        for i in range(self.length):
            yield f"[{i}]", self[i]


def field(value, path, offset, type_name="unsigned long"):
    """A number in an object: by its name, or by its place where the compiler described the class only in part, as clang
    does of a class that no constructor is compiled of."""
    part = value
    try:
        for name in path.split("."):
            part = part[name]
        return int(part)
    except gdb.error:
        return number_at(address_of(value) + offset, type_name)


def elements_of_array(value, parts=1):
    """The elements of a container that begins with a Detail::ElementArray."""
    first, end = field(value, "_elements._begin", 0), field(value, "_elements._end", POINTER)
    return Elements(first, (end - first) // (DOUBLE * parts), parts)


def elements_of_array_at(address, parts=1):
    """The same of an array in a data object, whose type is not known."""
    first, end = pointer_at(address), pointer_at(address + POINTER)
    return Elements(first, (end - first) // (DOUBLE * parts), parts)


class VectorPrinter:
    """A vector: its shape, then its elements."""

    def __init__(self, shape, elements):
        self.shape = shape
        self.elements = elements

    def to_string(self):
        return self.shape

    def children(self):
        return self.elements.children()

    def display_hint(self):
        return "array"


class MatrixPrinter:
    """A matrix: its shape, then its columns, which is what a single index selects."""

    def __init__(self, elements, rows, columns):
        self.elements = elements
        self.rows = int(rows)
        self.columns = int(columns)

    def to_string(self):
        return f"{self.rows} x {self.columns}, by columns"

    def children(self):
        for column in range(self.columns):
            if self.rows == 0:
                yield f"[{column}]", "{}"
                continue
            first = self.elements.first + column * self.rows
            array = first.dereference().type.array(self.rows - 1).pointer()
            yield f"[{column}]", first.cast(array).dereference()

    def display_hint(self):
        return "array"


class TextPrinter:
    """Something that is said in a few words."""

    def __init__(self, text):
        self.text = text

    def to_string(self):
        return self.text


class StringPrinter(TextPrinter):
    def display_hint(self):
        return "string"


class FieldsPrinter:
    """A few words, then values under their names."""

    def __init__(self, text, fields):
        self.text = text
        self.fields = fields

    def to_string(self):
        return self.text

    def children(self):
        return iter(self.fields)


def address_of(value):
    if value.address is None:
        raise gdb.error("an object that is in no memory cannot be shown")
    return int(value.address)


def data_object(value):
    """The address of a legacy object's data object, which is behind the pointer to its virtual functions; 0 once the
    object was moved from."""
    return pointer_at(address_of(value) + POINTER)


# An array is three pointers: where it begins, and where its elements and its storage end.
ARRAY_SIZE = 3 * POINTER


def vector2(value, parts=1, kind=""):
    elements = elements_of_array(value, parts)
    orientation = field(value, "_orientation", ARRAY_SIZE, "int")
    return VectorPrinter(kind + shape_of_vector(orientation, elements.length), elements)


def vector_view2(value, parts=1, kind="view of a "):
    elements = Elements(field(value, "_data", 0), field(value, "_length", POINTER), parts)
    return VectorPrinter(kind + shape_of_vector(field(value, "_orientation", 2 * POINTER, "int"), elements.length), elements)


def matrix2(value):
    return MatrixPrinter(elements_of_array(value), field(value, "_dimensions._rows", ARRAY_SIZE),
                         field(value, "_dimensions._columns", ARRAY_SIZE + POINTER))


def moved_from_or(make):
    """What `make` shows of the data object's address, if there is one."""

    def printer(value):
        address = data_object(value)
        return make(address) if address else TextPrinter("moved from")

    return printer


# A data object begins with the pointer to its virtual functions.
ARRAY = POINTER
BEHIND_ARRAY = ARRAY + ARRAY_SIZE


def vector(address):
    elements = elements_of_array_at(address + ARRAY)
    return VectorPrinter(shape_of_vector(number_at(address + BEHIND_ARRAY, "int"), elements.length), elements)


def view_vector(address):
    length = pointer_at(address + 2 * POINTER)
    return VectorPrinter(f"view of a {shape_of_vector(number_at(address + 3 * POINTER, 'int'), length)}",
                         Elements(pointer_at(address + POINTER), length))


def matrix(address):
    return MatrixPrinter(elements_of_array_at(address + ARRAY), pointer_at(address + BEHIND_ARRAY),
                         pointer_at(address + BEHIND_ARRAY + POINTER))


def complex_vector(address):
    elements = elements_of_array_at(address + ARRAY, 2)
    return VectorPrinter(f"complex vector of length {elements.length}", elements)


def linear_algebra_result(address):
    # Two std::variant of Vector and Matrix, each of which is two pointers long, with the number of the alternative
    # behind them; then the error.
    fields = []
    for i, name in enumerate(("solutions", "residuals")):
        variant = address + POINTER + i * 3 * POINTER
        alternative = number_at(variant + 2 * POINTER, "unsigned char")
        data = pointer_at(variant + POINTER)
        printer = (vector, matrix)[alternative](data) if data else TextPrinter("moved from")
        fields.append((name, as_text(printer)))
    return FieldsPrinter(error_code_text(address + POINTER + 6 * POINTER), fields)


def as_text(printer):
    """A vector or matrix on one line, for where there is no value that gdb could print itself."""
    limit = gdb.parameter("print elements") or 0
    parts = []
    for i, (_, child) in enumerate(printer.children() if hasattr(printer, "children") else ()):
        if limit and i >= limit:
            parts.append("...")
            break
        parts.append(str(child))
    return f"{printer.to_string()} = {{{', '.join(parts)}}}" if parts else printer.to_string()


def text_at(address):
    """The text of a String2: where its bytes are, and how many."""
    length = pointer_at(address + POINTER)
    if length == 0:
        return ""
    return gdb.selected_inferior().read_memory(pointer_at(address), length).tobytes().decode("utf-8", "replace")


# The legacy category keeps no table that could be read; a code beyond this one is "unhandled", and so is 7.
LEGACY_TEXTS = ("table is not a vector", "solution could not be computed", "failed to converge", "dimensions mismatch",
                "invalid parameter", "solution could not be computed", "solution could not be computed", None,
                "matrix is not square", "matrix is singular")


def narrow_at(address):
    return gdb.Value(int(address)).cast(gdb.lookup_type("char").pointer()).string("utf-8")


def class_name(obj):
    """The name of a polymorphic object's class, as its type information spells it. No symbols are needed."""
    type_information = pointer_at(pointer_at(obj) - POINTER)
    return narrow_at(pointer_at(type_information + POINTER))


def coded_text(code, category):
    """A code with its category's name and text. All is read, nothing is called: the program may be a core dump, or stand
    where no function of it can run."""
    kind = class_name(category)
    if kind.endswith("TableCategoryE"):
        # A name, then a span of texts.
        name, texts, count = (pointer_at(category + i * POINTER) for i in (1, 2, 3))
        text = pointer_at(texts + code * POINTER) if 0 <= code < count else 0
        return f"{narrow_at(name)} {code}: {narrow_at(text) if text else f'Unrecognised error ({code})'}"
    if kind.endswith("6System12_GLOBAL__N_116StandardCategoryE"):
        name = narrow_at(pointer_at(category + POINTER))
        return f"{name} {code}: {os.strerror(code)}" if name in ("generic", "system") else f"{name} {code}"
    if kind == "N7Tervane4Math26LinearAlgebraErrorCategoryE":
        text = LEGACY_TEXTS[code] if 0 <= code < len(LEGACY_TEXTS) else None
        return f"math_la {code}: {text or 'unhandled'}"
    return f"code {code} of the category {kind}"


def error_code2_text(value):
    return coded_text(field(value, "_code", 0, "int"), field(value, "_category", POINTER))


def error_code_text(address):
    """The legacy ErrorCode: virtual functions, code, category, state, and the text of an exception."""
    state = number_at(address + 3 * POINTER, "int")
    if state == 0:
        return "no error"
    if state == 1:
        return coded_text(number_at(address + POINTER, "int"), pointer_at(address + 2 * POINTER))
    if state == 2:
        return f"exception: {text_at(address + 5 * POINTER)}"
    return "unknown error"


def expected(value):
    if not bool(value["_hasValue"]):
        return TextPrinter(f"error: {error_code2_text(value['_error'])}")
    if str(value.type.strip_typedefs().template_argument(0)) == "void":
        return TextPrinter("success")
    return FieldsPrinter("expected", [("value", value["_value"])])


PRINTERS = {
    "Math::Vector2": vector2,
    "Math::VectorView2": vector_view2,
    "Math::Matrix2": matrix2,
    "Math::ComplexVector2": lambda v: vector2(v, 2, "complex "),
    "Math::ComplexVectorView2": lambda v: vector_view2(v, 2, "view of a complex "),
    "Math::Vector": moved_from_or(vector),
    "Math::ViewVector": moved_from_or(view_vector),
    "Math::Matrix": moved_from_or(matrix),
    "Math::ComplexVector": moved_from_or(complex_vector),
    "Math::LinearAlgebraResult": moved_from_or(linear_algebra_result),
    "Math::Dimensions": lambda v: TextPrinter(f"{field(v, '_rows', 0)} x {field(v, '_columns', POINTER)}"),
    "Math::Index": lambda v: TextPrinter(f"row {field(v, '_row', 0)}, column {field(v, '_column', POINTER)}"),
    "Math::Slice": lambda v: TextPrinter(":".join(str(field(v, f"_{name}", 4 * i, "int"))
                                                  for i, name in enumerate(("start", "stop", "step")))),
    "System::ErrorCode2": lambda v: TextPrinter(error_code2_text(v)),
    "System::ErrorCode": lambda v: TextPrinter(error_code_text(address_of(v))),
    "System::String2": lambda v: StringPrinter(text_at(address_of(v))),
    "System::String": lambda v: StringPrinter(text_at(address_of(v) + POINTER)),
}


class Printers(gdb.printing.PrettyPrinter):
    """Finds the printer of a type by its name."""

    def __init__(self):
        super().__init__("tvnmath", [gdb.printing.SubPrettyPrinter(name) for name in (*PRINTERS, "System::Expected")])

    def __call__(self, value):
        # gdb itself does not follow a reference to a class that is described only in part.
        if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
        name = value.type.strip_typedefs().unqualified().name or ""
        if not name.startswith("Tervane::"):
            return None
        name = name.removeprefix("Tervane::")
        maker = expected if name.startswith("System::Expected<") else PRINTERS.get(name)
        sub = next((s for s in self.subprinters if s.name == name.split("<")[0]), None)
        return maker(value) if maker and sub and sub.enabled else None


class SubscriptWorker(gdb.xmethod.XMethodWorker):
    """container[i], without the program's own operator, which may not have been compiled."""

    def __init__(self, name):
        self.name = name

    def get_arg_types(self):
        return gdb.lookup_type("unsigned long")

    def get_result_type(self, obj, index):
        return self(obj, index).type

    def __call__(self, obj, index):
        i = int(index)
        printer = PRINTERS[self.name](obj.dereference() if obj.type.code == gdb.TYPE_CODE_PTR else obj)
        if isinstance(printer, TextPrinter):
            raise gdb.error("the object was moved from")
        if isinstance(printer, MatrixPrinter):
            return printer.elements.first + i * printer.rows
        if printer.elements.parts == 2:
            return printer.elements.first[2 * i].address.cast(complex_type().pointer()).dereference()
        return printer.elements[i]


def complex_type():
    """A complex number: the standard's where the program knows it, or else two doubles."""
    try:
        return gdb.lookup_type("std::complex<double>")
    except gdb.error:
        return gdb.lookup_type("double").array(1)


class Subscript(gdb.xmethod.XMethodMatcher):
    CONTAINERS = ("Math::Vector2", "Math::VectorView2", "Math::Matrix2", "Math::ComplexVector2",
                  "Math::ComplexVectorView2", "Math::Vector", "Math::ViewVector", "Math::ComplexVector", "Math::Matrix")

    def __init__(self):
        super().__init__("tvnmath")
        self.methods = [gdb.xmethod.XMethod("operator[]")]

    def match(self, class_type, method_name):
        name = (class_type.strip_typedefs().unqualified().name or "").removeprefix("Tervane::")
        if method_name == "operator[]" and name in self.CONTAINERS and self.methods[0].enabled:
            return SubscriptWorker(name)
        return None


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers(), replace=True)
gdb.xmethod.register_xmethod_matcher(gdb.current_objfile(), Subscript(), replace=True)
