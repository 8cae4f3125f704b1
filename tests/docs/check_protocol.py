#!/usr/bin/env python3
"""Checks that the protocol reference, the command codes and the encoders' comments name the same
commands: check_protocol.py PROTOCOL.md CommandCode.hpp VeltraAsyncSDK.hpp
"""

import pathlib
import re
import sys

reference, command_codes, encoders = (pathlib.Path(name).read_text() for name in sys.argv[1:])

documented = {(code, name) for code, name in re.findall(r"^\| (0x[0-9A-F]{4}) \| `(\w+)` \|", reference, re.M)}
declared = {(code, name) for name, code in re.findall(r"^ +(\w+) = (0x[0-9A-F]{4}),$", command_codes, re.M)}
sent = set(re.findall(r"0x[0-9A-F]{4}(?=[:,. ])", encoders))

failures = [f"only in the reference: {entry}" for entry in sorted(documented - declared)]
failures += [f"only in the code: {entry}" for entry in sorted(declared - documented)]
commands = {code for code, name in declared if not name.endswith("Notification")}
failures += [f"no encoder says that it sends {code}" for code in sorted(commands - sent)]
failures += [f"an encoder sends the unknown code {code}" for code in sorted(sent - commands)]
print("\n".join(failures) or f"{len(declared)} codes agree")
sys.exit(bool(failures) or not declared)
