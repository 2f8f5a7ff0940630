#!/usr/bin/env python3
"""Plants faults in small trees and proves that each check finds them, and lets their harmless neighbours pass.

    self_test.py [CHECK…]    the names that the test run knows; a check it does not know is a fault too
"""

import sys
import tempfile
from pathlib import Path

import checks

# check: [(path, text with the fault, line at which it must be found), …] and [(path, harmless text), …]
CASES = {
    "include_arrows": (
        [("src/base/a.cpp", '#include "core/task.h"\n', 1),
         ("src/core/a.cpp", '\n#include <QString>\n', 2),
         ("src/records/a.h", '#include "operations/voyage.h"\n', 1),
         ("src/reports/document/a.h", '#include "reports/pdf.h"\n', 1),
         ("src/core/b.cpp", "auto t = std::chrono::system_clock::now();\n", 1),
         ("src/core/c.cpp", "#include <fstream>\n", 1),
         ("src/app/a.cpp", "#include <SQLiteCpp/Database.h>\n", 1),
         ("src/store/a.cpp", "#include <QDBusConnection>\n", 1),
         ("src/core/d.cpp", '#include "../base/csv.h"\n', 1),
         ("src/loose/a.cpp", "\n", 1),
         ("src/CMakeLists.txt", "thalvorn_room(core USES Thalvorn::base Thalvorn::store)\n", 1)],
        [("src/compliance/a.cpp", '#include "records/crew.h"\n#include <string>\n// #include "app/main.h"\n'),
         ("src/store/b.cpp", "#include <sqlite3.h>\n#include <QObject>\n"),
         ("src/core/e.cpp", '#include "reports/document/document.h"\n')]),
    "looks": (
        [("src/app/qml/Page.qml", 'Item {\n  color: "#0F6CBD"\n}\n', 2),
         ("src/app/qml/Named.qml", 'Text { color: hot ? "red" : ink }\n', 1),
         ("src/app/qml/Made.qml", "Item { color: Qt.rgba(0, 0, 0, 0.5) }\n", 1),
         ("src/app/qml/Font.qml", "Text {\n  font.pixelSize: 14 }\n", 2),
         ("src/app/a.cpp", 'QColor c(0x12, 0, 0);\nQColor d{"teal"};\n', 1),
         ("src/reports/b.cpp", "p.setPen(Qt::black);\n", 1),
         ("src/app/c.cpp", 'QFont f(QStringLiteral("Inter"));\n', 1)],
        [("src/app/qml/Theme.qml", 'QtObject { readonly property color ink: "#142231" }\n'),
         ("src/app/qml/Good.qml", 'Text { color: Theme.ink; font: Theme.body } // not "#fff"\n'),
         ("src/app/d.cpp", "QColor colour;\nvoid paint(QColor ink);\nauto f = QFont();\n")]),
    "unused_files": (
        [("src/core/lonely.h", "#pragma once\n", 1),
         ("src/app/qml/Orphan.qml", "Item { id: Orphan }\n", 1),
         ("assets/icons/boat-lost.svg", "<svg/>\n", 1)],
        [("src/core/task.h", "#pragma once\n"),
         ("src/core/task.cpp", '#include "core/task.h"\n'),
         ("src/app/qml/Badge.qml", "Item {}\n"),
         ("src/app/qml/Main.qml", "Badge {}\n"),
         ("assets/icons/boat.svg", "<svg/>\n"),
         ("src/app/main.cpp", 'load("Main.qml"); icon("boat");\n')]),
    "coroutine_lambdas": (
        [("src/store/a.cpp", "auto f() {\n  run([this]() -> Task<> { co_await g(); });\n}\n", 2),
         ("src/store/b.cpp", "auto f = [=, n = m[1]](int a) mutable { if (a) { co_return; } };\n", 1),
         ("tests/store/c.cpp", "each(list, [&] {\n  co_await g([](int x) { return x; });\n});\n", 1)],
        [("src/store/d.cpp", "Task<> f() { co_await g([this] { return n_; }); a[0] = 1; }\n"
                             "auto h = [](int a) -> Task<> { co_return; };\n"
                             "[[nodiscard]] Task<> k() { co_return; } // [this] { co_await }\n"
                             'auto text = "[this] { co_await x; }";\n')]),
    "idle_tests": (
        [("tests/core/a.cpp", "TEST(A, B) {\n  std::this_thread::sleep_for(1s);\n  EXPECT_EQ(1, f());\n}\n", 2),
         ("tests/core/b.cpp", "TEST(A, B) {\n  GTEST_SKIP();\n  EXPECT_EQ(1, f());\n}\n", 2),
         ("tests/core/c.cpp", "TEST(A, B) {\n  EXPECT_TRUE(true);\n}\n", 2),
         ("tests/core/d.cpp", "\nTEST(A, B) {\n  f();\n}\n", 2),
         ("tests/core/e.cpp", "TEST(A, B) {\n  EXPECT_EQ(a, a);\n}\n", 2),
         ("tests/qml/tst_a.qml", "TestCase { function test_a() { wait(500); compare(a, b) } }\n", 1),
         ("tests/cli/a.sh", "start &\nsleep 2\n", 2)],
        [("tests/core/f.cpp", "TEST(A, B) {\n  EXPECT_TRUE(f()); // never sleep(1)\n}\nTEST(A, C) {\n  expectSame(a, b);\n}\n")]),
    "words": (
        [("src/core/a.h", "// As Pa" + "rt 1.2 has it\n", 1),
         ("docs/a.md", "ok\nsee " + "spec" + ".md\n", 2),
         ("README.md", "copy it to /" + "root/thalvorn\n", 1),
         ("scripts/fetch", "curl https://registry.npm" + "js.org/x\n", 1),
         ("tests/a.cpp", "// iss" + "ue 12\n", 1)],
        [("docs/b.md", "A part 3 mm thick; see https://example.org/work/ and `build/root`.\n")]),
    "unfinished": (
        [("src/core/a.cpp", "// TO" + "DO later\n", 1),
         ("docs/a.md", "not yet " + "implemented\n", 1)],
        [("src/core/b.cpp", "toDoList(); // a placeholder shown in the empty field\n")]),
    "documented_paths": (
        [("docs/a.md", "The rule is in `core/nowhere.h`.\n", 1),
         ("README.md", "\nRun `scripts/missing --now`.\n", 2),
         ("docs/b.md", "See [the page](gone.md).\n", 1)],
        [("docs/c.md", "`src/core/here.h`, `core/here.h:12`, `core/`, `a/b`, [c](c.md), [web](https://example.org/x)\n"),
         ("src/core/here.h", "\n"), ("scripts/present", "\n")]),
    "file_length": (
        [("src/core/a.cpp", "int x;\n" * (checks.MOST_LINES + 1), checks.MOST_LINES)],
        [("src/core/b.cpp", "int x;\n" * checks.MOST_LINES)]),
    "licences": (
        [("assets/fonts/Some.ttf", "", 1)],
        [("assets/icons/boat.svg", "<svg/>\n"), ("assets/icons/LICENSE", "MIT\n")]),
}


def faults_in(name, files):
    with tempfile.TemporaryDirectory() as root:
        for path, text in files:
            (Path(root) / path).parent.mkdir(parents=True, exist_ok=True)
            (Path(root) / path).write_text(text, encoding="utf-8")
        return list(checks.CHECKS[name](checks.Tree(root)))


def main():
    wrong = [f"{name}: has no planted fault" for name in checks.CHECKS if not CASES.get(name, ([], []))[0]]
    wrong += [f"{name}: is not in the test run" for name in set(checks.CHECKS) - set(sys.argv[1:] or checks.CHECKS)]
    for name, (planted, harmless) in CASES.items():
        wrong += [f"{name}: wrongly finds {fault}" for fault in faults_in(name, harmless)]
        for path, text, line in planted:
            found = faults_in(name, harmless + [(path, text)])
            place = f"{Path(path).parent if name == 'licences' else path}:{line}:"
            if not any(fault.startswith(place) for fault in found):
                wrong.append(f"{name}: does not find the fault at {place} (found {found})")
    print("\n".join(wrong) or f"{sum(len(planted) for planted, _ in CASES.values())} planted faults found")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
