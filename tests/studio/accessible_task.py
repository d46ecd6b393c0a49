#!/usr/bin/python3
"""An engineer who does not see the screen: a new archive, its name, a new trend, its variable and
colour, by what the accessibility tree says and offers alone.

    accessible_task.py KVSTUDIO KVS PROJECT

Started on a display and a session bus of its own by accessible_task.sh."""

import os
import shutil
import subprocess
import sys
import tempfile
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)  # the names of the interfaces, not their use

PATIENCE = 60  # seconds; a busy machine
SHORT_CALL = 500  # milliseconds: who opens a dialog answers when that is closed


def fail(message):
    print("accessible_task: " + message, file=sys.stderr)
    sys.exit(1)


def wait(what, look):
    """Whatever `look` finds, as soon as it finds something."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            found = look()
            if found:
                return found
        except GLib.Error:
            pass  # it has gone meanwhile
        time.sleep(0.05)
    show(studio)
    return fail("there is no " + what)


def children(node):
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child is not None:
            yield child


def walk(node, depth=0):
    yield node, depth
    # Of a table the cells are asked for one by one.
    if depth < 20 and node.get_role() not in (Atspi.Role.TABLE, Atspi.Role.TREE_TABLE):
        for child in children(node):
            yield from walk(child, depth + 1)


def show(node):
    for each, depth in walk(node):
        print("  " * depth + each.get_role_name() + " '" + (each.get_name() or "") + "'",
              file=sys.stderr)


def has(node, state):
    return node.get_state_set().contains(state)


def find(root, role, name):
    for node, _ in walk(root):
        if node.get_role() == role and (node.get_name() or "").startswith(name):
            return node
    return None


def act(node, action):
    interface = node.get_action_iface()
    names = [interface.get_action_name(i) for i in range(interface.get_n_actions())]
    if action not in names:
        fail(f"'{node.get_name()}' cannot be told to {action}, only {names}")
    try:
        interface.do_action(names.index(action))
    except GLib.Error:
        pass  # no answer yet: a dialog is open


def window(title):
    def look():
        for each in children(studio):
            name = each.get_name() or ""
            if (name == title or name.startswith(title + " - ")) and has(each, Atspi.StateType.SHOWING):
                return each
        return None

    return wait("window " + title, look)


def choose(menu, entry):
    """A command out of a menu of the editor, as soon as it can be chosen."""

    def look():
        for bar, _ in walk(studio):
            if bar.get_role() != Atspi.Role.MENU_BAR:
                continue
            for head in children(bar):
                if head.get_name() != menu:
                    continue
                for item, _ in walk(head):
                    name = (item.get_name() or "").split("\t")[0].split("  ")[0]  # and its key
                    if name == entry and has(item, Atspi.StateType.ENABLED):
                        return item
        return None

    act(wait(f"menu {menu} > {entry}", look), "Press")


def write(dialog, label, text):
    field = wait("field " + label, lambda: find(dialog, Atspi.Role.TEXT, label))
    field.get_editable_text_iface().set_text_contents(text)


def press(dialog, name):
    act(wait("button " + name, lambda: find(dialog, Atspi.Role.PUSH_BUTTON, name)), "Press")


def gone(dialog):
    def look():
        try:
            return not has(dialog, Atspi.StateType.SHOWING)
        except GLib.Error:
            return True

    wait("end of the dialog", look)


def focused_cell(table):
    """The name of the cell that a screen reader would speak."""
    grid = wait("table " + table, lambda: find(studio, Atspi.Role.TABLE, table))
    if not has(grid, Atspi.StateType.FOCUSED):
        return None
    interface = grid.get_table_iface()
    for row in range(interface.get_n_rows()):
        for column in range(interface.get_n_columns()):
            cell = interface.get_accessible_at(row, column)
            if has(cell, Atspi.StateType.FOCUSED):
                return cell.get_name()
    return None


def note_focus(event):
    if event.detail1:
        spoken.append(event.source)
        try:
            told.add(event.source.get_name())
        except GLib.Error:
            pass  # it has gone meanwhile


def find_studio():
    desktop = Atspi.get_desktop(0)
    for i in range(desktop.get_child_count()):
        app = desktop.get_child_at_index(i)
        if app is not None and app.get_name() == "kvstudio":
            return app
    return None


def key(code):
    Atspi.generate_keyboard_event(code, None, Atspi.KeySynthType.SYM)


def do_task():
    frame = window("Anlage")
    tree = wait("project tree", lambda: find(frame, Atspi.Role.TREE, "Project tree"))
    tree.get_component_iface().grab_focus()
    wait("keyboard in the tree", lambda: has(tree, Atspi.StateType.FOCUSED))
    spoken.clear()
    key(0xFF54)  # Down, to the archives
    wait("word of the archives", lambda: spoken and spoken[-1].get_name() == "Archives")
    # What the editor does meanwhile is no matter of the keyboard.
    if any(each.get_name() != "Archives" for each in spoken):
        fail(f"told of {[each.get_name() for each in spoken]}")
    choose("Archive", "New")
    name = wait("word of the new archive", lambda: focused_cell("Archives"))
    print("new archive:", name)

    choose("Archive", "Edit")
    dialog = window("Archive")
    write(dialog, "Runtime Name", "Sudhaus")
    press(dialog, "OK")
    gone(dialog)
    wait("new name in the list", lambda: focused_cell("Archives") == "Sudhaus")

    choose("Trends", "New")
    wait("new trend", lambda: find(studio, Atspi.Role.TABLE, "Trends").get_table_iface()
         .get_n_rows() > 0)
    choose("Trends", "Edit")
    dialog = window("Trend")
    write(dialog, "Runtime Name", "Druck")
    write(dialog, "Trend Variable", "P01")
    tab = wait("page", lambda: find(dialog, Atspi.Role.PAGE_TAB, "Appearance"))
    act(tab, "Press")
    press(dialog, "Curve Color")
    # The colours are in no window of the tree; what has the keyboard among them tells itself.
    wait("colours", lambda: spoken and ", red " in (spoken[-1].get_name() or ""))
    press(spoken[-1].get_parent(), "Green, ")
    press(dialog, "OK")
    gone(dialog)
    if "Warning" in told:
        fail("the list of findings, which nobody has turned to, speaks")


def column(kvs, project, table, name):
    dump = subprocess.run([kvs, "dump", "--format", "csv", "--columns", name, project, table],
                          check=True, capture_output=True, text=True).stdout
    return dump.split("\n")[1:-1]


def main():
    global studio
    program, kvs, given = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        project = os.path.join(folder, "Anlage.kvs")
        shutil.copy(given, project)
        os.chmod(project, 0o644)
        registry = os.path.join(folder, "machine.reg")
        with open(registry, "w", encoding="ascii") as file:
            file.write("Windows Registry Editor Version 5.00\n\n"
                       "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Brantor GmbH\\Korvala\\4.0]\n"
                       "\"LCID\"=dword:00000409\n")
        own = {name: os.path.join(folder, name) for name in
               ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME")}
        run = subprocess.Popen([program, "--new-window", "--registry", registry, project],
                               env={**os.environ, **own})
        try:
            studio = wait("studio on the accessibility bus", find_studio)
            Atspi.set_timeout(SHORT_CALL, 0)
            listener = Atspi.EventListener.new(note_focus)
            listener.register("object:state-changed:focused")
            do_task()
        finally:
            run.terminate()
            run.wait()
        for table, name, expected in (("TchrArchives", "Name", ["Sudhaus"]),
                                      ("TchrTrends", "Name", ["Druck"]),
                                      ("TchrTrends", "TrendVar", ["P01"]),
                                      ("TchrTrends", "VLineColor", [str(0x00FF00)])):
            found = column(kvs, project, table, name)
            if found != expected:
                fail(f"{table}.{name} is {found}")


studio = None
spoken = []  # what a screen reader has been led to, one after another
told = set()  # all names of these
main()
