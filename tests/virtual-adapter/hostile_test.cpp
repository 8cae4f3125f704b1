#include "Bench.hpp"

#include <random>

using virtual_adapter::AdapterModel;
using virtual_adapter::Bench;
using virtual_adapter::Frame;

namespace {

/// One request of every layout, each with bytes behind its fixed fields where it has any. They
/// bring every bus into operation on the way.
const std::vector<Frame> validRequests{
    {0x01, 0x00, 0x07, 0x04, 0x03},
    {0x01, 0x00, 0x05, 0x04, 0xE4, 0x0C, 0x01},
    {0x01, 0x00, 0x02, 0x08, 0x00, 0x02},
    {0x01, 0x00, 0x01, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x00},
    {0x01, 0x00, 0x02, 0x09, 0x00, 0xA0, 0x86, 0x01, 0x00, 0x01},
    {0x01, 0x00, 0x04, 0x09, 0, 2, 0, 0x51, 2, 0x40, 0x01, 0, 0, 0, 0xCA, 0xFE},
    {0x01, 0x00, 0x05, 0x09, 0, 4, 0, 0x51, 2, 0x40, 0x01, 0, 0, 0},
    {0x01, 0x00, 0x06, 0x09, 0x00, 0x01},
    {0x01, 0x00, 0x01, 0x0D, 0, 0, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00},
    {0x01, 0x00, 0x02, 0x0D, 0, 3, 8, 0, 0, 0x40, 0x42, 0x0F, 0x00},
    {0x01, 0x00, 0x04, 0x0D, 4, 0, 8, 0, 0x03, 0x00, 0x00, 0x00},
    {0x01, 0x00, 0x02, 0x10, 7, 0, 0, 8, 1},
    {0x01, 0x00, 0x03, 0x10, 7, 0, 0, 8, 1},
    {0x01, 0x00, 0x05, 0x10, 2, 0, 'A', 'B'},
    {0x01, 0x00, 0x01, 0x14, 0, 0},
    {0x01, 0x00, 0x01, 0x14, 1, 1, 1},
    {0x01, 0x00, 0x04, 0x14, 0, 2},
    {0x01, 0x00, 0x02, 0x14, 1, 0},
    {0x01, 0x00, 0x03, 0x14, 0},
    {0x01, 0x00, 0x05, 0x14, 0},
    {0x01, 0x00, 0x04, 0x04, 0xE4, 0x0C},
    {0x01, 0x00, 0x01, 0x19, 0, 0, 0, 0},
    {0x01, 0x00, 0x02, 0x19, 0, 0, 0, 0},
    {0x01, 0x00, 0x04, 0x19, 0},
    {0x01, 0x00, 0x05, 0x19},
    {0x01, 0x00, 0x04, 0x19, 0},
    {0x01, 0x00, 0x06, 0x19},
    {0x01, 0x00, 0x07, 0x19, 0x08, 0x00},
    {0x01, 0x00, 0x08, 0x19, 0x09, 0x00, 0, 2, 0x10, 0, 0, 0, 2, 0, 0xCA, 0xFE},
    {0x01, 0x00, 0x08, 0x19, 0x09, 0x01, 0, 2, 0x10, 0, 0, 0, 2, 0},
    {0x01, 0x00, 0x09, 0x19, 0x7E, 0x00, 2, 0x09, 0, 0x00, 0x40},
    {0x01, 0x00, 0x09, 0x19, 0x08, 0x01, 6, 0x8D, 0},
    {0x01, 0x00, 0x0A, 0x19, 0},
    {0x01, 0x00, 0x02, 0x04},
};

/// What holds for the frames that answer any request with a whole header.
void expectAnswer(const Frame& request, const std::vector<Frame>& frames) {
    ASSERT_FALSE(frames.empty()) << testing::PrintToString(request);
    ASSERT_GE(frames.front().size(), 6U) << testing::PrintToString(request);
    EXPECT_EQ(Frame(frames.front().begin(), frames.front().begin() + 4),
              Frame(request.begin(), request.begin() + 4));
    for (size_t i = 1; i < frames.size(); ++i) {
        ASSERT_GE(frames[i].size(), 7U) << testing::PrintToString(request);
        EXPECT_EQ(Frame(frames[i].begin(), frames[i].begin() + 2), (Frame{0x00, 0x00}));
    }
}

class HostileRequests : public testing::TestWithParam<AdapterModel> {};

TEST_P(HostileRequests, EveryPrefixOfAValidRequestIsRefusedAndTheWholeSucceeds) {
    Bench bench(GetParam());
    for (const Frame& valid : validRequests) {
        for (size_t length = 0; length < valid.size(); ++length) {
            const Frame prefix(valid.begin(),
                               valid.begin() + static_cast<Frame::difference_type>(length));
            const std::vector<Frame> frames = bench.frames(prefix);
            if (length < 4) {
                EXPECT_TRUE(frames.empty()) << testing::PrintToString(prefix);
                continue;
            }
            expectAnswer(prefix, frames);
            EXPECT_EQ(bench.status(prefix), 0x0002U) << testing::PrintToString(prefix);
        }
        EXPECT_EQ(bench.status(valid), 0x0000U) << testing::PrintToString(valid);
    }
}

TEST_P(HostileRequests, EveryCommandCodeIsAnswered) {
    Bench bench(GetParam());
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        Frame request{0x01, 0x00};
        virtual_adapter::appendU16(request, static_cast<uint16_t>(code));
        expectAnswer(request, bench.frames(request));
    }
}

TEST_P(HostileRequests, ArbitraryPayloadsAreAnswered) {
    Bench bench(GetParam());
    for (const Frame& valid : validRequests) {
        bench.frames(valid);
    }
    std::mt19937 random(20260101); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same run every time
    for (const unsigned group : {0x04U, 0x08U, 0x09U, 0x0DU, 0x10U, 0x14U, 0x19U}) {
        for (unsigned operation = 0; operation <= 0x0F; ++operation) {
            for (unsigned round = 0; round < 400; ++round) {
                Frame request{0x01, 0x00, static_cast<uint8_t>(operation),
                              static_cast<uint8_t>(group)};
                // Small values are the known ones, so that many a request gets past the checks.
                const uint32_t range = round % 2 == 0 ? 3 : 256;
                for (size_t length = random() % 24; length > 0; --length) {
                    request.push_back(static_cast<uint8_t>(random() % range));
                }
                expectAnswer(request, bench.frames(request));
            }
        }
    }
}

TEST_P(HostileRequests, AValidRequestWithOneByteChangedIsAnswered) {
    Bench bench(GetParam());
    for (const Frame& valid : validRequests) {
        for (size_t position = 4; position < valid.size(); ++position) {
            for (unsigned value = 0; value <= 0xFF; ++value) {
                Frame request = valid;
                request[position] = static_cast<uint8_t>(value);
                expectAnswer(request, bench.frames(request));
            }
        }
        bench.frames(valid);
    }
}

INSTANTIATE_TEST_SUITE_P(EveryModel, HostileRequests,
                         testing::Values(virtual_adapter::fullSpeedModel,
                                         virtual_adapter::highSpeedModel),
                         [](const auto& instance) {
                             return instance.param.reportSize == 64 ? "FullSpeed" : "HighSpeed";
                         });

} // namespace
