"""Walks through all windows of Orvex on the accessibility bus, prints what is there, and fails where
a control has no fitting role or no name: check.py ORVEX SIMULATOR FOLDER"""

import os
import subprocess
import sys
from collections import Counter

import bus
import rules

TITLE = "Orvex - 2.11"
IMAGE_SIZE = 3 << 20


class Session:
    def __init__(self, program, simulator, folder):
        self.folder = folder
        self.faults = []
        self.views = 0
        self.roles = Counter()
        port = os.path.join(folder, "com1")
        self.scanner = subprocess.Popen([simulator, "--rate", "9600", port], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.DEVNULL)
        bus.wait_for("the simulator", lambda: os.path.exists(port))
        self.program = subprocess.Popen([program])
        bus.connect()
        self.application = bus.wait_for("Orvex", lambda: bus.application(self.program.pid))
        self.main = self.window("frame", TITLE)

    def end(self):
        self.program.kill()
        self.scanner.kill()
        self.program.wait()
        self.scanner.wait()

    def window(self, role, name):
        return bus.wait_for(f"the window {name}",
                            lambda: bus.find(self.application, role, name))

    def control(self, window, role, name):
        return bus.wait_for(f"{role} {name}", lambda: bus.find(window, role, name))

    def press(self, window, role, name):
        control = self.control(window, role, name)
        bus.wait_for(f"{name} to be enabled", lambda: bus.is_enabled(control))
        bus.press(control)

    def choose(self, menu, item):
        """Chooses a menu's item without its menu being opened, as screen readers can."""
        for entry in bus.shown(self.main):
            if entry.get_role_name() == "menu item" and entry.get_name() == menu:
                for each in bus.children(entry.get_child_at_index(0)):
                    if each.get_name() == item:
                        bus.press(each)

    def check(self, title, window, wanted):
        rows = [(node.get_role_name(), bus.name_of(node), node.get_description(),
                 node.get_parent().get_name(), bus.is_focusable(node))
                for node in bus.shown(window)]
        self.views += 1
        for role, name, description, _, _ in rows:
            if role in rules.CONTROLS:
                self.roles[role] += 1
                print(f"{title:24} {role:14} {name}" + (f" ({description})" if description else ""))
        self.faults += [f"{title}: {fault}" for fault in rules.faults(rows, wanted)]

    def tabs(self):
        tabs = [node for node in bus.shown(self.main) if node.get_role_name() == "page tab"]
        for tab, wanted in zip(tabs, rules.TABS, strict=True):
            bus.press(tab)
            title = tab.get_name().strip()
            self.check(title, self.main, rules.MAIN + wanted)
            if title in ("Prefix", "Suffix"):
                self.press(self.main, "push button", "CTRL CH")
                cell = self.control(self.main, "push button", "STX")
                self.check(title + ", picker", self.main, rules.MAIN + wanted + rules.PICKER)
                bus.press(cell)
                text = next(n for n in bus.shown(self.main) if n.get_role_name() == "text")
                bus.wait_for("the picked character",
                             lambda: text.get_text(0, -1).endswith("[STX]"))

    def menus(self):
        for name, items in rules.MENUS.items():
            entry = self.control(self.main, "menu item", name)
            bus.press(entry)
            menu = bus.wait_for(f"the menu {name}", lambda: bus.is_shown(
                entry.get_child_at_index(0)) and entry.get_child_at_index(0))
            self.check(name, menu, Counter({"menu item": items}))
            bus.press(entry)

    def dialogs(self):
        self.choose("Help", "About Orvex...")
        about = self.window("dialog", TITLE)
        self.check("About", about, rules.ABOUT)
        self.press(about, "push button", "OK")
        self.choose("PC Port Setting", "Manual Baud Setting...")
        manual = self.window("dialog", "Comm Port Settings")
        self.check("Comm Port Settings", manual, rules.MANUAL)
        self.press(manual, "push button", "Cancel")

    def upload(self):
        path = os.path.join(self.folder, "image.bin")
        image = bytearray(b"x" * IMAGE_SIZE)
        for place, text in ((48, b"%-8d" % IMAGE_SIZE), (64, b"C0DE"), (80, b"3.40   "),
                            (96, b"22 Nov 2026")):
            image[place:place + len(text)] = text
        with open(path, "wb") as file:
            file.write(image)
        self.choose("Upgrade", "Load Application 1 File into ROM...")
        chooser = self.window("dialog", "Select a BIN file")
        self.control(chooser, "text", "File name:").set_text_contents(path)
        self.press(chooser, "push button", "Open")
        box = bus.wait_for("the question", lambda: self.box())
        self.check("message box", box, rules.BOX)
        self.press(box, "push button", "Yes")
        upload = self.window("dialog", "Upload Binary File")
        self.control(upload, "progress bar", "Progress of the upload")
        self.check("Upload Binary File", upload, rules.UPLOAD)
        self.press(upload, "push button", "Cancel")
        self.press(bus.wait_for("the question", lambda: self.box()), "push button", "Yes")
        bus.wait_for("the end of the upload", lambda: not bus.is_shown(upload))

    def box(self):
        for window in bus.children(self.application):
            if window.get_role_name() == "alert" and bus.is_shown(window):
                return window
        return None

    def splash(self):
        self.scanner.stdin.write("silent on\n")
        self.scanner.stdin.flush()
        self.choose("PC Port Setting", "Auto Baud Detect")
        splash = self.window("dialog", TITLE)
        self.check("search", splash, rules.SPLASH)


def main(program, simulator, folder):
    session = Session(program, simulator, folder)
    try:
        session.tabs()
        session.menus()
        session.dialogs()
        session.upload()
        session.splash()
    finally:
        session.end()
    counts = ", ".join(f"{count} {role}" for role, count in sorted(session.roles.items()))
    print(f"{session.views} views: {counts}")
    for fault in session.faults:
        print(f"accessibility: {fault}", file=sys.stderr)
    return 1 if session.faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
