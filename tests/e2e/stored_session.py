"""What the end-to-end checks read in a session as `lumenote-cli show --json`
prints it: its times, and how its segments lie against each other and the
session. Imported by the scripts' inline checks (PYTHONPATH=tests/e2e)."""
import json
from datetime import datetime


def stamp(text):
    return datetime.fromisoformat(text.replace("Z", "+00:00"))


def load(path):
    with open(path) as document:
        return json.load(document)


def ordered_segments(session):
    return sorted(session["segments"], key=lambda segment: segment["startDate"])


def assert_each_begins_where_the_last_ended(segments):
    for before, after in zip(segments, segments[1:]):
        assert stamp(before["endDate"]) == stamp(after["startDate"]), (before, after)


def assert_inside_and_apart(session):
    """Every segment lies inside the session, and none overlaps the next."""
    begin, end = stamp(session["startDate"]), stamp(session["endDate"])
    segments = ordered_segments(session)
    for segment in segments:
        assert begin <= stamp(segment["startDate"]) <= stamp(segment["endDate"]) <= end, segment
    for before, after in zip(segments, segments[1:]):
        assert stamp(before["endDate"]) <= stamp(after["startDate"]), (before, after)
