"""Checks every #include of the tree against the table of rooms in docs/design.md. Argument: the tree's folder."""

import graphlib
import os
import re
import sys

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.M)
NONE = "–"


class Room:
    """A row of the table: name and files, what lives there, the rooms it may include, its libraries."""

    def __init__(self, row):
        first, _, allowed, self.libraries = (cell.strip() for cell in row.strip("| \n").split("|"))
        self.name, *files = re.findall("`([^`]+)`", first)
        self.allowed = None if allowed == "all" else set(re.findall("`([^`]+)`", allowed)) | {self.name}
        self.patterns = files or [self.name + "/**"]

    def match(self, path):
        """The length of the longest pattern that the path matches, or 0. A star ends at a slash, two do not."""
        def expression(pattern):
            return ".*".join(re.escape(part).replace(r"\*", "[^/]*") for part in pattern.split("**"))
        return max((len(each) for each in self.patterns if re.fullmatch(expression(each), path)), default=0)


def rooms_of(design):
    section = design.split("\n## Rooms\n")[1].split("\n## ")[0]
    return [Room(line) for line in section.splitlines() if line.startswith("| `")]


def sources_of(root):
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if name != "build" and not name.startswith(".")]
        for name in names:
            if name.endswith((".h", ".cpp")):
                yield os.path.relpath(os.path.join(folder, name), root)


def check(root):
    with open(os.path.join(root, "docs/design.md")) as file:
        rooms = rooms_of(file.read())
    names = {room.name for room in rooms}
    errors = [f"the row {room.name} names no room: {unknown}"
              for room in rooms for unknown in (room.allowed or names) - names]
    graph = {path: [] for path in sorted(sources_of(root))}

    def room_of(path):
        room = max(rooms, key=lambda room: room.match(path))
        return room if room.match(path) else None

    for path, targets in graph.items():
        room = room_of(path)
        if not room:
            errors.append(f"{path} stands in no room")
            continue
        with open(os.path.join(root, path)) as file:
            includes = INCLUDE.findall(file.read())
        for bracket, name in includes:
            beside = os.path.normpath(os.path.join(os.path.dirname(path), name))
            target = next((found for found in (name, beside) if bracket == '"' and found in graph), None)
            if target:
                targets.append(target)
                if room.allowed is not None and room_of(target).name not in room.allowed:
                    errors.append(f"{path} ({room.name}) may not include {target} ({room_of(target).name})")
            elif room.libraries == NONE and not re.fullmatch("[a-z_0-9]+", name):
                errors.append(f"{path} ({room.name}) may include the standard library alone, not {name}")
    try:
        graphlib.TopologicalSorter(graph).prepare()
    except graphlib.CycleError as circle:
        errors.append(" <- ".join(circle.args[1]))
    if sum(map(len, graph.values())) < 100:
        errors.append("hardly any include was found")
    return errors


found = check(sys.argv[1])
print("\n".join(found) or "every include keeps to the table")
sys.exit(bool(found))
