"""Tests of the generator of container classes: what it writes for a real table, and which tables it refuses."""

import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
GENERATOR = os.path.join(HERE, "..", "..", "tools", "fcd.py")
LAYER = os.path.join(HERE, "..", "..", "tessaly", "cores", "OSGLayer.fcd")


def run(table, folder):
    return subprocess.run([sys.executable, GENERATOR, table, "--headers", folder, "--sources", folder],
                          capture_output=True, text=True, check=False)


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


class RecordedOutput(unittest.TestCase):
    def test_layer_is_written_as_recorded(self):
        with tempfile.TemporaryDirectory() as folder:
            result = run(LAYER, folder)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            names = sorted(os.listdir(folder))
            self.assertEqual(names, ["OSGLayerBase.cpp", "OSGLayerBase.h", "OSGLayerFields.h"])
            for name in names:
                self.assertEqual(read(folder, name), read(HERE, "recorded", name + ".txt"), name)

    def test_a_second_run_changes_no_file_content(self):
        with tempfile.TemporaryDirectory() as folder:
            run(LAYER, folder)
            before = {name: read(folder, name) for name in os.listdir(folder)}
            run(LAYER, folder)
            self.assertEqual(before, {name: read(folder, name) for name in os.listdir(folder)})


class Refusal(unittest.TestCase):
    HEAD = '<FieldContainer name="Thing" parent="Group" library="System">\nA thing.\n'
    TAIL = "</FieldContainer>\n"

    def refused(self, text, line, reason, name="OSGThing.fcd"):
        with tempfile.TemporaryDirectory() as folder:
            table = os.path.join(folder, name)
            with open(table, "w", encoding="utf-8") as file:
                file.write(text)
            result = run(table, folder)
            self.assertEqual(result.returncode, 1)
            self.assertEqual(result.stderr, f"{table}:{line}: {reason}\n")
            self.assertEqual(os.listdir(folder), [name], "a refused table writes nothing")

    def field(self, attributes, doc="Says something."):
        return f"{self.HEAD}<Field {attributes}>{doc}</Field>\n{self.TAIL}"

    def test_unknown_type(self):
        self.refused(self.field('name="a" type="Vec9q"'), 3, "field 'a': unknown type 'Vec9q'")

    def test_duplicate_name(self):
        text = (self.HEAD + '<Field name="a" type="bool">One.</Field>\n<Field name="b" type="bool">Two.</Field>\n'
                '<Field name="A" type="bool">Three.</Field>\n' + self.TAIL)
        self.refused(text, 5, "duplicate field name 'A', already at line 3")

    def test_bad_defaults(self):
        for kind, value in (("bool", "yes"), ("Int32", "1.5"), ("Int32", "3000000000"), ("UInt32", "-1"),
                            ("UInt8", "256"), ("Real32", "1,5"), ("Vec3f", "1, 2"), ("Vec3f", "1, 2, x"),
                            ("Vec2s", "1.5, 2"), ("Color4f", "1 1 1"), ("NodePtr", "0"), ("Matrix", "1")):
            with self.subTest(kind=kind, value=value):
                self.refused(self.field(f'name="a" type="{kind}" defaultValue="{value}"'), 3,
                             f"field 'a': bad default '{value}' for {kind}")

    def test_default_of_a_multi_field(self):
        self.refused(self.field('name="a" type="Real32" cardinality="multi" defaultValue="1"'), 3,
                     "field 'a': a multi field starts empty and takes no default")

    def test_multi_field_of_bool(self):
        self.refused(self.field('name="a" type="bool" cardinality="multi"'), 3,
                     "field 'a': there is no multi field of bool")

    def test_missing_documentation(self):
        self.refused(self.field('name="a" type="bool"', doc=" "), 3, "field 'a' has no documentation text")
        self.refused('<FieldContainer name="Thing" parent="Group" library="System">\n</FieldContainer>\n', 1,
                     "container 'Thing' has no documentation text")

    def test_bad_words(self):
        self.refused(self.field('name="a" type="bool" cardinality="many"'), 3,
                     "field 'a': bad cardinality 'many', not one of single, multi")
        self.refused(self.field('name="a" type="bool" colour="red"'), 3, "unknown attribute 'colour' of a field")
        self.refused(self.field('name="9a" type="bool"'), 3, "bad field name '9a'")
        self.refused(self.field('name="next" type="bool"'), 3,
                     "a field can't be named 'next': NextFieldId is the id behind the last field")
        self.refused('<FieldContainer name="Thing" parent="Group" library="Nowhere">\nA.\n</FieldContainer>\n', 1,
                     "container 'Thing': bad library 'Nowhere', not one of Base, System, WindowEGL, WindowGLFW, Tessaly")

    def test_not_xml(self):
        self.refused(self.HEAD, 3, "not well-formed: no element found")

    def test_file_name(self):
        self.refused(self.HEAD + self.TAIL, 1, "the table of 'Thing' must be named OSGThing.fcd", name="OSGOther.fcd")

    def test_missing_file(self):
        result = run("OSGNowhere.fcd", ".")
        self.assertEqual((result.returncode, result.stderr), (1, "OSGNowhere.fcd:1: No such file or directory\n"))


if __name__ == "__main__":
    unittest.main()
