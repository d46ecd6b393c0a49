#!/usr/bin/env python3
"""Compares what `kvs dump` prints with what mdb-export prints, table by table.

    compare_with_mdbtools.py KVS FILE...

Both tools read the same file; neither shares code with the other, so a row or a value that one of
them gets wrong shows up as a difference. Values are compared after bringing both spellings of a
column type to one form. Rows are compared without their order: mdb-export prints a row that moved
to another page where its data lies, `kvs` where its slot is.

Where mdb-export itself is known to be wrong, KNOWN_DIFFERENCES names the cells and the reason;
nothing else is let through. Exit status: 0 all equal, 1 differences, 77 mdbtools is not here.
"""

import collections
import datetime
import decimal
import os
import re
import shutil
import subprocess
import sys

NULL = None
DATE_FORMAT = "%Y-%m-%dT%H:%M:%S"
# Stands for Null in mdb-export's output, which has no other way to tell Null from an empty text.
NULL_MARK = "\x01"
# mdb-export prints 8 and 16 significant digits of a single and a double; one less is compared.
DIGITS = {"single": 7, "double": 15}
SHOWN = 5  # rows per table in a report

# Where mdb-export 1.0 is wrong: per file, table and column the number of cells and the reason, a
# key of REASONS. Fewer or more such cells than listed count as a difference too.
KNOWN_DIFFERENCES = {
    ("Brauerei.kvs", "TchrArchives", "FileName"): (1, "empty"),
    ("Brauerei.kvs", "TchrArchives", "FilePath"): (1, "empty"),
    ("Brauerei.kvs", "TchrArchives", "NewFile"): (4, "empty"),
    ("Brauerei.kvs", "TpdbVars", "Unit"): (56, "empty"),
    ("Grenzfaelle.kvs", "TchrArchives", "NewFile"): (1, "empty"),
    ("Grenzfaelle.kvs", "TidxTexts", "L1031"): (1, "empty"),
    ("Grenzfaelle.kvs", "TidxTexts", "L1033"): (1, "empty"),
    ("Stadtwerke.kvs", "TchrArchives", "FileName"): (1, "empty"),
    ("Stadtwerke.kvs", "TchrArchives", "XVar"): (1, "empty"),
    ("Stadtwerke.kvs", "TchrTrends", "Name"): (1, "empty"),
    ("Stadtwerke.kvs", "TchrTrends", "TrendVar"): (1, "empty"),
    ("Stadtwerke.kvs", "TchrTrends", "Unit"): (152, "empty"),
    ("Stadtwerke.kvs", "TidxTexts", "L1033"): (3, "empty"),
    ("Stadtwerke.kvs", "TidxTexts", "L1036"): (3, "empty"),
    ("Stadtwerke.kvs", "TpdbVars", "Unit"): (152, "empty"),
}
# What a reason lets through: mdb-export's value and ours, both in the common form.
REASONS = {
    # mdb-export writes its mark for Null for every value of length 0. The null mask of these rows
    # says "not Null".
    "empty": lambda theirs, ours: theirs is NULL and ours == "",
}


class CompareError(Exception):
    """One of the two tools failed, or printed something that is no CSV."""


def run(*command):
    environment = dict(os.environ, LC_ALL="C.UTF-8", MDBICONV="UTF-8", TZ="UTC")
    done = subprocess.run(command, capture_output=True, check=False, env=environment)
    if done.returncode != 0:
        raise CompareError("%s: exit status %d: %s" % (
            " ".join(command), done.returncode, done.stderr.decode(errors="replace").strip()))
    return done.stdout.decode("utf-8")


def csv_records(text, end_of_record):
    """Yields lists of (text, was quoted); the quotes tell an empty text from nothing."""
    field = re.compile(r'"((?:[^"]|"")*)"|([^",\r\n]*)')
    position = 0
    record = []
    while position < len(text):
        match = field.match(text, position)
        position = match.end()
        quoted = match.group(1) is not None
        record.append((match.group(1).replace('""', '"') if quoted else match.group(2), quoted))
        if text.startswith(",", position):
            position += 1
        elif text.startswith(end_of_record, position):
            position += len(end_of_record)
            yield record
            record = []
        else:
            raise CompareError("not CSV at character %d: %r" % (position, text[position:][:40]))
    if record:
        raise CompareError("the last record has no line end: %r" % record)


def column_kinds(path, table):
    """Column names and what their values are, in the table's order, as mdb-schema lists them."""
    kinds = {
        "Text": "text", "Memo/Hyperlink": "text", "OLE": "binary", "Binary": "binary",
        "Boolean": "boolean", "Byte": "number", "Integer": "number", "Long Integer": "number",
        "Currency": "number", "Numeric": "number", "Single": "single", "Double": "double",
        "DateTime": "date", "Replication ID": "guid",
    }
    columns = []
    for line in run("mdb-schema", "--table", table, "--no-indexes", "--no-relations",
                    path, "access").splitlines():
        match = re.match(r"\s+\[(.*)\]\s+([A-Za-z/]+(?: [A-Z][A-Za-z]+)?)", line)
        if match:
            type_name = match.group(2).replace(" NOT", "").strip()
            if type_name not in kinds:
                raise CompareError("%s: column type %r is not known here" % (table, type_name))
            columns.append((match.group(1), kinds[type_name]))
    return columns


def common_form(kind, text):
    """One form for both tools' spellings of a value that is not Null."""
    if kind == "boolean":
        return {"0": "false", "1": "true"}.get(text, text)
    if kind == "number":
        return decimal.Decimal(text).normalize() + 0
    if kind in DIGITS:
        return "%.*g" % (DIGITS[kind], float(text) + 0.0)
    if kind == "date":
        return datetime.datetime.strptime(text, DATE_FORMAT)
    if kind == "guid":
        return text.strip("{}").lower()
    if kind == "binary":
        return text.lower()
    return text


def rows_of(records, columns, is_null, tool):
    heading = [text for text, _ in next(records)]
    if heading != [name for name, _ in columns]:
        raise CompareError("%s: heading row is %r" % (tool, heading))
    rows = []
    for number, record in enumerate(records, 1):
        if len(record) != len(columns):
            raise CompareError("%s: row %d has %d values" % (tool, number, len(record)))
        row = []
        for (name, kind), (text, quoted) in zip(columns, record):
            try:
                row.append(NULL if is_null(text, quoted) else common_form(kind, text))
            except (ValueError, decimal.InvalidOperation):
                raise CompareError("%s: row %d: %s is %r, which is no %s" % (
                    tool, number, name, text, kind)) from None
        rows.append(tuple(row))
    return rows


def known_cells(place, columns, theirs, ours):
    """The columns in which two rows differ when every one is a known difference, else []."""
    cells = []
    for (name, _), their_value, our_value in zip(columns, theirs, ours):
        if their_value != our_value:
            _, reason = KNOWN_DIFFERENCES.get((*place, name), (0, None))
            if reason is None or not REASONS[reason](their_value, our_value):
                return []
            cells.append(name)
    return cells


def pair_known(place, columns, only_theirs, only_ours):
    """Takes the rows that differ in known ways out of both; returns a Counter of columns."""
    found = collections.Counter()
    for row in list(only_theirs.elements()):
        for candidate in list(only_ours):
            cells = known_cells(place, columns, row, candidate)
            if cells:
                found.update(cells)
                only_theirs.subtract([row])
                only_ours.subtract([candidate])
                only_ours += collections.Counter()  # drops what has come down to 0
                break
    return found


def compare_table(kvs, path, table, row_count):
    """Returns the number of rows, of known differing cells, and a list of differences."""
    columns = column_kinds(path, table)
    theirs = rows_of(csv_records(run("mdb-export", "-b", "hex", "-D", DATE_FORMAT,
                                     "-T", DATE_FORMAT, "-0", NULL_MARK, path, table), "\n"),
                     columns, lambda text, quoted: text == NULL_MARK and not quoted, "mdb-export")
    ours = rows_of(csv_records(run(kvs, "dump", path, table), "\r\n"),
                   columns, lambda text, quoted: text == "" and not quoted, "kvs")

    differences = []
    if len(ours) != row_count:
        differences.append("kvs tables says %d rows, kvs dump prints %d" % (row_count, len(ours)))
    only_theirs = collections.Counter(theirs) - collections.Counter(ours)
    only_ours = collections.Counter(ours) - collections.Counter(theirs)

    place = (os.path.basename(path), table)
    known = pair_known(place, columns, only_theirs, only_ours)
    for name, _ in columns:
        expected, _ = KNOWN_DIFFERENCES.get((*place, name), (0, None))
        if known[name] != expected:
            differences.append("%s differs in %d cells in the known way, %d are listed" % (
                name, known[name], expected))

    for tool, rows in (("mdb-export", only_theirs), ("kvs", only_ours)):
        listed = list(rows.elements())
        for row in listed[:SHOWN]:
            values = ", ".join("%s=%r" % (name, str(value)[:60] if value is not NULL else NULL)
                               for (name, _), value in zip(columns, row))
            differences.append("only %s has the row %s" % (tool, values[:900]))
        if len(listed) > SHOWN:
            differences.append("... and %d more only %s has" % (len(listed) - SHOWN, tool))
    return len(ours), sum(known.values()), differences


def compare_file(kvs, path):
    """Prints one line for the file, and one for each difference; returns how many those are."""
    tables = {}
    for line in run(kvs, "tables", path).splitlines():
        name, count = line.split("\t")
        tables[name] = int(count)
    expected = [name for name in run("mdb-tables", "-1", path).splitlines() if name]

    differences = []
    if sorted(tables) != sorted(expected):
        differences.append("tables: kvs has %s, mdb-tables %s" % (sorted(tables),
                                                                  sorted(expected)))
    rows = 0
    known = 0
    for table in sorted(set(tables) & set(expected)):
        try:
            count, known_here, found = compare_table(kvs, path, table, tables[table])
        except CompareError as error:
            differences.append(str(error))
            continue
        rows += count
        known += known_here
        differences += ["%s: %s" % (table, text) for text in found]

    print("%-32s %2d tables %6d rows  %s%s" % (
        os.path.basename(path), len(expected), rows, "DIFFERENT" if differences else "equal",
        " (%d cells known to be wrong in mdb-export)" % known if known else ""))
    for text in differences:
        print("    " + text)
    return len(differences)


def main(arguments):
    if len(arguments) < 2:
        print(__doc__, file=sys.stderr)
        return 2
    missing = [tool for tool in ("mdb-tables", "mdb-schema", "mdb-export")
               if shutil.which(tool) is None]
    if missing:
        print("SKIPPED: no %s here (Debian package mdbtools); nothing was compared"
              % ", ".join(missing))
        return 77
    kvs, *paths = arguments
    different = 0
    for path in paths:
        try:
            different += compare_file(kvs, path)
        except CompareError as error:
            print("%s\n    %s" % (os.path.basename(path), error))
            different += 1
    print("%d files, %d differences" % (len(paths), different))
    return 1 if different else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
