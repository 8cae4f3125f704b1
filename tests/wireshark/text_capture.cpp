// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

// Writes a capture of what its standard input says: text_capture REPORT_SIZE FILE
//
//   > 0100 0704 03        a message to the adapter, in as many reports as it takes
//   < 0100 0704 0000 ..   a message from the adapter
//   >> 17 00 ..           one report as it is; << from the adapter
//   wait 1500             milliseconds
//   # a remark
#include "capture/Blocks.hpp"
#include "capture/CaptureFile.hpp"
#include "driver/UsbTransferProtocol.hpp"

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

class TextCapture {
public:
    TextCapture(size_t size, const char* path) : reportSize(size) {
        if (file.open(path) != 0) {
            throw std::runtime_error(std::string("cannot open ") + path);
        }
        capture::Blocks blocks;
        blocks.section("text_capture");
        blocks.usbInterface("text_capture");
        addDescriptor(blocks);
        append(blocks);
    }

    void write(const std::string& line) {
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        if (kind == "wait") {
            uint64_t milliseconds = 0;
            words >> milliseconds;
            time += milliseconds * 1'000'000;
        } else if (kind == ">" || kind == "<") {
            std::vector<Bytes> packets;
            UsbTransferProtocol(reportSize).createUsbOutTransferPackets(packets, bytesOf(words));
            for (Bytes& packet : packets) {
                packet.resize(reportSize);
                writeReport(packet, kind == "<");
            }
        } else if (kind == ">>" || kind == "<<") {
            writeReport(bytesOf(words), kind == "<<");
        } else if (!kind.empty() && kind != "#") {
            throw std::runtime_error("neither a message nor a report: " + line);
        }
    }

private:
    static Bytes bytesOf(std::istringstream& words) {
        std::string digits;
        for (std::string word; words >> word;) {
            digits += word;
        }
        Bytes bytes;
        for (size_t i = 0; i + 1 < digits.size(); i += 2) {
            bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
        }
        return bytes;
    }

    capture::UsbRecord next(capture::UsbEvent event, uint8_t endpoint) {
        capture::UsbRecord record;
        record.id = transfer;
        record.event = event;
        record.endpoint = endpoint;
        record.device = 5;
        record.bus = 1;
        record.time = time += 125'000;
        return record;
    }

    void addDescriptor(capture::Blocks& blocks) {
        const uint8_t product = reportSize > 64 ? 2 : 1;
        const Bytes descriptor{18, 1, 0, 2, 0, 0, 0, 64, 0x09, 0x12, product, 0, 0, 1, 1, 2, 3, 1};
        for (const auto event : {capture::UsbEvent::Submit, capture::UsbEvent::Complete}) {
            capture::UsbRecord record = next(event, 0x80);
            record.transfer = capture::UsbTransfer::Control;
            record.hasSetup = event == capture::UsbEvent::Submit;
            record.setup = {0x80, 6, 0, 1, 0, 0, 18, 0};
            record.length = 18;
            blocks.record(record, descriptor.data(), record.hasSetup ? 0 : descriptor.size());
        }
    }

    void writeReport(const Bytes& report, bool isIn) {
        capture::Blocks blocks;
        ++transfer;
        for (const auto event : {capture::UsbEvent::Submit, capture::UsbEvent::Complete}) {
            const bool carriesData = (event == capture::UsbEvent::Complete) == isIn;
            capture::UsbRecord record = next(event, isIn ? 0x81 : 0x01);
            record.length = static_cast<uint32_t>(report.size());
            blocks.record(record, report.data(), carriesData ? report.size() : 0);
        }
        append(blocks);
    }

    void append(const capture::Blocks& blocks) const {
        if (file.append(blocks.data(), blocks.size()) != 0) {
            throw std::runtime_error("cannot write");
        }
    }

    const size_t reportSize;
    capture::CaptureFile file;
    uint64_t time = 1'700'000'000'000'000'000;
    uint64_t transfer = 1;
};

} // namespace

int main(int argc, char** argv) {
    try {
        if (argc != 3) {
            throw std::invalid_argument("text_capture REPORT_SIZE FILE");
        }
        TextCapture capture(std::stoul(argv[1]), argv[2]);
        for (std::string line; std::getline(std::cin, line);) {
            capture.write(line);
        }
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return EXIT_FAILURE;
    }
}
