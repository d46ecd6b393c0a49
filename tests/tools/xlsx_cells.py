#!/usr/bin/env python3
"""Reads a workbook that kvs export has made with nothing but Python's own library, and holds every
cell against the CSV of the same project.

    xlsx_cells.py KVS PROJECT...
"""

import io
import subprocess
import sys
import zipfile
import xml.etree.ElementTree as tree

MAIN = "{http://schemas.openxmlformats.org/spreadsheetml/2006/main}"


def column_of(reference):
    number = 0
    for letter in reference:
        if letter.isalpha():
            number = number * 26 + ord(letter) - ord("A") + 1
    return number - 1


def unescaped(text):
    """_xHHHH_ stands for a UTF-16 unit."""
    out, i = "", 0
    while i < len(text):
        piece = text[i:i + 7]
        is_unit = len(piece) == 7 and piece[:2] == "_x" and piece[6] == "_"
        if is_unit and all(c in "0123456789ABCDEFabcdef" for c in piece[2:6]):
            out += chr(int(piece[2:6], 16))
            i += 7
        else:
            out += text[i]
            i += 1
    return out


def cells(sheet):
    """The rows of a sheet as {column: (kind, text)}."""
    for row in tree.fromstring(sheet).iter(MAIN + "row"):
        found = {}
        for cell in row.iter(MAIN + "c"):
            kind = cell.get("t", "n")
            value = cell.find(MAIN + "v")
            if kind == "inlineStr":
                text = unescaped("".join(t.text or "" for t in cell.iter(MAIN + "t")))
            elif value is None:
                continue
            else:
                text = value.text or ""
            found[column_of(cell.get("r"))] = (kind, text)
        yield found


def fields(line):
    """The fields of a line of CSV, None where nothing stands between the separators."""
    out, i = [], 0
    while True:
        if line[i:i + 1] == '"':
            text, i = "", i + 1
            while True:
                if line[i] == '"' and line[i + 1:i + 2] != '"':
                    break
                text += line[i]
                i += 2 if line[i] == '"' else 1
            out.append(text)
            i += 1
        else:
            end = i
            while end < len(line) and line[end] not in ",\r\n":
                end += 1
            out.append(line[i:end] or None)
            i = end
        if line[i:i + 1] != ",":
            return out, i
        i += 1


def records(text):
    i, out = 0, []
    while i < len(text):
        record, length = fields(text[i:i + (1 << 16)])
        out.append(record)
        i += length + 2
    return out


def same(cell, field):
    if field is None:
        return cell is None
    if cell is None:
        return False
    kind, text = cell
    if kind == "n":
        return float(field) == float(text) or abs(float(field) - float(text)) <= 1e-15 * abs(
            float(field))
    return text == field


def compare(kvs, project):
    book = zipfile.ZipFile(io.BytesIO(subprocess.run(
        [kvs, "export", "--format", "xlsx", "--language", "en", project], check=True,
        stdout=subprocess.PIPE).stdout))
    assert book.testzip() is None
    count = 0
    for number, sheet in enumerate(("archives", "trends"), 1):
        text = subprocess.run(
            [kvs, "export", "--sheet", sheet, "--language", "en", "--bom", "no", "--separator",
             "comma", "--decimal", "point", project], check=True, stdout=subprocess.PIPE)
        wanted = records(text.stdout.decode("utf-8"))
        found = list(cells(book.read(f"xl/worksheets/sheet{number}.xml")))
        assert len(found) == len(wanted), (project, sheet, len(found), len(wanted))
        for line, (row, record) in enumerate(zip(found, wanted), 1):
            for i, field in enumerate(record):
                assert same(row.get(i), field), (project, sheet, line, i, row.get(i), field)
                count += field is not None
            assert not row or max(row) < len(record)
    assert count > 10, project
    print(f"{project}: {count} cells")


for path in sys.argv[2:]:
    compare(sys.argv[1], path)
