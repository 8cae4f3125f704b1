# SPDX-FileCopyrightText: 2026 The libveltrasdk authors
# SPDX-License-Identifier: MIT
"""A display as a part of a board: writes into a file what arrived, each message in a line."""

import json
import sys


def answer(message, pending):
    operation = message.get("op")
    if operation is None:
        return {"veltra-part": 1}
    if operation == "start":
        return {"ack": not message["read"]}
    if operation == "write":
        pending.append(message["data"])
        return {"ack": len(message["data"]) // 2}
    if operation == "stop" and pending:
        with open("display.txt", "a", encoding="ascii") as file:
            file.write("".join(pending) + "\n")
        pending.clear()
    return {}


unfinished = []
for line in sys.stdin:
    print(json.dumps(answer(json.loads(line), unfinished)), flush=True)
