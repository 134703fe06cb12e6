#!/usr/bin/env python3
"""Copies the public headers for Doxygen, with the house's habits spelled out; the numbers of the lines stay.

    doxygen_input.py FROM INTO

A /// comment above several declarations without an empty line between them is meant for all of them: each gets it.
What overrides is left out, as Doxygen gives it the words of what it overrides. What stands in every class and means the
same in each (Inherited, initMethod, the constructors of containers) gets its words here rather than in every header.
Macros that declare members are written out. Comments are prose: a # or a <word> in them is neither a link nor a tag.
"""

import os
import re
import sys

DOC = re.compile(r"\s*///(?!<)")
ACCESS = re.compile(r"\s*(public|protected|private)\s*:")
TYPE = re.compile(r"\s*(template\b.*|class\b|struct\b|union\b|namespace\b|extern \"C\")")
CONTAINER = re.compile(r"^class (?:OSG_\w+ )?(\w+) : public (?:\w+<)?(\1Base)\b")
OWN_WORDS = re.compile(r"\boverride\b|= delete;|^\s*using \w+::|~\w+\(\)")
COMMON = [(re.compile(rf"(\s*{pattern})\s*$"), words) for pattern, words in (
    (r"typedef [^;]* Inherited;", "The parent."),
    (r"using Inherited = [^;]*;", "The parent."),
    (r"typedef \w+ Ptr;", "The pointer to it."),
    (r"static void initMethod\(\);", "Called once, by osgInit, when the class enters the table of all types."),
    (r"static \w+ [&*]the\(\)(?:;| \{.*\})", "The only one."),
    (r"static const StateChunkClass \*getStaticClass\(\) \{.*\}",
     "The chunks that take each other's place in a state."),
    (r"static UInt32 getStaticClassId\(\) \{.*\}", "The id of getStaticClass."),
    (r"Action::ResultE \w+(?:Enter|Leave)\(Action \*action\);", "What the action calls at a node with this core."),
    (r".*= delete;", "There are no copies."),
    (r"(?:constexpr )?(\w+)\(const \2 &\w*\) = default;", "A copy of all of it."),
    (r"(?:constexpr )?(\w+) &operator=\(const \2 &\w*\) = default;", "Becomes a copy of all of it."),
    (r"static void setPrototype\(.*\);", "Sets what create copies from here on; the caller keeps it. Null for none."),
    (r"static \w+ \*getPrototype\(\);", "What create copies; null for none."),
    (r"(?:OSG_\w+ )?std::ostream &operator<<\(.*\);", "Appends it as text."),
    (r"(?:virtual )?~\w+\(\)(?: override)?(?:;| = default;| \{.*\})", "Lets go of what it holds."),
    (r"void handleGL\(Window \*win, UInt32 idstatus\);", "Called by the window: makes, renews or ends the GL object."),
)]


# Macros that declare what a reader looks for, as what they stand for.
MACROS = [(re.compile(pattern), text) for pattern, text in (
    (r"^OSG_VALUE_FIELDS\((\w+), ([\w:]+)\)$",
     r"/** Field of one value. */ typedef SField<\2> SF\1; /** Field of many values. */ typedef MField<\2> MF\1;"),
    (r"^    OSG_ACTION_FUNCTORS$",
     "public: /** Sets what all actions of this class call ahead of the children of a node with such a core. */ "
     "static void registerEnterDefault(const FieldContainerType &type, const Functor &functor); "
     "/** Sets what they call behind the children. */ "
     "static void registerLeaveDefault(const FieldContainerType &type, const Functor &functor); protected: "
     "FunctorStore *getDefaultEnterFunctors() override; FunctorStore *getDefaultLeaveFunctors() override; private:"),
)]


def code(line):
    """The line without literals and comments, for counting brackets."""
    return re.sub(r'"(\\.|[^"\\])*"|\'(\\.|[^\'\\])*\'|//.*|/\*.*?\*/', "", line)


def depth(line):
    text = code(line)
    return text.count("{") + text.count("(") - text.count("}") - text.count(")")


def opens_body(lines, i):
    """Whether a body begins there: what came before was a list of initialisers."""
    return i < len(lines) and lines[i].lstrip().startswith("{")


def declarations(lines, start):
    """The first lines of the declarations that follow `start` without a break, and where they end."""
    found = []
    nested = 0
    whole = True
    i = start
    while i < len(lines):
        line = lines[i]
        text = code(line).strip()
        if nested == 0 and whole:
            if not text or DOC.match(line) or ACCESS.match(line) or line.lstrip().startswith(("#", "}", "//")):
                break
            if TYPE.match(line) and not re.match(r"\s*template\b", line) and not text.endswith(";"):
                break
            found.append(i)
            whole = False
        nested += depth(line)
        if nested == 0 and (text.endswith(";") or text.endswith("}") and not opens_body(lines, i + 1)):
            whole = True
        i += 1
    return found, i


def shared(lines):
    """Repeats a comment in front of each declaration that it is meant for."""
    i = 0
    while i < len(lines):
        if not DOC.match(lines[i]):
            i += 1
            continue
        begin = i
        while i < len(lines) and DOC.match(lines[i]):
            i += 1
        comment = " ".join(line.strip()[3:].strip() for line in lines[begin:i])
        head = i
        while head < len(lines) and re.match(r"\s*template\b", lines[head]):
            head += 1
        if re.search(r"[@\\](file|name|defgroup|cond|endcond|[{}])", comment) or head == len(lines):
            continue
        if re.match(r"\s*(class|struct|union|enum|namespace)\b", lines[head]):
            continue
        if lines[i].startswith("#define"):
            while i + 1 < len(lines) and lines[i + 1].startswith("#define"):
                i += 1
                if "///" not in lines[i] and not lines[i].endswith("\\"):
                    lines[i] += f" /**< {comment} */"
            i += 1
            continue
        found, end = declarations(lines, i)
        for other in found[1:]:
            # What overrides has the words of what it overrides.
            if "///" not in lines[other] and not OWN_WORDS.search(lines[other]):
                lines[other] = f"/** {comment} */ {lines[other].strip()}"
        i = max(end, i)
    return lines


def common(lines):
    """The words for what stands in every class; Doxygen sees them only where a class says none of its own."""
    own = None
    for i, line in enumerate(lines):
        found = CONTAINER.match(line)
        if found and any("friend class FieldContainer;" in other for other in lines):
            own = found.group(1)
            if not lines[i - 1].strip():
                # What the class is for stands in its table, and so above the generated half.
                lines[i - 1] = f"/// \\copydoc {found.group(2)}"
        if line.startswith("};"):
            own = None
        if i > 0 and DOC.match(lines[i - 1]) or "///" in line:
            continue
        if own is not None:
            if re.match(rf"\s*{own}\(\)(;| = default;)$", line):
                line += f" ///< Called by {own}::create and its like only."
            elif re.match(rf"\s*{own}\(const {own} &\w*\)(;| = default;)$", line):
                line += f" ///< Called by {own}::shallowCopy only; takes over the fields."
            elif re.match(rf"\s*~{own}\(\)( override)?(;| = default;)$", line):
                line += " ///< Called with the last reference only."
            elif re.match(rf"\s*void onCreate\(const {own} \*\w*( = nullptr)?\);$", line):
                line += " ///< Runs once, when a container has been made; see FieldContainer::onCreate."
        for pattern, words in COMMON:
            line = pattern.sub(r"\1 ///< " + words, line)
        lines[i] = line
    return lines


def expanded(line):
    for pattern, text in MACROS:
        line = pattern.sub(text, line)
    return line


def prose(line):
    """A line with what Doxygen would take for a link or a tag in a comment escaped; code in backticks stays."""
    at = line.find("///")
    if at < 0 or line.startswith("     ", at + 3):  # four spaces more than usual: code
        return line
    parts = line[at:].split("`")
    for i in range(0, len(parts), 2):
        parts[i] = re.sub(r"(?<![\w\\])#(?=\w)|(?<!\\)<(?=[\w/]+>)|(?<=\w)>(?!\w)", r"\\\g<0>", parts[i])
    return line[:at] + "`".join(parts)


def main():
    source, target = sys.argv[1:]
    for folder, _, names in os.walk(source, followlinks=True):
        into = os.path.join(target, os.path.relpath(folder, source))
        os.makedirs(into, exist_ok=True)
        for gone in set(os.listdir(into)) - set(names):
            if gone.endswith(".h"):
                os.remove(os.path.join(into, gone))
        for name in names:
            if not name.endswith(".h"):
                continue
            with open(os.path.join(folder, name), encoding="utf-8") as file:
                lines = file.read().split("\n")
            if not lines[0].startswith("// Generated"):
                lines = shared(common([prose(expanded(line)) for line in lines]))
            with open(os.path.join(into, name), "w", encoding="utf-8") as file:
                file.write("\n".join(lines))


if __name__ == "__main__":
    main()
