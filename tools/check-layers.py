#!/usr/bin/env python3
"""Holds the sources to the rules that the compiler does not check.

 * An #include may only follow the edges between the subsystems (EDGES below; src/CMakeLists.txt links the same).
 * A core library includes no Qt header from outside QtCore.
 * SQL texts stand in src/store and in files named sql.*.
 * QMessageBox appears in src/ui only.
 * Connections are made by function pointers: no SIGNAL(), SLOT() or slots named on_object_signal.

check-layers.py [--root FOLDER] [--qt-headers FOLDER]    lists "file:line: what is wrong"; status 1 if anything is
check-layers.py --self-test                              shows that each rule finds its breach
"""

import argparse
import glob
import re
import sys
import tempfile
from pathlib import Path

CORES = ("base", "foreign", "store", "geo", "cw", "calc", "interchange", "qsl", "awards", "reference", "report", "logentry")

# What each library may include directly; what those may include is allowed as well.
EDGES = {
    "base": [],
    "foreign": ["base"],
    "store": ["base", "foreign"],
    "geo": ["base"],
    "cw": ["base"],
    "calc": ["base"],
    "report": ["store"],
    "interchange": ["store", "report"],
    "qsl": ["store", "report"],
    "awards": ["store", "report"],
    "reference": ["store", "report"],
    "logentry": ["store", "geo", "interchange", "report"],
    "ui": ["store"],
}
VIEWS = {core + "_ui": [core, "ui"] for core in CORES}
VIEWS["logentry_ui"] += ["geo_ui", "cw_ui", "calc_ui"]
EDGES.update(VIEWS)
EDGES["app"] = list(VIEWS)
EDGES["jetread"] = ["foreign"]  # a program of its own; of foreign it shares the form of its output

SOURCE_SUFFIXES = {".h", ".hpp", ".cpp", ".cc", ".inc"}
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]+)"|<([^>\n]+)>)', re.MULTILINE)
SQL = re.compile(r"\s*(?:select|insert|update|delete|pragma|create|drop|alter)\s", re.IGNORECASE)
MESSAGE_BOX = re.compile(r"\bQMessageBox\b")
STRING_CONNECT = re.compile(r"\b(?:SIGNAL|SLOT)\s*\(")
NAMED_SLOT = re.compile(r"\bon_\w+_[a-z]\w*\s*\(")

# Everything in which a quote or a slash has to be told apart. A quote inside a number (1'000) starts nothing.
TOKEN = re.compile(
    r"""
      (?P<comment> //(?:\\\n|[^\n])* | /\*.*?(?:\*/|\Z) )
    | (?P<raw>     \b(?:u8|[uUL])?R"(?P<mark>[^\s()\\]{0,16})\((?P<rawtext>.*?)\)(?P=mark)" )
    | (?P<string>  (?:\b(?:u8|[uUL]))?"(?P<text>(?:\\.|[^"\\\n])*)"? )
    | (?P<number>  \b[0-9](?:'?\w|\.)* )
    | (?P<char>    '(?:\\.|[^'\\\n])*'? )
    """,
    re.VERBOSE | re.DOTALL,
)


def closure(edges):
    """For each library every library it reaches, itself included."""
    reach = {}

    def visit(name):
        if name not in reach:
            reach[name] = {name}
            for target in edges[name]:
                reach[name] |= visit(target)
        return reach[name]

    for name in edges:
        visit(name)
    return reach


REACH = closure(EDGES)


def blank(text):
    """The same number of characters and lines, nothing in them."""
    return re.sub(r"[^\n]", " ", text)


def lex(source):
    """(text without comments, text without comments and literals, [(offset, string literal)]).

    Literals that follow each other with nothing but blanks between are one, as the compiler sees them.
    Offsets are the same in all three.
    """
    uncommented, code, strings = [], [], []
    position = 0
    string_end = None  # where the last literal ended, while only blanks have followed
    for token in TOKEN.finditer(source):
        between = source[position : token.start()]
        if between.strip():
            string_end = None
        uncommented.append(between)
        code.append(between)
        whole = token.group()
        position = token.end()
        if token["comment"] is not None:
            uncommented.append(blank(whole))
            code.append(blank(whole))
            continue
        uncommented.append(whole)
        if token["number"] is not None:
            code.append(whole)
            string_end = None
            continue
        code.append(blank(whole))
        if token["char"] is not None:
            string_end = None
            continue
        text = token["text"] if token["raw"] is None else token["rawtext"]
        if string_end is not None:
            strings[-1] = (strings[-1][0], strings[-1][1] + text)
        else:
            strings.append((token.start(), text))
        string_end = position
    uncommented.append(source[position:])
    code.append(source[position:])
    return "".join(uncommented), "".join(code), strings


def library_of(path):
    """The library that a path below src belongs to, or None."""
    folders = path.parts[:-1]
    if not folders:
        return None
    if folders[0] in ("ui", "app", "jetread"):
        return folders[0]
    if folders[0] in CORES:
        return folders[0] + "_ui" if folders[1:2] == ("ui",) else folders[0]
    return None


class QtHeaders:
    """Tells which Qt module a header belongs to, from the folders of the installed headers."""

    def __init__(self, folder):
        self.modules = {}
        for module in sorted(Path(folder).iterdir()):
            if module.is_dir():
                self.modules[module.name] = {entry.name for entry in module.iterdir()}
        if "QtCore" not in self.modules:
            raise FileNotFoundError(f"no QtCore in {folder}")

    def is_qt(self, header):
        return header.partition("/")[0] in self.modules or any(header in names for names in self.modules.values())

    def foreign_module(self, header):
        """The module of a Qt header that is not in QtCore, otherwise None."""
        module, slash, name = header.partition("/")
        if slash:
            if module in self.modules or re.fullmatch(r"Qt[A-Z]\w*", module):
                return None if module == "QtCore" else module
            header = name.rpartition("/")[2] if module == "private" else ""
        if header in self.modules["QtCore"]:
            return None
        for module, names in self.modules.items():
            if header in names:
                return module
        return "a Qt module that is not installed" if re.fullmatch(r"Q[A-Z]\w*", header) else None


def check_file(root, path, qt):
    """Yields (offset, message) for one file; path is relative to root/src."""
    source = (root / "src" / path).read_text(encoding="utf-8")
    uncommented, code, strings = lex(source)
    library = library_of(path)
    if library is None:
        yield 0, "belongs to no subsystem"
        return

    for match in INCLUDE.finditer(uncommented):
        header = match[1] or match[2]
        at = match.start(1) if match[1] else match.start(2)
        target = Path(header)
        if match[1] and not (root / "src" / target).exists():
            beside = (root / "src" / path.parent / header).resolve()
            if beside.exists() and beside.is_relative_to((root / "src").resolve()):
                target = beside.relative_to((root / "src").resolve())
        other = library_of(target)
        if library == "jetread" and other != "jetread" and str(target) != "foreign/jetprotocol.h":
            if other is not None or qt.is_qt(header):
                yield at, f"jetread must not include {header}"
        elif other is not None:
            if other not in REACH[library]:
                yield at, f"{library} must not include {header} ({other})"
        elif library in CORES:
            module = qt.foreign_module(header)
            if module is not None:
                yield at, f"{library} is a core library and must not include {header} ({module})"

    if library != "store" and path.stem != "sql":
        for at, text in strings:
            if SQL.match(text):  # the word alone is a caption
                yield at, f'SQL outside store and sql.*: "{text.split(chr(10))[0][:40]}"'
    if library != "ui":
        for match in MESSAGE_BOX.finditer(code):
            yield match.start(), "QMessageBox outside ui"
    for match in STRING_CONNECT.finditer(code):
        yield match.start(), "connection by strings"
    for match in NAMED_SLOT.finditer(code):
        yield match.start(), "slot connected by its name: " + match[0].rstrip(" (")


def check(root, qt):
    """Sorted "file:line: message" for every breach below root/src, and the number of files looked at."""
    src = root / "src"
    findings = []
    paths = sorted(file.relative_to(src) for file in src.rglob("*") if file.suffix in SOURCE_SUFFIXES)
    for path in paths:
        text = (src / path).read_text(encoding="utf-8")
        for offset, message in check_file(root, path, qt):
            findings.append((str(path), text.count("\n", 0, offset) + 1, message))
    return [f"src/{name}:{line}: {message}" for name, line, message in sorted(findings)], len(paths)


def installed_qt_headers():
    for folder in sorted(glob.glob("/usr/include/*/qt6") + glob.glob("/usr/include/qt6")):
        if Path(folder, "QtCore").is_dir():
            return folder
    raise FileNotFoundError("no Qt headers in /usr/include/*/qt6 (package qt6-base-dev)")


def self_test():
    """Each case is a file and what has to be found in it: {line: words of the message}; {} is a clean file."""
    cases = [
        # edges
        ("geo/a.cpp", '#include "store/sqlite.h"\n', {1: "geo must not include store/sqlite.h"}),
        ("base/b.h", '// first\n#include "geo/position.h"\n', {2: "base must not include geo"}),
        ("qsl/c.cpp", '#include "awards/rules.h"\n', {1: "qsl must not include awards"}),
        ("store/d.cpp", '#include "ui/widgets.h"\n', {1: "store must not include ui/"}),
        ("ui/e.cpp", '#include "logentry/bands.h"\n', {1: "ui must not include logentry"}),
        ("geo/ui/f.cpp", '#include "cw/ui/keyer.h"\n', {1: "geo_ui must not include cw/ui/keyer.h (cw_ui)"}),
        ("geo/g.cpp", '#include "geo/ui/panel.h"\n', {1: "geo must not include geo/ui/panel.h (geo_ui)"}),
        ("logentry/ui/h.cpp", '#include "app/program.h"\n', {1: "logentry_ui must not include app"}),
        ("report/i.cpp", '#include <interchange/adif.h>\n', {1: "report must not include interchange"}),
        ("calc/j.cpp", '#include "../store/here.h"\n', {1: "calc must not include ../store/here.h (store)"}),
        ("qsl/ui/deeper/k.cpp", '#include "awards/ui/list.h"\n', {1: "qsl_ui must not include awards"}),
        ("other/l.cpp", "int x;\n", {1: "belongs to no subsystem"}),
        ("m.cpp", "int x;\n", {1: "belongs to no subsystem"}),
        ("jetread/n.cpp", '#include "foreign/error.h"\n#include "base/text.h"\n', {1: "must not", 2: "must not"}),
        ("jetread/o.cpp", "#include <QString>\n#include <QtCore/QFile>\n", {1: "must not", 2: "must not"}),
        # Qt modules
        ("geo/qt1.cpp", "#include <QWidget>\n", {1: "core library and must not include QWidget (QtWidgets)"}),
        ("geo/qt2.cpp", "#include <QtGui/QPainter>\n", {1: "must not include QtGui/QPainter (QtGui)"}),
        ("store/qt3.h", "\n#  include <qapplication.h>\n", {2: "must not include qapplication.h (QtWidgets)"}),
        ("cw/qt4.h", "#include <QtWidgets>\n", {1: "must not include QtWidgets"}),
        ("cw/qt5.h", "#include <QSomethingElse>\n", {1: "not installed"}),
        ("cw/qt6.h", '#include "QMessageBox"\n', {1: "must not include QMessageBox"}),
        # SQL
        ("qsl/sql1.cpp", 'auto q = QStringLiteral("select * from qsl");\n', {1: "SQL outside"}),
        ("qsl/sql2.cpp", 'auto q = "DELETE "\n         "FROM t";\n', {1: "SQL outside"}),
        ("qsl/sql3.cpp", 'auto q = R"(\n  insert into t)";\n', {1: "SQL outside"}),
        ("qsl/ui/sql4.cpp", 'int n = 1\'000;\nauto q = u"Update t";\n', {2: "SQL outside"}),
        ("qsl/caption.cpp", 'auto title = u"DELETE";\n', {}),
        ("ui/sql5.cpp", "char c = '\"';\nauto q = \"pragma user_version\";\n", {2: "SQL outside"}),
        ("geo/sql6.cpp", '// "\nauto q = "select" /* " */ " x";\n', {2: "SQL outside"}),
        # message boxes
        ("qsl/ui/box1.cpp", "void f()\n{\n    QMessageBox::warning();\n}\n", {3: "QMessageBox outside ui"}),
        ("app/box2.cpp", "#include <QMessageBox>\n", {1: "QMessageBox outside ui"}),
        # connections
        ("ui/con1.cpp", "connect(a, SIGNAL(clicked()), b);\n", {1: "connection by strings"}),
        ("ui/con2.cpp", "connect(a, &A::b,\n        this, SLOT (f()));\n", {2: "connection by strings"}),
        ("qsl/ui/con3.h", "private:\n    void on_cmbadd_clicked();\n", {2: "on_cmbadd_clicked"}),
        ("qsl/ui/con4.h", "void on_opWyb_0_toggled(bool);\n", {1: "on_opWyb_0_toggled"}),
        # nothing to find
        ("store/here.h", 'auto q = "select 1";\n', {}),
        ("qsl/sql.h", 'auto q = "select 1";\n', {}),
        ("qsl/clean1.cpp", '#include "base/text.h"\n#include "store/here.h"\n#include "report/page.h"\n', {}),
        ("qsl/clean2.cpp", "#include <QString>\n#include <QtCore/QFile>\n#include <vector>\n", {}),
        ("qsl/clean3.cpp", "#include <sqlite3.h>\n#include <sys/file.h>\n#include <X11/XKBlib.h>\n", {}),
        ("qsl/clean4.cpp", '/* #include "ui/x.h"\nSIGNAL(x) QMessageBox */ // "select 1"\n', {}),
        ("qsl/clean5.cpp", 'auto s = "SIGNAL(x) QMessageBox on_a_b()";\nauto t = "selection x";\n', {}),
        ("qsl/clean6.cpp", "int selection_(int a);\nint location_found();\nint SIGNALS(int);\n", {}),
        ("ui/clean7.cpp", "#include <QMessageBox>\n#include <QWidget>\nQMessageBox box;\n", {}),
        ("logentry/clean8.cpp", '#include "interchange/adif.h"\n#include "base/date.h"\n', {}),
        ("logentry/ui/clean9.cpp", '#include "geo/ui/panel.h"\n#include "ui/x.h"\n#include <QWidget>\n', {}),
        ("app/clean10.cpp", '#include "awards/ui/list.h"\n#include "base/date.h"\n#include "clean10.moc"\n', {}),
        ("jetread/clean11.cpp", '#include "foreign/jetprotocol.h"\n#include "jetread/x.h"\n#include <glib.h>\n', {}),
        ("app/main/main.cpp", '#include "app/program.h"\n', {}),
    ]
    qt = {
        "QtCore": ["QString", "QFile", "Qt"],
        "QtGui": ["QPainter", "Qt"],
        "QtWidgets": ["QWidget", "QMessageBox", "QApplication", "qapplication.h", "QtWidgets"],
    }
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        for module, names in qt.items():
            (root / "qt" / module).mkdir(parents=True)
            for name in names:
                (root / "qt" / module / name).touch()
        for name, text, _ in cases:
            file = root / "src" / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text, encoding="utf-8")
        findings, count = check(root, QtHeaders(root / "qt"))
        if count != len(cases):
            failures.append(f"{count} files were looked at instead of {len(cases)}")
        for name, _, expected in cases:
            found = [line for line in findings if line.startswith(f"src/{name}:")]
            right = len(found) == len(expected) and all(
                any(line.startswith(f"src/{name}:{number}: ") and words in line for line in found)
                for number, words in expected.items()
            )
            if not right:
                failures.append(f"{name}: expected {expected}, found {found}")
    for failure in failures:
        print(failure)
    print(f"check-layers self-test: {len(cases)} cases, {len(failures)} failures")
    return 1 if failures else 0


def main():
    parser = argparse.ArgumentParser(description="holds the sources to the rules that the compiler does not check")
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parent.parent)
    parser.add_argument("--qt-headers", type=Path, help="the folder that holds QtCore, QtGui and so on")
    parser.add_argument("--self-test", action="store_true")
    arguments = parser.parse_args()
    if arguments.self_test:
        return self_test()
    try:
        qt = QtHeaders(arguments.qt_headers or installed_qt_headers())
    except OSError as error:
        print(error, file=sys.stderr)
        return 2
    findings, count = check(arguments.root, qt)
    if count == 0:
        print(f"no sources below {arguments.root / 'src'}", file=sys.stderr)
        return 2
    for finding in findings:
        print(finding)
    print(f"check-layers: {count} files, {len(findings)} findings")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
