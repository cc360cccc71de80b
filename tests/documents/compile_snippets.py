"""compile_snippets.py COMPILER ROOT WORK: fails unless every piece of C++ in README.md and docs/*.md
compiles with the warnings that we promise to be clean of.

A block with a file's name behind its "```cpp" is a part of an example, which is compiled as a whole;
another test compares the two. A block that begins with "#include" stands for itself. Any other is a
function's body, with everything public included before it, and what snippets/<document>.h declares
where there is such a file."""

import pathlib
import re
import subprocess
import sys

compiler, root, work = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
FLAGS = "-std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror".split()
FOLDERS = (root / "include", root / "core/include")
SNIPPETS = pathlib.Path(__file__).parent / "snippets"


def gtk_folders():
    """Where GTK's headers are, which pieces about the screen include; none where it is missing."""
    asked = subprocess.run(["pkg-config", "--cflags-only-I", "gtk4"], capture_output=True, text=True,
                           check=False)
    return [flag.replace("-I", "-isystem", 1) for flag in asked.stdout.split()]


def surroundings(document):
    headers = [f"#include <{header.relative_to(folder).as_posix()}>"
               for folder in FOLDERS for header in sorted(folder.rglob("*.h"))]
    own = SNIPPETS / f"{document.stem}.h"
    return headers + ([f'#include "{own}"'] if own.exists() else [])


def program(document, code):
    if code.startswith("#include"):
        return code
    return "\n".join([*surroundings(document), "void Snippet();", "void Snippet() {", code, "}\n"])


def compiles(document, number, code):
    source = work / f"{document.stem}_{number}.cpp"
    source.write_text(program(document, code), "utf-8")
    includes = [f"-I{folder}" for folder in FOLDERS] + gtk_folders()
    return subprocess.run([compiler, *FLAGS, *includes, source], check=False).returncode == 0


work.mkdir(parents=True, exist_ok=True)
documents = [root / "README.md", *sorted((root / "docs").glob("*.md"))]
blocks = [(document, number, code) for document in documents
          for number, (name, code) in enumerate(
              re.findall(r"^```cpp *(\S*)\n(.*?)^```$", document.read_text("utf-8"), re.M | re.S), 1)
          if not name]
failed = [f"{document.name}, piece {number}" for document, number, code in blocks
          if not compiles(document, number, code)]
if failed or not blocks:
    sys.exit(f"these do not compile: {'; '.join(failed)}" if failed else "there is nothing to compile")
print(f"{len(blocks)} pieces compile")
