#!/usr/bin/env python3
"""Fails on a public class without a description, from the XML that Doxygen left, and on a link to a file that is not there.

usage: check_docs.py XML_FOLDER

Public is what carries QLX_API or is a template in an installed header; a class inside a class is described by its
surroundings.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def text_of(element):
    return "" if element is None else "".join(element.itertext()).strip()


def dead_links():
    """Links and pictures of the pages whose files are missing."""
    root = Path(__file__).resolve().parent.parent
    for page in [*root.glob("*.md"), *(root / "docs").rglob("*.md")]:
        text = re.sub(r"^```.*?^```", "", page.read_text(), flags=re.M | re.S)
        for target in re.findall(r"\]\(([^)#\s]+)", text):
            if "://" not in target and not (page.parent / target).exists():
                yield f"{page.relative_to(root)}: there is no {target}"


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
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
    dead = list(dead_links())
    print("\n".join(dead) if dead else "all links of the pages lead somewhere")
    return 1 if missing or dead or not count else 0


if __name__ == "__main__":
    sys.exit(main())
