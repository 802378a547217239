"""Reads a program's windows from the accessibility bus, and presses by way of it."""

import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# The reply to a press that opens a dialog comes when the dialog has gone.
CALL_MS = 300
WAIT_S = 6


def connect():
    Atspi.init()
    Atspi.set_timeout(CALL_MS, CALL_MS)


def wait_for(what, look):
    """The first true result of `look`, which is asked for up to WAIT_S seconds."""
    end = time.monotonic() + WAIT_S
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


def children(node):
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child is not None:
            yield child


def is_shown(node):
    return node.get_state_set().contains(Atspi.StateType.SHOWING)


def is_enabled(node):
    return node.get_state_set().contains(Atspi.StateType.ENABLED)


def is_focusable(node):
    return node.get_state_set().contains(Atspi.StateType.FOCUSABLE)


def name_of(node):
    """A combo box has its text for a name, and what it is for stands in the label beside it."""
    if node.get_role_name() != "combo box":
        return node.get_name()
    for relation in node.get_relation_set():
        if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
            return relation.get_target(0).get_name()
    return ""


def shown(node):
    """All that is on the screen below the node, outer ones first."""
    for child in children(node):
        if is_shown(child):
            yield child
            yield from shown(child)


def find(node, role, name):
    """The shown control of this role and name, or none."""
    for each in shown(node):
        if each.get_role_name() == role and each.get_name().strip() == name:
            return each
    return None


def application(process):
    for each in children(Atspi.get_desktop(0)):
        if each.get_process_id() == process:
            each.set_cache_mask(Atspi.Cache.NONE)
            return each
    return None


def press(node):
    try:
        node.do_action(0)
    except GLib.Error:
        pass  # a dialog is up
