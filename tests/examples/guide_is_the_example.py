"""guide_is_the_example.py GUIDE FOLDER: fails unless the guide shows the sources of the folder,
whole and as they are.

Each code block of the guide that begins with "```cpp NAME" is the next part of the file NAME; the
parts of a file, with an empty line between them, are the file."""

import pathlib
import re
import sys

guide, folder = map(pathlib.Path, sys.argv[1:])
parts = {}
for name, code in re.findall(r"^```cpp (\S+)\n(.*?)^```$", guide.read_text("utf-8"), re.M | re.S):
    parts.setdefault(name, []).append(code)

files = {file.name for file in folder.iterdir() if file.suffix in (".h", ".cpp")}
wrong = files.symmetric_difference(parts)
wrong |= {name for name in files & parts.keys()
          if "\n".join(parts[name]) != (folder / name).read_text("utf-8")}
if wrong or not files:
    sys.exit(f"the guide does not show these files as they are: {', '.join(sorted(wrong))}")
