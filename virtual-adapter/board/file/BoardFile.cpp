// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/file/BoardFile.hpp"

#include "board/FactoryBoard.hpp"
#include "board/file/ImageKeeper.hpp"
#include "board/file/SettingReader.hpp"
#include "board/file/readFile.hpp"
#include "board/file/unparsable.hpp"
#include "board/program/ProgramParts.hpp"
#include "board/program/findProgram.hpp"

#include <algorithm>
#include <set>

namespace virtual_adapter {

namespace {

constexpr size_t maxFileSize = size_t{1024} * 1024;
constexpr int64_t version = 1;
constexpr uint64_t maxRequest = UINT32_MAX;
constexpr uint64_t lastPin = GpioLines::pinCount - 1;

/// The name of the setting that a complaint begins with.
std::string settingOf(const std::string& complaint) {
    return complaint.substr(0, complaint.find(':'));
}

/// Reads a description from a parsed file.
class Reader {
public:
    Reader(const toml::table& itsRoot, std::filesystem::path itsDirectory, Problems& toTell)
        : root(itsRoot), directory(std::move(itsDirectory)), problems(toTell) {}

    BoardDescription read() {
        SettingReader top(root, "a board", directory, problems);
        top.read(Setting::number("board", 1, 1, "", "").required());
        const auto replace = top.read(Setting::flag("replace", "true", ""));
        if (replace && !std::get<bool>(*replace)) {
            board = factoryDescription();
        }
        readList(top, "i2c");
        readList(top, "spi");
        readUart(top);
        readGpio(top);
        readList(top, "i3c");
        readList(top, "at");
        top.refuseOthers();
        for (const Placement& part : board.parts) {
            complain(part.line, nullptr, complaintAboutWhole(board, part));
        }
        std::stable_sort(board.stimuli.begin(), board.stimuli.end(),
                         [](const TimedStimulus& left, const TimedStimulus& right) {
                             return left.request < right.request;
                         });
        return std::move(board);
    }

private:
    void complain(size_t line, const SettingReader* reader, const std::string& complaint) {
        if (!complaint.empty()) {
            problems.add(reader == nullptr ? line : reader->lineOfSetting(settingOf(complaint)),
                         complaint);
        }
    }

    /// The value of a key that is no setting of its own.
    const toml::node* nodeOf(SettingReader& top, const char* name) {
        top.know(name);
        return root.get(name);
    }

    void readList(SettingReader& top, const std::string& name) {
        const toml::node* const node = nodeOf(top, name.c_str());
        if (node == nullptr) {
            return;
        }
        const toml::array* const entries = node->as_array();
        if (entries == nullptr) {
            problems.add(lineOf(*node),
                         name + ": allowed are entries that begin with [[" + name + "]]");
            return;
        }
        for (const toml::node& entry : *entries) {
            if (const toml::table* const table = entry.as_table()) {
                readEntry(name, *table);
            } else {
                problems.add(lineOf(entry), name + ": allowed are tables");
            }
        }
    }

    void readEntry(const std::string& name, const toml::table& table) {
        if (name == "at") {
            readStimulus(table);
        } else if (name == "i2c") {
            const auto part = table["part"].value_exact<std::string>();
            readPart(name, part == "ten-bit" ? Place::I2cTenBit : Place::I2c, table);
        } else if (name == "spi") {
            readPart(name, Place::Spi, table);
        } else {
            // An I3C target gets its address from the controller.
            readPart(name, table.contains("address") ? Place::I3cLegacy : Place::I3c, table);
        }
    }

    void readPart(const std::string& name, Place place, const toml::table& table) {
        SettingReader reader(table, name, directory, problems);
        const PartKind* const kind = readKind(reader, place);
        if (kind == nullptr) {
            return;
        }
        const size_t before = problems.count();
        const SettingValues where = reader.read(placeSettings(place));
        const SettingValues given = reader.read(kind->settings);
        reader.refuseOthers();
        if (problems.count() != before) {
            return;
        }
        Placement part(place, *kind, where, given);
        part.line = lineOf(table);
        part.files = reader.files();
        part.directory = directory.string();
        std::string complaint = kind->complaintAbout(part.settings);
        if (complaint.empty()) {
            complaint = complaintAboutOutside(part);
        }
        if (complaint.empty()) {
            complaint = complaintAbout(board, part);
        }
        complain(part.line, &reader, complaint);
        if (complaint.empty()) {
            board.parts.push_back(std::move(part));
        }
    }

    static std::string complaintAboutOutside(const Placement& part) {
        if (part.kind->isProgram()) {
            const Command& command = part.settings.get<Command>("command");
            if (!findProgram(command.front(), part.directory)) {
                return "command: there is no program '" + command.front() +
                       "' that can be executed";
            }
        }
        if (part.settings.getOr<bool>("write_back") && part.files.count("image") == 0) {
            return "write_back: there is no file to write to; allowed is true only with an image "
                   "such as \"@flash.bin\"";
        }
        return {};
    }

    const PartKind* readKind(SettingReader& reader, Place place) {
        std::vector<std::string> names;
        for (const PartKind& kind : partCatalogue()) {
            if (kind.bus == partBusOf(place)) {
                names.push_back(kind.name);
            }
        }
        if (place == Place::I2c) {
            names.emplace_back("ten-bit");
        }
        const auto name = reader.read(Setting::choice("part", names, "", "").required());
        return name ? findPart(partBusOf(place), std::get<std::string>(*name)) : nullptr;
    }

    void readUart(SettingReader& top) {
        if (const toml::node* const node = nodeOf(top, "uart")) {
            if (const toml::table* const table = node->as_table()) {
                readPart("uart", Place::Uart, *table);
            } else {
                problems.add(lineOf(*node), "uart: allowed is one table, [uart]");
            }
        }
    }

    void readGpio(SettingReader& top) {
        const toml::node* const node = nodeOf(top, "gpio");
        if (node == nullptr) {
            return;
        }
        const toml::table* const table = node->as_table();
        if (table == nullptr) {
            problems.add(lineOf(*node), "gpio: allowed is one table, [gpio]");
            return;
        }
        SettingReader reader(*table, "gpio", directory, problems);
        reader.know("wires");
        reader.refuseOthers();
        const toml::node* const wires = table->get("wires");
        if (wires == nullptr) {
            return;
        }
        const toml::array* const list = wires->as_array();
        bool allowed = list != nullptr;
        for (size_t i = 0; allowed && i < list->size(); ++i) {
            allowed = readWire(*list->get(i));
        }
        if (!allowed) {
            problems.add(lineOf(*wires), "wires: this is not allowed; allowed are lists of two and "
                                         "more different pins from 0 to 7, such as [[0, 1]]");
        }
    }

    bool readWire(const toml::node& node) {
        Numbers wire;
        if (const toml::array* const pins = node.as_array()) {
            for (const toml::node& pin : *pins) {
                const int64_t number = pin.value_exact<int64_t>().value_or(-1);
                if (number < 0 || static_cast<uint64_t>(number) > lastPin) {
                    return false;
                }
                wire.push_back(static_cast<uint64_t>(number));
            }
        }
        if (wire.size() < 2 || std::set<uint64_t>(wire.begin(), wire.end()).size() != wire.size()) {
            return false;
        }
        board.wires.push_back(std::move(wire));
        return true;
    }

    void readStimulus(const toml::table& table) {
        SettingReader reader(table, "at", directory, problems);
        const auto request =
            reader.read(Setting::number("request", 1, maxRequest, "", "").required());
        reader.know("tell");
        reader.refuseOthers();
        const auto text = table["tell"].value_exact<std::string>();
        if (!text || text->empty() || text->find_first_of("\r\n") != std::string::npos) {
            problems.add(reader.lineOfSetting("tell"),
                         "tell: allowed is one line of text, such as \"gpio drive 4 1\"");
        } else if (request) {
            board.stimuli.push_back(
                {std::get<uint64_t>(*request), *text, reader.lineOfSetting("tell")});
        }
    }

    const toml::table& root;
    const std::filesystem::path directory;
    Problems& problems;
    BoardDescription board;
};

/// What the parts of one board get from outside.
class OutsideOfBoard : public Outside {
public:
    explicit OutsideOfBoard(std::string fileName) : file(std::move(fileName)) {}

    std::unique_ptr<I2cTarget> i2cProgram(const Placement& part) override {
        return i2cProgramPart(part, file);
    }
    std::unique_ptr<SpiTarget> spiProgram(const Placement& part) override {
        return spiProgramPart(part, file);
    }
    SpiFlash::Keeper keeper(const Placement& part) override {
        return imageKeeper(part.files.at("image"),
                           static_cast<size_t>(part.settings.get<uint64_t>("size")));
    }

private:
    const std::string file;
};

} // namespace

BoardFile::BoardFile(const std::filesystem::path& file) : path(file) {
    read(readFile(path, maxFileSize));
}

BoardFile::BoardFile(const std::filesystem::path& file, const std::string& text) : path(file) {
    read(text);
}

void BoardFile::read(const std::string& text) {
    Problems problems(path.string());
    if (const std::optional<Unparsable> found = findUnparsable(text)) {
        problems.fail(found->line, found->why);
    }
    try {
        const toml::table root = toml::parse(text);
        const toml::node* const schema = root.get("board");
        if (schema == nullptr || schema->value_exact<int64_t>() != version) {
            problems.fail(schema == nullptr ? 1 : lineOf(*schema),
                          "the first key of a board is its version; allowed is: board = 1");
        }
        described = Reader(root, std::filesystem::absolute(path).parent_path(), problems).read();
    } catch (const toml::parse_error& error) {
        problems.fail(lineOf(error.source()), std::string(error.description()));
    }
    problems.tell();
}

Board BoardFile::build() const {
    BoardDescription fresh = described;
    OutsideOfBoard outside(path.string());
    try {
        for (Placement& part : fresh.parts) {
            if (part.settings.getOr<bool>("write_back")) {
                const std::string image =
                    readFile(part.files.at("image"),
                             static_cast<size_t>(part.settings.get<uint64_t>("size")));
                part.settings.put("image", Bytes(image.begin(), image.end()));
            }
        }
        return buildBoard(fresh, &outside);
    } catch (const std::runtime_error& error) {
        throw BoardFileError(path.string() + ": " + error.what());
    }
}

} // namespace virtual_adapter
