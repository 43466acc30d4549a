"""What the benchmark programs have written, by the names of their benchmarks."""

import json
import math
import re

MANUAL_TIME = "/manual_time"
ITERATIONS = re.compile(r"/iterations:\d+")


class Measurements:
    def __init__(self, files):
        self.values = {}
        self.context = {}
        self.errors = []
        for file in files:
            with open(file, encoding="utf-8") as stream:
                self._add(json.load(stream))

    def _add(self, result):
        context = result["context"]
        # The machine was as busy as it was at its busiest.
        busy = max(context["load_avg"][:1] + self.context.get("load_avg", [])[:1], default=0)
        self.context = {**context, "load_avg": [busy]}
        for benchmark in result["benchmarks"]:
            name = ITERATIONS.sub("", benchmark["name"].replace(MANUAL_TIME, ""))
            if benchmark.get("error_occurred"):
                self.errors.append(f"{name}: {benchmark['error_message']}")
            else:
                self.values[name] = benchmark

    def value(self, name, counter="ours_ms"):
        """None for what has not been measured."""
        return self.values.get(name, {}).get(counter)

    def ratio(self, name, other, counter="ours_ms"):
        one, two = self.value(name, counter), self.value(other, counter)
        return one / two if one is not None and two else None

    def over_count(self, pattern, counter="ours_ms"):
        """Pairs of a number of items and the value, for a name with N:{} in it."""
        before, after = pattern.split("{}")
        found = []
        for name, benchmark in self.values.items():
            match = re.fullmatch(re.escape(before) + r"(\d+)" + re.escape(after), name)
            if match and counter in benchmark:
                found.append((int(match.group(1)), benchmark[counter]))
        return sorted(found)

    def exponent(self, pattern, counter="ours_ms", least_count=0):
        """The slope of the values over the number of items, both as logarithms, that fits best; None for less than two
        numbers."""
        points = [(math.log(n), math.log(value))
                  for n, value in self.over_count(pattern, counter) if n >= least_count and value > 0]
        if len(points) < 2:
            return None
        mean_x = sum(x for x, _ in points) / len(points)
        mean_y = sum(y for _, y in points) / len(points)
        return (sum((x - mean_x) * (y - mean_y) for x, y in points)
                / sum((x - mean_x) ** 2 for x, _ in points))
