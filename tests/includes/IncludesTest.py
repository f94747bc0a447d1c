"""The check of the includes against small projects, each with one fault at most. IncludesTest.py SCRIPTS"""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, sys.argv.pop(1))
sys.dont_write_bytecode = True
from includes import Project  # noqa: E402


class Includes(unittest.TestCase):
    def check(self, links, files):
        """What is found in libraries a, a/deep and b (each with a source of its name), their links, and more files."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder).resolve()
            for name, text in {"src/a/a.cpp": "", "src/a/deep/deep.cpp": "", "src/b/b.cpp": "", **files}.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            lines = [f"lib_{place[4:].replace('/', '_')}|{place}|{place.split('/')[-1]}.cpp|{links.get(place[4:], '')}"
                     for place in ("src/a", "src/a/deep", "src/b")]
            return Project(root, lines).check()

    def test_accepts_headers_of_libraries_that_are_named(self):
        files = {"src/a/a.cpp": '#include "a/own.h"\n#include <vector>\n#include "generated.h"\n#include "b/x.h"\n',
                 "src/a/own.h": '#include "own.h"', "src/b/x.h": ""}
        self.assertEqual(self.check({"a": "options;lib_b"}, files), [])

    def test_refuses_others(self):
        wrong = "1: includes {}; lib_{} does not name lib_{}"
        for place, header, at, found in (("src/b/b.cpp", "a/x.h", "src/b/b.cpp:", ("a/x.h", "b", "a")),
                                         ("src/b/b.h", "../a/x.h", "src/b/b.h:", ("../a/x.h", "b", "a")),
                                         ("src/a/x.h", "a/deep/deep.h", "src/a/x.h:", ("a/deep/deep.h", "a", "a_deep")),
                                         ("src/a/deep/deep.h", "a/x.h", "src/a/deep/deep.h:", ("a/x.h", "a_deep", "a"))):
            files = {"src/a/x.h": "", "src/a/deep/deep.h": "", place: f'# include  "{header}" // why'}
            self.assertEqual(self.check({}, files), [at + wrong.format(*found)])

    def test_refuses_a_library_named_in_vain_and_a_circle(self):
        self.assertEqual(self.check({"a": "lib_b"}, {}), ["lib_a names lib_b and includes nothing of it"])
        files = {"src/a/a.h": '#include "b/b.h"', "src/b/b.h": '#include "a/a.h"'}
        found = self.check({"a": "lib_b", "b": "lib_a"}, files)
        self.assertEqual(found[0], "a circle: lib_a > lib_b > lib_a")


if __name__ == "__main__":
    unittest.main()
