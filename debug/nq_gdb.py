"""Shows the values of nq in gdb as what they mean.

    (gdb) source PREFIX/share/nq/nq_gdb.py
    (gdb) print list
    $1 = NQDList of 2 = {NQLong 7, NQText "north"}

Where nq is installed to /usr, gdb loads this file by itself. The objects of a
list are shown with the type that they really have, when gdb knows it. Nothing
here calls into the program, so that core files are shown as well, and the walk
over a damaged list ends where its length says.

gdb must know the classes. Build nq with debug information (RelWithDebInfo), or
the program with -femit-class-debug-always (g++) or -fstandalone-debug (clang),
which do for all but the texts of a pool.
"""

import gdb
import gdb.printing

HIDDEN = ", which nq without debug information hides"


def field(value, name):
    """A field of the value or of its bases; None where its type is not known."""
    try:
        return value[name]
    except gdb.error:
        return None


def text_at(pointer):
    """The value that shows the string at a char*; "null" for none."""
    return pointer if int(pointer) else "null"


def owned(pointer):
    """What a std::unique_ptr points to: whoever wrote the standard library, it
    holds the pointer alone."""
    kept = pointer.type.strip_typedefs().template_argument(0)
    if kept.code == gdb.TYPE_CODE_ARRAY:
        kept = kept.target()
    return pointer.address.reinterpret_cast(kept.pointer().pointer()).dereference()


def object_at(pointer):
    """The object at an NQObject*, with its own type."""
    if not int(pointer):
        return "null"
    try:
        return pointer.cast(pointer.dynamic_type).dereference()
    except gdb.error:  # no debug information, or the object is damaged
        return pointer.dereference()


class List:
    """NQDList, NQSList, and the lists and trees derived from them."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        length = field(self.value, "length_")
        name = self.value.type.unqualified()
        return f"{name}{HIDDEN}" if length is None else f"{name} of {int(length)}"

    def children(self):
        cell = field(self.value, "pFirst_")
        if cell is None:
            return
        for i in range(int(self.value["length_"])):
            if not int(cell):
                yield f"[{i}]", "the list ends here, before its length"
                return
            yield f"[{i}]", object_at(cell["pObject_"])
            cell = cell["pNext_"]

    def display_hint(self):
        return "array"


class Cell:
    """A cell: what it holds. Its neighbours are reached by name."""

    def __init__(self, value):
        self.value = value

    def children(self):
        yield "object", object_at(self.value["pObject_"])


class Heap(List):
    """NQBinHeap: its objects by their values, in the order of the heap."""

    def children(self):
        cell = field(self.value, "pFirst_")
        heap_cell = gdb.lookup_type("NQBinHeapCell").pointer()
        for name, shown in super().children():
            if int(cell):
                yield f"{name} value", cell.cast(heap_cell)["value_"]
                cell = cell["pNext_"]
            else:
                yield f"{name} value", "?"
            yield name, shown

    def display_hint(self):
        return "map"


class HeapCell(Cell):
    def children(self):
        yield from super().children()
        yield "value", self.value["value_"]


class TreeCell(Cell):
    """A cell of a tree: its colour, too, which may be both."""

    COLOURS = {0: "none", 2: "red", 4: "black", 6: "red and black"}

    def children(self):
        yield from super().children()
        yield "colour", self.COLOURS[int(self.value["flags_"]) & 6]


class Text:
    """NQInternalText, NQText and NQErrorMsg."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        value = self.value
        if value.type.unqualified().name != "NQInternalText":
            value = value["text_"]
        return text_at(owned(value["string_"]))


class StringHandle:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return text_at(self.value["buffer_"])


class Pool:
    """NQStringPool: its texts in the order of their codes."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        case = "with" if self.value["caseSensitive_"] else "without"
        count = int(self.value["decodeTableMax_"])
        note = HIDDEN if count and self.texts() is None else ""
        return f"NQStringPool of {count} {case} case{note}"

    def children(self):
        texts = self.texts()
        if texts is None:
            return
        for code in range(int(self.value["decodeTableMax_"])):
            yield f"[{code}]", texts[code]

    def display_hint(self):
        return "array"

    def texts(self):
        """The array of texts; None where there is none or its type is not known."""
        tables = owned(self.value["tables_"])
        decode = field(tables.dereference(), "decode") if int(tables) else None
        return None if decode is None else owned(decode)


class Boxed:
    """NQInt, NQLong, NQDouble."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return f"{self.value.type.unqualified()} {self.value['value_']}"


class Tuple:
    """NQTuple, NQPoint, NQSize and NQDTuple."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        between = " x " if self.value.type.unqualified().name == "NQSize" else ", "
        return f"({self.value['x_']}{between}{self.value['y_']})"


class Edges:
    """NQEdges, and NQRect, which consists of them."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        edges = self.value
        if edges.type.unqualified().name != "NQEdges":
            edges = edges["edges_"]
        return "left {left}, bottom {bottom}, right {right}, top {top}".format(
            **{name: edges[name] for name in ("left", "bottom", "right", "top")})


class InternalRect:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return "center ({x_}, {y_}), {width_} x {height_}".format(
            **{name: self.value[name] for name in ("x_", "y_", "width_", "height_")})


PRINTERS = {
    "NQDList": List,
    "NQSList": List,
    "NQDListCell": Cell,
    "NQSListCell": Cell,
    "NQBinTreeCell": TreeCell,
    "NQBinHeap": Heap,
    "NQBinHeapCell": HeapCell,
    "NQInternalText": Text,
    "NQText": Text,
    "NQStringHandle": StringHandle,
    "NQStringPool": Pool,
    "NQInt": Boxed,
    "NQLong": Boxed,
    "NQDouble": Boxed,
    "NQTuple": Tuple,
    "NQDTuple": Tuple,
    "NQEdges": Edges,
    "NQRect": Edges,
    "NQInternalRect": InternalRect,
}


class Lookup(gdb.printing.PrettyPrinter):
    """Finds the printer of a type: its own, or for the library's derived types
    that of the nearest base that has one. An application's derived types show
    their own fields, and their base within them."""

    def __init__(self):
        super().__init__("nq")

    def __call__(self, value):
        kind = value.type.strip_typedefs().unqualified()
        if kind.code != gdb.TYPE_CODE_STRUCT:
            return None
        while kind is not None and kind.name is not None and kind.name.startswith("NQ"):
            printer = PRINTERS.get(kind.name)
            if printer is not None:
                return printer(value) if kind.fields() else None
            bases = [field.type for field in kind.fields() if field.is_base_class]
            kind = bases[0].strip_typedefs() if bases else None
        return None


gdb.printing.register_pretty_printer(gdb.current_objfile(), Lookup(), replace=True)
