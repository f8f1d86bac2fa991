"""Compares the lines that no test reached with the list of those that none can reach.

usage: coverage.py GCOVR_JSON LIST THRESHOLD

A row of the list is "file | text of the line | reason". Fails below the threshold (percent of lines), and for every
line that was not reached and is not in the list.
"""

import json
import sys

report, list_file, threshold = sys.argv[1:]

reasons = {}
with open(list_file, encoding="utf-8") as rows:
    for row in rows:
        if row.strip() and not row.startswith("#"):
            file, text, reason = (part.strip() for part in row.split(" | ", 2))
            reasons[file, text] = reason

lines = reached = unexplained = 0
with open(report, encoding="utf-8") as data:
    files = json.load(data)["files"]
for file in sorted(files, key=lambda entry: entry["file"]):
    with open(file["file"], encoding="utf-8") as source:
        texts = source.read().split("\n")
    counts = {}
    for line in file["lines"]:
        if not line.get("gcovr/noncode"):
            counts[line["line_number"]] = counts.get(line["line_number"], 0) + line["count"]
    for number, count in sorted(counts.items()):
        lines += 1
        reached += count > 0
        if count == 0:
            text = texts[number - 1].strip()
            reason = reasons.get((file["file"], text))
            unexplained += reason is None
            print(f"not reached: {file['file']}:{number}: {text}\n    {reason or 'NO REASON GIVEN'}")

percent = 100 * reached / lines
failures = unexplained + (percent < float(threshold))
print(f"{reached} of {lines} lines reached, {percent:.1f} %, at least {threshold} % wanted")
print(f"coverage: {lines} cases, 0 faults, {failures} failures")
sys.exit(failures != 0)
