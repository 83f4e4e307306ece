"""Checks lines of JSON against the log data model, and prints what is compared with the trace.

Usage: logRecords.py FILE

Each record is a line: line, thread, kind, depth and body."""

import json
import sys

TOP = {"Timestamp": str, "SeverityNumber": int, "SeverityText": str, "Body": str, "InstrumentationScope": dict,
       "Attributes": dict}
ATTRIBUTES = {"code.file.path": str, "code.line.number": int, "code.function.name": str,
              "thread.id": int, "oxdiag.line": int, "oxdiag.stamp": str, "oxdiag.delta": int,
              "oxdiag.time_ns": int, "oxdiag.kind": str, "oxdiag.depth": int, "oxdiag.status": int,
              "oxdiag.object": str, "oxdiag.category": str, "oxdiag.cut": bool}


def check(members, known):
    for name, value in members.items():
        assert type(value) is known[name], (name, value)


def main(path):
    with open(path, encoding="utf-8") as file:
        for line in file:
            record = json.loads(line)
            check(record, TOP)
            attributes = record["Attributes"]
            check(attributes, ATTRIBUTES)
            assert 1 <= record.get("SeverityNumber", 1) <= 24
            assert set(record.get("InstrumentationScope", {})) <= {"Name", "Version"}
            print(attributes["oxdiag.line"], attributes.get("thread.id", "-"),
                  attributes["oxdiag.kind"], attributes["oxdiag.depth"], record["Body"])


main(sys.argv[1])
