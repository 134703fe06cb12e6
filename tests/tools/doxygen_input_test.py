"""Tests of what Doxygen is handed in place of the headers."""

import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
TOOL = os.path.join(HERE, "..", "..", "tools", "doxygen_input.py")


def copied(text):
    """The copy of a header, and whether the tool ran."""
    with tempfile.TemporaryDirectory() as folder:
        source = os.path.join(folder, "from", "OpenSG")
        os.makedirs(source)
        with open(os.path.join(source, "OSGThing.h"), "w", encoding="utf-8") as file:
            file.write(text)
        subprocess.run([sys.executable, TOOL, os.path.join(folder, "from"), os.path.join(folder, "to")], check=True)
        with open(os.path.join(folder, "to", "OpenSG", "OSGThing.h"), encoding="utf-8") as file:
            return file.read()


class Copies(unittest.TestCase):
    def same(self, text):
        self.assertEqual(copied(text), text)

    def test_a_comment_is_repeated_for_what_follows_without_an_empty_line(self):
        self.assertEqual(copied("    /// One\n    /// thing.\n    int a();\n    int b(int c,\n          int d);\n\n    int e();\n"),
                         "    /// One\n    /// thing.\n    int a();\n/** One thing. */ int b(int c,\n          int d);\n\n    int e();\n")

    def test_bodies_and_initialisers_belong_to_their_declaration(self):
        self.same("    /// One.\n    X(int a)\n        : _a{a}\n    {\n        b();\n    }\n\n    int c();\n")

    def test_a_comment_of_its_own_ends_the_run(self):
        self.same("    /// One.\n    int a();\n    /// Two.\n    int b();\n    int c; ///< three\n")

    def test_what_overrides_keeps_the_words_of_what_it_overrides(self):
        self.same("    /// One.\n    int a();\n    int b() override;\n    using Base::c;\n")

    def test_the_class_s_comment_is_not_that_of_its_members(self):
        self.same("/// A class.\nclass X\n{\n    int a;\n    int b;\n};\n")

    CONTAINER = "class OSG_SYSTEMLIB_DLLMAPPING Thing : public ThingBase\n{\n    Thing();%s\n%s};\n"

    def test_constructors_of_containers_get_their_words(self):
        friend = "    friend class FieldContainer;\n"
        self.assertEqual(copied("\n" + self.CONTAINER % ("", friend)), "/// \\copydoc ThingBase\n"
                         + self.CONTAINER % (" ///< Called by Thing::create and its like only.", friend))

    def test_other_classes_on_a_base_say_themselves_what_they_are(self):
        self.same("\n" + self.CONTAINER % ("", ""))

    def test_words_of_a_header_go_ahead_of_the_common_ones(self):
        self.same("class Thing : public Other\n{\n    typedef Other Inherited; ///< mine\n    /// Mine.\n    ~Thing();\n};\n")

    def test_prose_is_neither_link_nor_tag_but_code_stays(self):
        self.assertEqual(copied("/// A #line of <name>, `<name>`.\n///     #include <a>\nint a();\n"),
                         "/// A \\#line of \\<name\\>, `<name>`.\n///     #include <a>\nint a();\n")

    def test_macros_in_a_row_share_a_comment(self):
        self.assertEqual(copied("/// One.\n#define A 1\n#define B 2\n\n#define C 3\n"),
                         "/// One.\n#define A 1\n#define B 2 /**< One. */\n\n#define C 3\n")

    def test_a_generated_header_is_copied_as_it_is(self):
        self.same("// Generated from OSGThing.fcd; edit the table, not this file.\n/// One.\nint a();\nint b();\n")

    def test_the_number_of_lines_stays(self):
        text = "OSG_VALUE_FIELDS(Int8, Int8)\n    OSG_ACTION_FUNCTORS\n\nclass Thing : public ThingBase\n{\n};\n"
        self.assertEqual(copied(text).count("\n"), text.count("\n"))


if __name__ == "__main__":
    unittest.main()
