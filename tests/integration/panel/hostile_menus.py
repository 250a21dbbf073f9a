#!/usr/bin/env python3
"""Menu files that are made to cost much: an optimised panel accepts or refuses each one within 2 seconds of the
processor and 256 MiB.

usage: hostile_menus.py PANEL [PART-OF-A-NAME]...

FRONTPANEL_HOSTILE_MENUS is the number of menus that are tried, spread over the list (default 24), or "all". With parts
of names, all menus with one of them are tried.
"""

import json
import os
import resource
import shutil
import sys
import tempfile

MOST_SECONDS = 2
MOST_MIB = 256
USUAL_COUNT = 24
# Ends a panel that hangs.
HANGING_SECONDS = 20

REPORTS = ("--check", "--dump", "--graph")
ACCEPTED, REFUSED = 0, 2

# ---- parts of a menu file

RANGE = {"type": "range", "name": "G", "pid": 100}
TEXT = {"type": "text", "name": "T", "pid": 102}
ENUM = {"type": "enum", "name": "E", "pid": 103, "choices": ["a", "b"]}
SLOT = {"type": "slot", "name": "S", "pid": 101}
LINK = {"type": "link", "target": "z"}
MOUNT = {"type": "mount", "name": "M", "folder": "."}
MARKED = RANGE | {"id": "z"}  # what the links lead to


def integer(pid, greatest=9, value=0, **members):
    return {"pid": pid, "type": "integer", "min": 0, "max": greatest, "value": value} | members


PARAMETERS = [
    integer(100, 100, 1, name="g"),
    integer(101, 14, 1),
    {"name": "t", "pid": 102, "type": "text", "length": 32, "value": "x"},
]


def named(count, pattern="n#", greatest=9, start=0):
    """Parameters with the number of each in the place of '#'."""
    return [integer(i, greatest, name=pattern.replace("#", str(i))) for i in range(start, start + count)]


def with_enum(greatest=1):
    return PARAMETERS + [integer(103, greatest)]


def menu(items, parameters=None, device=None, **members):
    declared = {"parameters": PARAMETERS if parameters is None else parameters}
    return members | {"device": declared | (device or {}), "menu": {"name": "Main", "items": items}}


def with_home(links, item=None, kind="homescreen", **members):
    return menu([item or MARKED], **{kind: links}, **members)


def node(items, name="N", **members):
    return {"type": "node", "name": name} | members | {"items": items}


def in_nodes(items, size=1000):
    """As many items in menus as a menu holds, or of that size."""
    return [node(items[i : i + size], f"N{i // size}") for i in range(0, len(items), size)]


def apart(item, count):
    return in_nodes([item] * count, 1)


def deep(levels, items, name="D#", **members):
    for level in range(levels):
        items = [node(items, name.replace("#", str(level)), **members)]
    return items[0]


def repeated(item, count, counter="i"):
    return item | {"repeat": {"counter": counter, "from": 1, "to": count}}


def twice_repeated(item, inner, outer):
    return repeated(node([repeated(item, inner, "j")], "N{i}"), outer)


def options(count, pattern="o#"):
    return {pattern.replace("#", str(i)): 1 for i in range(count)}


def numbered(count, pattern="c#"):
    return [pattern.replace("#", str(i)) for i in range(count)]


def rules(text, item=None):
    return (RANGE if item is None else item) | {"binding": text}


def enum(choices, **members):
    return ENUM | {"choices": choices} | members


def optional(text="x", option="o"):
    return {"text": text, "options": [option]}


def template_of(*content, arguments=()):
    return {"arguments": list(arguments), "content": list(content)}


def parts(count, gap=3, length=0):
    """A list of ranges that do not touch."""
    return ",".join(f"{gap * i}..{gap * i + length}" for i in range(count))


def gaps(count, gap=2):
    return [{"min": gap * i, "max": gap * i} for i in range(count)]


def cards(*documents):
    return {"cards": list(documents)}


def combo_boxes(slot, boxes):
    return {"slot": slot, "combo-boxes": [{"pid": 9000 + i, "options": box} for i, box in enumerate(boxes)]}


def include(file):
    return {"include": file}


def spread(items, files=4, **members):
    """The same items in several files, since a file holds 4 MiB."""
    return {"menu.json": menu([include(f"f{i}.json") for i in range(files)], **members)} | {
        f"f{i}.json": items for i in range(files)
    }


def ring(count, rule, dense=1):
    """Items whose rules each name the parameters of the items behind, and the last ones those of the first."""
    return in_nodes(
        [
            {"type": "range", "name": f"G{i}", "pid": i}
            | {"binding": ";".join(rule.format(next=(i + 1 + d) % count, own=i) for d in range(dense))}
            for i in range(count)
        ]
    )


SET_NEXT = "set [n{next}] = [n{own}]"
LIMITED_BY_NEXT = "range 0..[n{next}] if [n{next}]"

# ---- the menus, each made when it is tried: by name, the text of menu.json, its value, or several files


def with_options():
    menus = {
        f"{count} options of {length} letters, {items} items that test one": lambda count=count, length=length, items=items: menu(
            in_nodes([RANGE | {"options": ["o1"]}] * items), options=options(count, "o" * length + "#")
        )
        for count, items, length in (
            (2000, 1, 20),
            (50000, 100, 20),
            (200, 20000, 300),
            (15, 30000, 1000),
            (15, 45000, 60),
            (100, 5000, 60),
            (1000, 100, 60),
            (230000, 1, 1),
            (7, 60000, 8),
        )
    }
    return menus | {
        "options with long names tested in copies": lambda: menu(
            [node([repeated(RANGE | {"options": ["o" * 60000 + "{i}"]}, 100)], f"N{i}") for i in range(3)],
            options={"a": 1},
        ),
        "many options tested in copies": lambda: menu(
            [node([repeated(RANGE | {"options": numbered(400, "x#")}, 1000)])], options={"a": 1}
        ),
        "options of a template": lambda: menu(
            [repeated({"template": "t", "arguments": {"n": "{i}"}}, 900)],
            templates={"t": template_of(RANGE | {"options": numbered(100, "x#{n}")}, arguments=["n"])},
            options=options(100, "p#"),
        ),
        "options of ranges in many items": lambda: menu(
            in_nodes([RANGE | {"ranges": [{"min": 0, "max": 100, "options": ["o1"]}] * 20}] * 4000),
            options=options(50),
        ),
        "options of ranges in one item": lambda: menu(
            [RANGE | {"ranges": [{"min": 0, "max": 100, "options": ["o1"]}] * 80000}], options=options(8)
        ),
        "options of products": lambda: menu(
            in_nodes([RANGE | {"options": ["o1"]}] * 20000),
            device={
                "products": [
                    {"slot": slot, "id": slot, "name": "n", "family": "f", "options": options(4, f"s{slot}x#")}
                    for slot in range(1, 16)
                ]
            },
        ),
        "many options of products": lambda: menu(
            [RANGE | {"options": ["s1x1"]}],
            device={
                "products": [
                    {"slot": slot, "id": slot, "name": "n", "family": "f", "options": options(15000, f"s{slot}x#")}
                    for slot in range(1, 16)
                ]
            },
        ),
        "many products": lambda: menu(
            [RANGE],
            device={"products": [{"slot": 1, "id": i, "name": "n", "family": "f"} for i in range(90000)]},
        ),
        "unknown options": lambda: menu(in_nodes([RANGE | {"options": ["u1", "u2", "u3"]}] * 30000), options={"a": 1}),
    }


def with_ranges():
    wide = [integer(100, 2000000)]
    return {
        "a long list of ranges": lambda: menu([RANGE | {"ranges": [{"min": i % 100, "max": i % 100} for i in range(150000)]}]),
        "ranges in many items": lambda: menu(in_nodes([RANGE | {"ranges": gaps(100, 1)}] * 1000)),
        "ranges apart": lambda: menu([RANGE | {"ranges": gaps(120000)}], wide),
        "ranges apart, the last one first": lambda: menu([RANGE | {"ranges": gaps(120000)[::-1]}], wide),
    }


def with_depth():
    hidden = {"visible": False}
    hidden_menu = node([RANGE], "M", **hidden)
    return {
        "hidden menus": lambda: menu(in_nodes([hidden_menu] * 40000)),
        "hidden menus in copies": lambda: menu([twice_repeated(hidden_menu, 1000, 13)]),
        "hidden menus over files": lambda: spread([node([hidden_menu] * 1000) for _ in range(12)]),
        "hidden items": lambda: menu(in_nodes([RANGE | hidden] * 70000)),
        "hidden items with shortcuts": lambda: menu(in_nodes([RANGE | hidden | {"shortcut": i} for i in range(50000)])),
        "hidden menus at the greatest depth": lambda: menu([deep(15, [RANGE], **hidden)] * 900),
        "hidden menus with long names": lambda: menu([deep(15, [RANGE], "D" * 20 + "#", **hidden)] * 900),
        "wide menus at depth": lambda: menu([deep(12, in_nodes([RANGE] * 90000))]),
        "menus deeper than allowed": lambda: menu([deep(16, [RANGE])] * 900),
        "items at the greatest depth": lambda: menu([deep(14, [RANGE] * 20)] * 900),
        "equal names at depth": lambda: menu([deep(14, [RANGE | {"name": "G" * 24}] * 100, "D" * 20 + "#")] * 200),
        "empty menus": lambda: menu(in_nodes([node([], "M")] * 100000)),
        "empty menus in one": lambda: menu([node([], "M")] * 100000),
        "too many items": lambda: menu([RANGE] * 100000),
        "items over files": lambda: spread([node([RANGE] * 1000) for _ in range(29)]),
        "lists in each other": lambda: "[" * 100 + "]" * 100,
        "lists in each other beyond any depth": lambda: "[" * 1000000,
        "objects in each other": lambda: json.dumps(menu(["@"])).replace('"@"', '{"x":' * 90 + "1" + "}" * 90),
    }


def with_templates():
    empty = {"template": "e"}
    return {
        "copies of nothing": lambda: menu(
            [repeated(node([repeated(node([repeated(empty, 1000, "k")]), 1000, "j")]), 1000)],
            templates={"e": template_of()},
        ),
        "copies of an item": lambda: menu([twice_repeated(RANGE, 1000, 1000)]),
        "many arguments": lambda: menu(
            [{"template": "t", "arguments": {f"a{i}": "x" * 200 for i in range(64)}}],
            templates={
                "t": template_of(node([repeated(empty, 1000, "j")]), arguments=numbered(64, "a#")),
                "e": template_of(),
            },
        ),
        "many long arguments": lambda: menu(
            [{"template": "t", "arguments": {f"a{i}": "a" * 60000 for i in range(60)}}],
            templates={"t": template_of(node([repeated(RANGE, 1000)]), arguments=numbered(60, "a#"))},
        ),
        "a long argument in copies": lambda: menu(
            [{"template": "t", "arguments": {"x": "a" * 60000}}],
            templates={"t": template_of(node([repeated(RANGE | {"description": "{x}"}, 260)]), arguments=["x"])},
        ),
        "unused templates": lambda: menu([RANGE], templates={f"t{i}": {"content": []} for i in range(150000)}),
        "used templates": lambda: menu(
            in_nodes([{"template": f"t{i}"} if i % 500 else RANGE for i in range(30000)], 500),
            templates={f"t{i}": {"content": []} for i in range(30000)},
        ),
        "templates with long names": lambda: menu(
            [RANGE], templates={"t" * 2000 + str(i): {"content": []} for i in range(1900)}
        ),
        "templates that use each other": lambda: menu(
            [{"template": "t0"}],
            templates={f"t{i}": template_of(*[{"template": f"t{i + 1}"}] * 3) for i in range(15)}
            | {"t15": template_of(RANGE)},
        ),
        "unknown members in copies": lambda: menu(
            [node([repeated(RANGE | {"u" * 1500 + "{i}": 1}, 1000)], f"N{i}") for i in range(10)]
        ),
    } | {
        f"placeholders: {name}": lambda member=member, text=text, count=count: menu([repeated(RANGE | {member: text}, count)])
        for name, member, text, count in (
            ("counters", "description", "{i}" * 20000, 1000),
            ("open braces", "description", "{" * 65000, 200),
            ("unknown and open", "description", "{a" * 32000, 200),
            ("a long name", "description", "{" + "a" * 65000, 200),
            ("in rules", "binding", "{x}" * 21000, 200),
            ("calculated", "description", "{i*1000+1}" * 6000, 400),
        )
    }


def with_mistakes():
    menus = {}
    for length in (10, 1500, 60000):
        count = min(12000, 4000000 // (length + 60))
        text = "z" * length
        for name, item in {
            "links to nothing": {"type": "link", "target": text},
            "unknown types": {"type": text, "name": "a"},
            "unknown parameters": {"type": "range", "name": "a", "parameter": text},
            "equal ids": RANGE | {"id": text[:63]},
        }.items():
            menus[f"{name}, {length} letters"] = lambda item=item, count=count: menu(in_nodes([item] * count))
    return menus | {
        "links to nothing in copies": lambda: menu(
            [node([repeated({"type": "link", "target": "{i}" + "z" * 1500}, 1000)], f"N{i}") for i in range(10)]
        ),
        "unknown parameters in copies": lambda: menu(
            [twice_repeated({"type": "range", "name": "a", "parameter": "z" * 1600}, 1000, 10)]
        ),
        "mistakes in rules": lambda: menu(in_nodes([rules("visble;" * 100)] * 5000)),
        "mistakes in rules on lines": lambda: menu(apart(rules("visble\n" * 9000), 50)),
        "rules beyond the range on lines": lambda: menu(apart(rules("range 200..300\n" * 4000), 60)),
        "rules beyond the range": lambda: menu(apart(rules("range 200..300;" * 4300), 60)),
        "rules that read nothing": lambda: menu(apart(rules("visible if 1;" * 5000), 60)),
        "rules that read nothing on lines": lambda: menu(apart(rules("visible if 1\n" * 4600), 60)),
        "rules that read nothing over files": lambda: spread(
            apart(rules("visible if 1\n" * 4600, RANGE | {"name": "G" * 24}), 60)
        ),
        "long names": lambda: menu(in_nodes([RANGE | {"name": "G" * 24}] * 60000)),
        "links to a long name": lambda: menu(in_nodes([LINK] * 60000) + [MARKED | {"name": "G" * 24}]),
        "names with long notes": lambda: menu([node([RANGE | {"name": "G:" + "x" * 60000}] * 60, "N:" + "y" * 60000)]),
        "names with long notes in copies": lambda: menu([twice_repeated(RANGE | {"name": "G:" + "x" * 1500}, 1000, 10)]),
        "wrong parameters": lambda: menu(
            [RANGE], [{"pid": i, "type": "integer", "min": 9, "max": 0, "value": "x"} for i in range(60000)]
        ),
        "unknown members": lambda: {f"m{i}": 1 for i in range(330000)},
        "a list in place of a menu": lambda: [1] * 499000,
        "long numbers": lambda: json.dumps(menu([RANGE], x="@")).replace('"@"', "[" + ",".join(["9" * 60000] * 60) + "]"),
        "escapes": lambda: json.dumps(menu([RANGE | {"description": "@"}], x=["@@"]))
        .replace("@@", "\\u0041" * 600000)
        .replace("@", "\\u0041" * 65000),
        "empty texts": lambda: {"x": [""] * 499000},
    }


def with_names_to_propose():
    first = RANGE | {"pid": 1}
    menus = {}
    for length, count in ((12, 45000), (55, 15000), (55, 7000)):
        start = "n" * (length - 6)
        menus[f"a mistaken name among {count} of {length} letters"] = lambda start=start, count=count: menu(
            in_nodes([rules(f"visible if [{start}x{i}]", first) for i in range(5000)]), named(count, start + "#")
        )
        menus[f"mistaken names among {count} of {length} letters"] = lambda start=start, count=count: menu(
            in_nodes([rules(";".join(f"visible if [{start}x{i}y{k}]" for k in range(40)), first) for i in range(400)]),
            named(count, start + "#"),
        )
    return menus | {
        "long mistaken names": lambda: menu(
            in_nodes([rules(f"visible if [{'n' * 60000}x{i}]", first) for i in range(60)]), named(2000, "n" * 50 + "#")
        ),
        "mistaken names in copies": lambda: menu(
            [twice_repeated(rules("visible if [name {j}x]", first), 1000, 9)], named(50000, "name #")
        ),
    }


def with_parameters():
    first = RANGE | {"pid": 0}

    def texts(count, length, value):
        return [integer(0)] + [{"pid": i + 1, "type": "text", "length": length, "value": value} for i in range(count)]

    return {
        "parameters": lambda: menu([first], [integer(i) for i in range(65000)]),
        "too many parameters": lambda: menu([first], [integer(i) for i in range(80000)]),
        "named parameters": lambda: menu([first], named(65000)),
        "named parameters over files": lambda: {
            "menu.json": menu([first], [include("f0.json"), include("f1.json")]),
            "f0.json": named(32000, "n" * 50 + "#"),
            "f1.json": named(32000, "n" * 50 + "#", start=32000),
        },
        "parameters in copies": lambda: menu(
            [first], [integer(0)] + [repeated(integer("{i+%d}" % (k * 1000)), 1000) for k in range(27)]
        ),
        "texts": lambda: menu([first], texts(14000, 200, "v" * 200)),
        "empty texts of parameters": lambda: menu([first], texts(70000, 128, "")),
        "one parameter many times": lambda: menu([RANGE], [integer(100)] * 65000),
        "parameters with long names": lambda: menu([RANGE], [integer(100, name="n" * 60000 + str(i)) for i in range(60)]),
        "parameters with long descriptions": lambda: menu(
            [RANGE], [integer(100)] + [integer(1000 + i, description="n" * 60000) for i in range(60)]
        ),
    }


def with_rules():
    many = named(1000)
    first = RANGE | {"pid": 1}
    wide = RANGE | {"pid": 104}
    with_wide = PARAMETERS + [integer(104, 2000000, 1)]
    long_texts = {
        "a long condition": "visible if " + "[g] == 1 or " * 5300 + "0",
        "many rules": "visible if [g];" * 4300,
        "a long set": "visible if [g] in {" + ",".join(map(str, range(11000))) + "}",
        "parts of a range": "range " + "0..1," * 12000 + "0..1 if [g]",
        "warnings": ('warn "' + "w" * 200 + '" if value;') * 290,
        "values in texts": ('warn "' + "{[g]}" * 40 + '" if value;') * 300,
        "negations": "visible if " + "!" * 64000 + "[g]",
        "parentheses": "visible if " + "(" * 64000 + "[g]",
        "signs": "visible if " + "-" * 64000 + "[g]",
        "choices": "visible if " + "[g]?1:" * 10000 + "1",
        "sums": "visible if " + "[g]+" * 16000 + "1",
        "a comment": "visible if [g] " + "#" * 64000,
        "semicolons": "visible if [g] " + ";" * 64000,
        "empty lines before a mistake": "visible if [g] " + "\n" * 30000 + " visble",
    }
    menus = {f"rules: {name}": lambda text=text: menu(apart(rules(text), 60)) for name, text in long_texts.items()}
    return menus | {
        "rules: a long condition over files": lambda: spread(apart(rules(long_texts["a long condition"]), 61)),
        "rules: parts of a range over files": lambda: spread(apart(rules(long_texts["parts of a range"]), 60)),
        "rules: keys": lambda: menu(apart(rules("keys " + "0..1," * 10000 + "0 if [g]", ENUM), 60), with_enum()),
        "rules: keys over files": lambda: spread(
            apart(rules("keys " + "0..1," * 12000 + "0 if [g]", ENUM), 60), parameters=with_enum()
        ),
        "rules: parts of a range apart": lambda: menu(
            apart(rules(f"range {parts(4500, 3, 1)} if [100] > 0"), 60), [integer(100, 2000000, 1)]
        ),
        "rules: a range of many parts in a list of them": lambda: spread(
            apart(rules("range " + parts(5500), wide), 60), parameters=with_wide
        ),
        "rules: ranges and rules": lambda: spread(
            apart(rules("range " + parts(3500), wide | {"ranges": gaps(900, 3)}), 50), parameters=with_wide
        ),
        "rules: parts of a range in copies": lambda: menu(
            [twice_repeated(rules("range " + "0..1," * 250 + "0..1 if [g]"), 10, 1000)]
        ),
        "rules: many names in each": lambda: menu(
            in_nodes([rules("visible if " + "or".join(f"[n{i}]" for i in range(1000)), first)] * 440), many
        ),
        "rules: one name": lambda: menu(in_nodes([rules("visible if [n1]", first)] * 40000), many),
        "rules: another name in each": lambda: menu(
            in_nodes([rules(f"visible if [n{i}]", RANGE | {"pid": i}) for i in range(30000)]), named(30000)
        ),
        "rules: another name in each over files": lambda: {
            "menu.json": menu([include("g.json")], [include("f.json")]),
            "f.json": named(24000),
            "g.json": in_nodes([rules(f"visible if [n{i}]", RANGE | {"pid": i}) for i in range(24000)]),
        },
        "rules: nested": lambda: menu(in_nodes([rules("visible if " + "(" * 60 + "[g]" + ")" * 60)] * 20000)),
        "rules: not": lambda: menu(in_nodes([rules("visible if " + "not " * 60 + "[g]")] * 12000)),
        "rules: addresses": lambda: menu(in_nodes([rules("visible if [100.0.0];" * 200)] * 900)),
        "rules: a limit each over files": lambda: spread([node([rules("range 0..[g]")] * 1000) for _ in range(11)]),
        "rules: texts to set": lambda: spread(
            [node([rules('set [t] = "' + "x" * 100 + '" if [g] == 1', TEXT)] * 900) for _ in range(14)]
        ),
    }


def with_circles():
    numbers = named(3, greatest=99999)
    menus = {
        f"circle of {count} writes, {dense} each": lambda count=count, dense=dense: menu(
            ring(count, SET_NEXT, dense), named(count)
        )
        for count, dense in ((20000, 1), (2000, 20), (400, 100), (200, 200), (40000, 1))
    } | {
        f"circle of {count} limits, {dense} each": lambda count=count, dense=dense: menu(
            ring(count, LIMITED_BY_NEXT, dense), named(count)
        )
        for count, dense in ((18000, 1), (30000, 1), (1000, 20), (300, 100), (150, 149))
    }
    return menus | {
        f"circle of 30000 {name} over files": lambda rule=rule: {
            "menu.json": menu([include("g.json")], [include("f.json")]),
            "f.json": named(30000),
            "g.json": ring(30000, rule),
        }
        for name, rule in {"writes": SET_NEXT, "limits": LIMITED_BY_NEXT}.items()
    } | {
        "circles of one": lambda: menu(in_nodes([rules("range 0..[g]")] * 40000)),
        "circles of two": lambda: menu(
            in_nodes([rules(f"set [n{i ^ 1}] = [n{i}]", RANGE | {"pid": i}) for i in range(20000)]), named(20000)
        ),
        "a chain of writes": lambda: menu(
            in_nodes([rules(f"set [n{i + 1}] = [n{i}]+1", RANGE | {"pid": i}) for i in range(20000)]),
            named(20001, greatest=99999),
        ),
        "writes of one parameter": lambda: menu(
            in_nodes([rules(f"set [n1] = {i} if [n0] == 0", RANGE | {"pid": 2}) for i in range(20000)]), numbers
        ),
        "writes of a limit of many": lambda: menu(
            [rules(";".join(f"set [n1]={i}" for i in range(4000)), RANGE | {"pid": 0})]
            + in_nodes([rules("range 0..[n1]", RANGE | {"pid": 2})] * 20000),
            numbers,
        ),
    }


def with_toggles():
    menus = {
        f"toggles: {name}": lambda text=text, count=count: with_home([{"target": "z", "toggle": text}] * count)
        for name, text, count in (
            ("many", "[g]", 120000),
            ("long", "[g]==1||" * 470 + "0", 1000),
            ("longer", "[g]==1||" * 8000 + "0", 60),
            ("variables", "".join(f"b{i}=1;" for i in range(5000)) + "a=1", 60),
            ("a long variable", "b" * 60000 + "=1;a=1", 60),
            ("blanks", "a " + " " * 60000, 60),
            ("parentheses", "(" * 60000, 60),
            ("open brackets", "[g][" * 15000, 60),
            ("names", "b+" * 30000 + "1", 60),
        )
    } | {
        f"toggles: {name} in copies": lambda text=text: with_home([repeated({"target": "z", "toggle": text}, 1000)])
        for name, text in (
            ("long", "[g]==1||" * 1990 + "0"),
            ("nested", "(" * 120 + "[g]" + ")" * 120),
            ("calls", "sqrt([g])+" * 1600 + "0"),
        )
    }
    return menus | {
        "toggles: parameters": lambda: with_home(
            [{"target": "z", "toggle": "".join(f"[n{i * 40 + k}]||" for k in range(40)) + "0"} for i in range(1000)],
            MARKED | {"pid": 1},
            parameters=named(40000),
        ),
        "mistakes beside a toggle": lambda: menu(
            in_nodes([RANGE | {"value_format": f"B{i}"} for i in range(20000)]),
            homescreen=[{"target": "N0/G", "toggle": "[g]"}],
        ),
        "long mistakes beside a toggle": lambda: menu(
            in_nodes([RANGE | {"value_format": "B+" * 1500 + "v"}] * 1000),
            homescreen=[{"target": "N0/G", "toggle": "[g]"}],
        ),
    }


def with_links():
    way = "/".join([f"D{i}" for i in range(14, -1, -1)] + ["G"])
    return {
        "links": lambda: menu(in_nodes([LINK] * 90000) + [MARKED]),
        "links over files": lambda: spread([node([LINK] * 1000) for _ in range(39)]),
        "links with ids": lambda: menu(in_nodes([LINK | {"id": f"i{i}"} for i in range(70000)]) + [MARKED]),
        "links by a path": lambda: menu(in_nodes([LINK | {"target": way}] * 40000) + [deep(15, [RANGE])]),
        "links by too many paths": lambda: menu(in_nodes([LINK | {"target": way}] * 60000) + [deep(15, [RANGE])]),
        "links by a path to nothing": lambda: menu(
            in_nodes([LINK | {"target": "/".join(["D" * 24] * 14)}] * 9000) + [deep(15, [RANGE])]
        ),
        "links with ways out": lambda: menu(
            in_nodes([LINK | {"escape": {"redraw": "z", "select": "z", "escape": "z"}}] * 40000) + [MARKED]
        ),
        "links to a link": lambda: menu(in_nodes([{"type": "link", "target": "i0", "id": f"i{i}"} for i in range(60000)])),
        "links in copies": lambda: menu([twice_repeated(LINK, 1000, 25), MARKED]),
        "links at depth": lambda: menu([deep(14, in_nodes([LINK] * 60000)), deep(15, [MARKED])]),
        "links to a menu": lambda: menu(in_nodes([LINK] * 60000) + [node([RANGE] * 1000, id="z")]),
        "links and hidden menus": lambda: menu(
            in_nodes([node([RANGE], "M", visible=False)] * 10000 + [LINK] * 40000) + [MARKED]
        ),
        "favourites": lambda: with_home([{"target": "z"}] * 1000, kind="favourites"),
        "too many favourites": lambda: with_home([{"target": "z"}] * 200000, kind="favourites"),
        "mounts": lambda: menu(in_nodes([MOUNT | {"folder": f"f{i}"} for i in range(60000)])),
        "mounts of long folders": lambda: menu(in_nodes([MOUNT | {"folder": "../" * 20000 + str(i)} for i in range(60)])),
        "mounts of one folder": lambda: menu(in_nodes([MOUNT] * 60000)),
        "mounts in copies": lambda: menu([twice_repeated(MOUNT, 1000, 20)]),
        "mounts over files": lambda: spread([node([MOUNT] * 1000) for _ in range(24)]),
        "bridges": lambda: menu(in_nodes([{"type": "bridge", "item": {"type": "range", "pid": 100}}] * 60000)),
        "bridges with rules": lambda: menu(
            in_nodes([{"type": "bridge", "item": {"type": "range", "pid": 100, "binding": "visible if [g]"}}] * 40000)
        ),
        "bridges over files": lambda: spread(
            [node([{"type": "bridge", "item": {"type": "text", "pid": 102}}] * 1000) for _ in range(17)]
        ),
    }


def with_choices():
    def choice(count, *more, parameters=None, **members):
        return menu([enum(numbered(count) + list(more), **members)], with_enum(count), options={"o": 1})

    live = {"type": "enum", "name": "E", "pid": 9000, "live": {"slot": 1, "web-type": "combobox"}}
    return {
        "a long enum": lambda: choice(400000),
        "a longer enum": lambda: choice(450000),
        "a long enum with an option": lambda: choice(400000, optional()),
        "a long enum with an option over files": lambda: {
            "menu.json": menu([enum([include("f.json"), optional()])], with_enum(230000), options={"o": 1}),
            "f.json": numbered(230000),
        },
        "an enum of options": lambda: menu([enum([optional("c")] * 95000)], with_enum(94999), options={"o": 1}),
        "an enum of one option of many": lambda: menu(
            [enum([optional("c", "o1")] * 70000)], with_enum(69999), options=options(90)
        ),
        "an enum of long options": lambda: menu(
            [enum([optional("c", "o" * 250 + str(i)) for i in range(3500)])] * 4, with_enum(3499), options={"o": 1}
        ),
        "enums": lambda: menu(in_nodes([ENUM] * 60000), with_enum()),
        "enums over files": lambda: spread([node([ENUM] * 1000) for _ in range(17)], parameters=with_enum()),
        "enums with an option": lambda: menu(in_nodes([enum(["a", optional()])] * 35000), with_enum(), options={"o": 1}),
        "longer enums with an option": lambda: menu(
            in_nodes([enum(numbered(99) + [optional()])] * 1900, 950), with_enum(99), options={"o": 1}
        ),
        "four long enums with an option": lambda: menu(
            [enum(numbered(100000, "#") + [optional()])] * 4, with_enum(100000), options={"o": 1}
        ),
        "four long enums with an option and keys": lambda: menu(
            [enum(numbered(100000, "#") + [optional()], binding="keys 0..99999 if [g]")] * 4,
            with_enum(100000),
            options={"o": 1},
        ),
        "enums with an option in copies": lambda: menu(
            [repeated(enum(numbered(450, "#") + [optional()]), 1000)], with_enum(450), options={"o": 1}
        ),
        "keys of a long enum": lambda: choice(400000, binding="keys 0..399999 if [g]"),
        "keys of enums": lambda: menu(
            in_nodes([enum(numbered(100), binding="keys 0..99 if [g]")] * 3500, 875), with_enum(99)
        ),
        "keys of enums in copies": lambda: menu(
            [repeated(enum(numbered(4000), binding="keys 0..3999 if [g];" * 50), 100)], with_enum(3999)
        ),
        "longer enums": lambda: menu(in_nodes([enum(numbered(1000))] * 450), with_enum(999)),
        "enums with long texts": lambda: menu(in_nodes([enum(["c" * 120, "b"])] * 20000), with_enum()),
        "slots": lambda: menu(in_nodes([SLOT] * 19000)),
        "live lists": lambda: menu(in_nodes([live] * 40000), device=cards(combo_boxes(1, [["a"]]))),
        "options of a card": lambda: menu([RANGE], device=cards(combo_boxes(1, [numbered(400000)]))),
        "too many options of a card": lambda: menu([RANGE], device=cards(combo_boxes(1, [numbered(450000)]))),
        "documents of cards": lambda: menu(
            [RANGE], device=cards(*[combo_boxes(slot, [numbered(220)] * 101) for slot in range(1, 16)])
        ),
        "documents and trees of cards": lambda: menu(
            [RANGE],
            device=cards(
                *[
                    combo_boxes(slot, [numbered(120)] * 101)
                    | {"trees": [{"pid": 9000 + i, "tree": {"label": "x"}} for i in range(101)]}
                    for slot in range(1, 16)
                ]
            ),
        ),
        "a wide tree of a card": lambda: menu(
            [RANGE],
            device=cards(
                {
                    "slot": 1,
                    "trees": [
                        {"pid": 9000, "tree": {"label": "r", "children": [{"label": f"l{i}"} for i in range(200000)]}}
                    ],
                }
            ),
        ),
        "one card many times": lambda: menu([RANGE], device=cards(*[combo_boxes(1, [])] * 100000)),
        "long options of a card": lambda: menu([RANGE], device=cards(combo_boxes(1, [["o" * 255] * 140] * 100))),
        "longer options of a card": lambda: menu([RANGE], device=cards(combo_boxes(1, [["o" * 60000]] * 60))),
    }


def with_texts():
    formats = {
        "long": ("v+" * 32000 + "1", 1),
        "in copies": ("v+" * 8000 + "1", 1000),
        "of calls": ("sqrt(v)**2+" * 1400 + "1", 1000),
        "of powers": ("v**" * 5000 + "1", 1000),
        "of variables": ("".join(f"x{i}=1," for i in range(8000)) + "v", 1),
    }
    menus = {
        f"value formats {name}": lambda text=text, copies=copies: menu(
            [repeated(RANGE | {"value_format": text}, copies)] if copies > 1 else apart(RANGE | {"value_format": text}, 60)
        )
        for name, (text, copies) in formats.items()
    } | {
        f"many {kind} items": lambda kind=kind: menu(in_nodes([{"type": kind, "name": "T", "pid": 102}] * 90000))
        for kind in ("text", "time", "address")
    }
    table = ",".join(f"{i}:t{i}" for i in range(4000))
    return menus | {
        "descriptions": lambda: menu([node([repeated(RANGE | {"description": "d" * 1400}, 1000)], f"N{i}") for i in range(11)]),
        "format tables": lambda: menu(in_nodes([RANGE | {"format": table}] * 100)),
        "format tables in copies": lambda: menu([repeated(RANGE | {"format": table[:24000]}, 600)]),
        "value formats": lambda: menu(in_nodes([RANGE | {"value_format": "v"}] * 70000)),
        "characters of editors": lambda: menu(in_nodes([TEXT | {"editor": {"characters": " ABC" * 20}}] * 20000)),
        "characters of editors in copies": lambda: menu([repeated(TEXT | {"editor": {"characters": "A" * 16000}}, 1000)]),
        "editors": lambda: menu(in_nodes([RANGE | {"editor": {"step": 2, "wrap": True}}] * 50000)),
        "one shortcut": lambda: menu(in_nodes([RANGE | {"shortcut": 1}] * 60000)),
        "all shortcuts": lambda: menu(
            [node([RANGE | {"shortcut": i} for i in range(1, 100)], "S")] + in_nodes([RANGE] * 90000)
        ),
        "ids": lambda: menu(in_nodes([RANGE | {"id": f"i{i}"} for i in range(75000)])),
        "long ids": lambda: menu(in_nodes([RANGE | {"id": "i" * 50 + str(i)} for i in range(35000)])),
        "texts over files": lambda: spread([node([TEXT] * 1000) for _ in range(29)]),
        "warnings": lambda: menu(
            in_nodes([{"type": "warning", "name": "W"}] * 90000),
            PARAMETERS + [{"pid": 65549, "type": "text", "length": 128, "value": "w"}],
        ),
    }


def with_files():
    described = RANGE | {"description": "d" * 3900}
    return {
        "empty files": lambda: {"menu.json": menu([include(f"f{i}.json") for i in range(1900)] + [RANGE])}
        | {f"f{i}.json": [] for i in range(1900)},
        "too many files": lambda: {"menu.json": menu([include(f"f{i}.json") for i in range(3000)] + [RANGE])}
        | {f"f{i}.json": [] for i in range(3000)},
        "missing files": lambda: menu(in_nodes([include(f"x{i}") for i in range(9000)])),
        "one missing file": lambda: menu(in_nodes([include("x")] * 40000)),
        "missing files in copies": lambda: menu([repeated(include("x{i}"), 1000)]),
        "the largest files": lambda: spread(node([described] * 1000), 3),
        "files of texts": lambda: spread({"x": ["d" * 60000] * 66}),
        "files of numbers": lambda: {"menu.json": menu([include(f"f{i}.json") for i in range(4)])}
        | {f"f{i}.json": "[" + ",".join(["1." + "0" * 30] * 120000) + "]" for i in range(4)},
        "files of lines": lambda: {"menu.json": menu([include(f"f{i}.json") for i in range(3)])}
        | {f"f{i}.json": "\n" * 4100000 + json.dumps(node([RANGE])) for i in range(3)},
        "a large file in copies": lambda: {
            "menu.json": menu([repeated(node([include("f.json")], "N{i}"), 1000)]),
            "f.json": [RANGE] * 1000,
        },
        "a file of texts in copies": lambda: {
            "menu.json": menu([repeated(node([include("f.json")], "N{i}"), 400)]),
            "f.json": [RANGE | {"description": "d" * 60000}] * 60,
        },
        "files in files": lambda: {"menu.json": menu([include("0.json")]), "16.json": []}
        | {f"{i}.json": [include(f"{i + 1}.json")] * 3 for i in range(16)},
        "one file by many paths": lambda: {
            "menu.json": menu([include("./" * i + "f.json") for i in range(1, 120)] + [RANGE]),
            "f.json": [],
        },
        "one file by a long path": lambda: {
            "menu.json": menu([repeated(include("a/../" * 50 + "f.json"), 1000), RANGE]),
            "f.json": [],
        },
        "an endless file": lambda: menu([include("/dev/zero")]),
        "the memory of the machine": lambda: menu([include("/proc/kcore")]),
        "the memory of the panel": lambda: menu([include("/proc/self/mem")]),
    }


MENUS = {
    name: make
    for group in (
        with_options,
        with_ranges,
        with_depth,
        with_templates,
        with_mistakes,
        with_names_to_propose,
        with_parameters,
        with_rules,
        with_circles,
        with_toggles,
        with_links,
        with_choices,
        with_texts,
        with_files,
    )
    for name, make in group().items()
}

# ---- the runs


def write(name, folder):
    files = MENUS[name]()
    if not isinstance(files, dict) or "menu.json" not in files:
        files = {"menu.json": files}
    for file, content in files.items():
        text = content if isinstance(content, str) else json.dumps(content, separators=(",", ":"))
        with open(f"{folder}/{file}", "w") as stream:
            stream.write(text)


def wait_for(process):
    _, status, used = os.wait4(process, 0)
    return os.waitstatus_to_exitcode(status), used.ru_utime + used.ru_stime, used.ru_maxrss / 1024


def write_apart(name, folder):
    """In a process of its own: the memory of the process that starts a panel counts as the panel's."""
    process = os.fork()
    if process == 0:
        try:
            write(name, folder)
            os._exit(0)
        finally:
            os._exit(1)
    if wait_for(process)[0] != 0:
        sys.exit(f"hostile_menus: {name}: the files cannot be written")


def become_panel(panel, folder, report):
    resource.setrlimit(resource.RLIMIT_CPU, (HANGING_SECONDS, HANGING_SECONDS))
    output = os.open(f"{folder}/output", os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
    os.dup2(output, 1)
    os.dup2(output, 2)
    os.chdir(folder)
    os.execv(panel, [panel, "--menu", "menu.json", "--log", "/dev/null", report])


def run(panel, folder, report):
    process = os.fork()
    if process == 0:
        try:
            become_panel(panel, folder, report)
        finally:
            os._exit(127)
    return wait_for(process)


def first_line(folder):
    with open(f"{folder}/output", errors="replace") as stream:
        return stream.readline(200).strip()


def try_menu(panel, name):
    """The worst seconds and MiB of the reports on a menu, and whether all of them are as they should be."""
    folder = tempfile.mkdtemp(prefix="frontpanel-hostile-")
    try:
        write_apart(name, folder)
        most = (0, 0)
        is_good = True
        for report in REPORTS:
            status, seconds, mib = run(panel, folder, report)
            good = status in (ACCEPTED, REFUSED) and seconds <= MOST_SECONDS and mib <= MOST_MIB
            if not good:
                print(f"{name}: {report} ended with {status} after {seconds:.2f} s and {mib:.0f} MiB: {first_line(folder)}")
            is_good &= good
            most = (max(most[0], seconds), max(most[1], mib))
            if status == REFUSED:
                break  # for every report alike
        return is_good, *most
    finally:
        shutil.rmtree(folder)


def names_to_try(wanted):
    names = list(MENUS)
    if wanted:
        return [name for name in names if any(part in name for part in wanted)]
    count = os.environ.get("FRONTPANEL_HOSTILE_MENUS", str(USUAL_COUNT))
    count = len(names) if count == "all" else max(2, min(int(count), len(names)))
    return [names[i * (len(names) - 1) // (count - 1)] for i in range(count)]


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    panel = os.path.abspath(sys.argv[1])
    names = names_to_try(sys.argv[2:])
    results = {name: try_menu(panel, name) for name in names}
    bad = [name for name, result in results.items() if not result[0]]
    if results:
        slowest = max(results, key=lambda name: results[name][1])
        largest = max(results, key=lambda name: results[name][2])
        print(f"{len(results)} of {len(MENUS)} menus, {len(bad)} of them beyond {MOST_SECONDS} s or {MOST_MIB} MiB")
        print(f"slowest: {slowest}, {results[slowest][1]:.2f} s; largest: {largest}, {results[largest][2]:.0f} MiB")
    sys.exit(1 if bad or not results else 0)


if __name__ == "__main__":
    main()
