// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "doctor/Diagnosis.hpp"

#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace veltra {
namespace {

namespace fs = std::filesystem;

void put(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

VeltraSDK_AdapterInfo info(const std::string& path, bool accessible) {
    VeltraSDK_AdapterInfo adapter{};
    path.copy(adapter.path, sizeof adapter.path - 1);
    adapter.reportSize = 64;
    adapter.accessible = accessible;
    return adapter;
}

/// A machine of the test's own, with an adapter at port 1-1.4 that everything is well with.
class Diagnosis : public testing::Test {
protected:
    void SetUp() override {
        std::string name = testing::TempDir() + "veltra-doctor-XXXXXX";
        root = mkdtemp(name.data());
        devices = root / "sys/bus/usb/devices";
        device = plugIn("1-1.4", "14", "VA-0001");
        node = root / "dev/bus/usb/001/014";
        machine.roots = {root / "sys", root / "dev", root / "proc", root};
        bind("usbhid");
        put(devices / "usb1/idVendor", "1d6b\n");
        put(devices / "usb1/idProduct", "0001\n");
        put(root / "usr/lib/udev/rules.d/70-veltra-adapter.rules", "");
        machine.program = root / "opt/bin/veltra";
        machine.mayOpen = [this](const fs::path& asked) { return asked == node && mayOpen; };
        machine.adapters = [this] { return adapters; };
        machine.talkTo = [this](const VeltraSDK_AdapterInfo& adapter) {
            spokenTo = adapter.path;
            return trouble;
        };
        machine.hidapiVersion = "0.13.1";
        machine.libraryVersion = "1.2.3";
    }
    void TearDown() override { fs::remove_all(root); }

    fs::path plugIn(const std::string& port, const std::string& number, const std::string& serial) {
        const fs::path plugged = devices / port;
        put(plugged / "idVendor", "1209\n");
        put(plugged / "idProduct", "0001\n");
        put(plugged / "busnum", "1\n");
        put(plugged / "devnum", number + "\n");
        put(plugged / "speed", "12\n");
        put(plugged / "serial", serial + "\n");
        put(root / "dev/bus/usb/001" / ("0" + number), "");
        return plugged;
    }
    void bind(const std::string& driver) {
        const fs::path interface = device / "1-1.4:1.0";
        fs::create_directories(interface);
        fs::remove(interface / "driver");
        if (!driver.empty()) {
            fs::create_symlink("../../../../bus/usb/drivers/" + driver, interface / "driver");
        }
    }
    void open(const std::string& process, const std::string& name, const fs::path& file) {
        put(root / "proc" / process / "comm", name + "\n");
        fs::create_directories(root / "proc" / process / "fd");
        fs::create_symlink(file, root / "proc" / process / "fd/3");
    }
    void removeRule() { fs::remove_all(root / "usr"); }

    /// What it tells of one check, with its cure behind an arrow.
    std::string told(const std::string& name) {
        for (const Check& check : diagnose(machine)) {
            if (check.name == name) {
                const char* const state = check.state == Check::State::Ok     ? "ok: "
                                          : check.state == Check::State::Fail ? "FAIL: "
                                                                              : "skip: ";
                return state + check.text + (check.cure.empty() ? "" : " -> " + check.cure);
            }
        }
        return "no such check";
    }

    fs::path root;
    Machine machine;
    bool mayOpen = true;
    std::string trouble;
    std::string spokenTo; ///< The path of an adapter.
    std::vector<VeltraSDK_AdapterInfo> adapters{info("1-1.4:1.0", true)};
    fs::path devices;
    fs::path device;
    fs::path node;
};

TEST_F(Diagnosis, WhereAllIsWellEveryCheckSaysSo) {
    std::vector<std::string> names;
    for (const Check& check : diagnose(machine)) {
        EXPECT_EQ(check.state, Check::State::Ok) << check.name << ": " << check.text;
        names.push_back(check.name);
    }
    EXPECT_EQ(names, std::vector<std::string>({"usb", "permission", "udev rule", "driver", "free",
                                               "hidapi", "strings", "versions"}));
    EXPECT_EQ(told("usb"), "ok: 1209:0001 at 1-1.4, full speed, serial number VA-0001");
    EXPECT_EQ(told("permission"), "ok: /dev/bus/usb/001/014 is writable for you");
    EXPECT_EQ(told("udev rule"), "ok: /usr/lib/udev/rules.d/70-veltra-adapter.rules");
    EXPECT_EQ(told("driver"), "ok: usbhid, which makes way");
    EXPECT_EQ(told("free"), "ok: no program has it open");
    EXPECT_EQ(told("hidapi"), "ok: finds it at 1-1.4:1.0");
    EXPECT_EQ(told("strings"), "ok: the adapter answers");
    EXPECT_EQ(told("versions"), "ok: library 1.2.3, hidapi 0.13.1");
}

TEST_F(Diagnosis, WithoutAnAdapterItSaysToPlugOneIn) {
    fs::remove_all(device);
    adapters.clear();
    EXPECT_EQ(told("usb"), "FAIL: no adapter is plugged in -> plug one in and look: lsusb; or do "
                           "without: veltra --virtual list");
    EXPECT_EQ(told("permission"), "skip: needs an adapter");
    EXPECT_EQ(told("strings"), "skip: needs an adapter");
    EXPECT_EQ(told("versions"), "ok: library 1.2.3, hidapi 0.13.1");
}

TEST_F(Diagnosis, WithoutSysfsAVirtualAdapterIsFound) {
    fs::remove_all(root / "sys");
    adapters = {info("1-1:1.0", true)};
    EXPECT_EQ(told("usb"), "ok: a virtual adapter at 1-1:1.0");
    EXPECT_EQ(told("permission"), "skip: a virtual adapter needs none");
    EXPECT_EQ(told("strings"), "ok: the adapter answers");
}

TEST_F(Diagnosis, AVirtualAdapterWithoutPermissionIsNotSpokenTo) {
    fs::remove_all(root / "sys");
    adapters = {info("1-1:1.0", false)};
    EXPECT_EQ(told("strings"), "skip: needs permission");
}

TEST_F(Diagnosis, AHighSpeedAdapterWithoutASerialNumberIsDescribed) {
    put(device / "idProduct", "0002\n");
    put(device / "speed", "480\n");
    fs::remove(device / "serial");
    EXPECT_EQ(told("usb"), "ok: 1209:0002 at 1-1.4, high speed, no serial number");
    put(device / "speed", "5000\n");
    EXPECT_EQ(told("usb"), "ok: 1209:0002 at 1-1.4, 5000 Mbit/s, no serial number");
}

TEST_F(Diagnosis, WithoutTheRuleItSaysWhereToCopyItTo) {
    removeRule();
    mayOpen = false;
    adapters = {info("1-1.4:1.0", false)};
    ASSERT_EQ(chmod(node.c_str(), 0664), 0);
    const std::string own = (root / "opt/lib/udev/rules.d/70-veltra-adapter.rules").string();
    put(own, "");
    const std::string cure = " -> sudo cp " + own +
                             " /etc/udev/rules.d/ && sudo udevadm control --reload && sudo udevadm "
                             "trigger";
    EXPECT_EQ(told("udev rule"), "FAIL: 70-veltra-adapter.rules is not where udev looks" + cure);
    const std::string permission = told("permission");
    EXPECT_EQ(permission.find("FAIL: /dev/bus/usb/001/014 is not writable for you ("), 0U);
    EXPECT_NE(permission.find(" 0664)" + cure), std::string::npos) << permission;
    EXPECT_EQ(told("strings"), "skip: needs permission");
}

TEST_F(Diagnosis, ARuleInABuildIsToBeCopiedFromThere) {
    removeRule();
    mayOpen = false;
    put(root / "opt/packaging/udev/70-veltra-adapter.rules", "");
    EXPECT_NE(told("udev rule").find("-> sudo cp " + root.string() + "/opt/packaging/udev/70-"),
              std::string::npos);
}

TEST_F(Diagnosis, ARuleThatIsNowhereComesWithItsPackage) {
    removeRule();
    mayOpen = false;
    const std::string cure = " -> sudo apt install --reinstall libveltrasdk1";
    EXPECT_EQ(told("udev rule"), "FAIL: 70-veltra-adapter.rules is not where udev looks" + cure);
    EXPECT_NE(told("permission").find(cure), std::string::npos);
}

TEST_F(Diagnosis, ARuleBelowLocalIsReadByUdevToo) {
    removeRule();
    put(root / "usr/local/lib/udev/rules.d/70-veltra-adapter.rules", "");
    EXPECT_EQ(told("udev rule"), "ok: /usr/local/lib/udev/rules.d/70-veltra-adapter.rules");
}

TEST_F(Diagnosis, WithTheRuleAndWithoutPermissionItSaysToApplyIt) {
    mayOpen = false;
    EXPECT_EQ(told("udev rule"), "ok: /usr/lib/udev/rules.d/70-veltra-adapter.rules");
    EXPECT_NE(told("permission")
                  .find("-> sudo udevadm control --reload && sudo udevadm trigger; over "
                        "ssh also: sudo adduser $USER plugdev, and log in again"),
              std::string::npos);
}

TEST_F(Diagnosis, ARuleOfTheMachinesOwnStandsBeforeThePackages) {
    put(root / "etc/udev/rules.d/70-veltra-adapter.rules", "");
    EXPECT_EQ(told("udev rule"), "ok: /etc/udev/rules.d/70-veltra-adapter.rules");
}

TEST_F(Diagnosis, WhoeverMayOpenItNeedsNoRule) {
    removeRule();
    EXPECT_EQ(told("udev rule"), "skip: not installed, and not needed by you");
}

TEST_F(Diagnosis, ANodeThatIsNotThereIsSaidToBeMissing) {
    mayOpen = false;
    fs::remove(node);
    EXPECT_NE(told("permission").find("(not there)"), std::string::npos);
}

TEST_F(Diagnosis, ADriverThatDoesNotMakeWayIsToBeUnbound) {
    bind("hid-sensor-hub");
    EXPECT_EQ(told("driver"),
              "FAIL: hid-sensor-hub is bound and does not make way -> echo 1-1.4:1.0 | "
              "sudo tee /sys/bus/usb/drivers/hid-sensor-hub/unbind");
    bind("");
    EXPECT_EQ(told("driver"), "ok: none is bound");
}

TEST_F(Diagnosis, AProgramThatHasItOpenIsNamed) {
    bind("usbfs");
    open("4711", "python3", node);
    EXPECT_EQ(told("driver"), "ok: usbfs, as programs have it");
    EXPECT_EQ(told("free"), "FAIL: in use by python3 (process 4711) -> end it: kill 4711");
    EXPECT_EQ(told("strings"), "skip: needs the other program to end");
}

TEST_F(Diagnosis, AProgramThatHasAnotherDeviceOpenIsNot) {
    open("4711", "python3", root / "dev/bus/usb/001/015");
    put(root / "proc/self/comm", "veltra\n");
    EXPECT_EQ(told("free"), "ok: no program has it open");
}

TEST_F(Diagnosis, AProgramOfAnotherUserIsToBeLookedForWithRights) {
    bind("usbfs");
    EXPECT_EQ(told("free"),
              "FAIL: in use by a program of another user -> look for it: sudo fuser -v "
              "/dev/bus/usb/*/*");
}

TEST_F(Diagnosis, AnAdapterThatHidapiDoesNotFindPointsToItsBackEnd) {
    adapters.clear();
    EXPECT_EQ(told("hidapi"),
              "FAIL: hidapi does not find the adapter -> is it the libusb back end? "
              "ldconfig -p | grep hidapi");
    EXPECT_EQ(told("strings"), "skip: needs hidapi to find it");
}

TEST_F(Diagnosis, SeveralAdaptersAreCounted) {
    adapters.push_back(info("1-2:1.0", true));
    EXPECT_EQ(told("hidapi"), "ok: finds it at 1-1.4:1.0, and 1 more");
}

TEST_F(Diagnosis, OfSeveralAdaptersTheOneThatIsMeantIsLookedAt) {
    plugIn("1-2", "15", "VA-0002");
    adapters.push_back(info("1-2:1.0", true));
    EXPECT_EQ(told("strings"), "ok: the adapter answers");
    EXPECT_EQ(spokenTo, "1-1.4:1.0");

    open("4711", "python3", node);
    for (const char* const name : {"VA-0002", "1-2:1.0"}) {
        machine.device = name;
        spokenTo.clear();
        EXPECT_EQ(told("usb"), "ok: 1209:0001 at 1-2, full speed, serial number VA-0002");
        EXPECT_EQ(told("permission").find("FAIL: /dev/bus/usb/001/015 is not writable"), 0U);
        EXPECT_EQ(told("free"), "ok: no program has it open");
        EXPECT_EQ(told("hidapi"), "ok: finds it at 1-2:1.0, and 1 more");
        node = root / "dev/bus/usb/001/015"; // which the user may open now
        EXPECT_EQ(told("strings"), "ok: the adapter answers");
        EXPECT_EQ(spokenTo, "1-2:1.0");
        node = root / "dev/bus/usb/001/014";
    }
}

TEST_F(Diagnosis, AnAdapterThatNobodyHasIsLookedForInTheList) {
    machine.device = "VA-0009";
    EXPECT_EQ(told("usb"), "FAIL: no adapter has the serial number or path VA-0009 -> see which "
                           "there are: veltra list");
    EXPECT_EQ(told("strings"), "skip: needs an adapter");
}

TEST_F(Diagnosis, AVirtualAdapterIsLookedAtBesideARealOne) {
    adapters = {info("1-7:1.0", true)};
    EXPECT_EQ(told("usb"), "ok: a virtual adapter at 1-7:1.0");
    EXPECT_EQ(told("hidapi"), "ok: finds it at 1-7:1.0");
}

TEST_F(Diagnosis, AnAdapterThatDoesNotAnswerIsToBePluggedInAgain) {
    trouble = "no response within 5000 ms";
    EXPECT_EQ(told("strings"), "FAIL: no response within 5000 ms -> unplug it, plug it in, and ask "
                               "again: veltra doctor");
}

TEST_F(Diagnosis, AnOldHidapiIsNamed) {
    machine.hidapiVersion = "0.9.0";
    EXPECT_EQ(told("versions"), "FAIL: library 1.2.3, hidapi 0.9.0: before 0.13.1 it hangs when it "
                                "closes -> sudo apt install libhidapi-libusb0");
    machine.hidapiVersion = "0.13.10";
    EXPECT_EQ(told("versions"), "ok: library 1.2.3, hidapi 0.13.10");
    machine.hidapiVersion = "unknown";
    EXPECT_EQ(told("versions"), "ok: library 1.2.3, hidapi unknown");
}

} // namespace
} // namespace veltra
