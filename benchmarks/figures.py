"""The figures that the library has to reach, and how each of them follows from the measurements.

A figure that has not been measured says so: nothing is taken for reached that was not.
"""

from dataclasses import dataclass

MILLION = 1_000_000
WINDOWS = ("15s", "30min", "1day")
MANY_RECTANGLES = 5_000


@dataclass
class Figure:
    group: str
    text: str
    target: float
    unit: str
    measured: float | None
    r: float | None = None
    s: float | None = None
    # Ratios hold on any machine, so they are what a quick run is judged by.
    is_ratio: bool = False

    def is_reached(self, room=1.0):
        """None for not measured."""
        return None if self.measured is None else self.measured <= self.target * room


def pan(shape, count, window, selected="none", kind="plain"):
    return f"frame/pan/{shape}/{kind}/N:{count}/window:{window}/selected:{selected}"


def with_references(m, group, text, name):
    """A frame against R, or, with many rectangles in it, the stricter target."""
    ours, r, s = (m.value(name, counter) for counter in ("ours_ms", "R_ms", "S_ms"))
    rectangles = m.value(name, "rectangles")
    is_many = rectangles is not None and rectangles > MANY_RECTANGLES
    ratio = ours / r if ours is not None and r else None
    text = f"{text} ({'not measured' if ours is None else f'{ours:.2f} ms'})"
    return Figure(group, text, 1.0 if is_many else 1.5, "R", ratio, r, s, is_ratio=True)


def worst(values):
    return max((value for value in values if value is not None), default=None)


def frames(m, counts):
    for window in WINDOWS:
        for count in counts:
            yield with_references(m, "1", f"Pan, {window}, N = {count:,}", pan("wide", count, window))
    for gesture in ("zoom", "hover", "scroll", "select"):
        for count in counts:
            yield with_references(m, "1", f"{gesture.capitalize()}, 30min, N = {count:,}",
                                  f"frame/{gesture}/wide/plain/N:{count}")
    shapes = ("wide", "deep")
    yield Figure("1", "All selected against none, the worst of wide and deep", 1.3, "x", worst(
        m.ratio(pan(shape, count, window, "all"), pan(shape, count, window))
        for shape in shapes for count in counts for window in WINDOWS), is_ratio=True)
    yield Figure("1", "Deep against wide, the worst", 1.0, "x", worst(
        m.ratio(pan("deep", count, window), pan("wide", count, window))
        for count in counts for window in WINDOWS), is_ratio=True)
    most, less = counts[-1], counts[-2]
    yield Figure("1", f"N = {most:,} against {less:,}, outside the window", 1.1, "x",
                 m.ratio(pan("outside", most, "30min"), pan("outside", less, "30min")), is_ratio=True)


def gestures(m, counts):
    most = counts[-1]
    many = f"{most // 10:,}"
    room = most / MILLION
    for shape in ("wide", "deep", "nested"):
        for scenario, counter, text, target in (
                ("drag", "move_near_ms", "Move of a drag, snapping", 1),
                ("drag", "move_far_ms", "Move of a drag, farther", 1),
                ("drag", "press_ms", "Press on an item", 1),
                ("drag", "release_ms", "Release of a drag", 1),
                ("resize", "move_ms", "Move of a resize, snapping", 1),
                ("resize", "press_ms", "Press on an edge", 1),
                ("resize", "release_ms", "Release of a resize", 1),
                ("hover", "move_ms", "Hover with edge detection", 1),
                ("rubber_band", "release_ms", "Rubber band over a window of a day", 20 * room),
                ("select_all", "key_ms", f"Control+A on {most:,}", 20 * room),
                ("change_many", "delete_ms", f"Delete {many} selected", 300 * room),
                ("change_many", "cut_ms", f"Cut {many} selected", 300 * room),
                ("change_many", "paste_ms", f"Paste {many}", 300 * room),
                ("change_many", "nudge_ms", f"Nudge {many} selected", 300 * room),
                ("drop", "drop_ms", f"Drop {many} selected", 300 * room)):
            if shape == "deep" and scenario == "drop":
                continue
            yield Figure("4", f"{text}, {shape}", target, "ms",
                         m.value(f"gesture/{scenario}/{shape}/plain/N:{most}", counter))


def model(m, counts):
    most = counts[-1]
    for name, text in (("fill_in_order", "addItem in order of time"), ("fill_at_random", "addItem in random order")):
        yield Figure("5", f"{text}, N = {most:,}", 1500 * most / MILLION, "ms", m.value(f"model/{name}/N:{most}"))
    yield Figure("5", f"In bulk through the kit, N = {most:,}", 400 * most / MILLION, "ms",
                 m.value(f"kit/fill/N:{most}"))
    # One that scans grows as N, with an exponent of 1; the caches of the processor alone account for some.
    for name, text in (("set_start_time", "setItemStartTime"), ("set_duration", "setItemDuration"),
                       ("move_to_track", "moveItemToTrack"), ("look_up_item", "the look-up of an item"),
                       ("interval_query", "an interval query of a track"),
                       ("interval_query_behind", "an interval query of all tracks")):
        yield Figure("5", f"Growth of {text}", 0.5, "exponent", m.exponent(f"model/{name}/N:{{}}"))
    for name, text in (("is_selected", "asking whether an item is selected"), ("select", "adding one to the selection"),
                       ("unselect", "removing one from it")):
        yield Figure("6", f"Growth of {text}", 0.5, "exponent", m.exponent(f"selection/{name}/N:{{}}"))


def rows(m, counts):
    most = counts[-1]
    for shape in ("rows", "nested"):
        names = ("hover", "scroll_row", "scroll_far") + (("expand", "collapse") if shape == "nested" else ())
        for name in names:
            yield Figure("7", f"{name.replace('_', ' ').capitalize()}, {shape}, {most // 100:,} tracks", 4, "ms",
                         m.value(f"rows/{name}/{shape}/plain/N:{most}"))
        yield Figure("5", f"Growth of indexOfTrack, {shape}", 0.5, "exponent",
                     m.exponent(f"rows/index_of_track/{shape}/plain/N:{{}}"))


def memory(m, counts):
    for shape in ("wide", "deep", "rows"):
        yield Figure("8", f"Bytes per item, {shape}, N = {counts[-1]:,}", 200, "bytes",
                     m.value(f"memory/{shape}/plain/N:{counts[-1]}", "bytes_per_item"))


def growth(m, counts):
    # A window of a day shows what is outside the other two.
    for window in WINDOWS[:2]:
        yield Figure("9", f"Growth of frames with the same visible, {window}", 0.1, "exponent",
                     m.exponent(pan("outside", "{}", window)), is_ratio=True)
    for name, text in (("model/fill_in_order", "addItem in order"), ("model/fill_at_random", "addItem at random"),
                       ("kit/fill", "filling through the kit"), ("kit/undo", "undo")):
        yield Figure("9", f"Growth of {text}", 1.05, "exponent", m.exponent(name + "/N:{}", least_count=10_000),
                     is_ratio=True)


def live(m, counts):
    for shape in ("wide", "deep"):
        for window in WINDOWS:
            yield Figure("10", f"Live indicator at 50 Hz, {shape}, {window}, N = {counts[-1]:,}", 5, "% of a core",
                         m.value(f"live/{shape}/plain/N:{counts[-1]}/window:{window}", "core_percent"))


def kit(m, counts):
    # The speeds are turned over, so that less is better as everywhere: what 100 MB take.
    for name, text, target in (("read_csv", "100 MB of CSV", 1000), ("read_trace", "100 MB of trace JSON", 500)):
        yield Figure("11", f"{text} into the model", target, "ms", m.value(f"kit/{name}", "per_100MB_ms"))
    yield Figure("11", "Undo of a change of 100,000 items", 300, "ms", m.value("kit/undo/N:100000"))


def all_figures(m, is_full):
    counts = [100_000, MILLION] if is_full else [10_000, 100_000]
    row_counts = [MILLION] if is_full else [100_000]
    figures = []
    for part, part_counts in ((frames, counts), (gestures, counts), (model, counts), (rows, row_counts),
                              (memory, counts), (growth, counts), (live, row_counts), (kit, counts)):
        figures.extend(part(m, part_counts))
    return sorted(figures, key=lambda figure: int(figure.group))
