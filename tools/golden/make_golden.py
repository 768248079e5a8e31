#!/usr/bin/env python3
"""Writes the golden encodings of the records from the ASN.1 module, with a general-purpose
ASN.1 compiler's converter, independently of the library.

For every record type of the module (the types with a "-- record:" line that the library
encodes on its own), each case is a record in the tool's JSON format: the example of
examples/json/<record>.json, and records built here from the module alone (the smallest one,
one with every optional part present and lists filled, integers at their extremes and at the
edges of their octet counts, long lists and texts, non-ASCII texts). Each is written as an XER
value of the record's type, the converter built from the module (asn1c's converter-sample,
built by the test build) turns it into DER, and the results go to

    tests/golden/<record>/<case>.json   the record, as `kelmasn encode` reads it
    tests/golden/<record>/<case>.der    the DER encoding of the record's type, without the
                                        four-byte header that the library puts in front

With --check the files are written into a temporary folder and compared with those of the
golden folder: any difference, missing or surplus file fails.

Only the Python standard library is used.
"""

import argparse
import filecmp
import json
import os
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import asn1_module as asn  # noqa: E402

# The JSON of the record of a type that is not a SEQUENCE (the bare int of a type code).
BARE_VALUE_MEMBER = "value"
# Entries of a long list: enough for a length in three octets (above 255 octets of contents).
LONG_LIST = 40
LONG_TEXT = 300
# Lists are filled and optional records present down to this depth of nested records, deep enough
# for the values of the attribute lists in every record type (an action group's actions, or the
# principals of a request's chain, hold them four levels down); the types that nest themselves
# stop there.
MAX_DEPTH = 5


class CaseError(Exception):
    pass


# --- the wire view of the module's types ---------------------------------------------------------


class View:
    """What a type is for a record: the kind of its JSON and its XER."""

    def __init__(self, kind, **extra):
        self.kind = kind
        self.__dict__.update(extra)


def view(module, t):
    """The view of type `t`: references to the module's C field types keep their meaning (UInt32
    is a uint32_t written as its signed view, TextWithNul a text kept with its NUL)."""
    if isinstance(t, asn.Reference):
        if t.name == "UInt32":
            return View("uint32")
        if t.name == "TextWithNul":
            return View("text_nul")
        target = module.type_named(t.name).type
        if isinstance(target, (asn.Sequence, asn.Choice)):
            return View("record", name=t.name, type=target)
        return view(module, target)
    if isinstance(t, asn.Integer):
        if t.low is not None and t.low == t.high:
            return View("fixed", value=t.low)
        return View("int", low=t.low, high=t.high)
    if isinstance(t, asn.Utf8String):
        return View("text")
    if isinstance(t, asn.OctetString):
        return View("bytes", min_size=t.min_size, max_size=t.max_size)
    if isinstance(t, asn.Null):
        return View("null")
    if isinstance(t, asn.Sequence):
        return View("record", name=None, type=t)
    if isinstance(t, asn.SequenceOf):
        element = t.element
        if isinstance(element, asn.Choice):
            nulls = [a for a in element.alternatives if isinstance(a.type, asn.Null)]
            values = [a for a in element.alternatives if not isinstance(a.type, asn.Null)]
            if len(nulls) != 1 or len(values) != 1:
                raise CaseError("a list of CHOICE needs one NULL alternative and one other")
            return View("slots", empty=nulls[0].name, filled=values[0].name,
                        element=values[0].type, max_size=t.max_size)
        return View("list", element=element, max_size=t.max_size, min_size=t.min_size)
    raise CaseError(f"no JSON form for {t}")


def field_name(identifier):
    return identifier.replace("-", "_")


def xer_element_name(t):
    """The XER tag of an entry of a SEQUENCE OF `t` (X.693 for BASIC-XER)."""
    if isinstance(t, asn.Reference):
        return t.name
    if isinstance(t, asn.Utf8String):
        return "UTF8String"
    if isinstance(t, asn.Integer):
        return "INTEGER"
    if isinstance(t, asn.OctetString):
        return "OCTET_STRING"
    raise CaseError(f"no XER entry name for {t}")


# --- JSON to XER ---------------------------------------------------------------------------------


def escape(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def check_int(value, low, high, path):
    if not isinstance(value, int) or isinstance(value, bool):
        raise CaseError(f"{path}: expected an integer")
    if (low is not None and value < low) or (high is not None and value > high):
        raise CaseError(f"{path}: {value} is out of {low}..{high}")


def hex_octets(value, path):
    if not isinstance(value, str) or len(value) % 2:
        raise CaseError(f"{path}: expected a hex string")
    try:
        return bytes.fromhex(value)
    except ValueError:
        raise CaseError(f"{path}: expected a hex string")


def to_xer(module, t, value, path):
    """The XER contents of `value` (the record's JSON) as a value of type `t`."""
    v = view(module, t)
    if v.kind == "uint32":
        check_int(value, 0, 0xFFFFFFFF, path)
        return str(value - (1 << 32) if value >= 1 << 31 else value)
    if v.kind == "int":
        check_int(value, v.low, v.high, path)
        return str(value)
    if v.kind == "text":
        if not isinstance(value, str):
            raise CaseError(f"{path}: expected a text")
        return escape(value)
    if v.kind == "text_nul":
        if not isinstance(value, str):
            raise CaseError(f"{path}: expected a text")
        return (value.encode("utf-8") + b"\0").hex()
    if v.kind == "bytes":
        octets = hex_octets(value, path)
        if len(octets) < v.min_size or (v.max_size is not None and len(octets) > v.max_size):
            raise CaseError(f"{path}: {len(octets)} octets do not fit the type")
        return octets.hex()
    if v.kind == "record":
        return record_xer(module, v.type, value, path)
    if v.kind == "list":
        if not isinstance(value, list):
            raise CaseError(f"{path}: expected a list")
        tag = xer_element_name(v.element)
        return "".join(f"<{tag}>{to_xer(module, v.element, e, f'{path}[{i}]')}</{tag}>"
                       for i, e in enumerate(value))
    if v.kind == "slots":
        if not isinstance(value, list) or (value and value[-1] is None):
            raise CaseError(f"{path}: expected a list of slots whose last one is filled")
        out = []
        for i, e in enumerate(value):
            if e is None:
                out.append(f"<{v.empty}/>")
            else:
                out.append(f"<{v.filled}>{to_xer(module, v.element, e, f'{path}[{i}]')}"
                           f"</{v.filled}>")
        return "".join(out)
    raise CaseError(f"{path}: no XER for {v.kind}")


def is_absent(module, component, value):
    """An OPTIONAL component is absent for null, and for an empty byte array that its type
    cannot hold (a length of 0 that the record keeps for "none")."""
    if not component.optional:
        return False
    if value is None:
        return True
    v = view(module, component.type)
    return v.kind == "bytes" and v.min_size > 0 and value == ""


def record_xer(module, t, value, path):
    if not isinstance(value, dict):
        raise CaseError(f"{path or 'record'}: expected an object")
    fields = [c for c in t.components if view(module, c.type).kind != "fixed"]
    expected = [field_name(c.name) for c in fields]
    if list(value.keys()) != expected:
        raise CaseError(f"{path or 'record'}: the fields are {list(value.keys())}, "
                        f"the type has {expected}")
    out = []
    for c in t.components:
        v = view(module, c.type)
        if v.kind == "fixed":
            out.append(f"<{c.name}>{v.value}</{c.name}>")
            continue
        member = value[field_name(c.name)]
        sub = f"{path}.{field_name(c.name)}" if path else field_name(c.name)
        if is_absent(module, c, member):
            continue
        out.append(f"<{c.name}>{to_xer(module, c.type, member, sub)}</{c.name}>")
    return "".join(out)


def record_to_xer(module, assignment, record):
    t = assignment.type
    if isinstance(t, asn.Sequence):
        body = record_xer(module, t, record, "")
    else:
        if not isinstance(record, dict) or list(record.keys()) != [BARE_VALUE_MEMBER]:
            raise CaseError(f"expected an object with the one member {BARE_VALUE_MEMBER!r}")
        body = to_xer(module, t, record[BARE_VALUE_MEMBER], BARE_VALUE_MEMBER)
    return f"<{assignment.name}>{body}</{assignment.name}>\n"


# --- records built from the module ---------------------------------------------------------------

UINT32_EDGES = [127, 128, 255, 256, 32767, 32768, 65535, 65536, 8388607, 8388608, 0x7FFFFFFF,
                0x80000000, 0xFFFFFF7F, 0xFFFFFF80, 0xFFFFFFFF]
INT_EDGES = [127, 128, -128, -129, 255, 256, 32767, -32768, -32769, 8388608, -8388609, -1]
NON_ASCII = ["Zürich", "東京", "Ελλάδα", "😀", "naïve café", "ß"]


class Builder:
    """Builds one case's record from the module: `mode` says which."""

    def __init__(self, module, mode):
        self.module = module
        self.mode = mode
        self.counter = 0

    def next(self):
        self.counter += 1
        return self.counter

    def integer(self, v, name):
        low, high = (0, 0xFFFFFFFF) if v.kind == "uint32" else (v.low, v.high)
        mode = self.mode
        if mode == "minimal":
            return 0
        if mode == "integers-max":
            return high
        if mode == "integers-min":
            return low
        if mode == "integers-sign-edges":
            # the lowest value whose top bit is set, and the highest whose top bit is clear
            span = high - low + 1
            return (low + span // 2) if (self.next() % 2) else (low + span // 2 - 1)
        if mode == "integers-octet-edges":
            edges = UINT32_EDGES if low >= 0 else INT_EDGES
            fitting = [e for e in edges if low <= e <= high] or [high]
            return fitting[self.next() % len(fitting)]
        return min(high, max(low, self.next()))

    def text(self, name, depth):
        if self.mode == "minimal":
            return ""
        if self.mode == "non-ascii":
            return f"{name} {NON_ASCII[self.next() % len(NON_ASCII)]}"
        if self.mode == "long-values" and depth == 0:
            return (name + " ") * (LONG_TEXT // (len(name) + 1)) + "x" * (LONG_TEXT % (len(name) + 1))
        return f"{name}-{self.next()}"

    def octets(self, v, depth):
        if v.max_size is not None and v.max_size == v.min_size:
            n = v.max_size
        elif self.mode == "minimal":
            n = v.min_size
        elif self.mode == "long-values" and depth == 0:
            n = LONG_TEXT
        else:
            n = max(v.min_size, 5)
        if self.mode == "minimal" and v.max_size == v.min_size:
            return "00" * n
        start = self.next()
        return bytes((start * 37 + i * 11) & 0xFF for i in range(n)).hex()

    def list_length(self, v, depth):
        if self.mode == "minimal":
            return 0
        if self.mode == "long-values":
            n = LONG_LIST if depth == 0 else 0
        elif self.mode == "full":
            n = 2 if depth < MAX_DEPTH else 0
        else:
            n = 1 if depth < MAX_DEPTH else 0
        if v.max_size is not None:
            n = min(n, v.max_size)
        return n

    def value(self, t, name, depth):
        v = view(self.module, t)
        if v.kind in ("uint32", "int"):
            return self.integer(v, name)
        if v.kind in ("text", "text_nul"):
            return self.text(name, depth)
        if v.kind == "bytes":
            return self.octets(v, depth)
        if v.kind == "record":
            return self.record(v.type, depth + 1)
        if v.kind == "list":
            # texts, integers and bytes in a list are short; only records go one level deeper
            inner = depth if view(self.module, v.element).kind == "record" else depth + 1
            return [self.value(v.element, name, inner) for _ in range(self.list_length(v, depth))]
        if v.kind == "slots":
            n = self.list_length(v, depth)
            if self.mode == "long-values" and depth == 0:
                return [self.value(v.element, name, depth) for _ in range(v.max_size or n)]
            # an empty slot in front of each filled one, so that both alternatives appear
            out = []
            for _ in range(n):
                out += [None, self.value(v.element, name, depth)]
            return out
        raise CaseError(f"cannot build {v.kind}")

    def record(self, t, depth=0):
        out = {}
        for c in t.components:
            v = view(self.module, c.type)
            if v.kind == "fixed":
                continue
            name = field_name(c.name)
            if c.optional and (self.mode == "minimal" or depth >= MAX_DEPTH):
                v = view(self.module, c.type)
                out[name] = "" if v.kind == "bytes" else None
                continue
            out[name] = self.value(c.type, name, depth)
        return out

    def top(self, assignment):
        if isinstance(assignment.type, asn.Sequence):
            return self.record(assignment.type)
        return {BARE_VALUE_MEMBER: self.value(assignment.type, BARE_VALUE_MEMBER, 0)}


BUILT_CASES = ["minimal", "full", "integers-max", "integers-min", "integers-sign-edges",
               "integers-octet-edges", "long-values", "non-ascii"]


def cases_of(module, assignment, examples):
    """The cases of a record type, in order: (name, record)."""
    out = []
    example = os.path.join(examples, assignment.record + ".json")
    if os.path.exists(example):
        with open(example, encoding="utf-8") as f:
            out.append(("example", json.load(f)))
    for mode in BUILT_CASES:
        record = Builder(module, mode).top(assignment)
        if all(record != earlier for _, earlier in out):
            out.append((mode, record))
    return out


# --- the converter -------------------------------------------------------------------------------


def xer_to_der(converter, type_name, xer, scratch):
    path = os.path.join(scratch, "value.xer")
    with open(path, "w", encoding="utf-8") as f:
        f.write(xer)
    run = subprocess.run([converter, "-p", type_name, "-1", "-c", "-ixer", "-oder", path],
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if run.returncode != 0 or not run.stdout:
        raise CaseError(f"the converter refused the XER of {type_name} (exit "
                        f"{run.returncode}): {run.stderr.decode(errors='replace').strip()}\n{xer}")
    return run.stdout


def record_types(module):
    """The module's records that the library encodes on its own: every record type except the
    entries of another type that has no entry point of its own (the object update)."""
    nested_only = {"ekobj_update_s_t"}
    return [a for a in module.assignments if a.record and a.record not in nested_only]


def write_all(module, converter, examples, out_dir):
    count = 0
    with tempfile.TemporaryDirectory() as scratch:
        for assignment in record_types(module):
            folder = os.path.join(out_dir, assignment.record)
            os.makedirs(folder, exist_ok=True)
            for name, record in cases_of(module, assignment, examples):
                try:
                    der = xer_to_der(converter, assignment.name,
                                     record_to_xer(module, assignment, record), scratch)
                except CaseError as e:
                    raise CaseError(f"{assignment.record}/{name}: {e}")
                with open(os.path.join(folder, name + ".json"), "w", encoding="utf-8") as f:
                    f.write(json.dumps(record, indent=2, ensure_ascii=False) + "\n")
                with open(os.path.join(folder, name + ".der"), "wb") as f:
                    f.write(der)
                count += 1
    return count


def differences(expected_dir, actual_dir):
    """The files that differ between the two trees, as lines."""
    out = []

    def walk(a, b, rel):
        cmp = filecmp.dircmp(a, b)
        for name in cmp.left_only:
            out.append(f"{os.path.join(rel, name)}: not written by the generator")
        for name in cmp.right_only:
            out.append(f"{os.path.join(rel, name)}: written by the generator, not committed")
        for name in cmp.common_files:
            if not filecmp.cmp(os.path.join(a, name), os.path.join(b, name), shallow=False):
                out.append(f"{os.path.join(rel, name)}: differs")
        for name in cmp.common_dirs:
            walk(os.path.join(a, name), os.path.join(b, name), os.path.join(rel, name))

    walk(expected_dir, actual_dir, "")
    return out


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--converter", required=True, help="the converter built from the module")
    parser.add_argument("--module", required=True, help="the ASN.1 module")
    parser.add_argument("--examples", required=True, help="the folder of <record>.json examples")
    parser.add_argument("--golden", required=True, help="the golden folder")
    parser.add_argument("--check", action="store_true",
                        help="regenerate into a temporary folder and compare with --golden")
    args = parser.parse_args()
    with open(args.module, encoding="utf-8") as f:
        module = asn.read_module(f.read())
    try:
        if not args.check:
            count = write_all(module, args.converter, args.examples, args.golden)
            print(f"{count} golden cases written to {args.golden}")
            return 0
        with tempfile.TemporaryDirectory() as fresh:
            count = write_all(module, args.converter, args.examples, fresh)
            found = differences(args.golden, fresh)
        for line in found:
            print(line)
        if found:
            print(f"{len(found)} differences: run tools/golden/make_golden.py without --check "
                  "and commit the result if the change is intended")
            return 1
        print(f"{count} golden cases are as committed")
        return 0
    except (CaseError, asn.ModuleError) as e:
        print(f"error: {e}", file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main())
