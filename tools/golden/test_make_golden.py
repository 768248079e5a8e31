"""Tests of the module reader and of the mapping from the tool's JSON to XER, run by ctest with
the standard library's unittest: python3 -m unittest discover -s tools/golden."""

import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import asn1_module as asn  # noqa: E402
import make_golden as golden  # noqa: E402

MODULE = """M DEFINITIONS ::= BEGIN
UInt32 ::= INTEGER (-2147483648..2147483647)
TextWithNul ::= OCTET STRING (SIZE (1..MAX))
-- record: item_s_t
Item ::= SEQUENCE {
    number UInt32, -- a comment -- text-in-between ANY
    node   OCTET STRING (SIZE (6)),
    name   UTF8String
}
-- record: outer_s_t
Outer ::= SEQUENCE {
    version INTEGER (1),
    note    TextWithNul,
    slots   SEQUENCE (SIZE (0..32)) OF CHOICE { empty NULL, item Item },
    items   SEQUENCE OF Item,
    extra   Item OPTIONAL
}
END
"""


class ModuleReader(unittest.TestCase):
    def test_reads_types_records_and_constraints(self):
        m = asn.read_module(MODULE.replace(" text-in-between ANY", ""))
        self.assertEqual([a.name for a in m.assignments], ["UInt32", "TextWithNul", "Item", "Outer"])
        self.assertEqual(m.by_record()["item_s_t"].name, "Item")
        self.assertEqual(m.type_named("UInt32").type, asn.Integer(-2147483648, 2147483647))
        self.assertEqual(m.type_named("TextWithNul").type, asn.OctetString(1, None))
        outer = m.type_named("Outer").type
        self.assertEqual(outer.components[2].type.max_size, 32)
        self.assertTrue(outer.components[4].optional)
        self.assertEqual(m.type_named("Outer").first_line, 10)

    def test_a_comment_ends_at_the_next_pair_of_hyphens(self):
        with self.assertRaises(asn.ModuleError):
            asn.read_module(MODULE)

    def test_refuses_a_reference_to_an_undefined_type(self):
        with self.assertRaises(asn.ModuleError):
            asn.read_module("M DEFINITIONS ::= BEGIN\nA ::= SEQUENCE { b B }\nEND\n")


class JsonToXer(unittest.TestCase):
    def setUp(self):
        self.module = asn.read_module(MODULE.replace(" text-in-between ANY", ""))
        self.item = {"number": 4294967295, "node": "0a0b0c0d0e0f", "name": "a<b&c"}

    def test_unsigned_fields_go_as_their_signed_view_and_texts_are_escaped(self):
        xer = golden.record_to_xer(self.module, self.module.type_named("Item"), self.item)
        self.assertEqual(xer, "<Item><number>-1</number><node>0a0b0c0d0e0f</node>"
                              "<name>a&lt;b&amp;c</name></Item>\n")

    def test_fixed_elements_texts_with_nul_slots_lists_and_absent_optionals(self):
        record = {"note": "", "slots": [None, self.item], "items": [self.item], "extra": None}
        xer = golden.record_to_xer(self.module, self.module.type_named("Outer"), record)
        item = ("<number>-1</number><node>0a0b0c0d0e0f</node><name>a&lt;b&amp;c</name>")
        self.assertEqual(xer, "<Outer><version>1</version><note>00</note><slots><empty/>"
                              f"<item>{item}</item></slots><items><Item>{item}</Item></items>"
                              "</Outer>\n")

    def test_refuses_what_does_not_fit_the_type(self):
        item = self.module.type_named("Item")
        for bad in [dict(self.item, number=1 << 32), dict(self.item, node="0a"),
                    {"name": "x", "number": 1, "node": "0a0b0c0d0e0f"}]:
            with self.assertRaises(golden.CaseError):
                golden.record_to_xer(self.module, item, bad)
        outer = self.module.type_named("Outer")
        with self.assertRaises(golden.CaseError):  # a last slot that is empty
            golden.record_to_xer(self.module, outer, {"note": "", "slots": [None], "items": [],
                                                      "extra": None})

    def test_built_cases_fit_the_type_and_differ(self):
        outer = self.module.type_named("Outer")
        cases = golden.cases_of(self.module, outer, "/nonexistent")
        self.assertEqual(cases[0][0], "minimal")
        self.assertEqual(len({repr(r) for _, r in cases}), len(cases))
        for _, record in cases:
            golden.record_to_xer(self.module, outer, record)


if __name__ == "__main__":
    unittest.main()
