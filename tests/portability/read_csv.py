#!/usr/bin/env python3
"""Reads a CSV file with Python's csv module and prints its rows as JSON.

The export tests run it to prove that a table survives a round trip through a
standard CSV reader. The file is decoded as strict UTF-8, so a byte that is
not UTF-8 fails the read instead of being guessed at.
"""
import csv
import json
import sys

with open(sys.argv[1], newline="", encoding="utf-8", errors="strict") as table:
    rows = list(csv.reader(table, strict=True))
json.dump(rows, sys.stdout, ensure_ascii=True)
