#!/usr/bin/env python3
"""Writes the golden scenes rich.oa and rich.ob.hex, and what an edit makes of them.

They hold every data type, every index type, metadata of nodes and of the scene, texts that need escapes, and content of
the host's around it all. The bytes are put together here from the descriptions of the formats in docs/formats/, without
the library. Run it in this folder after changing it.
"""

import struct

STRUCTURES = [
    # fmt: off
    "name=AllTypes:bool=flag:double[2]=pair:dbl4x4=matrix:float[3]=origin:flt4x4=pose:int8=i8:int16=i16:int32=i32"
    ":int64=i64:string[2]=texts:uint8=u8:uint16=u16:uint32=u32:uint64=u64",
    # fmt: on
    "name=Label:string=text",
    "name=Weight:float=weight",
]

IDENTITY = "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"
COUNTING = "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15"


def quote(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n") + '"'


def all_types(flag, texts, low):
    integers = ["-128", "-32768", "-2147483648", "-9223372036854775808"] if low else ["127", "32767", "2147483647", "9223372036854775807"]
    naturals = ["0", "0", "0", "0"] if low else ["255", "65535", "4294967295", "18446744073709551615"]
    return " ".join([flag, "0.5 -1e+100", IDENTITY, "0.25 -2 3e-05", COUNTING, *integers, *[quote(t) for t in texts], *naturals])


def stream(name, index_type, structure, elements):
    lines = [f"name {name}", f"indexType {index_type}", f"structure {structure}"]
    for index, values in elements:
        lines += [index, values]
    return ["stream"] + lines + ["endStream"]


def channel(name, *streams):
    return ["channel", f"name {name}"] + [line for s in streams for line in s] + ["endChannel"]


def associations(*channels):
    return "".join(line + "\n" for c in channels for line in c) + "endAssociations\n"


def body(weight):
    return associations(
        channel("edge", stream("creases", "pair", "Weight", [("0 1", "0.5"), ("0 2", weight), ("3 1", "1")])),
        channel(
            "vertex",
            stream("all", "numeric", "AllTypes",
                   [("0", all_types("true", ['say "hi"', "back\\slash"], False)),
                    ("7", all_types("false", ["two\nlines", "  blanks  and\ttab "], True))]),
            stream("labels", "string", "Label",
                   [("elbow left", quote("Ellbogen: ö ß")), ("knee", quote("")), ("日本", quote("ひざ"))]),
        ),
    )


HEAD = associations(channel("face", stream("marks", "numeric", "Label", [("12", quote("nose"))])))
SCENE = associations(channel("info", stream("notes", "string", "Label", [("author", quote("Zoë \\ \"Z\"\nand friends"))])))


def ascii_scene(weight):
    def escape(text):
        named = {"\a": "a", "\b": "b", "\t": "t", "\n": "n", "\v": "v", "\f": "f", "\r": "r", "\\": "\\", '"': '"'}
        return "".join("\\" + named[c] if c in named else "\\%03o" % ord(c) if ord(c) < 32 or ord(c) == 127 else c for c in text)

    def apply(text, target):
        return f'applyMetadata -fmt "raw" -v "{escape(text)}" \n\t\t{target};\n'

    host = (
        "//Ovri ASCII 2014 scene\n//Name: rich.oa\n//Last modified: Sat, Mar 01, 2014 10:00:00 AM\n"
        'requires ovri "2014";\ncurrentUnit -l centimeter -a degree -t film;\n'
        'createNode transform -n "body";\n\tsetAttr ".t" -type "double3" 0 1.5 0 ;\n'
        'createNode mesh -n "bodyShape" -p "body";\n\tsetAttr ".vt[0:2]"  0 0 0 1 0 0 0 1 0;\n'
        'createNode transform -n "head";\nselect -ne :time1;\n\tsetAttr ".o" 1;\n'
        'connectAttr "body.t" "head.t";\n// Metadata follows\n'
    )
    metadata = "".join(f'dataStructure -fmt "raw" -as "{text}";\n' for text in STRUCTURES)
    metadata += apply(body(weight), "body") + apply(HEAD, "head") + apply(SCENE, "-scn")
    return (host + metadata + "// End of rich.oa\n").encode("utf-8")


def chunk(tag, data):
    return tag + struct.pack(">IQ", 0, len(data)) + data + b"\0" * (-len(data) % 8)


def group(tag_type, *children):
    data = tag_type + b"".join(children)
    return b"FOR8" + struct.pack(">IQ", 0, len(data)) + data


def text(*parts):
    return b"".join(part.encode("utf-8") + b"\0" for part in parts)


def binary_scene(weight):
    def node(kind, name, *attributes):
        data = kind + chunk(b"CREA", text(name)) + b"".join(chunk(b"FLTS", a) for a in attributes)
        return b"FOR8" + struct.pack(">IQ", 0, len(data)) + data + b"\0" * (-len(data) % 8)

    scene = chunk(b"HEAD", text("rich.ob", "2014")) + node(b"XFRM", "body", struct.pack(">3d", 0, 1.5, 0))
    scene += node(b"MESH", "bodyShape", struct.pack(">9f", 0, 0, 0, 1, 0, 0, 0, 1, 0)) + node(b"XFRM", "head")
    children = [chunk(b"CONN", text("body.t", "head.t"))]
    children += [chunk(b"DATS", text("raw", s)) for s in STRUCTURES]
    children += [chunk(b"SMTD", text("", "raw", SCENE)), chunk(b"MTDA", text("body", "raw", body(weight)))]
    children += [chunk(b"MTDA", text("head", "raw", HEAD)), chunk(b"UINF", b"13 data bytes")]
    length = sum(len(c) for c in children)
    trailer = group(b"TRLR", *children, chunk(b"BCSZ", struct.pack(">I", length + 20)))
    return group(b"Ovri", scene, trailer)


def hex_dump(data):
    lines = []
    for start in range(0, len(data), 16):
        row = data[start:start + 16]
        shown = "".join(chr(b) if 32 <= b < 127 else "." for b in row)
        lines.append(f"{row.hex(' '):<47}  # {start:06x} {shown}\n")
    return "".join(lines)


for suffix, weight in (("", "0.75"), ("_edited", "0.125")):
    with open(f"rich{suffix}.oa", "wb") as out:
        out.write(ascii_scene(weight))
    with open(f"rich{suffix}.ob.hex", "w", encoding="ascii") as out:
        out.write(hex_dump(binary_scene(weight)))
