#!/usr/bin/env python3
"""Reads a header of the library and writes it as Doxygen wants to read it.

Doxygen runs this for each header (INPUT_FILTER). Our comments are plain ones;
here each becomes a documentation comment of what follows it:

- the block that opens a file: of the file, of its first class, and of each class
  that has no comment of its own;
- a block in front of a declaration: of this, and of the declarations directly
  below it that it speaks of too (other forms of the same name, or a comment that
  begins with "Both" or "Each");
- a comment behind a declaration: of this;
- "// ---- Title": of a group of members.

The macros that declare the copy protocol become the members they stand for.
"""

import re
import sys

PROTOCOL = """\
 public:
  /// A deep copy or an attribute copy of `source`.
  {0}(const {0}& source, NQDeepFlagEnum flag);
  /// A deep copy.
  {0}(const {0}& source);
  /// Takes over everything from `source`; the object itself changes nothing.
  const {0}& operator=(const {0}& source);
  /// Takes over everything from `source`, which must have the type of this object;
  /// null and the object itself change nothing.
  void copyObject(const NQObject* source) override;
  /// The same with plain attributes only.
  void copyAttributes(const NQObject* source) override;
  /// A deep copy of the dynamic type, handed over to the caller; null for a null
  /// object and when memory is exhausted.
  {0}* cloneObject() const;
  /// The same as an attribute copy.
  {0}* cloneAttributes() const;
  /// The same pointer, typed as the class; nothing is checked.
  static {0}* castDown(const NQObject* object);
 private:"""

SHARED = re.compile(r"(Both|Each|All|Neither|Whole|These|Store|Take|Counts|The buffers)\b")
SCOPE = re.compile(r"\b(class|struct|union|enum|namespace)\b[^()=]*$|extern \"C\" *$")


def escaped(text):
    """Running text, in which Doxygen finds no commands."""
    text = re.sub(r"([\\@<>&#%])", r"\\\1", text)
    return re.sub(r"`([^`]*)`", r"<code>\1</code>", text)


def documentation(comment):
    """The lines of a comment, without "//", as lines of a documentation comment."""
    lines = []
    verbatim = headed = False
    for line in comment:
        indented = line.startswith("  ") and not headed
        if indented and not verbatim:
            lines.append("@verbatim")
        if verbatim and not indented and (line.strip() or headed):
            lines.append("@endverbatim")
        verbatim = indented or (verbatim and not line.strip())
        if verbatim:
            lines.append(line)
        elif line.strip() == "How it works":
            headed = True
            lines.append("@par How it works")
        else:
            headed = headed and (line.startswith("  ") or not line.strip())
            lines.append(escaped(line))
    if verbatim:
        lines.append("@endverbatim")
    return lines


class Header:
    def __init__(self, text):
        self.lines = text.split("\n")
        self.out = []
        self.scopes = []      # for each open brace, whether declarations stand inside
        self.head = ""        # what has been read of the present declaration
        self.parentheses = 0
        self.opening = []     # the block that opens the file
        self.described = False  # whether a class has shown it
        self.shared = None    # the last declaration's name and comment
        self.grouped = None   # the depth at which a group of members is open

    def declares(self):
        return all(self.scopes)

    def between(self):
        """Whether a declaration may begin here."""
        return self.declares() and not self.head.strip() and self.parentheses == 0

    def emit(self, comment, indent):
        self.out += [f"{indent}/// {line}".rstrip() for line in comment]

    def scan(self, code):
        """Follows braces, parentheses and the ends of declarations."""
        if not self.head and re.match(r"\s*(public|protected|private):\s*$", code):
            return
        code = re.sub(r'"(\\.|[^"\\])*"', '""', code)
        code = re.sub(r"'(\\.|[^'\\])'", "0", code)
        enumerators = bool(self.scopes) and self.scopes[-1] == "enum"
        for c in code:
            if c == "{":
                scope = SCOPE.search(self.head) if self.declares() else None
                kind = False
                if scope and self.parentheses == 0:
                    kind = "enum" if re.search(r"\benum\b", self.head) else "class"
                self.scopes.append(kind)
                if kind:
                    self.head = ""
                continue
            if c == "}":
                if self.scopes:
                    kind = self.scopes.pop()
                    if self.grouped is not None and len(self.scopes) < self.grouped:
                        self.end_group()
                    if self.declares() and not kind and self.parentheses == 0:
                        self.head = ""
                continue
            if not self.declares():
                continue
            self.parentheses += (c == "(") - (c == ")")
            if (c == ";" or (c == "," and enumerators)) and self.parentheses == 0:
                self.head = ""
                continue
            self.head += c
        self.head = self.head + " " if self.head.strip() else ""

    def end_group(self):
        if self.grouped is not None:
            self.out.append("/// @}")
        self.grouped = None

    def beginning(self, i):
        """The declaration that begins in line i, up to its body or end."""
        text = ""
        for line in self.lines[i:i + 12]:
            text += re.sub(r"\s*//.*", "", line) + " "
            if re.search(r"[{;]", text):
                break
        return text

    def is_class(self, i):
        return re.match(r"\s*(template\s*<.*>\s*)?(class|struct)\b[^;()=]*{", self.beginning(i))

    def name(self, i):
        """The name that the declaration in line i declares, as far as it matters."""
        found = re.search(r"(operator\W+?|~?\w+)\s*\(", self.beginning(i))
        return found.group(1) if found else None

    def filtered(self):
        i = 0
        while i < len(self.lines):
            i = self.line(i)
        return "\n".join(self.out)

    def block(self, i):
        comment = []
        while i < len(self.lines) and re.match(r"\s*//", self.lines[i]):
            comment.append(re.sub(r"^\s*// ?", "", self.lines[i]))
            i += 1
        return comment, i

    def line(self, i):
        line = self.lines[i]
        indent = re.match(r"\s*", line).group()
        if re.match(r"\s*#", line):
            self.out.append(line)
            while self.lines[i].endswith("\\"):
                i += 1
                self.out.append(self.lines[i])
            return i + 1
        if re.match(r"\s*//", line):
            return self.comment(i, indent)
        protocol = re.match(r"\s*NQ_COPY_(PROTOCOL|MEMBERS|VALUE)\((\w+)", line)
        if protocol and self.declares():
            self.out += PROTOCOL.format(protocol.group(2)).replace("`source`",
                                        "<code>source</code>").split("\n")
            return i + 1
        if re.match(r"\s*NQ_COPY_(ROUTINES|ACCESS|VALUE_INLINE)\(\w+\)", line):
            return i + 1
        if not line.strip() or re.match(r"\s*(public|protected|private):", line):
            self.shared = None
        elif self.between():
            self.declaration(i, indent)
        code, _, behind = line.partition("  // ")
        fresh = self.between()
        self.scan(code)
        behind = re.sub(r"^NOLINT(NEXTLINE)?(: |$)", "", behind)
        if behind and fresh and self.between() and not re.search(r"^\s*}|{$", code):
            self.out.append(f"{code}  ///< {escaped(behind)}")
        else:
            self.out.append(code)
        return i + 1

    def comment(self, i, indent):
        comment, end = self.block(i)
        following = self.lines[end] if end < len(self.lines) else ""
        if not self.opening:
            title = re.match(r"(\S+) -- (.*)", comment[0])
            if title:
                comment[0] = title.group(2)[0].upper() + title.group(2)[1:]
            self.opening = documentation(comment)
            self.emit(["@file"] + self.opening, "")
        elif comment[0].startswith("---- "):
            self.end_group()
            title, _, rest = " ".join(part.strip() for part in comment)[5:].partition(". ")
            self.out.append(f"/// @name {escaped(title.rstrip('.'))}")
            self.emit([escaped(rest)], "")
            self.out.append("/// @{")
            self.grouped = len(self.scopes)
        elif following.strip() and self.between() and not re.match(r"\s*(}|#if|#e)", following):
            written = documentation(comment)
            self.emit(written, indent)
            if self.is_class(end) and not self.described:
                self.emit([""] + self.opening, indent)
                self.described = True
            self.shared = (self.name(end), written, end)
        return end

    def declaration(self, i, indent):
        """Documents a declaration that has no comment right in front of it."""
        if self.shared and self.shared[2] == i:
            return
        if self.shared:
            name, written, _ = self.shared
            if (name and name == self.name(i)) or SHARED.match(written[0].strip()):
                self.emit(written, indent)
            else:
                self.shared = None
            return
        if self.is_class(i):
            self.emit(self.opening, indent)
            self.described = True


def main():
    with open(sys.argv[1], encoding="utf-8") as source:
        text = source.read()
    print(Header(text).filtered() if sys.argv[1].endswith(".h") else text)


if __name__ == "__main__":
    main()
