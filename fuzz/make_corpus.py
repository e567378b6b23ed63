#!/usr/bin/env python3
"""Makes the first inputs of the fuzz targets from the golden samples. Run it in this folder after changing those.

What a fuzzer found lies beside them under other names and stays.
"""

import pathlib
import re

GOLDEN = pathlib.Path("../tests/golden")
CORPUS = pathlib.Path("corpus")


def golden_bytes(name):
    """The bytes that a commented hex file spells out."""
    result = b""
    for line in (GOLDEN / name).read_text(encoding="utf-8").splitlines():
        for text, hexes in re.findall(r'"([^"]*)"|([0-9A-Fa-f]{2})', re.sub(r"#.*", "", line)):
            result += text.encode() if text or not hexes else bytes.fromhex(hexes)
    return result


def put(target, name, data):
    folder = CORPUS / target
    folder.mkdir(parents=True, exist_ok=True)
    (folder / f"golden_{name}").write_bytes(data)


def unescape(text):
    return re.sub(r"\\(.)", lambda match: {"n": "\n", "t": "\t"}.get(match[1], match[1]), text)


ascii_scene = (GOLDEN / "rich.oa").read_bytes()
for target in ("AsciiRead", "AsciiRewrite"):
    put(target, "rich", ascii_scene)
    put(target, "crlf", ascii_scene.replace(b"\n", b"\r\n"))
    put(target, "bare", re.sub(rb"(?m)^(data|apply).*\n(\t\t.*\n)?", b"", ascii_scene))
for target in ("BinaryRead", "BinaryRewrite"):
    for sample in ("binary_scene", "rich"):
        put(target, sample, golden_bytes(f"{sample}.ob.hex" if sample == "rich" else f"{sample}.hex"))

statements = re.findall(r'^(data|apply).*?-fmt "raw" -(?:as|v) "((?:[^"\\]|\\.)*)"', ascii_scene.decode(), re.M)
for number, (kind, text) in enumerate(statements):
    put("StructureText" if kind == "data" else "AssociationsText", str(number), unescape(text).encode())
put("StructureText", "raw", (GOLDEN / "structure_raw.txt").read_bytes())
put("AssociationsText", "raw", (GOLDEN / "associations_raw.txt").read_bytes())

# The first byte chooses the type.
for number, text in enumerate(["12", " 12\t\r", "1 2", "4294967295", "4294967296", "Hip left", "", "12 34x", "-1"]):
    for index_type in range(3):
        put("IndexText", f"{index_type}_{number}", bytes([index_type]) + text.encode())
MATRIX = " ".join(["1.5", "-2", "0", "1e-05"] * 4)
FIRST = ["true", "3.14159", MATRIX, "-0.1", MATRIX, "-128", "32767", "+7", "-1", "a b", "255", "65536", "4294967295", "12abc"]
for data_type, text in enumerate(FIRST):
    put("ValueText", f"{data_type}", bytes([data_type]) + text.encode())
DOUBLE = 1
for number, text in enumerate(["1e400", "-1e-320", "0x10", "inf", ".5e", "1234567890123456789", "1,5"]):
    put("ValueText", f"{DOUBLE}_{number}", bytes([DOUBLE]) + text.encode())

# The first byte chooses the format, for CSV also the structure: those of Bone and of Label.
JSON, NDJSON, UNCOUNTED, SCRIPT, CSV_BONE, CSV_LABEL = 0, 1, 4 + 1, 2, 4 + 3, 8 + 3
put("Codec", "json", bytes([JSON]) + (GOLDEN / "codec.json").read_bytes())
put("Codec", "ndjson", bytes([NDJSON]) + (GOLDEN / "codec.ndjson").read_bytes())
put("Codec", "ndjson_uncounted", bytes([UNCOUNTED]) + (GOLDEN / "codec.ndjson").read_bytes()[: -len('{"lines": 9}\n')])
put("Codec", "csv_pair", bytes([CSV_BONE]) + b'index[0],index[1],w,s,b\n1,2,0.1,"a ""b"",\r\nc",true\n')
put("Codec", "csv_string", bytes([CSV_LABEL]) + b'index:string,text\r\nA,\r\n"{""base64"": ""/w==""}","{""base64"": ""gA==""}"\r\n')
put("Codec", "script", bytes([SCRIPT]) + (GOLDEN / "codec.script").read_bytes())
