#!/usr/bin/python3
"""gtk-print.py PLACES: a program that prints with GTK's dialog: two pages with a frame 36 pt from the sheet's
edges, a patch of cyan as screens mix it, and a line of text. While the dialog is open PLACES has a line for each
text that can be clicked, "X Y TEXT" in pixels of the screen. Exit status 0: printed, 1: failed, 2: cancelled, 77:
there is no GTK."""

import os
import sys

try:
    import gi

    gi.require_version("Gtk", "3.0")
    gi.require_foreign("cairo")
    from gi.repository import GLib, Gtk
except (ImportError, ValueError, AttributeError) as missing:
    print(missing, file=sys.stderr)
    sys.exit(77)


def draw(_operation, context, number):
    page = context.get_cairo_context()
    page.set_line_width(4)
    page.rectangle(36, 36, context.get_width() - 72, context.get_height() - 72)
    page.stroke()
    page.set_source_rgb(0, 1, 1)
    page.rectangle(100, context.get_height() - 200, 100, 100)
    page.fill()
    page.set_source_rgb(0, 0, 0)
    page.move_to(100, 100)
    page.set_font_size(24)
    page.show_text(f"Page {number + 1}")


def widgets(parent):
    yield parent
    if isinstance(parent, Gtk.Container):
        children = []
        parent.forall(children.append)
        for child in children:
            yield from widgets(child)


def shown(row):
    """The texts of a row of a list or menu."""
    for value in row:
        if isinstance(value, str):
            yield value
        elif isinstance(value, Gtk.PageSetup):
            yield value.get_paper_size().get_display_name()


def rows(tree):
    """The texts of a list, with the middle of each row."""
    for row in tree.get_model():
        area = tree.get_cell_area(row.path, tree.get_column(0))
        x, y = tree.convert_bin_window_to_widget_coords(area.x + 20, area.y + area.height // 2)
        for text in shown(row):
            if area.height > 0:
                yield text, x, y


def texts(widget):
    middle = widget.get_allocated_width() // 2, widget.get_allocated_height() // 2
    if isinstance(widget, Gtk.TreeView):
        yield from rows(widget)
    elif isinstance(widget, Gtk.Label):
        yield widget.get_text(), *middle
    elif isinstance(widget, Gtk.ComboBox) and widget.get_active_iter():
        for text in shown(widget.get_model()[widget.get_active_iter()]):
            yield f"chosen: {text}", *middle
    elif isinstance(widget, Gtk.MenuItem) and isinstance(widget.get_child(), Gtk.CellView):
        view = widget.get_child()
        if view.get_displayed_row():
            for text in shown(view.get_model()[view.get_displayed_row()]):
                yield text, *middle


def places():
    for window in Gtk.Window.list_toplevels():
        if not window.get_mapped():
            continue
        _, left, top = window.get_window().get_origin()
        for widget in widgets(window):
            if not widget.get_mapped():
                continue
            for text, x, y in texts(widget):
                at = widget.translate_coordinates(window, x, y)
                if at and text.strip():
                    yield f"{left + at[0]} {top + at[1]} {text}"


def tell(path):
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write("\n".join(places()) + "\n")
    os.replace(path + ".new", path)
    return True


operation = Gtk.PrintOperation()
operation.set_n_pages(2)
operation.set_use_full_page(True)
operation.set_embed_page_setup(True)
operation.set_unit(Gtk.Unit.POINTS)
operation.set_job_name("from a GTK program")
operation.connect("draw-page", draw)
GLib.timeout_add(200, tell, sys.argv[1])
result = operation.run(Gtk.PrintOperationAction.PRINT_DIALOG, None)
sys.exit({Gtk.PrintOperationResult.APPLY: 0, Gtk.PrintOperationResult.CANCEL: 2}.get(result, 1))
