#!/usr/bin/env python3
"""Checks which room of src/ includes which, and that no includes go in a circle. Usage: check_layers.py SRC"""
import pathlib
import re
import sys

ENGINE = {"player", "movie", "script", "render", "stream"}
# What the files of a room may include: other rooms (its own is always allowed), and the libraries outside src/.
ROOMS = {
    "format": set(),
    **{room: ENGINE | {"format"} for room in ENGINE},
    "platform": set(),
    "host": {"format", "player", "platform"},
    "author": {"format"},
    "cli": {"format", "player", "host", "author"},
}
# The engine keeps to these libraries, and to what an older C++20 library offers.
ENGINE_LIBRARIES = {"zlib.h", "jpeglib.h", "jerror.h"}
NOT_IN_ENGINE = {"format", "source_location", "iostream", "fstream", "filesystem", "thread", "mutex", "regex"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def includes_of(path):
    return INCLUDE.findall(path.read_text(encoding="utf-8"))


def rule_breaks(name, includes, known):
    room = name.split("/")[0] if "/" in name else None
    for quote, target in includes:
        if quote == '"':
            if target not in known:
                yield f"{name}: includes {target}, which is not in src/"
            target_room = target.split("/")[0]
            if room is None:
                if target_room != "cli":
                    yield f"{name}: the entry point includes only cli/, not {target}"
            elif target_room != room and target_room not in ROOMS.get(room, set()):
                yield f"{name}: {room}/ may not include {target}"
        elif room in ENGINE | {"format"}:
            if target in NOT_IN_ENGINE or ("." in target and target not in ENGINE_LIBRARIES | {"setjmp.h", "stdio.h"}):
                yield f"{name}: the engine may not include <{target}>"


def first_circle(graph):
    state, trail = {}, []

    def visit(node):
        state[node] = "open"
        trail.append(node)
        for target in graph[node]:
            if state.get(target) == "open":
                return trail[trail.index(target):] + [target]
            if target not in state and (circle := visit(target)):
                return circle
        trail.pop()
        state[node] = "done"
        return None

    for node in graph:
        if node not in state and (circle := visit(node)):
            return circle
    return None


def main(root):
    files = {p.relative_to(root).as_posix(): includes_of(p) for p in sorted(root.rglob("*")) if p.suffix in (".h", ".cpp")}
    breaks = [line for name, includes in files.items() for line in rule_breaks(name, includes, files)]
    breaks += [f"{name}: {name.split('/')[0]}/ is no room of this house" for name in files
               if "/" in name and name.split("/")[0] not in ROOMS]
    graph = {name: [t for quote, t in includes if quote == '"' and t in files] for name, includes in files.items()}
    if circle := first_circle(graph):
        breaks.append("includes in a circle: " + " -> ".join(circle))
    print("\n".join(breaks), end="\n" if breaks else "")
    return 1 if breaks else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
