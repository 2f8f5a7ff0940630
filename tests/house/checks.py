#!/usr/bin/env python3
"""The rules of the house that a program can see, each a function from the tree to the faults found in it.

    checks.py ROOT [CHECK…]    prints "path:line: what is wrong" and exits 1 when there is a fault
    checks.py --list           prints the names of the checks
"""

import os
import re
import sys
from pathlib import Path

PRUNED = {"build", ".git", ".cache", "node_modules", "__pycache__"}
CODE = (".cpp", ".h", ".qml", ".js", ".py", ".sh", ".cmake")


class Tree:
    """The files of a checkout by path from its root, '/'-separated; read once."""

    def __init__(self, root):
        self.root = Path(root)
        self.paths = []
        for folder, folders, names in os.walk(self.root):
            folders[:] = sorted(name for name in folders if name not in PRUNED)
            self.paths += [(Path(folder) / name).relative_to(self.root).as_posix() for name in sorted(names)]
        self.texts = {}

    def text(self, path):
        if path not in self.texts:
            self.texts[path] = (self.root / path).read_text(encoding="utf-8", errors="replace")
        return self.texts[path]

    def files(self, folders, suffixes):
        """Paths below one of `folders` ('' is everywhere) that end in one of `suffixes`; never these checks themselves."""
        return [path for path in self.paths
                if path.startswith(folders) and path.endswith(suffixes) and not path.startswith("tests/house/")]


def matches(tree, paths, patterns, code_only=False):
    """Every line of `paths` in which one of `patterns` (regular expression, what to say) is found."""
    for path in paths:
        text = without_comments(tree.text(path)) if code_only else tree.text(path)
        for number, line in enumerate(text.split("\n"), 1):
            for pattern, message in patterns:
                if re.search(pattern, line):
                    yield f"{path}:{number}: {message}"
                    break


TOKENS = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'', re.S)


def without_comments(text, keep_strings=True):
    """`text` of C++ or QML with comments (and, if asked, texts in quotes) blanked; places and lines stay where they were."""
    def blank(found):
        token = found.group()
        if not token.startswith("/"):
            if keep_strings or token.startswith("'") and text[found.start() - 1:found.start()].isalnum():
                return token
        return re.sub(r"[^\n]", " ", token)
    return TOKENS.sub(blank, text)


# --- Rooms: what each may use. A room may always use itself.
DOMAIN = {"base", "document", "core", "operations", "records", "compliance"}
BELOW_CLI = DOMAIN | {"backend", "store", "sync", "reports", "platform"}
ARROWS = {
    "base": set(),
    "document": {"base"},
    "core": {"base", "document"},
    "operations": {"base", "core", "document"},
    "records": {"base", "core", "document"},
    "compliance": {"base", "core", "records", "document"},
    "backend": DOMAIN,
    "store": DOMAIN | {"backend"},
    "sync": DOMAIN | {"backend", "store"},
    "reports": {"base", "document"},
    "platform": set(),
    "cli": BELOW_CLI,
    "app": BELOW_CLI | {"cli"},
}
# What only some rooms may use: the domain knows neither Qt nor files, and of the clock only the one that base hands in;
# SQLite and the desktop have one room each.
RESERVED = [
    (r"#include\s*<(Q[A-Za-z]|qcoro)", set(ARROWS) - DOMAIN, "Qt"),
    (r"#include\s*<(fstream|filesystem|iostream)>", set(ARROWS) - DOMAIN, "files or streams"),
    (r"_clock::now\(|\bstd::time\(", set(ARROWS) - DOMAIN | {"base"}, "the clock"),
    (r"#include\s*<(SQLiteCpp/|sqlite3)", {"store"}, "SQLite"),
    (r"#include\s*<(QtDBus|QDBus|QCoroDBus)", {"platform"}, "D-Bus"),
]


def room_of(path):
    """The room a path below src/ belongs to, or None."""
    parts = path.split("/")
    return "document" if parts[:2] == ["reports", "document"] else parts[0] if parts[0] in ARROWS else None


def include_arrows(tree):
    for path in tree.files("src/", (".cpp", ".h")):
        room = room_of(path[len("src/"):])
        if room is None:
            yield f"{path}:1: lies in no room"
            continue
        for number, line in enumerate(without_comments(tree.text(path)).split("\n"), 1):
            included = re.match(r'\s*#\s*include\s*"([^"]+)"', line)
            target = included and room_of(included[1])
            if target and target != room and target not in ARROWS[room]:
                yield f"{path}:{number}: {room} may not use {target}"
            if included and included[1].startswith("."):
                yield f"{path}:{number}: includes are written from src/, not relative"
            for pattern, rooms, what in RESERVED:
                if room not in rooms and re.search(pattern, line):
                    yield f"{path}:{number}: {room} may not use {what}"
    for path in tree.files("src/", ("CMakeLists.txt",)):
        text = re.sub(r"#[^\n]*", "", tree.text(path))
        for name, uses in re.findall(r"thalvorn_room\(\s*(\w+)([^)]*)\)", text):
            for target in re.findall(r"Thalvorn::(\w+)", uses):
                if target not in ARROWS.get(name, set()):
                    yield f"{path}:1: {name} may not link {target}"


# --- Looks: colours, sizes and fonts have one home on the screen and one on paper.
LOOKS_HOME = re.compile(r"(^|/)(Theme\.qml|theme\.(h|cpp)|paper_style\.(h|cpp))$")
COLOUR_NAMES = "red|green|blue|black|white|gray|grey|yellow|orange|cyan|magenta|lightgray|darkgray"
LITERAL = r"(\d|u?\"|QStringLiteral|QLatin1String)"
LOOKS = [
    (r"[\"']#[0-9a-fA-F]{3,8}[\"']", "a colour outside Theme"),
    (rf"[cC]olor\b\s*[:=(][^\n]*[\"'](?:{COLOUR_NAMES})[\"']", "a colour by name outside Theme"),
    (r"\bQt\.(rgba|hsla|hsva|darker|lighter|tint)\(", "a colour made outside Theme"),
    (rf"\bQColor(\s+\w+)?\s*[({{]\s*{LITERAL}|\bqRgba?\(\s*\d|\bQt::(?:{COLOUR_NAMES})\b", "a colour outside Theme"),
    (r"\bfont\.family\s*:\s*[\"']|\bfont\.(pixelSize|pointSize)\s*:\s*\d", "a font outside Theme"),
    (rf"\bQFont(\s+\w+)?\s*[({{]\s*{LITERAL}|setFamil(y|ies)\(\s*{{?\s*{LITERAL}", "a font outside Theme"),
]


def looks(tree):
    paths = [path for path in tree.files("src/", (".qml", ".js", ".cpp", ".h")) if not LOOKS_HOME.search(path)]
    return matches(tree, paths, LOOKS, code_only=True)


def unused_files(tree):
    """Headers nobody includes, QML types and drawings nobody names, pictures and other data likewise."""
    readers = tree.files(("src/", "devserver/", "tests/", "bench/"), (".cpp", ".h", ".qml", ".js", ".txt", ".qrc", ".in", "qmldir"))
    included, words = {}, {}
    for path in readers:
        text = tree.text(path)
        for name in re.findall(r'#\s*include\s*"([^"]+)"', text):
            included.setdefault(name, set()).add(path)
        if not path.endswith((".txt", "qmldir")):
            for word in set(re.findall(r"[A-Za-z][\w-]*", text)):
                words.setdefault(word, set()).add(path)
    for path in tree.files(("src/", "devserver/", "tests/", "bench/"), (".h",)):
        ways = [path, path[len("src/"):], path[len("tests/"):], os.path.basename(path)]
        if not any(included.get(way, set()) - {path} for way in ways):
            yield f"{path}:1: no file includes this header"
    for path in tree.files(("src/", "assets/"), (".qml", ".js", ".svg", ".png")):
        if not words.get(Path(path).stem, set()) - {path}:
            yield f"{path}:1: nothing uses this file"


# --- Coroutines: a lambda's captures die with the lambda, not with the coroutine it started.
def lambdas(code):
    """(place, capture, begin of body, end of body) of each lambda in `code`, whose comments and texts are blanked."""
    opening = {"(": ")", "[": "]", "{": "}", "<": ">"}

    def closing(place):
        depth = 0
        for at in range(place, len(code)):
            depth += (code[at] == code[place]) - (code[at] == opening[code[place]])
            if depth == 0:
                return at
        return len(code) - 1

    for found in re.finditer(r"\[", code):
        place = found.start()
        before = code[:place].rstrip()[-12:]
        subscript = re.search(r"[\w)\]]$", before) and not re.search(r"\b(return|co_return|co_await|co_yield)$", before)
        if subscript or before.endswith("[") or code[place + 1:place + 2] == "[":
            continue
        end = closing(place)
        capture, at = code[place + 1:end].strip(), end + 1
        while at < len(code):
            rest = re.compile(r"\s*(mutable|noexcept|static|constexpr|requires|->[^;{(]*)?\s*").match(code, at)
            at = rest.end()
            if code[at:at + 1] not in ("(", "<"):
                break
            at = closing(at) + 1
        if code[at:at + 1] == "{":
            yield place, capture, at, closing(at)


def coroutine_lambdas(tree):
    for path in tree.files(("src/", "devserver/", "tests/", "bench/"), (".cpp", ".h")):
        code = without_comments(tree.text(path), keep_strings=False)
        if not re.search(r"\bco_(await|return|yield)\b", code):
            continue
        found = list(lambdas(code))
        guilty = set()
        for keyword in re.finditer(r"\bco_(await|return|yield)\b", code):
            around = [entry for entry in found if entry[2] < keyword.start() < entry[3]]
            if around:
                innermost = max(around, key=lambda entry: entry[2])
                if innermost[1]:
                    guilty.add(innermost[0])
        for place in sorted(guilty):
            yield f"{path}:{code.count(chr(10), 0, place) + 1}: this coroutine is a lambda with captures"


# --- Tests that cannot fail, or that wait for the clock.
IDLE_TESTS = [
    (r"\bsleep_(for|until)\b|\bu?sleep\(|\bqSleep\(|\bqWait\(\s*\d|QThread::(m|u)?sleep|time\.sleep", "a test sleeps"),
    (r"^\s*sleep\s+\d|(?<![.\w])wait\(\s*\d+\s*\)", "a test sleeps"),
    (r"GTEST_SKIP|QSKIP|\bDISABLED_|(?<![.\w])skip\(|unittest\.skip", "a test is skipped"),
    (r"\b(EXPECT|ASSERT)_TRUE\(\s*(true|1)\s*\)|\b(EXPECT|ASSERT)_FALSE\(\s*false|\bQVERIFY\(\s*true|\bverify\(\s*true",
     "a check that is always true"),
    (r"\bSUCCEED\(\)|\b(EXPECT|ASSERT)_EQ\(\s*(\w+)\s*,\s*\2\s*\)", "a check that is always true"),
]
ASSERTION = re.compile(r"\b(EXPECT|ASSERT)_|\bFAIL\(|ADD_FAILURE|\bQVERIFY|\bQCOMPARE|\b(expect|check|verify|require)[A-Z_]\w*\(")


def idle_tests(tree):
    yield from matches(tree, tree.files("tests/", (".cpp", ".h", ".qml", ".sh", ".py")), IDLE_TESTS, code_only=True)
    for path in tree.files("tests/", (".cpp",)):
        code = without_comments(tree.text(path), keep_strings=False)
        for found in re.finditer(r"^TEST(_F|_P)?\(", code, re.M):
            body = re.compile(r".*?^\}", re.M | re.S).match(code, found.start())
            if body and not ASSERTION.search(body.group()):
                yield f"{path}:{code.count(chr(10), 0, found.start()) + 1}: this test asserts nothing"


# --- Words: the tree speaks of the program alone, and of no machine it was made on.
WORDS = [
    (r"(?i)\bpart\s+[1-9]\.\d\b|\bspec[.]md\b|\b(the|this)\s+spec\b|\bspecificatio[n]\b", "names an outside document"),
    (r"(?i)\brequirements?\s+(document|text|\d)|\bacceptance\s+criteri[a]|\bissue\s+#?\d+\b", "names an outside document"),
    (r"(?i)\bsub-?agent|\blanguage\s+model\b|\bassistant session\b", "names how the text was made"),
    (r"(^|[^\w.])/(?:work|farm|root|home|Users)/", "a path of one machine"),
    (r"(?i)registry[.]npm|npmjs[.](org|com)|deb[.]debian|[.][.]/shared\b", "a host or folder outside the project"),
]
UNFINISHED = [(r"\b(TO[D]O|FIX[M]E|XX[X]|HAC[K])\b", "left unfinished"),
              (r"(?i)\bnot (yet )?implemente[d]\b|\bcoming soo[n]\b|\bplaceholder (implementation|text|value)\b", "left unfinished")]


def words(tree):
    return matches(tree, tree.files("", CODE + (".md", ".txt", ".json", ".xml", ".in", ".ini", ".service", ".desktop", ".sql")
                                    ) + tree.files(("scripts/", ".ci/"), ("",)), WORDS)


def unfinished(tree):
    return matches(tree, tree.files("", CODE + (".md", ".sql")) + tree.files("scripts/", ("",)), UNFINISHED)


def documented_paths(tree):
    """Paths in the pages that do not exist: in `backticks`, from the root or from src/, and targets of links."""
    known = {path for path in tree.paths}
    known |= {parent.as_posix() for path in tree.paths for parent in Path(path).parents}
    tops = {path.split("/")[0] for path in known} | set(ARROWS)
    for path in [name for name in tree.paths if re.fullmatch(r"README\.md|docs/[^/]+\.md", name)]:
        for number, line in enumerate(tree.text(path).split("\n"), 1):
            named = [word for quoted in re.findall(r"`([^`]+)`", line) for word in quoted.split()[:1]]
            named = [word for word in named if "/" in word and word.split("/")[0] in tops]
            beside = [link for link in re.findall(r"\]\(([^)#\s]+)", line) if "://" not in link and ":" not in link]
            for word in named:
                word = re.sub(r"(:\d+)?[.,;:]?$", "", word).rstrip("/")
                if re.fullmatch(r"[\w./@+-]+", word) and not {word, "src/" + word, "tests/" + word} & known:
                    yield f"{path}:{number}: {word} does not exist"
            for link in beside:
                if os.path.normpath(os.path.join(os.path.dirname(path), link)) not in known:
                    yield f"{path}:{number}: the link to {link} leads nowhere"


MOST_LINES = 600


def file_length(tree):
    for path in tree.files(("src/", "devserver/", "tests/", "bench/", "scripts/"), CODE) + ["tests/house/checks.py"]:
        lines = tree.text(path).count("\n") if path in tree.paths else 0
        if lines > MOST_LINES:
            yield f"{path}:{MOST_LINES}: {lines} lines; split it by subject"


def licences(tree):
    """A folder of bundled fonts or icons holds their licence."""
    bundled = tree.files(("src/", "assets/"), (".ttf", ".otf", ".woff2", ".svg"))
    for folder in sorted({os.path.dirname(path) for path in bundled}):
        beside = [path for path in tree.paths if os.path.dirname(path) == folder]
        if not any(re.match(r"(LICEN[CS]E|OFL)", os.path.basename(path)) for path in beside):
            yield f"{folder}:1: bundled files without their licence beside them"


CHECKS = {check.__name__: check for check in (include_arrows, looks, unused_files, coroutine_lambdas, idle_tests, words,
                                              unfinished, documented_paths, file_length, licences)}


def main(arguments):
    if arguments == ["--list"]:
        print("\n".join(CHECKS))
        return 0
    tree = Tree(arguments[0])
    faults = [f"{fault} [{name}]" for name in arguments[1:] or CHECKS for fault in CHECKS[name](tree)]
    print("\n".join(faults) or f"{len(tree.paths)} files, no fault")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
