"""Ambertide's windows as a screen reader finds them: by role and name, over the accessibility bus of the desktop.

To be used once a Desktop has been made. Nothing is cached.
"""

import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

from desktop import wait_until

State = Atspi.StateType


def application():
    """The root of Ambertide, once it draws windows."""
    def find():
        root = Atspi.get_desktop(0)
        root.clear_cache()
        for child in children(root):
            if child.get_name() == "Ambertide":
                child.set_cache_mask(Atspi.Cache.NONE)
                return child
        return None

    return wait_until(find, "Ambertide is not on the accessibility bus")


def children(element):
    found = [element.get_child_at_index(index) for index in range(element.get_child_count())]
    return [child for child in found if child is not None]


def role_of(element):
    """By the older of the names that a push button has been given."""
    role = element.get_role_name()
    return "push button" if role == "button" else role


def elements(role=None, name=None, within=None):
    """What is shown, in reading order, with these properties."""
    element = within or application()
    try:
        if not has_state(element, State.SHOWING):
            return []
        matches = role in (None, role_of(element)) and name in (None, element.get_name())
        inside = [found for child in children(element) for found in elements(role, name, child)]
    except GLib.Error:
        return []  # it went while it was looked at
    return [element] * matches + inside


def outline(role, name, roles):
    """Roles and names, in reading order, of what is shown in that element and has one of the roles."""
    return [(role_of(each), each.get_name()) for each in elements(within=element(role, name))
            if role_of(each) in roles]


def element(role, name):
    return wait_until(lambda: elements(role, name), f"no {role} {name!r} is shown")[0]


def wait_until_gone(role, name):
    wait_until(lambda: not elements(role, name), f"the {role} {name!r} stays")


def has_state(element, state):
    return element.get_state_set().contains(state)


def is_checked(role, name):
    return has_state(element(role, name), State.CHECKED)


def focused():
    """Role and name of what has the keyboard; what holds it has the state, too."""
    with_focus = [found for found in elements() if has_state(found, State.FOCUSED)]
    return (role_of(with_focus[-1]), with_focus[-1].get_name()) if with_focus else None


def set_value(role, name, number):
    Atspi.Value.set_current_value(element(role, name), number)


def texts():
    """What the labels say."""
    return [label.get_name() for label in elements("label")]


def extents(role, name):
    """x, y, width and height on the screen, once it rests."""
    def read():
        box = Atspi.Component.get_extents(element(role, name), Atspi.CoordType.SCREEN)
        return box.x, box.y, box.width, box.height

    last = []
    wait_until(lambda: last.append(read()) or last[-4:].count(last[-1]) == 4, f"the {role} {name!r} does not rest")
    return last[-1]


def click_on(desktop, role, name):
    x, y, width, height = extents(role, name)
    desktop.click(x + width / 2, y + height / 2)


def act(role, name):
    """Presses it without mouse or keyboard."""
    Atspi.Action.do_action(element(role, name), 0)
