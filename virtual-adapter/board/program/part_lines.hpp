// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#pragma once

#include "bytes/Bytes.hpp"

#include <cstddef>
#include <string>

namespace virtual_adapter {

// The lines between the adapter and a part that is a program: one JSON object each. What reads an
// answer throws PartFailure unless the object has exactly the members that it must have.

std::string helloLine();
std::string startLine(bool read, bool restart);
std::string writeLine(const Bytes& bytes);
std::string readLine(size_t count);
std::string stopLine();
std::string transferLine(const Bytes& sent);
std::string setLine(const std::string& name, const std::string& value);

void readHello(const std::string& line);
bool readAcknowledge(const std::string& line);
/// How many of @p sent bytes are acknowledged.
size_t readAcknowledgedBytes(const std::string& line, size_t sent);
/// Exactly @p count bytes.
Bytes readData(const std::string& line, size_t count);
void readNothing(const std::string& line);
/// Empty, or the part's own error.
std::string readSetResult(const std::string& line);

} // namespace virtual_adapter
