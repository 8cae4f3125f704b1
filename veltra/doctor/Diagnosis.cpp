// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "doctor/Diagnosis.hpp"

#include <algorithm>
#include <cstdio>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

namespace veltra {

namespace {

namespace fs = std::filesystem;
using State = Check::State;

const char* const ruleName = "70-veltra-adapter.rules";
const char* const reload = "sudo udevadm control --reload && sudo udevadm trigger";

/// Where udev looks for rules, the user's own ones first.
const char* const ruleDirectories[] = {"etc/udev/rules.d", "run/udev/rules.d",
                                       "usr/lib/udev/rules.d", "lib/udev/rules.d"};

Check ok(const char* name, const std::string& text) {
    return {name, State::Ok, text, ""};
}
Check fail(const char* name, const std::string& text, const std::string& cure) {
    return {name, State::Fail, text, cure};
}
Check skip(const char* name, const std::string& text) {
    return {name, State::Skip, text, ""};
}

std::string speedInWords(const std::string& megabits) {
    if (megabits == "12") {
        return "full speed";
    }
    return megabits == "480" ? "high speed" : megabits + " Mbit/s";
}

std::string ownership(const fs::path& node) {
    struct stat status {};
    if (stat(node.c_str(), &status) != 0) {
        return "not there";
    }
    const passwd* const owner = getpwuid(status.st_uid);
    const group* const members = getgrgid(status.st_gid);
    char mode[8];
    (void)std::snprintf(mode, sizeof mode, "%04o", status.st_mode & 07777U);
    return (owner == nullptr ? std::to_string(status.st_uid) : owner->pw_name) + ":" +
           (members == nullptr ? std::to_string(status.st_gid) : members->gr_name) + " " + mode;
}

/// The installed rule as a path of the machine; empty when udev knows none.
std::string installedRule(const Roots& roots) {
    for (const char* const directory : ruleDirectories) {
        std::error_code error;
        if (fs::exists(roots.root / directory / ruleName, error)) {
            return std::string("/") + directory + "/" + ruleName;
        }
    }
    return "";
}

/// A rule below another prefix, which udev does not read; or where the package has it.
std::string ruleToCopy(const Roots& roots) {
    std::error_code error;
    const std::string local = std::string("usr/local/lib/udev/rules.d/") + ruleName;
    return fs::exists(roots.root / local, error) ? "/" + local
                                                 : std::string("/usr/lib/udev/rules.d/") + ruleName;
}

Check checkUsb(const std::vector<UsbDevice>& devices,
               const std::vector<VeltraSDK_AdapterInfo>& adapters) {
    if (!devices.empty()) {
        const UsbDevice& device = devices.front();
        return ok("usb", device.identifiers + " at " + device.port + ", " +
                             speedInWords(device.speed) +
                             (device.serial.empty() ? ", no serial number"
                                                    : ", serial number " + device.serial));
    }
    if (!adapters.empty()) {
        return ok("usb", std::string("a virtual adapter at ") + adapters.front().path);
    }
    return fail("usb", "no adapter is plugged in",
                "plug one in and look: lsusb; or do without: veltra --virtual list");
}

Check checkRule(const Roots& roots, bool mayOpen) {
    const std::string rule = installedRule(roots);
    if (!rule.empty()) {
        return ok("udev rule", rule);
    }
    return mayOpen ? skip("udev rule", "not installed, and not needed by you")
                   : fail("udev rule", std::string(ruleName) + " is where udev does not look",
                          "sudo cp " + ruleToCopy(roots) + " /etc/udev/rules.d/ && " + reload);
}

Check checkPermission(const Machine& machine, const UsbDevice& device, bool mayOpen) {
    // The node's name is the machine's, wherever a test keeps it.
    const std::string node = "/dev" / device.node.lexically_relative(machine.roots.dev);
    if (mayOpen) {
        return ok("permission", node + " is writable for you");
    }
    const std::string rule = installedRule(machine.roots);
    const std::string cure =
        rule.empty()
            ? "sudo cp " + ruleToCopy(machine.roots) + " /etc/udev/rules.d/ && " + reload
            : std::string(reload) + "; over ssh also: sudo adduser $USER plugdev, and log in again";
    return fail("permission", node + " is not writable for you (" + ownership(device.node) + ")",
                cure);
}

Check checkDriver(const UsbDevice& device) {
    const std::string& driver = device.driver;
    if (driver.empty() || driver == "usbhid" || driver == "usbfs") {
        return ok("driver", driver.empty()       ? "none is bound"
                            : driver == "usbhid" ? "usbhid, which makes way"
                                                 : "usbfs, as programs have it");
    }
    return fail("driver", driver + " is bound and does not make way",
                "echo " + device.port + ":1.0 | sudo tee /sys/bus/usb/drivers/" + driver +
                    "/unbind");
}

Check checkHolder(const Machine& machine, const UsbDevice& device) {
    const std::string holder = holderOf(machine.roots, device.node);
    if (!holder.empty()) {
        const std::string process = holder.substr(holder.rfind(' ') + 1);
        return fail("free", "in use by " + holder,
                    "end it: kill " + process.substr(0, process.size() - 1));
    }
    if (device.driver == "usbfs") {
        return fail("free", "in use by a program of another user",
                    "look for it: sudo fuser -v /dev/bus/usb/*/*");
    }
    return ok("free", "no program has it open");
}

Check checkEnumeration(const std::vector<VeltraSDK_AdapterInfo>& adapters) {
    if (adapters.empty()) {
        return fail("hidapi", "hidapi does not find the adapter",
                    "is it the libusb back end? ldconfig -p | grep hidapi");
    }
    return ok(
        "hidapi",
        "finds it at " + std::string(adapters.front().path) +
            (adapters.size() > 1 ? ", and " + std::to_string(adapters.size() - 1) + " more" : ""));
}

Check checkStrings(const Machine& machine, const std::vector<VeltraSDK_AdapterInfo>& adapters,
                   bool mayOpen) {
    if (adapters.empty()) {
        return skip("strings", "needs hidapi to find it");
    }
    if (!mayOpen || !adapters.front().accessible) {
        return skip("strings", "needs permission");
    }
    const std::string trouble = machine.talkTo(adapters.front());
    return trouble.empty()
               ? ok("strings", "the adapter answers")
               : fail("strings", trouble, "unplug it, plug it in, and ask again: veltra doctor");
}

/// "0.13.1" is older than 0.13.10, which letters would not tell.
bool isOlder(const std::string& version, int major, int minor, int patch) {
    int has[3] = {0, 0, 0};
    (void)std::sscanf(version.c_str(), "%d.%d.%d", &has[0], &has[1],
                      &has[2]); // NOLINT(cert-err34-c)
    const int wants[3] = {major, minor, patch};
    return std::lexicographical_compare(std::begin(has), std::end(has), std::begin(wants),
                                        std::end(wants));
}

Check checkVersions(const Machine& machine) {
    const std::string text =
        "library " + machine.libraryVersion + ", hidapi " + machine.hidapiVersion;
    return isOlder(machine.hidapiVersion, 0, 13, 1) && machine.hidapiVersion != "unknown"
               ? fail("versions", text + ": before 0.13.1 it hangs when it closes",
                      "sudo apt install libhidapi-libusb0")
               : ok("versions", text);
}

} // namespace

std::vector<Check> diagnose(const Machine& machine) {
    const std::vector<UsbDevice> devices = usbDevices(machine.roots);
    const std::vector<VeltraSDK_AdapterInfo> adapters = machine.adapters();
    std::vector<Check> checks{checkUsb(devices, adapters)};
    if (checks.front().state == State::Fail) {
        for (const char* const name :
             {"permission", "udev rule", "driver", "free", "hidapi", "strings"}) {
            checks.push_back(skip(name, "needs an adapter"));
        }
    } else if (devices.empty()) {
        for (const char* const name : {"permission", "udev rule", "driver", "free"}) {
            checks.push_back(skip(name, "a virtual adapter needs none"));
        }
        checks.push_back(checkEnumeration(adapters));
        checks.push_back(checkStrings(machine, adapters, true));
    } else {
        const UsbDevice& device = devices.front();
        const bool mayOpen = machine.mayOpen(device.node);
        checks.push_back(checkPermission(machine, device, mayOpen));
        checks.push_back(checkRule(machine.roots, mayOpen));
        checks.push_back(checkDriver(device));
        checks.push_back(checkHolder(machine, device));
        checks.push_back(checkEnumeration(adapters));
        checks.push_back(checks[4].state == State::Fail
                             ? skip("strings", "needs the other program to end")
                             : checkStrings(machine, adapters, mayOpen));
    }
    checks.push_back(checkVersions(machine));
    return checks;
}

} // namespace veltra
