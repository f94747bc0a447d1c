#!/usr/bin/env python3
"""Checks that sources include only headers of the libraries that theirs names in CMake.

includes.py SOURCE_FOLDER TARGETS...: TARGETS are the targets.txt of build folders. A header belongs to the library that
compiles the source of the same name, otherwise to those of its folder. Tests may include everything. Prints what is
wrong, also a library that names another one in vain or in a circle; exit status 1 then.
"""

import re
import sys
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


class Target:
    def __init__(self, root, line):
        self.name, folder, sources, links = line.split("|")
        self.folder = root / folder
        self.sources = {self.folder / source for source in sources.split(";") if source}
        self.names = set(links.split(";"))


class Project:
    def __init__(self, root, lines):
        self.root = root
        self.targets = [Target(root, line) for line in lines]
        self.by_name = {target.name: target for target in self.targets}
        self.found = []

    def owners(self, path):
        """The targets that a file belongs to: several where a folder has several, none where another configuration
        compiles its folder."""
        same = [t for t in self.targets if any(s.parent == path.parent and s.stem == path.stem for s in t.sources)]
        while not same and path != self.root and not (path / "CMakeLists.txt").exists():
            path = path.parent
            same = [t for t in self.targets if path == t.folder or any(s.parent == path for s in t.sources)]
        return same

    def resolve(self, source, name):
        folders = [source.parent, self.root / "src", *(t.folder for t in self.targets)]
        return next((path.resolve() for folder in folders if (path := folder / name).is_file()), None)

    def check(self):
        checked = [t for t in self.targets if t.folder.relative_to(self.root).parts[:1] != ("tests",)]
        used, missing = set(), {}
        for source in sorted({p for t in checked for p in t.folder.rglob("*") if p.suffix in (".h", ".cpp")}):
            owners = self.owners(source)
            text = source.read_text(encoding="utf-8") if owners else ""
            for match in INCLUDE.finditer(text):
                header = self.resolve(source, match[1])
                theirs = self.owners(header) if header else []
                if not theirs or set(owners) & set(theirs):
                    continue
                hits = {(o.name, t.name) for o in owners for t in theirs if t.name in o.names}
                used |= hits
                if not hits:
                    line = text.count("\n", 0, match.start()) + 1
                    missing.setdefault((owners[0].name, theirs[0].name),
                                       f"{source.relative_to(self.root)}:{line}: includes {match[1]}")
        self.found += [f"{where}; {name} does not name {other}" for (name, other), where in missing.items()]
        for target in checked:
            if target.folder.is_relative_to(self.root / "src"):
                vain = {n for n in target.names & set(self.by_name) if (target.name, n) not in used}
                self.found += [f"{target.name} names {name} and includes nothing of it" for name in sorted(vain)]
            self.follow(target, [])
        return self.found

    def follow(self, target, path):
        if target.name in path:
            self.found.append("a circle: " + " > ".join([*path[path.index(target.name):], target.name]))
            return
        for name in sorted(target.names & set(self.by_name)):
            self.follow(self.by_name[name], [*path, target.name])


def main(root, *lists):
    found = []
    for file in lists:
        found += Project(Path(root).resolve(), Path(file).read_text(encoding="utf-8").splitlines()).check()
    print(*dict.fromkeys(found), sep="\n", end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
