#include "model/spi/SpiBus.hpp"

#include <utility>

namespace virtual_adapter {

void SpiBus::attach(SpiChipSelect chipSelect, std::unique_ptr<SpiTarget> target) {
    targets.at(chipSelect) = std::move(target);
}

Bytes SpiBus::transfer(SpiChipSelect chipSelect, SpiMode mode, SpiChipSelectPolarity polarity,
                       const Bytes& sent) {
    const auto& target = targets.at(chipSelect);
    if (target == nullptr || !target->understands(mode, polarity)) {
        return Bytes(sent.size(), undrivenByte);
    }
    return target->transfer(sent);
}

} // namespace virtual_adapter
