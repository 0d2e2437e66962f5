#!/usr/bin/env python3
"""Feeds small source trees to the layering checker and compares what it objects to."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECKER = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check_layers.py"


def objections(tree):
    """What the checker prints about a tree given as {file name: lines to include}; [] when it is content."""
    with tempfile.TemporaryDirectory() as root:
        for name, includes in tree.items():
            path = pathlib.Path(root, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("".join(f"#include {include}\n" for include in includes), encoding="utf-8")
        run = subprocess.run([sys.executable, CHECKER, root], capture_output=True, text=True, check=False)
    lines = run.stdout.splitlines()
    assert run.stderr == "" and run.returncode == (1 if lines else 0), run
    return lines


HOUSE = {  # one header a room, and the entry point
    "main.cpp": ['"cli/cli.h"'],
    "format/format.h": ["<cstdint>"],
    "player/player.h": ['"format/format.h"'],
    "movie/movie.h": ['"player/player.h"', '"render/render.h"', "<zlib.h>"],
    "render/render.h": ['"format/format.h"'],
    "host/host.h": ['"player/player.h"', "<filesystem>", "<SDL2/SDL.h>"],
    "author/author.h": ['"format/format.h"'],
    "cli/cli.h": ['"host/host.h"', '"author/author.h"'],
}


class CheckLayers(unittest.TestCase):
    def test_accepts_the_house(self):
        self.assertEqual(objections(HOUSE), [])

    def test_names_the_file_that_reaches_too_far(self):
        for name, include in [
            ("format/bad.h", '"player/player.h"'),
            ("movie/bad.cpp", '"host/host.h"'),
            ("render/bad.cpp", '"author/author.h"'),
            ("author/bad.cpp", '"movie/movie.h"'),
            ("host/bad.cpp", '"movie/movie.h"'),
            ("host/bad.cpp", '"cli/cli.h"'),
            ("cli/bad.cpp", '"movie/movie.h"'),
            ("main.cpp", '"host/host.h"'),
            ("movie/bad.cpp", '"movie/absent.h"'),
            ("movie/bad.cpp", "<SDL2/SDL.h>"),
            ("player/bad.cpp", "<png.h>"),
            ("script/bad.cpp", "<format>"),
            ("render/bad.cpp", "<thread>"),
        ]:
            with self.subTest(file=name, include=include):
                found = objections(HOUSE | {name: [include]})
                self.assertEqual(len(found), 1, found)
                self.assertIn(name, found[0])
                self.assertIn(include.strip('"<>'), found[0])

    def test_finds_a_circle_however_long(self):
        found = objections(HOUSE | {
            "player/first.h": ['"movie/second.h"'],
            "movie/second.h": ['"render/third.h"'],
            "render/third.h": ['"player/first.h"'],
        })
        self.assertEqual(len(found), 1, found)
        for name in ("player/first.h", "movie/second.h", "render/third.h"):
            self.assertIn(name, found[0])

    def test_knows_every_room(self):
        found = objections(HOUSE | {"cellar/wine.h": []})
        self.assertEqual(len(found), 1, found)
        self.assertIn("cellar/wine.h", found[0])


if __name__ == "__main__":
    unittest.main()
