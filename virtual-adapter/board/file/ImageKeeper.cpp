// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/ImageKeeper.hpp"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace virtual_adapter {

namespace {

class Image {
public:
    Image(std::string itsPath, size_t itsSize)
        : path(std::move(itsPath)),
          size(itsSize),
          stream(path, std::ios::binary | std::ios::in | std::ios::out) {
        if (!stream) {
            throw std::runtime_error("cannot write to the image " + path);
        }
    }

    void keep(size_t address, const Bytes& bytes) {
        if (failed) {
            return;
        }
        fillUp();
        stream.seekp(static_cast<std::streamoff>(address));
        write(bytes);
        stream.flush();
        if (!stream) {
            failed = true;
            std::cerr << "veltra-virtual-adapter: cannot write to the image " + path +
                             ": what changes from now on is lost\n"
                      << std::flush;
        }
    }

private:
    void fillUp() {
        stream.seekp(0, std::ios::end);
        const auto present = static_cast<size_t>(std::max<std::streamoff>(stream.tellp(), 0));
        if (present < size) {
            write(Bytes(size - present, 0xFF));
        }
    }

    void write(const Bytes& bytes) {
        for (const uint8_t byte : bytes) {
            stream.put(static_cast<char>(byte));
        }
    }

    const std::string path;
    const size_t size;
    std::fstream stream;
    bool failed = false;
};

} // namespace

SpiFlash::Keeper imageKeeper(const std::string& file, size_t size) {
    return [image = std::make_shared<Image>(file, size)](size_t address, const Bytes& bytes) {
        image->keep(address, bytes);
    };
}

} // namespace virtual_adapter
