"""How gdb shows the value types: points, rectangles, regions, four-character codes, colours and counted pointers.

An installed library brings this in by itself (see autoload-gdb.py.in); by hand: `source debug/qlx_gdb.py`. Four-character
codes are shown as text where their type is Cmn_ID; for any other integer there is the function $fourcc(VALUE).
"""

import re

import gdb


def id_text(value):
    """The code as Cmn_IDToString writes it."""
    number = int(value) & 0xFFFFFFFF
    data = number.to_bytes(4, "big")
    if all(0x20 <= byte <= 0x7E for byte in data):
        return "'" + data.decode("ascii") + "'"
    return f"0x{number:08X}"


class PointPrinter:
    """Cmn_Point, _CPoint and VPoint: always horizontal first, whatever the order in memory."""

    def __init__(self, value, x, y):
        self.value, self.x, self.y = value, x, y

    def to_string(self):
        return f"({self.value[self.x]}, {self.value[self.y]})"


def format_rect(left, top, right, bottom):
    text = f"({left}, {top})-({right}, {bottom})"
    return text + (" empty" if right <= left or bottom <= top else f" {right - left}x{bottom - top}")


class RectPrinter:
    """Left, top, right, bottom, and the size."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        value = self.value
        return format_rect(*(value[field] for field in ("left", "top", "right", "bottom")))


class VRectPrinter:
    """A view rectangle, shown horizontal first like the others."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        first, second = self.value["mTopLeft"], self.value["mBottomRight"]
        return format_rect(first["h"], first["v"], second["h"], second["v"])


class RectListPrinter:
    """The rectangles as children."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        count = int(self.value["mSize"])
        return f"{count} rectangle{'' if count == 1 else 's'}"

    def children(self):
        data = self.value["mData"]
        for index in range(int(self.value["mSize"])):
            yield f"[{index}]", data[index]

    def display_hint(self):
        return "array"


class RegionPrinter:
    """A region: its rectangles, and that there is no implementation when there is none."""

    def __init__(self, value):
        self.core = None
        implementation = value["mImpl"]["mObject"]
        if int(implementation):
            self.core = implementation.dereference()["mCore"]

    def to_string(self):
        if self.core is None:
            return "region without implementation"
        return f"region of {int(self.core['mRects']['mSize'])}"

    def children(self):
        if self.core is not None:
            yield from RectListPrinter(self.core["mRects"]).children()

    def display_hint(self):
        return "array"


class ColorPrinter:
    """The four 16-bit components in hexadecimal."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        parts = [int(self.value[field]) for field in ("mRed", "mGreen", "mBlue", "mAlpha")]
        text = "#" + " ".join(f"{part:04X}" for part in parts)
        return text + (" named" if self.value["mNamed"] else "")


class CountedPointerPrinter:
    """The pointer, how many share the object, and the object behind it."""

    def __init__(self, value):
        self.object = value["mObject"]
        self.owner = value["mOwner"] if gdb.types.has_field(value.type, "mOwner") else self.object

    def to_string(self):
        if not int(self.object):
            return "null"
        count = "?"
        try:
            counted = self.owner.dereference()
            base = gdb.lookup_type("Cmn_RefCountObject")
            count = int(counted.cast(base)["mCount"]["_M_i"])
        except (gdb.error, gdb.MemoryError):
            pass  # the class is only declared here
        return f"{self.object.type.target()} at {int(self.object):#x}, count {count}"

    def children(self):
        if int(self.object):
            try:
                yield "object", self.object.dereference()
            except gdb.error:
                pass


class IdPrinter:
    """A four-character code."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return id_text(self.value)


PRINTERS = [
    (re.compile(r"^Cmn_Point<.*>$"), lambda value: PointPrinter(value, "x", "y")),
    (re.compile(r"^(VPoint|SimpleVPoint|_CPoint)$"), lambda value: PointPrinter(value, "h", "v")),
    (re.compile(r"^(Cmn_Rect<.*>|_CRect)$"), RectPrinter),
    (re.compile(r"^VRect$"), VRectPrinter),
    (re.compile(r"^Cmn_RectList$"), RectListPrinter),
    (re.compile(r"^(QLX_Region|Cmn_Region<.*>)$"), RegionPrinter),
    (re.compile(r"^CRGBColor$"), ColorPrinter),
    (re.compile(r"^Cmn_(Aliased)?RefCountPtr<.*>$"), CountedPointerPrinter),
]


def lookup(value):
    if value.type.name == "Cmn_ID":
        return IdPrinter(value)
    kind = value.type
    if kind.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
        kind = kind.target()
        value = value.referenced_value()
    name = kind.unqualified().strip_typedefs().tag
    if name:
        for pattern, printer in PRINTERS:
            if pattern.match(name):
                return printer(value)
    return None


lookup.name = "qlx"
lookup.enabled = True


class FourCC(gdb.Function):
    """$fourcc(VALUE): an integer as the four characters it stands for."""

    def __init__(self):
        super().__init__("fourcc")

    def invoke(self, value):
        return id_text(value)


def register(objfile):
    import gdb.printing
    import gdb.types

    gdb.printing.register_pretty_printer(objfile, lookup, replace=True)
    FourCC()


if __name__ == "__main__":
    register(None)
