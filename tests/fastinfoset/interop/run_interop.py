#!/usr/bin/env python3
"""Fast Infoset interoperability with Debian's Java implementation, both ways.

writer: each bindable document is read into the example bindings and written by us as XML text
        and as Fast Infoset; the Java decoder must see the same infoset in both.
reader: each document is encoded by the Java serializer with each of its option sets; our
        reader must build the same tree from that Fast Infoset as from the XML text.
"""
import argparse
import difflib
import os
import subprocess
import sys

WRITE_VARIANTS = ["default", "suggested", "alias"]
ENCODE_OPTIONS = ["default", "utf16", "index", "lexical"]


def run(command):
    result = subprocess.run(command, capture_output=True)
    if result.returncode != 0:
        raise RuntimeError("%s failed (%d): %s" % (" ".join(command), result.returncode,
                                                    result.stderr.decode(errors="replace")))
    return result.stdout.decode("utf-8", errors="replace")


def as_number(line):
    try:
        return float(line.strip()[len("text "):]) if line.strip().startswith("text ") else None
    except ValueError:
        return None


def same(label, expected, got, numeric=False):
    """Equal texts; with `numeric`, text items may also differ in lexical form only: a value
    that travelled in binary (the IEEE double of 8.056) comes back in the decoder's shortest
    form, where our XML text has 8.055999999999999."""
    if expected == got:
        return True
    if numeric:
        left, right = expected.splitlines(), got.splitlines()
        if len(left) == len(right) and all(
                a == b or (as_number(a) is not None and as_number(a) == as_number(b))
                for a, b in zip(left, right)):
            return True
    diff = difflib.unified_diff(expected.splitlines(), got.splitlines(), "expected", "got",
                                lineterm="", n=2)
    print("MISMATCH %s\n%s" % (label, "\n".join(list(diff)[:40])))
    return False


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("direction", choices=["writer", "reader"])
    parser.add_argument("--java", required=True)
    parser.add_argument("--classpath", required=True)
    parser.add_argument("--tool", required=True)
    parser.add_argument("--work", required=True)
    parser.add_argument("--gen", required=True, help="the benchmark document generator")
    parser.add_argument("bindable", nargs="+", help="documents the example bindings read")
    parser.add_argument("--other", nargs="*", default=[], help="documents for the reader only")
    args = parser.parse_args()

    os.makedirs(args.work, exist_ok=True)
    generated = os.path.join(args.work, "generated-orders.xml")
    with open(generated, "wb") as out:
        out.write(subprocess.run([sys.executable, args.gen, "0.2", "7"],
                                 capture_output=True, check=True).stdout)
    bindable = args.bindable + [generated]
    java = [args.java, "-cp", args.classpath, "FiInterop"]

    failures = 0
    checks = 0
    if args.direction == "writer":
        for source in bindable:
            for variant in WRITE_VARIANTS:
                stem = os.path.join(args.work, "%s.%s" % (os.path.basename(source), variant))
                run([args.tool, "write", source, stem + ".xml", stem + ".fi", variant])
                checks += 1
                if not same("%s (%s)" % (source, variant),
                            run(java + ["infoset", stem + ".xml"]),
                            run(java + ["infoset", stem + ".fi"]), variant == "suggested"):
                    failures += 1
    else:
        for source in bindable + args.other:
            expected = run([args.tool, "tree", source])
            for options in ENCODE_OPTIONS:
                encoded = os.path.join(args.work, "%s.java-%s.fi" % (os.path.basename(source),
                                                                      options))
                run(java + ["encode", source, encoded, options])
                checks += 1
                if not same("%s (Java %s)" % (source, options), expected,
                            run([args.tool, "tree", encoded])):
                    failures += 1
    print("%d of %d comparisons matched" % (checks - failures, checks))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
