"""The results as tables for a terminal."""

import math


def number(value, form):
    """Blank where there is no figure, whatever a contestant calls that."""
    if value is None or not math.isfinite(value):
        return ""
    return format(value, form)


def seconds(value):
    if value is None:
        return ""
    return f"{value:.3g}" if value < 100 else f"{value:.0f}"


def ratio(value, base):
    if not value or not base:
        return ""
    return f"{value / base:.3g}"


def lines(rows):
    """Columns as wide as their widest cell: the first two to the left, figures to the right."""
    widths = [max(len(row[k]) for row in rows) for k in range(len(rows[0]))]
    for row in rows:
        cells = [
            cell.ljust(width) if k < 2 else cell.rjust(width)
            for k, (cell, width) in enumerate(zip(row, widths))
        ]
        yield "  ".join(cells).rstrip()


KRIGING_HEADER = (
    "cases", "contestant", "fit s", "ratio", "wall s", "units", "error", "ratio", "log-lik.",
    "nugget", "scattered s", "ratio", "grid s", "ratio",
)  # fmt: skip


def kriging_row(result, ours):
    return (
        str(result["cases"]),
        result["contestant"],
        seconds(result.get("fit_cpu")),
        ratio(result.get("fit_cpu"), ours.get("fit_cpu")),
        seconds(result.get("fit_wall")),
        number(result.get("units"), ".1f"),
        number(result.get("error"), ".2e"),
        ratio(result.get("error"), ours.get("error")),
        number(result.get("log_likelihood"), ".1f"),
        number(result.get("nugget"), ".0e"),
        seconds(result.get("scattered_cpu")),
        ratio(result.get("scattered_cpu"), ours.get("scattered_cpu")),
        seconds(result.get("grid_cpu")),
        ratio(result.get("grid_cpu"), ours.get("grid_cpu")),
    )


SURFACE_HEADER = (
    "cases", "contestant", "fit s", "ratio", "wall s", "error", "ratio", "scattered s", "ratio",
)  # fmt: skip


def surface_row(result, ours):
    return (
        str(result["cases"]),
        result["contestant"],
        seconds(result.get("fit_cpu")),
        ratio(result.get("fit_cpu"), ours.get("fit_cpu")),
        seconds(result.get("fit_wall")),
        number(result.get("error"), ".4e"),
        ratio(result.get("error"), ours.get("error")),
        seconds(result.get("scattered_cpu")),
        ratio(result.get("scattered_cpu"), ours.get("scattered_cpu")),
    )


def table(results, header, row):
    """The first of ours for each number of cases is what the ratios are told against."""
    ours = {}
    for result in results:
        if result["contestant"].startswith("ours"):
            ours.setdefault(result["cases"], result)
    rows = [header] + [row(result, ours.get(result["cases"], {})) for result in results]
    return "\n".join(lines(rows))


def kriging_table(results):
    return table(results, KRIGING_HEADER, kriging_row)


def surface_table(results):
    return table(results, SURFACE_HEADER, surface_row)


def failures(results):
    return [
        f"{result['contestant']}, {result['problem']}, n = {result['cases']}: {result['failure']}"
        for result in results
        if "failure" in result
    ]
