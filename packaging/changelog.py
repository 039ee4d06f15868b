#!/usr/bin/env python3
"""changelog.py <form>: CHANGELOG.md on standard output in another form.

debian    a Debian changelog; the environment names MAINTAINER
releases  the <releases> of AppStream metainfo
notes     the newest release as HTML, for the update feed
"""
import datetime
import html
import os
import pathlib
import re
import sys
import textwrap

# The date of what is not released yet: that of the build, which SOURCE_DATE_EPOCH sets.
TODAY = datetime.datetime.fromtimestamp(
    int(os.environ.get("SOURCE_DATE_EPOCH", datetime.datetime.now().timestamp())), datetime.timezone.utc)


def releases():
    """Version, date and entries of each release, newest first. An entry is one line of plain text."""
    text = (pathlib.Path(__file__).parents[1] / "CHANGELOG.md").read_text(encoding="utf-8")
    sections = re.split(r"^## ", text, flags=re.MULTILINE)[1:]
    for age, section in enumerate(sections):
        heading, body = section.split("\n", 1)
        version, date = heading.split(", ")
        when = TODAY if date == "unreleased" else datetime.datetime.fromisoformat(date + "T12:00:00+00:00")
        when -= datetime.timedelta(seconds=age)  # releases of one day follow each other
        entries = [" ".join(entry.split()).replace("`", "") for entry in re.split(r"^- ", body, flags=re.MULTILINE)[1:]]
        yield version, when, entries


def as_list(entries):
    return "".join(f"<li>{html.escape(entry, quote=False)}</li>" for entry in entries)


def debian():
    for version, when, entries in releases():
        print(f"ambertide ({version}) stable; urgency=medium\n")
        for entry in entries:
            print(textwrap.fill(entry, 78, initial_indent="  * ", subsequent_indent="    "))
        print(f"\n -- {os.environ['MAINTAINER']}  {when:%a, %d %b %Y %H:%M:%S +0000}\n")


def metainfo():
    for version, when, entries in releases():
        print(f'    <release version="{version}" date="{when:%Y-%m-%d}">')
        print(f"      <description><ul>{as_list(entries)}</ul></description>")
        print("    </release>")


def notes():
    _, _, entries = next(releases())
    print(f"<ul>{as_list(entries)}</ul>")


{"debian": debian, "releases": metainfo, "notes": notes}[sys.argv[1]]()
