#!/usr/bin/env python3
"""What is installed works: the program with its languages, completion, the desktop's files, the core in another program.

InstallTest.py BUILD_FOLDER COMPILER: installs into a folder of the build folder, which it then moves. What checks the
desktop's files, and the shells other than bash, are asked where they are installed.
"""

import os
import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

BUILD, COMPILER = Path(sys.argv[1]).resolve(), sys.argv[2]
PLACE = BUILD / "installed"
STAGE = PLACE / "moved here"
TABLE = PLACE / "table.csv"
COMMANDS = ("", "search", "profiles", *(f"profiles {what}" for what in ("list", "show", "set", "remove")),
            "history", "history list", "history clear")


def run(*command, **environment):
    environment = {"PATH": f"{STAGE}/bin:{os.environ['PATH']}", "HOME": str(PLACE), "LC_ALL": "C.UTF-8",
                   "XDG_DATA_DIRS": "/nowhere", **environment}
    result = subprocess.run([str(word) for word in command], env=environment, capture_output=True, text=True, check=False)
    return result.returncode, result.stdout, result.stderr


def setUpModule():
    shutil.rmtree(PLACE, ignore_errors=True)
    status = run("cmake", "--install", BUILD, "--prefix", PLACE / "first")
    assert status[0] == 0, status
    (PLACE / "first").rename(STAGE)
    TABLE.write_text("id,city\n1,Köln\n2,Praha\n", encoding="utf-8")


class Program(unittest.TestCase):
    def test_finds_its_languages(self):
        languages = STAGE / "share/rowlark/languages"
        self.assertTrue((languages / "vt_rlk_de.txt").exists())  # the help
        beside, alone = PLACE / "beside", PLACE / "alone"
        for folder in (beside, alone):
            folder.mkdir()
            os.link(STAGE / "bin/rowlark", folder / "rowlark")
        shutil.copytree(languages, beside / "languages")
        shutil.copytree(languages, PLACE / "data/rowlark/languages")
        (PLACE / "link").symlink_to(STAGE / "bin/rowlark")
        german, english = "rowlark: Text nicht gefunden\n", "rowlark: Text not found\n"
        for program, environment, message in (
                (STAGE / "bin/rowlark", {}, german),
                (PLACE / "link", {}, german),
                (beside / "rowlark", {}, german),
                (alone / "rowlark", {}, english),
                (alone / "rowlark", {"XDG_DATA_HOME": str(PLACE / "data")}, german),
                (alone / "rowlark", {"XDG_DATA_DIRS": f"data:/nowhere:{PLACE}/data"}, german),
                (alone / "rowlark", {"XDG_DATA_DIRS": "data"}, english)):
            with self.subTest(program=program, **environment):
                self.assertEqual(run(program, "search", TABLE, "x", LC_ALL="de_DE.UTF-8", **environment), (1, "", message))

    def test_tells_the_desktop_about_itself(self):
        share = STAGE / "share"
        checks = (("desktop-file-validate", share / "applications/rowlark.desktop"),
                  ("appstreamcli", "validate", "--no-net", share / "metainfo/com.example.rowlark.metainfo.xml"),
                  ("man", "--warnings", "--local-file", share / "man/man1/rowlark.1.gz"))
        for check in checks:
            if shutil.which(check[0]) and check[-1].exists():
                found = [line for line in "\n".join(run(*check)[1:]).splitlines() if re.match(r"E:|W:|.*(error|warning):", line)]
                # Under which terms the description may be used is not decided either.
                self.assertEqual([line for line in found if "metadata-license-missing" not in line], [])


class Completion(unittest.TestCase):
    """Of shells, asked what may come next in a command line."""

    def bash(self, line):
        script = 'compopt() { :; }; . "$1"; COMP_WORDS=(rowlark $2 "$3"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _rowlark; ' \
                 'printf "%s\\n" "${COMPREPLY[@]}"'
        words, _, last = line.rpartition(" ")
        return run("bash", "-c", script, "bash", STAGE / "share/bash-completion/completions/rowlark", words, last)

    def fish(self, line):
        script = f"source {STAGE}/share/fish/vendor_completions.d/rowlark.fish; complete -C 'rowlark {line}'"
        return run("fish", "--no-config", "-c", script.replace("moved here", "moved\\ here"))

    def zsh(self, line):
        """The specifications that _arguments gets last; it stands for the shell's own one."""
        script = 'compdef() { }; _arguments() { last=("$@"); [[ $1 == -C && $#words -gt 0 ]] || return 0; ' \
                 'state=${${(M)@:#*->*}##*->}; line=($words[1]); shift words; return 1 }; ' \
                 'words=(${(s: :)2}); . "$1"; print -l -- $last'
        status, output, error = run("zsh", "-f", "-c", script, "zsh", STAGE / "share/zsh/site-functions/_rowlark", line[:-3])
        return status, "\n".join(re.findall(r"^(?:\*|\(.*?\))?(--[a-z-]+)\[", output, re.MULTILINE)), error

    def shells(self):
        return [shell for shell in ("bash", "fish", "zsh") if shutil.which(shell)]

    def offered(self, shell, line):
        status, output, error = getattr(self, shell)(line)
        self.assertEqual((status, error), (0, ""), shell)
        return sorted(word.partition("\t")[0] for word in output.splitlines() if word)

    def test_offers_the_options_that_help_names(self):
        for command in COMMANDS:
            output = run("rowlark", *command.split(), "--help")[1]
            options = sorted(re.findall(r"^  (?:-h,)?(--[a-z-]+)", output, re.MULTILINE))
            self.assertIn("--help", options)
            for shell in self.shells():
                with self.subTest(command=command, shell=shell):
                    self.assertEqual(self.offered(shell, f"{command} --"), options)

    def test_offers_commands_values_and_names(self):
        run("rowlark", "profiles", "set", "a $(touch x) b.csv")
        for line, expected in (
                ("sea", ["search"]),
                ("profiles s", ["set", "show"]),
                ("history ", ["clear", "list"]),
                ("search --words ", ["all", "any", "cell"]),
                ("search t.csv text --print j", ["json"]),
                ("profiles set t.csv --jump-first-row ", ["no", "yes"]),
                ("--language ge", ["german"]),
                ("--encoding KOI8-U", ["KOI8-U"]),
                ("profiles show a", ["a $(touch x) b.csv"])):
            for shell in set(self.shells()) - {"zsh"}:
                with self.subTest(line=line, shell=shell):
                    self.assertEqual(self.offered(shell, line), expected)


class Core(unittest.TestCase):
    def test_is_found_by_another_program(self):
        example, build = STAGE / "share/doc/librowlark-dev/examples/embedding", PLACE / "example"
        for command in (("cmake", "-S", example, "-B", build, "-G", "Ninja", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                         f"-DCMAKE_PREFIX_PATH={STAGE}", "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror"),
                        ("cmake", "--build", build)):
            status, output, error = run(*command)
            self.assertEqual(status, 0, output + error)
        self.assertEqual(run(build / "search_table", TABLE, "KÖL"), (0, "2: 1,Köln\n", ""))
        self.assertEqual(run(build / "search_table", TABLE, "x"), (1, "", "Text not found\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
