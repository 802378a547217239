"""Walks through all windows of Orvex on the accessibility bus, and fails where a control has no
fitting role or no name: check.py ORVEX SIMULATOR FOLDER"""

import os
import subprocess
import sys
import time
from collections import Counter

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

TITLE = "Orvex - 2.11"
# What a user can act on or read, and what only holds others together.
CONTROLS = {"animation", "combo box", "image", "label", "menu item", "page tab", "page tab list",
            "progress bar", "push button", "radio button", "text"}
HOLDERS = {"alert", "dialog", "filler", "frame", "layered pane", "menu bar", "panel", "popup menu",
           "separator", "status bar"}
# How many there are: beside the tabs, on each of them in their order, in menus and other windows.
MAIN = Counter({"push button": 4, "page tab list": 1, "page tab": 9, "menu item": 5, "label": 2,
                "image": 1})
TABS = [{"label": 12, "push button": 1}, {"radio button": 2},
        {"radio button": 17, "text": 1, "label": 1}, {"radio button": 8, "image": 8},
        {"radio button": 4, "text": 1, "push button": 1},
        {"radio button": 2, "text": 1, "push button": 1}, {"radio button": 6},
        {"radio button": 4, "label": 1}, {"radio button": 10}]
MENUS = {"File": 3, "PC Port Setting": 2, "Upgrade": 2, "Table": 9, "Help": 2}
MANUAL = {"combo box": 3, "text": 3, "label": 3, "push button": 2}
UPLOAD = {"label": 8, "text": 4, "push button": 1, "progress bar": 1, "animation": 1}
problems = []


def wait_for(what, look):
    """The first true result of `look`, which is asked for up to 6 seconds."""
    end = time.monotonic() + 6
    while time.monotonic() < end:
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            found = look()
        except GLib.Error:  # what it read went away meanwhile
            found = None
        if found:
            return found
        time.sleep(0.02)
    raise TimeoutError(f"waited in vain for {what}")


def has(node, state):
    return node.get_state_set().contains(state)


def children(node):
    nodes = (node.get_child_at_index(index) for index in range(node.get_child_count()))
    return [each for each in nodes if each is not None]


def shown(node):
    """All that is on the screen below the node, outer ones first."""
    for child in children(node):
        if has(child, Atspi.StateType.SHOWING):
            yield child
            yield from shown(child)


def find(node, role, name):
    """The shown control of this role and name, once it is there."""
    return wait_for(f"{role} {name}", lambda: next(
        (each for each in shown(node)
         if each.get_role_name() == role and name in (None, each.get_name().strip())), None))


def press(node):
    wait_for("a control to be enabled", lambda: has(node, Atspi.StateType.ENABLED))
    try:
        node.do_action(0)
    except GLib.Error:
        pass  # the answer comes once the dialog that it opens has gone


def name_of(node):
    """A combo box has its text for a name, and what it is for stands in the label beside it."""
    if node.get_role_name() != "combo box":
        return node.get_name()
    return next((each.get_target(0).get_name() for each in node.get_relation_set()
                 if each.get_relation_type() == Atspi.RelationType.LABELLED_BY), "")


def check(title, window, wanted):
    seen = Counter()
    for node in shown(window):
        role, name, description = node.get_role_name(), name_of(node), node.get_description()
        around = node.get_parent().get_name()
        focusable = has(node, Atspi.StateType.FOCUSABLE)
        if role not in CONTROLS | HOLDERS and (focusable or name):
            problems.append(f"{title}: {role} {name}: no role for a control")
        if not name.strip() and (role in CONTROLS or focusable):
            problems.append(f"{title}: a {role} without a name")
        if role == "radio button" and (not description or description != around):
            problems.append(f"{title}: {name} says to be of {description} and stands in {around}")
        if role in CONTROLS:
            seen[role, name, description] += 1
    problems.extend(f"{title}: {times} of {each} that nobody can tell apart"
                    for each, times in seen.items() if times > 1)
    counts = Counter(role for role, _, _ in seen.elements())
    print(f"{title:24} {dict(counts)}")
    if counts != Counter(wanted):
        problems.append(f"{title}: {dict(counts)} instead of {dict(wanted)}")


def tabs(main):
    pages = [node for node in shown(main) if node.get_role_name() == "page tab"]
    for page, wanted in zip(pages, TABS, strict=True):
        press(page)
        title = page.get_name().strip()
        check(title, main, MAIN + Counter(wanted))
        if title not in ("Prefix", "Suffix"):
            continue
        press(find(main, "push button", "CTRL CH"))
        cell = find(main, "push button", "STX")
        check(title + ", picker", main, MAIN + Counter(wanted) + Counter({"push button": 33}))
        press(cell)
        text = find(main, "text", None)
        wait_for("the picked character", lambda: text.get_text(0, -1).endswith("[STX]"))


def choose(main, menu, item):
    """Chooses a menu's item without its menu being opened, as screen readers can."""
    entries = children(find(main, "menu item", menu).get_child_at_index(0))
    press(next(each for each in entries if each.get_name() == item))


def windows(application, main, folder):
    for name, items in MENUS.items():
        entry = find(main, "menu item", name)
        press(entry)
        check(name, wait_for(name, lambda: has(entry.get_child_at_index(0), Atspi.StateType.SHOWING)
                             and entry.get_child_at_index(0)), {"menu item": items})
        press(entry)
    choose(main, "Help", "About Orvex...")
    about = find(application, "dialog", TITLE)
    check("About", about, {"label": 1, "push button": 1})
    press(find(about, "push button", "OK"))
    choose(main, "PC Port Setting", "Manual Baud Setting...")
    manual = find(application, "dialog", "Comm Port Settings")
    check("Comm Port Settings", manual, MANUAL)
    press(find(manual, "push button", "Cancel"))
    path = os.path.join(folder, "image.bin")
    with open(path, "wb") as file:
        file.write(b"x" * 80 + b"3.40   " + b"x" * (3 << 20))
    choose(main, "Upgrade", "Load Application 1 File into ROM...")
    chooser = find(application, "dialog", "Select a BIN file")
    find(chooser, "text", "File name:").set_text_contents(path)
    press(find(chooser, "push button", "Open"))
    question = find(application, "alert", None)
    check("message box", question, {"label": 1, "push button": 2})
    press(find(question, "push button", "Yes"))
    upload = find(application, "dialog", "Upload Binary File")
    find(upload, "progress bar", "Progress of the upload")
    check("Upload Binary File", upload, UPLOAD)
    press(find(upload, "push button", "Cancel"))
    press(find(find(application, "alert", None), "push button", "Yes"))
    wait_for("the end of the upload", lambda: not has(upload, Atspi.StateType.SHOWING))


def session(process, scanner, folder):
    Atspi.init()
    Atspi.set_timeout(300, 300)  # ms
    application = wait_for("Orvex", lambda: next(
        (each for each in children(Atspi.get_desktop(0)) if each.get_process_id() == process), None))
    application.set_cache_mask(Atspi.Cache.NONE)
    main = find(application, "frame", TITLE)
    tabs(main)
    windows(application, main, folder)
    scanner.stdin.write("silent on\n")
    scanner.stdin.flush()
    choose(main, "PC Port Setting", "Auto Baud Detect")
    check("search", find(application, "dialog", TITLE), {"label": 3})


def main(program, simulator, folder):
    port = os.path.join(folder, "com1")
    with subprocess.Popen([simulator, "--rate", "9600", port], text=True, stdin=subprocess.PIPE,
                          stdout=subprocess.DEVNULL) as scanner:
        wait_for("the simulator", lambda: os.path.exists(port))
        with subprocess.Popen([program]) as process:
            try:
                session(process.pid, scanner, folder)
            finally:
                process.kill()
                scanner.kill()
    for problem in problems:
        print(f"accessibility: {problem}", file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
