// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "board/parts/SpiFlash.hpp"

#include "virtual-adapter/AdapterFixture.hpp"
#include "virtual-adapter/requests.hpp"

using virtual_adapter::Board;
using virtual_adapter::bytesOfText;
using virtual_adapter::Frame;
using virtual_adapter::spiData;
using virtual_adapter::SpiFlash;
using virtual_adapter::spiTransfer;

namespace {

Board flash() {
    Board board;
    board.spi.attach(
        SpiChipSelect_0,
        std::make_unique<SpiFlash>(size_t{256} * 1024, bytesOfText("Hello from the SPI flash!")));
    return board;
}

/// Powered, and initialised for the flash: most significant bit first, mode 0, 8 bits, chip
/// select 0 active low, 1 MHz.
class SpiFlashPart : public virtual_adapter::AdapterFixture {
protected:
    SpiFlashPart() : AdapterFixture(flash()) {
        powerOn();
        EXPECT_EQ(status({0x01, 0x00, 0x01, 0x0D, 0, 0, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00}), 0x0000U);
    }

    void enableWriting() { EXPECT_EQ(status(spiTransfer({0x06}, 0)), 0x0000U); }

    /// Reads the two status bytes for which the flash is busy.
    void waitWhileBusy() {
        EXPECT_EQ(response(spiTransfer({0x05}, 3)), spiData({0xFF, 0x03, 0x03}));
    }
};

TEST_F(SpiFlashPart, TheFlashIdentifiesItselfBehindTheOpcode) {
    EXPECT_EQ(response(spiTransfer({0x9F}, 5)), spiData({0xFF, 0x56, 0x41, 0x12, 0xFF}));
    EXPECT_EQ(response(spiTransfer({0x9F}, 2)), spiData({0xFF, 0x56}));
}

TEST_F(SpiFlashPart, TheFlashGreetsItsReader) {
    EXPECT_EQ(
        response(spiTransfer({0x03, 0x00, 0x00, 0x00}, 30)),
        spiData({0xFF, 0xFF, 0xFF, 0xFF, 'H', 'e', 'l', 'l', 'o', ' ', 'f', 'r', 'o', 'm', ' ',
                 't',  'h',  'e',  ' ',  'S', 'P', 'I', ' ', 'f', 'l', 'a', 's', 'h', '!', 0xFF}));
}

TEST_F(SpiFlashPart, FlashReadsRollOverAndIgnoreAddressBitsAboveTheMemory) {
    EXPECT_EQ(response(spiTransfer({0x03, 0x07, 0xFF, 0xFF}, 7)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'H', 'e'}));
}

TEST_F(SpiFlashPart, AFlashReadWithoutAWholeAddressReturnsNothing) {
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x00}, 3)), spiData({0xFF, 0xFF, 0xFF}));
}

TEST_F(SpiFlashPart, AFastReadHasADummyByteBehindItsAddress) {
    EXPECT_EQ(response(spiTransfer({0x0B, 0x00, 0x00, 0x00, 0x5A}, 7)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'H', 'e'}));
}

TEST_F(SpiFlashPart, ItsParametersAreThoseOfJesd216) {
    const Frame discovered = response(spiTransfer({0x5A, 0x00, 0x00, 0x00}, 5 + 0x34 + 1));
    const Frame expected = spiData({
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF,                   // opcode, address, dummy byte
        'S',  'F',  'D',  'P',  0x00, 0x01, 0x00, 0xFF, // revision 1.0, one header
        0x00, 0x00, 0x01, 0x09, 0x10, 0x00, 0x00, 0xFF, // nine double words at 0x10
        0xE5, 0x20, 0x80, 0xFF, 0xFF, 0xFF, 0x1F, 0x00, // 4 KiB by 0x20; 2 Mbit
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, //
        0xEE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, //
        0xFF, 0xFF, 0x00, 0x00, 0x0C, 0x20, 0x10, 0xD8, // 4 KiB by 0x20, 64 KiB by 0xD8
        0x00, 0x00, 0x00, 0x00, 0xFF,
    });
    EXPECT_EQ(discovered, expected);
    EXPECT_EQ(response(spiTransfer({0x5A, 0x00, 0x00, 0x02}, 7)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 'D', 'P'}));
}

TEST_F(SpiFlashPart, BlocksOf64KiBAndTheWholeFlashAreErased) {
    for (const Frame& program : {spiTransfer({0x02, 0x00, 0xFF, 0xFF, 0x11}, 0),
                                 spiTransfer({0x02, 0x01, 0x00, 0x00, 0x22}, 0),
                                 spiTransfer({0xD8, 0x01, 0xFF, 0xFF}, 0)}) {
        enableWriting();
        status(program);
        waitWhileBusy();
    }
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0xFF, 0xFF}, 6)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0x11, 0xFF}));
    for (const uint8_t opcode : {uint8_t{0x60}, uint8_t{0xC7}}) {
        enableWriting();
        status(spiTransfer({0x02, 0x00, 0x00, 0x00, 0x00}, 0));
        waitWhileBusy();
        enableWriting();
        status(spiTransfer({opcode}, 0));
        waitWhileBusy();
        EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x00, 0x00}, 5)),
                  spiData({0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    }
}

TEST_F(SpiFlashPart, NothingCanBeProtected) {
    enableWriting();
    status(spiTransfer({0x01, 0xFF}, 0));
    EXPECT_EQ(response(spiTransfer({0x05}, 4)), spiData({0xFF, 0x03, 0x03, 0x00}));
}

TEST(SpiFlashKinds, ItsSizeAndItsIdentificationCanBeOthers) {
    SpiFlash small(SpiFlash::minSize);
    EXPECT_EQ(small.transfer({0x9F, 0, 0, 0}), (virtual_adapter::Bytes{0xFF, 0x56, 0x41, 0x10}));
    SpiFlash named(SpiFlash::maxSize, {}, {0xEF, 0x40, 0x18});
    EXPECT_EQ(named.transfer({0x9F, 0, 0, 0}), (virtual_adapter::Bytes{0xFF, 0xEF, 0x40, 0x18}));
    EXPECT_EQ(named.transfer({0x5A, 0, 0, 0x14, 0, 0, 0, 0, 0}),
              (virtual_adapter::Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x07}));
}

TEST(SpiFlashKeeper, IsToldWhatHasChanged) {
    SpiFlash flash(SpiFlash::minSize, {'a', 'b'});
    std::vector<std::pair<size_t, virtual_adapter::Bytes>> kept;
    flash.keepWith([&](size_t address, const virtual_adapter::Bytes& bytes) {
        kept.emplace_back(address, bytes);
    });
    flash.transfer({0x02, 0, 1, 0, 0x00});
    EXPECT_TRUE(kept.empty());
    flash.transfer({0x06});
    flash.transfer({0x02, 0, 0, 0, 0x00});
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].first, 0U);
    virtual_adapter::Bytes page(256, 0xFF);
    page[0] = 0x00;
    page[1] = 'b';
    EXPECT_EQ(kept[0].second, page);
}

TEST_F(SpiFlashPart, AnUnknownFlashCommandIsIgnored) {
    EXPECT_EQ(response(spiTransfer({0xAB}, 3)), spiData({0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(status(spiTransfer({}, 0)), 0x0000U);
}

TEST_F(SpiFlashPart, TheWriteEnableLatchIsSetAndCleared) {
    enableWriting();
    EXPECT_EQ(response(spiTransfer({0x05}, 2)), spiData({0xFF, 0x02}));
    status(spiTransfer({0x04}, 0));
    EXPECT_EQ(response(spiTransfer({0x05}, 2)), spiData({0xFF, 0x00}));
}

TEST_F(SpiFlashPart, CommandsOfOneByteAreIgnoredWithMoreClocks) {
    status(spiTransfer({0x06}, 2));
    EXPECT_EQ(response(spiTransfer({0x05}, 2)), spiData({0xFF, 0x00}));
    enableWriting();
    status(spiTransfer({0x04}, 2));
    EXPECT_EQ(response(spiTransfer({0x05}, 2)), spiData({0xFF, 0x02}));
}

TEST_F(SpiFlashPart, AProgrammedPageReadsBackOnceTheFlashIsReady) {
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x10, 0x00, 0xCA, 0xFE}, 0));
    waitWhileBusy();
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x10, 0x00}, 7)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0xCA, 0xFE, 0xFF}));
}

TEST_F(SpiFlashPart, TheWriteEnableLatchClearsWhenTheFlashIsReadyAgain) {
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x10, 0x00, 0xCA}, 0));
    EXPECT_EQ(response(spiTransfer({0x05}, 4)), spiData({0xFF, 0x03, 0x03, 0x00}));
}

TEST_F(SpiFlashPart, ABusyFlashIgnoresCommandsUntilItIsReady) {
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x10, 0x00, 0xCA}, 0));
    const Frame identify = spiTransfer({0x9F}, 2);
    EXPECT_EQ(response(identify).back(), 0xFF);
    EXPECT_EQ(response(identify).back(), 0xFF);
    EXPECT_EQ(response(identify).back(), 0x56);
}

TEST_F(SpiFlashPart, NothingIsProgrammedOrErasedWithoutWriteEnable) {
    status(spiTransfer({0x02, 0x00, 0x00, 0x00, 0x00}, 0));
    status(spiTransfer({0x20, 0x00, 0x00, 0x00}, 0));
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x00, 0x00}, 5)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 'H'}));
}

TEST_F(SpiFlashPart, IncompleteProgramAndEraseCommandsAreIgnored) {
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x00, 0x00}, 0));
    status(spiTransfer({0x20, 0x00, 0x00}, 0));
    status(spiTransfer({0x20, 0x00, 0x00, 0x00, 0x00}, 0));
    EXPECT_EQ(response(spiTransfer({0x05}, 2)), spiData({0xFF, 0x02}));
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x00, 0x00}, 5)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 'H'}));
}

TEST_F(SpiFlashPart, ProgrammingOnlyClearsBits) {
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x10, 0x00, 0xF0}, 0));
    waitWhileBusy();
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x10, 0x00, 0x3C}, 0));
    waitWhileBusy();
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x10, 0x00}, 5)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0x30}));
}

TEST_F(SpiFlashPart, ProgrammingWrapsInsideThePageOf256Bytes) {
    enableWriting();
    status(spiTransfer({0x02, 0x00, 0x10, 0xFE, 0x01, 0x02, 0x03}, 0));
    waitWhileBusy();
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x10, 0xFE}, 7)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0x01, 0x02, 0xFF}));
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x10, 0x00}, 6)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0x03, 0xFF}));
}

TEST_F(SpiFlashPart, OfMoreThanAPageTheLastBytesAreProgrammed) {
    enableWriting();
    Frame program{0x01, 0x00, 0x04, 0x0D, 0x05, 0x01, 0, 0, 0x02, 0x00, 0x10, 0x00, 0x00};
    program.insert(program.end(), 255, 0x22);
    program.push_back(0x81);
    status(program);
    waitWhileBusy();
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x10, 0x00}, 6)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0x81, 0x22}));
}

TEST_F(SpiFlashPart, ErasingSetsEveryBitOfTheSectorAndNoOther) {
    for (const Frame& program : {
             spiTransfer({0x02, 0x00, 0x0F, 0xFF, 0x11}, 0),
             spiTransfer({0x02, 0x00, 0x10, 0x00, 0x22}, 0),
             spiTransfer({0x02, 0x00, 0x1F, 0xFF, 0x33}, 0),
             spiTransfer({0x02, 0x00, 0x20, 0x00, 0x44}, 0),
             spiTransfer({0x20, 0x00, 0x18, 0x00}, 0),
         }) {
        enableWriting();
        status(program);
        waitWhileBusy();
    }
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x0F, 0xFF}, 6)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0x11, 0xFF}));
    EXPECT_EQ(response(spiTransfer({0x03, 0x00, 0x1F, 0xFF}, 6)),
              spiData({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x44}));
}

TEST_F(SpiFlashPart, TheFlashUnderstandsModes0And3WithTheChipSelectActiveLow) {
    const Frame identify = spiTransfer({0x9F}, 4);
    const Frame identified = spiData({0xFF, 0x56, 0x41, 0x12});
    const Frame unheard = spiData({0xFF, 0xFF, 0xFF, 0xFF});
    status({0x01, 0x00, 0x02, 0x0D, 0, 3, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(identify), identified);
    status({0x01, 0x00, 0x02, 0x0D, 0, 1, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(identify), unheard);
    status({0x01, 0x00, 0x02, 0x0D, 0, 2, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(identify), unheard);
    status({0x01, 0x00, 0x02, 0x0D, 0, 0, 8, 0, 1, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(identify), unheard);
}

TEST_F(SpiFlashPart, LeastSignificantBitFirstReachesTheFlashReversed) {
    status({0x01, 0x00, 0x02, 0x0D, 1, 0, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    // 0x9F and 0x56 0x41 0x12, each with its bits in the opposite order.
    EXPECT_EQ(response(spiTransfer({0xF9}, 4)), spiData({0xFF, 0x6A, 0x82, 0x48}));
}

TEST_F(SpiFlashPart, WordsOf16BitsReachTheFlashHighByteFirst) {
    status({0x01, 0x00, 0x02, 0x0D, 0, 0, 16, 0, 0, 0x40, 0x42, 0x0F, 0x00});
    EXPECT_EQ(response(spiTransfer({0xFF, 0x9F}, 4)), spiData({0x56, 0xFF, 0x12, 0x41}));
}

} // namespace
