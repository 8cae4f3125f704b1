// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "expose/Endpoint.hpp"

#include "Failure.hpp"
#include "Words.hpp"

#include "usbip/ListeningSocket.hpp"

#include <stdexcept>

namespace veltra {

std::string Endpoint::inWords() const {
    const bool hasColons = address.find(':') != std::string::npos;
    return (hasColons ? "[" + address + "]" : address) + ":" + std::to_string(port);
}

Endpoint parseEndpoint(const std::string& text) {
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos) {
        throw Failure::ofUsage(quoted(text) + " is no place to listen at: ADDRESS:PORT");
    }
    const bool isBracketed = colon > 1 && text.front() == '[' && text[colon - 1] == ']';
    const std::string address = isBracketed ? text.substr(1, colon - 2) : text.substr(0, colon);
    if (!isBracketed && address.find(':') != std::string::npos) {
        throw Failure::ofUsage(quoted(text) + " is no place to listen at: [ADDRESS]:PORT");
    }
    if (!usbip::isNumericAddress(address)) {
        throw Failure::ofUsage(quoted(address) + " is no numeric address, such as 127.0.0.1");
    }
    return {address, static_cast<uint16_t>(parseNumber("port", text.substr(colon + 1), 0, 0xFFFF))};
}

usbip::FileDescriptor listenAt(Endpoint& endpoint) {
    try {
        usbip::FileDescriptor listener = usbip::listeningSocket(endpoint.address, endpoint.port);
        endpoint.port = usbip::portOf(listener);
        return listener;
    } catch (const std::runtime_error& error) {
        throw Failure(ExitStatus::Refused, "socket", error.what())
            .advise("Without --listen there is always one free");
    }
}

} // namespace veltra
