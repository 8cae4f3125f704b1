#include "HostileHid.hpp"

#include "driver/UsbTransferProtocol.hpp"

#include <chrono>
#include <utility>

namespace fuzzing {

namespace {

constexpr size_t fullSpeedReportSize = 64;
constexpr size_t highSpeedReportSize = 1024;

/// How long a read waits that nothing answers: closing the link waits for it.
constexpr std::chrono::microseconds emptyReadTime{50};

HostileHid* current = nullptr;

// hidapi's records are of pointers to characters that may be changed.
char path[] = "1-1:1.0";
wchar_t serialNumber[] = L"VA-0001";

} // namespace

HostileHid::HostileHid(bool highSpeed)
    : reportSize(highSpeed ? highSpeedReportSize : fullSpeedReportSize) {
    adapter.path = path;
    adapter.serial_number = serialNumber;
    adapter.vendor_id = VELTRASDK_USB_VENDOR_ID;
    adapter.product_id =
        highSpeed ? VELTRASDK_USB_PRODUCT_ID_HIGH_SPEED : VELTRASDK_USB_PRODUCT_ID_FULL_SPEED;
    current = this;
}

HostileHid::~HostileHid() {
    current = nullptr;
}

HostileHid& HostileHid::instance() {
    return *current;
}

void HostileHid::answerWith(Bytes lists) {
    answerLists = std::move(lists);
    answers = Input(answerLists.data(), answerLists.size());
}

hid_device* HostileHid::open() {
    pending.clear();
    readerIsWaiting = false;
    return reinterpret_cast<hid_device*>(this);
}

int HostileHid::write(const uint8_t* report, size_t length) {
    require(length == 1 + reportSize, "a whole report is written");
    request.assign(report + 1, report + length);
    bool taken = true;
    std::deque<Read> reads;
    for (uint8_t kind = answers.byte(); kind != 0; kind = answers.byte()) {
        switch (kind) {
        case 1:
            reads.emplace_back(answers.bytes());
            break;
        case 2:
            answerMessage(reads, answers.twoPartBytes());
            break;
        case 3:
            reads.emplace_back(std::nullopt);
            break;
        case 4:
            taken = false;
            break;
        case 5: {
            Bytes message(request.begin() + 2, request.begin() + 6);
            const Bytes rest = answers.twoPartBytes();
            message.insert(message.end(), rest.begin(), rest.end());
            answerMessage(reads, message);
            break;
        }
        default:
            break;
        }
    }
    std::unique_lock<std::mutex> lock(mutex);
    pending.swap(reads);
    changed.notify_all();
    changed.wait(lock, [this] { return pending.empty() && readerIsWaiting; });
    return taken ? static_cast<int>(length) : -1;
}

void HostileHid::answerMessage(std::deque<Read>& reads, const Bytes& message) const {
    std::vector<Bytes> packets;
    UsbTransferProtocol(reportSize).createUsbOutTransferPackets(packets, message);
    reads.insert(reads.end(), packets.begin(), packets.end());
}

int HostileHid::readTimeout(uint8_t* report, size_t length) {
    std::unique_lock<std::mutex> lock(mutex);
    if (std::exchange(lastReadFailed, false)) {
        return 0; // ends the pause that the driver makes after failing reads
    }
    readerIsWaiting = pending.empty();
    changed.notify_all();
    if (!changed.wait_for(lock, emptyReadTime, [this] { return !pending.empty(); })) {
        return 0;
    }
    readerIsWaiting = false;
    const Read read = std::move(pending.front());
    pending.pop_front();
    if (!read) {
        lastReadFailed = true;
        return -1;
    }
    const size_t count = std::min(read->size(), length);
    std::copy_n(read->begin(), count, report);
    return static_cast<int>(count);
}

} // namespace fuzzing

using fuzzing::HostileHid;

extern "C" {

int hid_init(void) {
    return 0;
}

int hid_exit(void) {
    return 0;
}

hid_device_info* hid_enumerate(unsigned short /*vendorId*/, unsigned short /*productId*/) {
    return HostileHid::instance().enumerate();
}

void hid_free_enumeration(hid_device_info* /*devices*/) {}

hid_device* hid_open_path(const char* /*path*/) {
    return HostileHid::instance().open();
}

void hid_close(hid_device* /*device*/) {}

int hid_write(hid_device* /*device*/, const unsigned char* data, size_t length) {
    return HostileHid::instance().write(data, length);
}

int hid_read_timeout(hid_device* /*device*/, unsigned char* data, size_t length,
                     int /*milliseconds*/) {
    return HostileHid::instance().readTimeout(data, length);
}

} // extern "C"
