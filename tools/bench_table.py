"""The rows that ./bench prints: a figure, what it is held against, their ratio and what the ratio may be. They are a
Markdown table, so that a run can be kept, read and compared with another."""
COLUMNS = ("what", "figure", "unit", "held against", "its figure", "ratio", "bound")


def head():
    print("| " + " | ".join(COLUMNS) + " |")
    print("|" + "---|" * len(COLUMNS), flush=True)


def number(value):
    if value is None:
        return "–"
    return f"{value:,.0f}" if abs(value) >= 1000 else f"{value:.3g}"


def row(what, figure, unit, against="–", limit=None, bound=None):
    """One figure. `bound` is the most that figure / limit may be; whether it is."""
    ratio = figure / limit if limit else None
    within = bound is None or ratio is None or ratio <= bound
    allowed = "–" if bound is None else f"at most {number(bound)}" + ("" if within else " PASSED")
    print(f"| {what} | {number(figure)} | {unit} | {against} | {number(limit)} | {number(ratio)} | {allowed} |", flush=True)
    return within


def rows(path):
    """The rows of a file that holds such a table, by what they are about."""
    found = {}
    for line in open(path, encoding="utf-8"):
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if len(cells) == len(COLUMNS) and cells[0] not in (COLUMNS[0], "---"):
            found[cells[0]] = dict(zip(COLUMNS, cells))
    return found


def value(cell):
    try:
        return float(cell.replace(",", ""))
    except ValueError:
        return None
