// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/BoardDescription.hpp"

#include "bytes/words.hpp"
#include "model/i3c/i3c_records.hpp"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace virtual_adapter {

namespace {

// Between them lie the addresses that the I2C-bus specification does not reserve.
constexpr uint64_t minI2cAddress = 0x08;
constexpr uint64_t lastI2cAddress = 0x77;
constexpr uint64_t maxTenBitAddress = 0x3FF;

Setting addressSetting() {
    return Setting::hex("address", minI2cAddress, lastI2cAddress, "", "its 7-bit address")
        .required();
}

Setting supplySetting() {
    return Setting::plain("supply", SettingKind::Name,
                          "the supply that it hangs on, which another part switches");
}

Setting busSetting() {
    return Setting::number("bus", 0, 1, "", "the I2C bus").required();
}

/// As the enumerators count, from the fastest down.
const std::vector<std::string>& legacyRates() {
    static const std::vector<std::string> words{"1M", "400k", "100k"};
    return words;
}

const PartKind& partNamed(Place place, const std::string& name) {
    const PartKind* const kind = findPart(partBusOf(place), name);
    if (kind == nullptr) {
        throw std::invalid_argument("there is no part " + name);
    }
    return *kind;
}

SettingValues withDefaults(const std::vector<Setting>& settings, SettingValues values) {
    for (const Setting& setting : settings) {
        const std::optional<SettingValue> byDefault = setting.valueByDefault();
        if (!values.has(setting.name) && byDefault) {
            values.put(setting.name, *byDefault);
        }
    }
    return values;
}

bool isOnI3c(const Placement& part) {
    return part.place == Place::I3c || part.place == Place::I3cLegacy;
}

std::string described(const Placement& part) {
    return "the " + part.kind->name +
           (part.line == 0 ? " of the factory board" : " of line " + std::to_string(part.line));
}

/// The first address, and the number of addresses, that a part has on its wires; 0 of them where
/// it has none of its own.
std::pair<unsigned, unsigned> addressesOf(const Placement& part) {
    switch (part.place) {
    case Place::I2c:
    case Place::I2cTenBit:
    case Place::I3cLegacy:
        return {part.number("address"), part.kind->addresses};
    case Place::Spi:
        return {part.number("chip_select"), 1};
    case Place::Uart:
        return {0, 1};
    case Place::I3c:
        break;
    }
    const auto address = static_cast<unsigned>(part.settings.get<uint64_t>("static_address"));
    return {address, address == 0 ? 0 : 1};
}

bool shareWires(const Placement& left, const Placement& right) {
    if (isOnI3c(left)) {
        return isOnI3c(right);
    }
    return left.place == right.place &&
           (!left.where.has("bus") || left.number("bus") == right.number("bus"));
}

bool overlap(const Placement& left, const Placement& right) {
    const auto [leftFirst, leftCount] = addressesOf(left);
    const auto [rightFirst, rightCount] = addressesOf(right);
    return shareWires(left, right) && leftFirst < rightFirst + rightCount &&
           rightFirst < leftFirst + leftCount;
}

/// The setting that says where a part stands among those on its wires.
std::string nameOfAddress(const Placement& part) {
    switch (part.place) {
    case Place::Spi:
        return "chip_select";
    case Place::Uart:
        return "part";
    case Place::I3c:
        return "static_address";
    default:
        return "address";
    }
}

std::string complaintAboutAddresses(const Placement& part) {
    const auto [first, count] = addressesOf(part);
    if (count > 1 && (first % count != 0 || first + count - 1 > lastI2cAddress)) {
        const uint64_t lastFirst = (lastI2cAddress + 1) / count * count - count;
        return "address: a " + part.kind->name + " answers to " + std::to_string(count) +
               " addresses; allowed are multiples of " + std::to_string(count) + " up to " +
               hexNumber(lastFirst);
    }
    return {};
}

bool samePid(const Placement& left, const Placement& right) {
    return left.place == Place::I3c && right.place == Place::I3c &&
           left.settings.get<std::string>("pid") == right.settings.get<std::string>("pid");
}

std::string switchedBy(const Placement& part) {
    return part.settings.getOr<std::string>("switches");
}

std::string supplyOf(const Placement& part) {
    return part.where.getOr<std::string>("supply");
}

/// An I2C device that hangs on a supply.
class SuppliedI2cTarget : public I2cTarget {
public:
    explicit SuppliedI2cTarget(std::unique_ptr<I2cTarget> itsDevice)
        : device(std::move(itsDevice)) {}

    void setSupply(bool isSupplied) {
        if (isSupplied != supplied) {
            supplied = isSupplied;
            device->cyclePower();
        }
    }

    bool start(I2cDirection direction) override { return supplied && device->start(direction); }
    bool write(uint8_t byte) override { return supplied && device->write(byte); }
    uint8_t read() override { return supplied ? device->read() : undriven; }
    size_t writeMessage(const Bytes& bytes) override {
        return supplied ? device->writeMessage(bytes) : 0;
    }
    Bytes readMessage(size_t count) override {
        return supplied ? device->readMessage(count) : Bytes(count, undriven);
    }
    void stop() override {
        if (supplied) {
            device->stop();
        }
    }
    void cyclePower() override { device->cyclePower(); }
    std::string set(const std::string& name, const std::string& value) override {
        return device->set(name, value);
    }

private:
    /// What is read while nobody drives the line.
    static constexpr uint8_t undriven = 0xFF;

    const std::unique_ptr<I2cTarget> device;
    bool supplied = true;
};

/// Puts one part after the other on a board.
class Builder {
public:
    Builder(Board& itsBoard, Outside* itsOutside) : board(itsBoard), outside(itsOutside) {}

    void put(const Placement& part) {
        switch (part.place) {
        case Place::I2cTenBit:
            board.i2c.at(part.number("bus"))
                .attachTenBit(static_cast<uint16_t>(part.number("address")));
            break;
        case Place::I2c:
        case Place::I3cLegacy:
            putI2c(part);
            break;
        case Place::Spi:
            board.spi.attach(static_cast<SpiChipSelect>(part.number("chip_select")),
                             part.kind->isProgram()
                                 ? outside->spiProgram(part)
                                 : part.kind->makeSpi(part.settings, keeperOf(part)));
            break;
        case Place::Uart:
            board.uart = part.kind->makeUart();
            break;
        case Place::I3c:
            putI3c(part);
            break;
        }
    }

private:
    void putI2c(const Placement& part) {
        std::vector<std::unique_ptr<I2cTarget>> targets;
        if (part.kind->isProgram()) {
            targets.push_back(outside->i2cProgram(part));
        } else {
            targets = part.kind->makeI2c(part.settings);
        }
        auto address = static_cast<uint8_t>(part.number("address"));
        for (std::unique_ptr<I2cTarget>& target : targets) {
            if (!supplyOf(part).empty()) {
                auto supplied = std::make_unique<SuppliedI2cTarget>(std::move(target));
                feed(part, *supplied);
                target = std::move(supplied);
            }
            if (part.place == Place::I2c) {
                board.i2c.at(part.number("bus")).attach(address++, std::move(target));
            } else {
                board.i3c.attachLegacy(address++, legacyRateOf(part), std::move(target));
            }
        }
    }

    void putI3c(const Placement& part) {
        const std::string switched = switchedBy(part);
        std::function<void(bool)> switchSupply = [](bool /*supplied*/) {};
        if (!switched.empty()) {
            switchSupply = [&domain = board.powerDomains[switched]](bool supplied) {
                domain.supply(supplied);
            };
        }
        std::unique_ptr<I3cTarget> target = part.kind->makeI3c(part.settings, switchSupply);
        if (!supplyOf(part).empty()) {
            feed(part, *target);
        }
        board.i3c.attach(std::move(target));
    }

    template <typename Target>
    void feed(const Placement& part, Target& target) {
        board.powerDomains[supplyOf(part)].feed(
            [&target](bool supplied) { target.setSupply(supplied); });
    }

    [[nodiscard]] SpiFlash::Keeper keeperOf(const Placement& part) const {
        return part.settings.getOr<bool>("write_back") ? outside->keeper(part) : nullptr;
    }

    static I2cTransferRate legacyRateOf(const Placement& part) {
        const auto& rate = part.where.get<std::string>("fastest_rate");
        return static_cast<I2cTransferRate>(
            std::find(legacyRates().begin(), legacyRates().end(), rate) - legacyRates().begin());
    }

    Board& board;
    Outside* outside;
};

} // namespace

const std::vector<Setting>& placeSettings(Place place) {
    static const std::vector<Setting> i2c{busSetting(), addressSetting(), supplySetting()};
    static const std::vector<Setting> tenBit{
        busSetting(),
        Setting::hex("address", 0, maxTenBitAddress, "", "its 10-bit address").required()};
    static const std::vector<Setting> spi{
        Setting::number("chip_select", SpiChipSelect_0, SpiChipSelect_3, "", "its chip select")
            .required()};
    static const std::vector<Setting> uart;
    static const std::vector<Setting> i3c{supplySetting()};
    static const std::vector<Setting> legacy{
        addressSetting(),
        Setting::choice("fastest_rate", legacyRates(), legacyRates().front(),
                        "the fastest rate of I2C at which it answers"),
        supplySetting()};
    switch (place) {
    case Place::I2c:
        return i2c;
    case Place::I2cTenBit:
        return tenBit;
    case Place::Spi:
        return spi;
    case Place::Uart:
        return uart;
    case Place::I3c:
        return i3c;
    case Place::I3cLegacy:
        break;
    }
    return legacy;
}

PartBus partBusOf(Place place) {
    switch (place) {
    case Place::I2cTenBit:
        return PartBus::I2cTenBit;
    case Place::Spi:
        return PartBus::Spi;
    case Place::Uart:
        return PartBus::Uart;
    case Place::I3c:
        return PartBus::I3c;
    default:
        return PartBus::I2c;
    }
}

Placement::Placement(Place itsPlace, const std::string& part, const SettingValues& itsWhere,
                     const SettingValues& given)
    : Placement(itsPlace, partNamed(itsPlace, part), itsWhere, given) {}

Placement::Placement(Place itsPlace, const PartKind& itsKind, const SettingValues& itsWhere,
                     const SettingValues& given)
    : place(itsPlace),
      kind(&itsKind),
      where(withDefaults(placeSettings(place), itsWhere)),
      settings(withDefaults(kind->settings, given)) {}

bool Placement::operator==(const Placement& other) const {
    return place == other.place && kind == other.kind && where == other.where &&
           settings == other.settings;
}

std::string complaintAbout(const BoardDescription& board, const Placement& next) {
    std::string complaint = complaintAboutAddresses(next);
    if (!complaint.empty()) {
        return complaint;
    }
    for (const Placement& part : board.parts) {
        if (overlap(part, next)) {
            return nameOfAddress(next) + ": " + described(part) + " is there already";
        }
        if (samePid(part, next)) {
            return "pid: " + described(part) + " has it already";
        }
        if (!switchedBy(next).empty() && switchedBy(part) == switchedBy(next)) {
            return "switches: " + described(part) + " switches '" + switchedBy(next) + "' already";
        }
    }
    if (!switchedBy(next).empty() && !supplyOf(next).empty()) {
        return "supply: what switches a supply cannot hang on one";
    }
    return {};
}

std::string complaintAboutWhole(const BoardDescription& board, const Placement& part) {
    const std::string supply = supplyOf(part);
    const auto switchesIt = [&](const Placement& other) { return switchedBy(other) == supply; };
    if (!supply.empty() && std::none_of(board.parts.begin(), board.parts.end(), switchesIt)) {
        return "supply: no part switches '" + supply + "'";
    }
    if (!isOnI3c(part)) {
        return {};
    }
    const bool besideLegacy =
        std::any_of(board.parts.begin(), board.parts.end(),
                    [](const Placement& other) { return other.place == Place::I3cLegacy; });
    const auto [address, count] = addressesOf(part);
    for (unsigned each = address; each < address + count; ++each) {
        if (isReservedI3cAddress(static_cast<uint8_t>(each), besideLegacy)) {
            return nameOfAddress(part) + ": " + hexNumber(each) + " is reserved on the I3C bus";
        }
    }
    return {};
}

Board buildBoard(const BoardDescription& description, Outside* outside) {
    Board board;
    Builder builder(board, outside);
    for (const Placement& part : description.parts) {
        builder.put(part);
    }
    for (const Numbers& wire : description.wires) {
        for (const uint64_t pin : wire) {
            board.gpio.join(static_cast<GpioPinNumber>(wire.front()),
                            static_cast<GpioPinNumber>(pin));
        }
    }
    return board;
}

} // namespace virtual_adapter
