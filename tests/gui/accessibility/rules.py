"""What each control has to be on the accessibility bus, and how many there are of each."""

from collections import Counter

# What a user can act on or read.
CONTROLS = {"animation", "combo box", "image", "label", "menu item", "page tab", "page tab list",
            "progress bar", "push button", "radio button", "text"}
# What only holds others together.
HOLDERS = {"alert", "dialog", "filler", "frame", "layered pane", "menu bar", "panel", "popup menu",
           "separator", "status bar"}

MAIN = Counter({"push button": 4, "page tab list": 1, "page tab": 9, "menu item": 5, "label": 2,
                "image": 1})
PICKER = Counter({"push button": 33})

# The nine tabs, in their order.
TABS = [
    Counter({"label": 12, "push button": 1}),
    Counter({"radio button": 2}),
    Counter({"radio button": 17, "text": 1, "label": 1}),
    Counter({"radio button": 8, "image": 8}),
    Counter({"radio button": 4, "text": 1, "push button": 1}),
    Counter({"radio button": 2, "text": 1, "push button": 1}),
    Counter({"radio button": 6}),
    Counter({"radio button": 4, "label": 1}),
    Counter({"radio button": 10}),
]
MENUS = {"File": 3, "PC Port Setting": 2, "Upgrade": 2, "Table": 9, "Help": 2}
SPLASH = Counter({"label": 3})
ABOUT = Counter({"label": 1, "push button": 1})
MANUAL = Counter({"combo box": 3, "text": 3, "label": 3, "push button": 2})
BOX = Counter({"label": 1, "push button": 2})
UPLOAD = Counter({"label": 8, "text": 4, "push button": 1, "progress bar": 1, "animation": 1})


def faults(rows, wanted):
    """What is wrong with the controls of one window, given as (role, name, description, name of what
    is around it, whether it can have the focus)."""
    seen = Counter()
    for role, name, description, around, focusable in rows:
        what = f'{role} "{name}"'
        if role not in CONTROLS | HOLDERS and (focusable or name):
            yield f"{what}: no role for a control"
        if not name.strip() and (role in CONTROLS or focusable):
            yield f"{what}: no name"
        if role == "radio button" and (not description or description != around):
            yield f'{what}: says to be of "{description}" and stands in "{around}"'
        if role in CONTROLS:
            seen[role, name, description] += 1
    for (role, name, description), times in seen.items():
        if times > 1:
            yield f'{role} "{name}": {times} of them that nobody can tell apart'
    counts = Counter(role for role, *_ in rows if role in CONTROLS)
    for role in sorted(set(counts) | set(wanted)):
        if counts[role] != wanted[role]:
            yield f"{counts[role]} of the role {role} instead of {wanted[role]}"
