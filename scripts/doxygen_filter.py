#!/usr/bin/env python3
# scripts/doxygen_filter.py: a header as Doxygen wants to read it, on standard output.
"""Usage: doxygen_filter.py HEADER

The headers carry plain comments. A comment block above a declaration becomes that declaration's
documentation; one above several declarations in a row becomes that of
each; a comment behind a declaration documents that one; the block at the top is the file's, and so
is one outside classes with an empty line behind it.
"""
import re
import sys

COMMENT = re.compile(r"^\s*//")
TRAILING = re.compile(r"^(.*[;,{]|.*[^\s/].*,) +// ?(.*)$")
OPENS_BODY = re.compile(r"\b(class|struct|enum|union|namespace)\b[^;]*\{\s*(//.*)?$")
ENDS_DECLARATION = re.compile(r";\s*(//.*)?$")


def file_block(lines):
    """The block at the top, and how many lines it takes."""
    count = 0
    while count < len(lines) and COMMENT.match(lines[count]):
        count += 1
    name, _, summary = lines[0].removeprefix("// ").partition(": ")
    yield f"/// @file {name}"
    yield f"/// {summary}"
    for line in lines[1:count]:
        yield "///" + line[2:]


def trailing(line):
    match = TRAILING.match(line)
    return f"{match[1]}  ///< {match[2]}" if match else line


def paragraph(lines, start):
    """The end of the run of lines from `start`: a blank line, a comment line or a closed body."""
    end, depth = start, 0
    while end < len(lines) and lines[end].strip() and not COMMENT.match(lines[end]):
        code = lines[end].split("//")[0]
        depth += code.count("{") - code.count("}")
        if depth < 0:
            break
        end += 1
    return end


def converted(name, lines):
    at, column = 0, None  # where the comment behind the line before stands
    while at < len(lines):
        if column is not None and lines[at].startswith(" " * column + "//"):
            yield lines[at].replace("//", "///<", 1)
            at += 1
            continue
        column = None
        if not COMMENT.match(lines[at]):
            if TRAILING.match(lines[at]):
                column = lines[at].rindex("//")
            yield trailing(lines[at])
            at += 1
            continue
        start = at
        while at < len(lines) and COMMENT.match(lines[at]):
            at += 1
        if lines[start].startswith("//") and at < len(lines) and not lines[at].strip():
            yield f"/// @file {name}"
            yield "///"
        yield from (line.replace("//", "///", 1) for line in lines[start:at])
        end = paragraph(lines, at)
        group = lines[at:end]
        if any(OPENS_BODY.search(line) for line in group):
            continue
        if sum(bool(ENDS_DECLARATION.search(line)) for line in group) > 1:
            yield "///@{"
            yield from map(trailing, group)
            yield "///@}"
            at = end


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        lines = file.read().splitlines()
    head = list(file_block(lines))
    print("\n".join(head))
    name = head[0].removeprefix("/// @file ")
    print("\n".join(converted(name, lines[len(head) - 1:])))


main()
