#!/usr/bin/env python3
"""Writes the mechanical half of a container class, OSGXBase and OSGXFields, from its .fcd table.

A table is one XML file beside the hand-written class:

    <FieldContainer name="Layer" parent="Group" library="Tessaly" structure="concrete"
                    pointerfieldtypes="both" accessors="plain">
    What the class is for.
        <Field name="pickable" type="bool" cardinality="single" visibility="external"
               defaultValue="true" access="public">
        What the field means.
        </Field>
    </FieldContainer>

Attributes of FieldContainer: name, parent; library (Base, System, WindowEGL, Tessaly); parentLibrary where it is
another one than System or, for System and WindowEGL, does not matter; structure (concrete, abstract);
pointerfieldtypes (both, single, multi, none); accessors (plain, edit); decoratable (true makes the accessors virtual);
group, where the class begins a group of its own (kinds of attachments are told apart by it).
Attributes of Field: name, type, cardinality (single, multi), visibility (external, internal), defaultValue,
access (public, protected), fieldHeader (for a type that is neither a plain value nor a pointer).

A bad table is refused with file, line and reason, and nothing is written.
"""

import argparse
import os
import re
import sys
import xml.parsers.expat


class TableError(Exception):
    def __init__(self, line, reason):
        super().__init__(reason)
        self.line = line
        self.reason = reason


# Type of a field in the table: (C++ type, name behind SF or MF, numbers in a default or what kind of default).
VALUE_TYPES = {
    "bool": ("bool", "Bool", "bool"),
    "Int8": ("Int8", "Int8", "int"),
    "UInt8": ("UInt8", "UInt8", "uint"),
    "Int16": ("Int16", "Int16", "int"),
    "UInt16": ("UInt16", "UInt16", "uint"),
    "Int32": ("Int32", "Int32", "int"),
    "UInt32": ("UInt32", "UInt32", "uint"),
    "GLenum": ("UInt32", "UInt32", "uint"),
    "Int64": ("Int64", "Int64", "int"),
    "UInt64": ("UInt64", "UInt64", "uint"),
    "BitVector": ("BitVector", "BitVector", "uint"),
    "Real32": ("Real32", "Real32", "real"),
    "Real64": ("Real64", "Real64", "real"),
    "Time": ("Time", "Time", "real"),
    "string": ("std::string", "String", "string"),
    "Vec2f": ("Vec2f", "Vec2f", 2),
    "Vec3f": ("Vec3f", "Vec3f", 3),
    "Vec4f": ("Vec4f", "Vec4f", 4),
    "Vec2s": ("Vec2s", "Vec2s", 2),
    "Vec2us": ("Vec2us", "Vec2us", 2),
    "Vec3us": ("Vec3us", "Vec3us", 3),
    "Vec4ub": ("Vec4ub", "Vec4ub", 4),
    "Pnt2f": ("Pnt2f", "Pnt2f", 2),
    "Pnt3f": ("Pnt3f", "Pnt3f", 3),
    "Pnt4f": ("Pnt4f", "Pnt4f", 4),
    "Color3f": ("Color3f", "Color3f", 3),
    "Color4f": ("Color4f", "Color4f", 4),
    "Color3ub": ("Color3ub", "Color3ub", 3),
    "Color4ub": ("Color4ub", "Color4ub", 4),
    "Matrix": ("Matrix", "Matrix", 16),
    "Quaternion": ("Quaternion", "Quaternion", 4),
    "Plane": ("Plane", "Plane", 4),
    "DynamicVolume": ("DynamicVolume", "DynamicVolume", None),
}

LIBRARIES = {
    "Base": "OSG_BASELIB_DLLMAPPING",
    "System": "OSG_SYSTEMLIB_DLLMAPPING",
    "WindowEGL": "OSG_WINDOWEGL_DLLMAPPING",
    "WindowGLFW": "OSG_WINDOWGLFW_DLLMAPPING",
    "Tessaly": "OSG_TESSALY_DLLMAPPING",
}

RANGES = {
    "Int8": (-2**7, 2**7 - 1), "UInt8": (0, 2**8 - 1), "Int16": (-2**15, 2**15 - 1), "UInt16": (0, 2**16 - 1),
    "Int32": (-2**31, 2**31 - 1), "UInt32": (0, 2**32 - 1), "GLenum": (0, 2**32 - 1),
    "Int64": (-2**63, 2**63 - 1), "UInt64": (0, 2**64 - 1), "BitVector": (0, 2**64 - 1),
}

REAL = re.compile(r"[+-]?(\d+(\.\d*)?|\.\d+)([eE][+-]?\d+)?$")
INTEGER = re.compile(r"[+-]?(\d+|0[xX][0-9a-fA-F]+)$")
NAMED_CONSTANT = re.compile(r"GL_[A-Z0-9_]+$|[A-Za-z_]\w*(::[A-Za-z_]\w*)+$")
IDENTIFIER = re.compile(r"[A-Za-z_]\w*$")


def real_literal(text):
    if not any(c in text for c in ".eE"):
        text += ".0"
    return text + "f"


class Field:
    def __init__(self, attributes, line):
        self.line = line
        self.name = attributes.pop("name", "")
        self.type = attributes.pop("type", "")
        self.cardinality = attributes.pop("cardinality", "single")
        self.visibility = attributes.pop("visibility", "external")
        self.default = attributes.pop("defaultValue", None)
        self.access = attributes.pop("access", "public")
        self.header = attributes.pop("fieldHeader", None)
        self.text = ""
        for name in attributes:
            raise TableError(line, f"unknown attribute '{name}' of a field")
        if not IDENTIFIER.match(self.name):
            raise TableError(line, f"bad field name '{self.name}'")
        if self.capital == "Next":
            raise TableError(line, "a field can't be named 'next': NextFieldId is the id behind the last field")
        self.one_of("cardinality", self.cardinality, ("single", "multi"))
        self.one_of("visibility", self.visibility, ("external", "internal"))
        self.one_of("access", self.access, ("public", "protected"))
        self.resolve_type()
        self.cpp_default = self.resolve_default()

    def one_of(self, what, value, allowed):
        if value not in allowed:
            raise TableError(self.line, f"field '{self.name}': bad {what} '{value}', not one of {', '.join(allowed)}")

    def resolve_type(self):
        self.pointer = False
        if self.type in VALUE_TYPES:
            self.cpp_type, self.stem, self.kind = VALUE_TYPES[self.type]
            self.header = "OSGValueFields.h"
            if self.kind == "bool" and self.cardinality == "multi":
                raise TableError(self.line, f"field '{self.name}': there is no multi field of bool")
        elif re.match(r"[A-Z]\w*Ptr$", self.type):
            self.cpp_type = self.stem = self.type
            self.header = self.header or f"OSG{self.type[:-3]}Fields.h"
            self.kind = "pointer"
            self.pointer = True
        elif self.header is not None and IDENTIFIER.match(self.type):
            self.cpp_type = self.stem = self.type
            self.kind = None
        else:
            raise TableError(self.line, f"field '{self.name}': unknown type '{self.type}'")

    def resolve_default(self):
        """The C++ text of the default, or None for the type's own."""
        def bad():
            raise TableError(self.line, f"field '{self.name}': bad default '{self.default}' for {self.type}")

        text = self.default
        if text is None:
            return None
        text = text.strip()
        if self.cardinality == "multi":
            if text:
                raise TableError(self.line, f"field '{self.name}': a multi field starts empty and takes no default")
            return None
        if self.kind == "pointer":
            return None if text == "NullFC" else bad()
        if self.kind == "bool":
            return text if text in ("true", "false") else bad()
        if self.kind in ("int", "uint"):
            if NAMED_CONSTANT.match(text):
                return text
            if not INTEGER.match(text):
                bad()
            value = int(text, 0)
            low, high = RANGES[self.type]
            return (str(value) + ("u" if self.kind == "uint" else "")) if low <= value <= high else bad()
        if self.kind == "real":
            if not REAL.match(text):
                bad()
            return real_literal(text) if self.type == "Real32" else text
        if self.kind == "string":
            return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'
        if isinstance(self.kind, int):
            numbers = [n for n in re.split(r"[\s,]+", text) if n]
            if len(numbers) != self.kind or not all(REAL.match(n) for n in numbers):
                bad()
            whole = self.type.endswith(("s", "b"))
            if whole and not all(INTEGER.match(n) for n in numbers):
                bad()
            return ", ".join(n if whole else real_literal(n) for n in numbers)
        return bad()

    @property
    def capital(self):
        return self.name[0].upper() + self.name[1:]

    @property
    def prefix(self):
        return "MF" if self.cardinality == "multi" else "SF"

    @property
    def field_type(self):
        return self.prefix + self.stem

    @property
    def member(self):
        return ("_mf" if self.cardinality == "multi" else "_sf") + self.capital


class Table:
    def __init__(self, attributes, line):
        self.line = line
        self.name = attributes.pop("name", "")
        self.parent = attributes.pop("parent", "")
        self.library = attributes.pop("library", "")
        self.parent_library = attributes.pop("parentLibrary", "System")
        self.structure = attributes.pop("structure", "concrete")
        self.pointer_fields = attributes.pop("pointerfieldtypes", "both")
        self.accessors = attributes.pop("accessors", "plain")
        self.decoratable = attributes.pop("decoratable", "false")
        self.group = attributes.pop("group", None)
        self.text = ""
        self.fields = []
        for name in attributes:
            raise TableError(line, f"unknown attribute '{name}' of a container")
        for what, value in (("name", self.name), ("parent", self.parent)):
            if not IDENTIFIER.match(value):
                raise TableError(line, f"bad container {what} '{value}'")
        self.one_of("library", self.library, tuple(LIBRARIES))
        self.one_of("parentLibrary", self.parent_library, tuple(LIBRARIES))
        self.one_of("structure", self.structure, ("concrete", "abstract"))
        self.one_of("pointerfieldtypes", self.pointer_fields, ("both", "single", "multi", "none"))
        self.one_of("accessors", self.accessors, ("plain", "edit"))
        self.one_of("decoratable", self.decoratable, ("true", "false"))

    def one_of(self, what, value, allowed):
        if value not in allowed:
            raise TableError(self.line, f"container '{self.name}': bad {what} '{value}', not one of {', '.join(allowed)}")

    def add(self, field):
        for other in self.fields:
            if other.capital == field.capital:
                raise TableError(field.line, f"duplicate field name '{field.name}', already at line {other.line}")
        self.fields.append(field)


def read_table(path):
    table = None
    current = None
    parser = xml.parsers.expat.ParserCreate()

    def start(element, attributes):
        nonlocal table, current
        line = parser.CurrentLineNumber
        if element == "FieldContainer":
            if table is not None:
                raise TableError(line, "more than one container")
            table = Table(dict(attributes), line)
        elif element == "Field":
            if table is None or current is not None:
                raise TableError(line, "a field outside of a container")
            current = Field(dict(attributes), line)
            table.add(current)
        else:
            raise TableError(line, f"unknown element '{element}'")

    def end(element):
        nonlocal current
        if element == "Field":
            if not current.text.strip():
                raise TableError(current.line, f"field '{current.name}' has no documentation text")
            current = None

    def text(data):
        target = current if current is not None else table
        if target is not None:
            target.text += data

    parser.StartElementHandler = start
    parser.EndElementHandler = end
    parser.CharacterDataHandler = text
    try:
        with open(path, "rb") as file:
            parser.ParseFile(file)
    except xml.parsers.expat.ExpatError as error:
        raise TableError(error.lineno, f"not well-formed: {xml.parsers.expat.errors.messages[error.code]}")
    if table is None:
        raise TableError(1, "no container")
    if not table.text.strip():
        raise TableError(table.line, f"container '{table.name}' has no documentation text")
    expected = f"OSG{table.name}.fcd"
    if os.path.basename(path) != expected:
        raise TableError(table.line, f"the table of '{table.name}' must be named {expected}")
    return table


def comment(text, indent):
    lines = [line.strip() for line in text.strip().splitlines()]
    return "".join(f"{indent}/// {line}".rstrip() + "\n" for line in lines)


def alike(text, indent, members):
    """Members that share one comment: the reference repeats it for each of them."""
    return f"{indent}/// @{{\n" + comment(text, indent) + members + f"{indent}/// @}}\n"


def include(table, header, library="System"):
    """A header of the platform is included as a host would from the library, and as a neighbour within the platform."""
    if table.library == "Tessaly" and library != "Tessaly":
        return f"#include <OpenSG/{header}>\n"
    return f'#include "{header}"\n'


GENERATED = "// Generated from OSG{name}.fcd; edit the table, not this file.\n\n"


def fields_header(t):
    export = LIBRARIES[t.library]
    out = GENERATED.format(name=t.name)
    guard = f"_OSG{t.name.upper()}FIELDS_H_"
    out += f"#ifndef {guard}\n#define {guard}\n\n"
    out += include(t, f"OSG{t.parent}Fields.h", t.parent_library)
    if t.library == "Tessaly":
        out += '#include "OSGTessalyDef.h"\n'
    out += "\nOSG_BEGIN_NAMESPACE\n\n"
    out += f"class {t.name};\n\n/// Points to a {t.name}; NullFC points to nothing.\n"
    out += f"typedef FCPtr<{t.parent}Ptr, {t.name}> {t.name}Ptr;\n\n"
    out += f"/// What the fields of a {t.name}Ptr know of it.\ntemplate <>\nstruct {export} FieldDataTraits<{t.name}Ptr> : public FieldPtrTraits<{t.name}Ptr>\n{{\n"
    out += "    static DataType _type;                       ///< The type's entry in the table of all types.\n"
    out += "    static DataType &getType() { return _type; } ///< The type's entry in the table of all types.\n"
    members = f'    static const Char8 *getSName() {{ return "SF{t.name}Ptr"; }}\n'
    members += f'    static const Char8 *getMName() {{ return "MF{t.name}Ptr"; }}\n'
    out += alike("Name of the type of a field.", "    ", members)
    out += f"    /// The same container; NullFC where it is no {t.name}.\n"
    out += f"    static {t.name}Ptr dcast(const FieldContainerPtr &source);\n}};\n\n"
    for letter, which in (("S", "single"), ("M", "multi")):
        if t.pointer_fields in ("both", which):
            out += f"extern template class {export} {letter}Field<{t.name}Ptr>;\n"
            out += f"/// Field of {'one pointer' if letter == 'S' else 'many pointers'} to a {t.name}.\n"
            out += f"typedef {letter}Field<{t.name}Ptr> {letter}F{t.name}Ptr;\n"
    out += "\nOSG_END_NAMESPACE\n\n#endif\n"
    return out


def accessors(t, f):
    """The declarations of one field's accessors."""
    virtual = "virtual " if t.decoratable == "true" else ""
    edit = t.accessors == "edit"
    c, ft, vt, m = f.capital, f.field_type, f.cpp_type, f.member
    out = ""
    if f.cardinality == "single":
        out += f"    {virtual}{ft} *getSF{c}() {{ return &{m}; }}\n"
        out += f"    {virtual}{vt} &get{c}() {{ return {m}.getValue(); }}\n"
        out += f"    {virtual}const {vt} &get{c}() const {{ return {m}.getValue(); }}\n"
        out += f"    {virtual}void set{c}(const {vt} &value) {{ {m}.setValue(value); }}\n"
        if edit:
            out += f"    {virtual}{ft} *editSF{c}() {{ return &{m}; }}\n"
            out += f"    {virtual}const {ft} *getSF{c}() const {{ return &{m}; }}\n"
            out += f"    {virtual}{vt} &edit{c}() {{ return {m}.getValue(); }}\n"
    else:
        out += f"    {virtual}{ft} *getMF{c}() {{ return &{m}; }}\n"
        out += f"    {virtual}{vt} &get{c}(UInt32 index) {{ return {m}[index]; }}\n"
        out += f"    {virtual}{ft} &get{c}() {{ return {m}; }}\n"
        out += f"    {virtual}const {ft} &get{c}() const {{ return {m}; }}\n"
        if edit:
            out += f"    {virtual}{ft} *editMF{c}() {{ return &{m}; }}\n"
            out += f"    {virtual}const {ft} *getMF{c}() const {{ return &{m}; }}\n"
            out += f"    {virtual}{vt} &edit{c}(UInt32 index) {{ return {m}[index]; }}\n"
            out += f"    {virtual}const {vt} &get{c}(UInt32 index) const {{ return {m}[index]; }}\n"
    text = f"Field {f.name}: {f.text.strip()}"
    if len(text.splitlines()[0]) > 102:
        text = f"Field {f.name}:\n{f.text.strip()}"
    return alike(text, "    ", out)


def base_header(t):
    export = LIBRARIES[t.library]
    concrete = t.structure == "concrete"
    base = f"{t.name}Base"
    out = GENERATED.format(name=t.name)
    guard = f"_OSG{t.name.upper()}BASE_H_"
    out += f"#ifndef {guard}\n#define {guard}\n\n"
    out += include(t, f"OSG{t.parent}.h", t.parent_library)
    out += f'#include "OSG{t.name}Fields.h"\n'
    for header in sorted({f.header for f in t.fields}):
        out += include(t, header)
    out += "\nOSG_BEGIN_NAMESPACE\n\nclass BinaryDataHandler;\n\n"
    out += comment(t.text, "")
    out += f"class {export} {base} : public {t.parent}\n{{\n  public:\n"
    out += f"    typedef {t.parent} Inherited; ///< The parent.\n"
    out += f"    typedef {t.name}Ptr Ptr; ///< The pointer to it.\n\n"
    out += "    /// Ids of the fields: they go on where the parent's end.\n    enum\n    {\n"
    previous = None
    for f in t.fields:
        start = "Inherited::NextFieldId" if previous is None else f"{previous}FieldId + 1"
        out += f"        {f.capital}FieldId = {start}, ///< Field {f.name}.\n"
        previous = f.capital
    last = "Inherited::NextFieldId" if previous is None else f"{previous}FieldId + 1"
    out += f"        NextFieldId = {last} ///< Where a child's ids begin.\n    }};\n\n"
    members = ""
    for f in t.fields:
        members += f"    static constexpr BitVector {f.capital}FieldMask = BitVector(1) << {f.capital}FieldId;\n"
    members += "    static constexpr BitVector NextFieldMask = BitVector(1) << NextFieldId;\n"
    out += alike("The bit of a field in the mask of an edit.", "    ", members)
    out += "    /// Always 0: every field is copied between aspects.\n"
    out += "    static constexpr BitVector MTInfluenceMask = Inherited::MTInfluenceMask;\n\n"
    members = "    static FieldContainerType &getClassType() { return _type; }\n"
    members += "    static UInt32 getClassTypeId() { return _type.getId(); }\n"
    members += "    static UInt16 getClassGroupId() { return _type.getGroupId(); }\n"
    out += alike("The type, its id and the id of its group, of the class instead of an object.", "    ", members) + "\n"
    if concrete:
        out += "    /// A copy of the prototype, NullFC where there is none.\n"
        out += f"    static {t.name}Ptr create();\n"
        out += "    /// A default-constructed container, not a copy of the prototype.\n"
        out += f"    static {t.name}Ptr createEmpty();\n\n"
    out += "    FieldContainerType &getType() override { return _type; }\n"
    out += "    const FieldContainerType &getType() const override { return _type; }\n"
    if concrete:
        out += "    UInt32 getContainerSize() const override;\n"
        out += "    FieldContainerPtr shallowCopy() const override;\n"
    out += "    UInt32 getBinSize(const BitVector &whichField) override;\n"
    out += "    void copyToBin(BinaryDataHandler &pMem, const BitVector &whichField) override;\n"
    out += "    void copyFromBin(BinaryDataHandler &pMem, const BitVector &whichField) override;\n"
    out += "    void executeSync(FieldContainer &other, const BitVector &whichField) override;\n"
    out += "    /// Copies the fields in whichField from the same container on another aspect.\n"
    out += f"    void executeSyncImpl({base} *pOther, const BitVector &whichField);\n"
    for access in ("public", "protected"):
        if access == "protected":
            out += "\n  protected:\n"
        for f in (f for f in t.fields if f.access == access):
            out += ("\n" if access == "public" else "") + accessors(t, f)
            out += "\n" if access == "protected" else ""
    members = f"    {base}();\n    {base}(const {base} &source);\n    ~{base}() override;\n"
    made = "Called by create, createEmpty and shallowCopy only." if concrete else "Called by the children's only."
    out += alike(made, "    ", members) + "\n"
    for f in t.fields:
        out += f"    {f.field_type} {f.member}; ///< Field {f.name}.\n"
    if t.fields:
        out += "\n"
    out += "    static FieldDescription *_desc[]; ///< The fields' descriptions.\n"
    out += "    static FieldContainerType _type;  ///< The type's entry in the table of all types.\n\n"
    out += f"  private:\n    friend class FieldContainer;\n\n    {base} &operator=(const {base} &source) = delete;\n}};\n"
    out += "\nOSG_END_NAMESPACE\n\n#endif\n"
    return out


def base_source(t):
    concrete = t.structure == "concrete"
    n, base = t.name, f"{t.name}Base"
    folder = "Tessaly" if t.library == "Tessaly" else "OpenSG"
    out = GENERATED.format(name=n)
    out += f"#include <{folder}/OSG{n}.h>\n\n#include <OpenSG/OSGBinaryDataHandler.h>\n\nOSG_BEGIN_NAMESPACE\n\n"
    out += f'DataType FieldDataTraits<{n}Ptr>::_type("{n}Ptr", "{t.parent}Ptr", 0);\n\n'
    out += f"{n}Ptr FieldDataTraits<{n}Ptr>::dcast(const FieldContainerPtr &source)\n{{\n"
    out += f"    return {n}Ptr::dcast(source);\n}}\n\n"
    for letter, which in (("S", "single"), ("M", "multi")):
        if t.pointer_fields in ("both", which):
            out += f"template class {letter}Field<{n}Ptr>;\n"
    out += f"\nFieldDescription *{base}::_desc[] = {{\n"
    for f in t.fields:
        internal = "true" if f.visibility == "internal" else "false"
        out += f'    new FieldDescription({f.field_type}::getClassType(), "{f.name}", {f.capital}FieldId,\n'
        out += f"                         {f.capital}FieldMask, {internal},\n"
        out += f"                         &accessField<{base}, {f.field_type}, &{base}::get{f.prefix}{f.capital}>),\n"
    if not t.fields:
        out += "    nullptr,\n"
    out += "};\n\n"
    size = f"sizeof({base}::_desc)" if t.fields else "0"
    group = f'"{t.group}"' if t.group else "nullptr"
    out += f'FieldContainerType {base}::_type("{n}", "{t.parent}", {group},\n'
    if concrete:
        out += f"    []() -> FieldContainerPtr {{ return {base}::createEmpty(); }}, &{n}::initMethod,\n"
    else:
        out += f"    nullptr, &{n}::initMethod,\n"
    out += f"    {base}::_desc, {size}, false);\n\n"
    if concrete:
        out += f"{n}Ptr {base}::create()\n{{\n    {n}Ptr container;\n"
        out += "    const FieldContainerPtr prototype = getClassType().getPrototype();\n"
        out += "    if(prototype != NullFC)\n"
        out += f"        container = {n}Ptr::dcast(prototype->shallowCopy());\n    return container;\n}}\n\n"
        out += f"{n}Ptr {base}::createEmpty()\n{{\n    {n}Ptr container;\n"
        out += "    newPtr(container, nullptr);\n    return container;\n}\n\n"
        out += f"UInt32 {base}::getContainerSize() const\n{{\n    return sizeof({n});\n}}\n\n"
        out += f"FieldContainerPtr {base}::shallowCopy() const\n{{\n    {n}Ptr container;\n"
        out += f"    newPtr(container, dynamic_cast<const {n} *>(this));\n    return container;\n}}\n\n"
    out += f"UInt32 {base}::getBinSize(const BitVector &whichField)\n{{\n    UInt32 size = Inherited::getBinSize(whichField);\n"
    for f in t.fields:
        out += f"    if((whichField & {f.capital}FieldMask) != 0)\n        size += {f.member}.getBinSize();\n"
    out += "    return size;\n}\n\n"
    for operation in ("copyToBin", "copyFromBin"):
        out += f"void {base}::{operation}(BinaryDataHandler &pMem, const BitVector &whichField)\n{{\n"
        out += f"    Inherited::{operation}(pMem, whichField);\n"
        for f in t.fields:
            out += f"    if((whichField & {f.capital}FieldMask) != 0)\n        {f.member}.{operation}(pMem);\n"
        out += "}\n\n"
    out += f"void {base}::executeSync(FieldContainer &other, const BitVector &whichField)\n{{\n"
    out += f"    executeSyncImpl(static_cast<{base} *>(&other), whichField);\n}}\n\n"
    out += f"void {base}::executeSyncImpl({base} *pOther, const BitVector &whichField)\n{{\n"
    out += "    Inherited::executeSyncImpl(pOther, whichField);\n"
    for f in t.fields:
        out += f"    if((whichField & {f.capital}FieldMask) != 0)\n        {f.member}.syncWith(pOther->{f.member});\n"
    out += "}\n\n"
    initialisers = ["Inherited()"]
    copies = ["Inherited(source)"]
    for f in t.fields:
        initialisers.append(f"{f.member}({f.cpp_type}({f.cpp_default}))" if f.cpp_default else f"{f.member}()")
        copies.append(f"{f.member}(source.{f.member})")
    out += f"{base}::{base}()\n    : " + ",\n      ".join(initialisers) + "\n{\n}\n\n"
    out += f"{base}::{base}(const {base} &source)\n    : " + ",\n      ".join(copies) + "\n{\n}\n\n"
    out += f"{base}::~{base}() = default;\n\nOSG_END_NAMESPACE\n"
    return out


def write(path, text):
    """Leaves a file that would not change alone, so that nothing is built again for it."""
    try:
        with open(path, encoding="utf-8") as file:
            if file.read() == text:
                os.utime(path)
                return
    except OSError:
        pass
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("table")
    parser.add_argument("--headers", required=True, help="folder of the headers")
    parser.add_argument("--sources", required=True, help="folder of the source file")
    arguments = parser.parse_args()
    try:
        table = read_table(arguments.table)
    except TableError as error:
        print(f"{arguments.table}:{error.line}: {error.reason}", file=sys.stderr)
        return 1
    except OSError as error:
        print(f"{arguments.table}:1: {error.strerror}", file=sys.stderr)
        return 1
    stem = f"OSG{table.name}"
    os.makedirs(arguments.headers, exist_ok=True)
    os.makedirs(arguments.sources, exist_ok=True)
    write(os.path.join(arguments.headers, f"{stem}Fields.h"), fields_header(table))
    write(os.path.join(arguments.headers, f"{stem}Base.h"), base_header(table))
    write(os.path.join(arguments.sources, f"{stem}Base.cpp"), base_source(table))
    return 0


if __name__ == "__main__":
    sys.exit(main())
