#!/usr/bin/env python3
# Compares the members that docs/windows.md lists with the interface description:
# signatures_in_page.py DESCRIPTION PAGE. The names that the page's samples use must be members, too.
# SPDX-License-Identifier: MIT
import re
import sys

TYPES = {"BSTR": "String", "short": "Integer", "long": "Long", "VARIANT_BOOL": "Boolean", "float": "Single",
         "double": "Double", "IDispatch": "Object", "VARIANT": "Variant"}


def split(text):
    """The type as Visual Basic writes it, the name with the brackets of an array."""
    array = re.fullmatch(r"SAFEARRAY\((\w+)\)\s*\**\s*(\w+)", text.strip())
    if array:
        return TYPES.get(array[1], array[1]), array[2] + "()"
    kind, name = re.fullmatch(r"(\w+)\s*\**\s*(\w+)", text.strip()).groups()
    return TYPES.get(kind, kind), name


def argument(attributes, text):
    kind, name = split(text)
    shown = f"{name} As {kind}"
    default = re.search(r"defaultvalue\((-?\d+)\)", attributes)
    if default and kind == "Boolean":
        shown += " = False" if default[1] == "0" else " = True"
    elif default:
        shown += " = " + default[1]
    return f"[{shown}]" if "optional" in attributes else shown


def members(description):
    """Lines as the page writes them, in the order of the description."""
    description = re.sub(r"//[^\n]*", "", description)
    settable = {m[1] for m in re.finditer(r"\[propput[^\]]*\]\s*HRESULT\s+(\w+)", description)}
    for attributes, kind, name, listed in re.findall(
            r"\[((?:propget|propput|id)\b[^\]]*)\]\s*(HRESULT|void)\s+(\w+)\(([^;]*)\);", description):
        if "propput" in attributes:
            continue
        found = re.findall(r"\[([^\]]*)\]\s*([^,]+)", listed)
        result = next((split(text) for flags, text in found if "retval" in flags), None)
        given = ", ".join(argument(flags, text) for flags, text in found if "retval" not in flags)
        returned = " As " + result[0] + ("()" if result[1].endswith("()") else "") if result else ""
        if "propget" in attributes:
            yield f"Property {'' if name in settable else 'Get '}{name}{returned}"
        else:
            yield f"{'Event' if kind == 'void' else 'Function'} {name}({given}){returned}"


def listed(page):
    block = page.split("## Members", 1)[1].split("```", 2)[1]
    for line in re.sub(r" _\n\s*", " ", block).splitlines():
        yield from (part for part in re.split(r"\s{2,}", line.strip()) if part)


def main():
    description, page = (open(name, encoding="utf-8").read() for name in sys.argv[1:3])
    expected, found = list(members(description)), list(listed(page))
    wrong = [f"not on the page: {line}" for line in expected if line not in found]
    wrong += [f"on the page only: {line}" for line in found if line not in expected]
    methods = [line for line in expected if line.startswith("Function")]
    if not wrong and [line for line in found if line.startswith("Function")] != methods:
        wrong.append("the methods are in another order")
    names = {re.match(r"(?:Function|Event|Property Get|Property) (\w+)", line)[1] for line in expected}
    used = re.findall(r"\bcurves[._](?:[gs]et_)?(\w+)", page.split("## Samples", 1)[1])
    wrong += [f"used by a sample: {name}" for name in used if name not in names and name != "db"]
    if len(expected) != 34:
        wrong.append(f"the description has {len(expected)} members and events instead of 34")
    print("\n".join(wrong) or f"{len(expected)} signatures")
    return 1 if wrong else 0


sys.exit(main())
