#!/usr/bin/env python3
"""Fails on a public class without a description, from the XML that Doxygen left.

usage: check_docs.py XML_FOLDER

Public is what carries QLX_API or is a template in an installed header; a class inside a class is described by its
surroundings.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def text_of(element):
    return "" if element is None else "".join(element.itertext()).strip()


def main():
    folder = Path(sys.argv[1])
    count, missing = 0, []
    for path in sorted([*folder.glob("class*.xml"), *folder.glob("struct*.xml")]):
        compound = ElementTree.parse(path).getroot().find("compounddef")
        name = text_of(compound.find("compoundname"))
        location = compound.find("location")
        if compound.get("prot") != "public" or location is None or not location.get("file", "").endswith(".h"):
            continue
        if "::" in name or "@" in name:
            continue
        count += 1
        if not text_of(compound.find("briefdescription")) and not text_of(compound.find("detaileddescription")):
            missing.append(f"{location.get('file')}:{location.get('line')}: {name} has no description")
    print("\n".join(missing))
    print(f"{count} public classes, {len(missing)} without a description")
    return 1 if missing or not count else 0


if __name__ == "__main__":
    sys.exit(main())
