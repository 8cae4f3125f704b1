#include "usbip/ListeningSocket.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace usbip;

namespace {

TEST(ListeningSocket, AnAddressMustBeNumeric) {
    EXPECT_THROW(listeningSocket("localhost", 0), std::runtime_error);
}

TEST(ListeningSocket, APortInUseIsAnError) {
    const FileDescriptor first = listeningSocket("127.0.0.1", 0);
    EXPECT_THROW(listeningSocket("127.0.0.1", portOf(first)), std::runtime_error);
}

} // namespace
