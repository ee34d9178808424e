#!/usr/bin/env python3
"""Write the seed corpus of the LoadXmlStream fuzz target into OUTPUT_DIR.

Usage: python3 make_seeds.py OUTPUT_DIR [FI_OUTPUT_DIR]

Copies the committed text seeds (corpus/load_xml_stream/ beside this script) and adds the
binary ones, generated here rather than committed: gzip- and zlib-compressed XML, UTF-16 text
and a Fast Infoset header. With FI_OUTPUT_DIR, also writes the seeds of the Fast Infoset
reader target there: the committed regression inputs (corpus/load_fi_stream/) and a set of
valid documents assembled octet by octet.
"""
import gzip
import os
import shutil
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
TEXT_SEEDS = os.path.join(HERE, "corpus", "load_xml_stream")
FI_SEEDS = os.path.join(HERE, "corpus", "load_fi_stream")

ORDER = (b'<?xml version="1.0" encoding="UTF-8"?>\n'
         b'<o:Order xmlns:o="urn:o" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" id="1">'
         b'<o:Line no="1"><o:Item>widget &amp; bolt</o:Item></o:Line>'
         b'<o:Line no="2"><o:Item>kettle</o:Item></o:Line>'
         b'<o:Note xsi:nil="true"/></o:Order>\n')


def octets(pattern):
    """Hex pairs, with 'quoted text' standing for its ASCII octets."""
    out = bytearray()
    i = 0
    while i < len(pattern):
        if pattern[i] == "'":
            end = pattern.index("'", i + 1)
            out += pattern[i + 1:end].encode("ascii")
            i = end + 1
        elif pattern[i] in "0123456789ABCDEFabcdef":
            out.append(int(pattern[i:i + 2], 16))
            i += 2
        else:
            i += 1
    return bytes(out)


FI_HEADER = "E0 00 00 01 "

# Valid Fast Infoset documents: identification and version, then these octets.
FI_DOCUMENTS = {
    "smallest": "00 3C 00 'a' FF",
    "attributes": "00 7C 00 'a' 78 00 'x' 40 'v' 78 00 'y' 80 F0 7C 00 'b' 00 40 'w' FF 41 00 80 FF FF",
    "chunks": "00 3C 00 'a' 3C 00 'b' 91 'hi' F0 01 A0 92 00 0A 20 20 FF F0",
    "namespaces": "00 38 CF 00 'p' 04 'urn:x' F0 3F 81 81 00 'a' 38 CF 81 81 F0 3F 81 81 00 'b' F0 "
                  "38 CF 00 'q' 81 F0 3F 82 81 81 F0 38 CD 04 'urn:y' F0 3D 82 00 'c' 78 CC F0 "
                  "3C 00 'd' 7B 80 80 03 'lang' 41 'en' FF FF F0",
    "comments": "00 E2 40 'c' E1 01 'pi' 43 'data' C5 04 'a.dtd' F0 3C 00 'a' E2 80 E1 80 81 F0 E2 80 F0",
    "utf16": "00 7C 00 'a' 78 00 'x' 53 00 'h' 00 E9 F0 96 01 00 'h' 00 E9 86 01 D8 3D DE 00 FF",
    "alphabets": "00 7C 00 'a' 78 00 'd' 60 12 12 B3 0D F0 98 01 12 3F A0 "
                 "98 06 06 20 20 A0 1A 02 C0 3B 04 DF FF",
    "algorithms": "00 3C 00 'r' 3C 00 'h' 8C 02 00 01 AB CD F0 3C 00 'b' 8C 06 01 01 02 03 04 F0 "
                  "7C 00 'i' 78 00 'v' 30 37 00 00 00 01 FF FF FF FE FF 3C 00 'o' 8C 14 1A F0 "
                  "3C 00 'f' 8C 1A 05 3F C0 00 00 BE 80 00 00 F0 3C 00 'c' 8C 26 00 'x<y' FF F0",
    "components": "07 04 'UTF-8' 01 02 '1.0' 3C 00 'a' FF",
    "initial_vocabulary": "20 03 9A 00 00 'p' 00 04 'urn:x' 00 00 'a' 00 02 'abc' 00 00 'x' "
                          "00 03 01 01 00 78 CF 81 81 F0 00 78 00 'v' 80 F0 A0 FF",
    "external_vocabulary": "20 10 00 24 'urn:kxxmllib16:fastinfoset:vocabulary' "
                           "7C 00 'a' 78 00 'x' 40 'v' FF F0",
}


def fi_seeds():
    seeds = {name + ".finf": octets(FI_HEADER + body) for name, body in FI_DOCUMENTS.items()}
    seeds["declaration.finf"] = (b"<?xml version='1.0' encoding='finf'?>" +
                                 octets(FI_HEADER + FI_DOCUMENTS["smallest"]))
    # Forty names, then the two-octet element index and the long length forms.
    names = "".join("3C 02 'n%02d' F0 " % i for i in range(40))
    seeds["indexes.finf"] = octets(FI_HEADER + "00 3C 00 'r' " + names + "20 07 93 00 00 00 01 " +
                                   "'" + "x" * 260 + "' F0 A0 FF")
    return seeds


def copy_seeds(source_dir, out):
    os.makedirs(out, exist_ok=True)
    if not os.path.isdir(source_dir):
        return
    for name in sorted(os.listdir(source_dir)):
        source = os.path.join(source_dir, name)
        target = os.path.join(out, name)
        if os.path.isfile(source) and os.path.abspath(source) != os.path.abspath(target):
            shutil.copyfile(source, target)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    out = sys.argv[1]
    copy_seeds(TEXT_SEEDS, out)
    if len(sys.argv) == 3:
        fi_out = sys.argv[2]
        copy_seeds(FI_SEEDS, fi_out)
        for name, data in fi_seeds().items():
            with open(os.path.join(fi_out, name), "wb") as f:
                f.write(data)
    binary = {
        "order.xml.gz": gzip.compress(ORDER, compresslevel=1, mtime=0),
        "order.xml.zlib": zlib.compress(ORDER, 1),
        "utf16le.xml": b"\xff\xfe" + "<a x='\u00e9'>\u6771\u4eac</a>".encode("utf-16-le"),
        "fastinfoset.finf": bytes([0xE0, 0x00, 0x00, 0x01, 0x00, 0x3C, 0x00, 0x61, 0xFF]),
    }
    for name, data in binary.items():
        with open(os.path.join(out, name), "wb") as f:
            f.write(data)


if __name__ == "__main__":
    main()
