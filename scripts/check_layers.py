#!/usr/bin/env python3
"""Checks that every #include between qx's layers follows the layer order.

The layers, bottom up: automation, platform, host, ide, contracts, foundation, project,
collections, components, controls, special, cli. A folder under src/ is one layer; src/ide/tool
(the IDE's command line) is a layer of its own above ide. What a layer may include comes from the
DEPS of its library in src/<layer>/CMakeLists.txt (and what those depend on), and the DEPS
themselves must point down the order. The driver folders never depend on host or ide: they see
the host and the IDE only through contracts and dispatch. A test folder may include what its
test executable links (tests/<folder>/CMakeLists.txt). The main file of qxvb6.exe stands above
every layer and may include anything: as the IDE process it links the driver's IDE side for the
add-in. qx (src/cli) reaches the IDE only as another process: its files may include what its
library links and nothing of the IDE.

Exits 1 and names every include that goes up or sideways.
"""
import pathlib
import re
import sys

ORDER = ["automation", "platform", "host", "ide", "ide/tool", "contracts", "foundation",
         "project", "collections", "components", "controls", "special", "cli"]
DRIVER = {"contracts", "foundation", "project", "collections", "components", "controls",
          "special"}
PLATFORM_SIDE = {"host", "ide", "ide/tool"}

root = pathlib.Path(__file__).resolve().parent.parent
problems = []


def layer_of_target(name):
    if name == "qx_ide_tool":
        return "ide/tool"
    return name[3:] if name.startswith("qx_") else None


def words(text):
    return [w for w in re.split(r"\s+", text) if w]


def read_deps():
    deps = {layer: set() for layer in ORDER}
    for cmake in sorted((root / "src").glob("**/CMakeLists.txt")):
        text = re.sub(r"#.*", "", cmake.read_text())
        for args in re.findall(r"qx_library\(([^)]*)\)", text):
            tokens = words(args)
            layer, section = tokens[0], None
            for token in tokens[1:]:
                if token in ("DEPS", "LIBS", "EXCLUDE"):
                    section = token
                elif section == "DEPS":
                    deps.setdefault(layer, set()).add(layer_of_target(token))
        for args in re.findall(r"target_link_libraries\(([^)]*)\)", text):
            tokens = words(args)
            layer = layer_of_target(tokens[0])
            if layer not in ORDER:
                continue  # an executable: it may link anything below it
            for token in tokens[1:]:
                dep = layer_of_target(token)
                if dep in ORDER:
                    deps[layer].add(dep)
    return deps


def closure(deps, layers):
    seen, todo = set(), list(layers)
    while todo:
        layer = todo.pop()
        if layer not in seen:
            seen.add(layer)
            todo.extend(deps.get(layer, ()))
    return seen


deps = read_deps()
for layer, below in deps.items():
    for dep in below:
        if dep not in ORDER or ORDER.index(dep) >= ORDER.index(layer):
            problems.append(f"src/{layer}/CMakeLists.txt: {layer} depends on {dep}, "
                            "which is not beneath it")
        elif layer in DRIVER and dep in PLATFORM_SIDE:
            problems.append(f"src/{layer}/CMakeLists.txt: the driver folder {layer} depends on "
                            f"{dep}")

INCLUDE = re.compile(r'^\s*#\s*include\s+"([a-z_]+(?:/tool)?)/')


def check(path, allowed, what):
    for number, line in enumerate(path.read_text(errors="replace").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        target = match.group(1)
        if target not in ORDER:
            target = target.split("/")[0]
        if target not in ORDER:
            continue  # test support, the benchmark's generator, a file beside this one
        if target not in allowed:
            problems.append(f"{path.relative_to(root)}:{number}: {what} includes {target}/")


for path in sorted((root / "src").rglob("*")):
    if path.suffix not in (".h", ".cpp"):
        continue
    parts = path.relative_to(root / "src").parts
    layer = "ide/tool" if parts[:2] == ("ide", "tool") else parts[0]
    if parts == ("ide", "tool", "main.cpp"):
        continue  # the IDE's program: it may include anything
    allowed = closure(deps, [layer])
    if layer == "cli":
        allowed -= {"ide", "ide/tool"}  # qx reaches the IDE only as another process
    check(path, allowed, f"the layer {layer}")

for cmake in sorted((root / "tests").glob("*/CMakeLists.txt")):
    folder = cmake.parent
    linked = set()
    text = cmake.read_text()
    for args in re.findall(r"qx_test\(([^)]*)\)", text):
        linked |= {layer_of_target(t) for t in words(args)[1:] if t != "DEPS"}
    # Helper programs of the tests, linked by hand.
    for args in re.findall(r"target_link_libraries\(([^)]*)\)", text):
        linked |= {layer_of_target(t) for t in words(args)[1:] if t.startswith("qx_")}
    allowed = closure(deps, linked) | ({"cli"} if "cli" in linked else set())
    for path in sorted(folder.rglob("*")):
        if path.suffix in (".h", ".cpp"):
            check(path, allowed, f"a test of {folder.name}")

for problem in problems:
    print(problem, file=sys.stderr)
if problems:
    print(f"check_layers: {len(problems)} include(s) against the layer order", file=sys.stderr)
    sys.exit(1)
