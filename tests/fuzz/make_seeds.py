#!/usr/bin/env python3
"""Write the seed corpus of the LoadXmlStream fuzz target into OUTPUT_DIR.

Usage: python3 make_seeds.py OUTPUT_DIR

Copies the committed text seeds (corpus/load_xml_stream/ beside this script) and adds the
binary ones, generated here rather than committed: gzip- and zlib-compressed XML, UTF-16 text
and a Fast Infoset header.
"""
import gzip
import os
import shutil
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
TEXT_SEEDS = os.path.join(HERE, "corpus", "load_xml_stream")

ORDER = (b'<?xml version="1.0" encoding="UTF-8"?>\n'
         b'<o:Order xmlns:o="urn:o" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" id="1">'
         b'<o:Line no="1"><o:Item>widget &amp; bolt</o:Item></o:Line>'
         b'<o:Line no="2"><o:Item>kettle</o:Item></o:Line>'
         b'<o:Note xsi:nil="true"/></o:Order>\n')


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    for name in sorted(os.listdir(TEXT_SEEDS)):
        source = os.path.join(TEXT_SEEDS, name)
        target = os.path.join(out, name)
        if os.path.isfile(source) and os.path.abspath(source) != os.path.abspath(target):
            shutil.copyfile(source, target)
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
