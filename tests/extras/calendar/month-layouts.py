"""Prints the weeks of all months from 1900 to 2100, for each first weekday and rule for week 1.

Each line: first weekday (0 is Sunday), minimal days of week 1, year, month, first day shown (days
since 1970-01-01), and the number of each week.
"""
import calendar
import datetime

EPOCH = datetime.date(1970, 1, 1).toordinal()


def first_week(layouts, year, minimal):
    """Returns the start of week 1: the first row of January with enough days of the year."""
    rows = layouts.monthdatescalendar(year, 1)
    return next(row[0] for row in rows if sum(day.year == year for day in row) >= minimal)


def number(starts, row):
    """Returns the number of the week that starts with the first day of a row."""
    year = max(year for year, start in starts.items() if start <= row[0])
    return (row[0] - starts[year]).days // 7 + 1


for weekday in range(7):
    layouts = calendar.Calendar((weekday - 1) % 7)
    for minimal in (1, 4, 7):
        starts = {year: first_week(layouts, year, minimal) for year in range(1899, 2102)}
        is_iso = weekday == 1 and minimal == 4
        for year in range(1900, 2101):
            near = {y: starts[y] for y in (year - 1, year, year + 1)}
            for month in range(1, 13):
                rows = layouts.monthdatescalendar(year, month)
                weeks = [row[0].isocalendar()[1] if is_iso else number(near, row) for row in rows]
                print(weekday, minimal, year, month, rows[0][0].toordinal() - EPOCH, *weeks)
