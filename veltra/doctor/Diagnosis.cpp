// SPDX-FileCopyrightText: 2026 The libveltrasdk authors
// SPDX-License-Identifier: MIT

#include "doctor/Diagnosis.hpp"

#include "Words.hpp"

#include <algorithm>
#include <cstdio>
#include <grp.h>
#include <optional>
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
                                       "usr/local/lib/udev/rules.d", "usr/lib/udev/rules.d",
                                       "lib/udev/rules.d"};

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

/// A rule below the program's own prefix or in its build, where udev does not look; or the package.
std::string cureOfMissingRule(const Machine& machine) {
    const fs::path prefix = machine.program.parent_path().parent_path();
    for (const char* const directory : {"lib/udev/rules.d", "packaging/udev"}) {
        const fs::path rule = prefix / directory / ruleName;
        std::error_code error;
        if (fs::exists(rule, error)) {
            return "sudo cp " + quoted(rule) + " /etc/udev/rules.d/ && " + reload;
        }
    }
    return "sudo apt install --reinstall libveltrasdk1";
}

/// The adapter that the checks are about: as the kernel has it, and as hidapi finds it.
struct Subject {
    std::optional<UsbDevice> device; ///< Not of a virtual adapter.
    std::optional<VeltraSDK_AdapterInfo> adapter;
    size_t others = 0; ///< That hidapi finds beside it.
};

/// The port of "1-1.4:1.0" is 1-1.4.
std::string portOf(const std::string& path) {
    return path.substr(0, path.find(':'));
}

template <typename Element, typename Predicate>
std::optional<Element> findIn(const std::vector<Element>& elements, const Predicate& isMeant) {
    const auto found = std::find_if(elements.begin(), elements.end(), isMeant);
    return found == elements.end() ? std::nullopt : std::optional<Element>(*found);
}

Subject subjectOf(const Machine& machine) {
    const std::string& name = machine.device;
    const std::vector<VeltraSDK_AdapterInfo> adapters = machine.adapters();
    const auto findAt = [&](const std::string& port) {
        return findIn(adapters, [&](const VeltraSDK_AdapterInfo& adapter) {
            return portOf(adapter.path) == port;
        });
    };
    Subject subject;
    subject.device = findIn(usbDevices(machine.roots), [&](const UsbDevice& device) {
        // Where hidapi finds none of them, it finds virtual ones.
        return name.empty() ? adapters.empty() || findAt(device.port)
                            : name == device.serial || portOf(name) == device.port;
    });
    subject.adapter = subject.device ? findAt(subject.device->port)
                                     : findIn(adapters, [&](const VeltraSDK_AdapterInfo& adapter) {
                                           return name.empty() || name == adapter.serialNumber ||
                                                  name == adapter.path;
                                       });
    subject.others = adapters.size() - (subject.adapter ? 1 : 0);
    return subject;
}

Check checkUsb(const Machine& machine, const Subject& subject) {
    if (subject.device) {
        const UsbDevice& device = *subject.device;
        return ok("usb", device.identifiers + " at " + device.port + ", " +
                             speedInWords(device.speed) +
                             (device.serial.empty() ? ", no serial number"
                                                    : ", serial number " + device.serial));
    }
    if (subject.adapter) {
        return ok("usb", std::string("a virtual adapter at ") + subject.adapter->path);
    }
    return machine.device.empty()
               ? fail("usb", "no adapter is plugged in",
                      "plug one in and look: lsusb; or do without: veltra --virtual list")
               : fail("usb", "no adapter has the serial number or path " + machine.device,
                      "see which there are: veltra list");
}

Check checkRule(const Machine& machine, bool mayOpen) {
    const std::string rule = installedRule(machine.roots);
    if (!rule.empty()) {
        return ok("udev rule", rule);
    }
    return mayOpen ? skip("udev rule", "not installed, and not needed by you")
                   : fail("udev rule", std::string(ruleName) + " is not where udev looks",
                          cureOfMissingRule(machine));
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
            ? cureOfMissingRule(machine)
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

Check checkEnumeration(const Subject& subject) {
    if (!subject.adapter) {
        return fail("hidapi", "hidapi does not find the adapter",
                    "is it the libusb back end? ldconfig -p | grep hidapi");
    }
    std::string text = std::string("finds it at ") + subject.adapter->path;
    if (subject.others > 0) {
        text += ", and " + std::to_string(subject.others) + " more";
    }
    return ok("hidapi", text);
}

Check checkStrings(const Machine& machine, const Subject& subject, bool mayOpen) {
    if (!subject.adapter) {
        return skip("strings", "needs hidapi to find it");
    }
    if (!mayOpen || !subject.adapter->accessible) {
        return skip("strings", "needs permission");
    }
    const std::string trouble = machine.talkTo(*subject.adapter);
    return trouble.empty()
               ? ok("strings", "the adapter answers")
               : fail("strings", trouble, "unplug it, plug it in, and ask again: veltra doctor");
}

/// "0.13.1" is older than 0.13.10, which letters would not tell.
bool isOlder(const std::string& version, int major, int minor, int patch) {
    int has[3] = {0, 0, 0};
    // NOLINTNEXTLINE(cert-err34-c): what is no number is 0.
    (void)std::sscanf(version.c_str(), "%d.%d.%d", &has[0], &has[1], &has[2]);
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
    const Subject subject = subjectOf(machine);
    std::vector<Check> checks{checkUsb(machine, subject)};
    if (checks.front().state == State::Fail) {
        for (const char* const name :
             {"permission", "udev rule", "driver", "free", "hidapi", "strings"}) {
            checks.push_back(skip(name, "needs an adapter"));
        }
    } else if (!subject.device) {
        for (const char* const name : {"permission", "udev rule", "driver", "free"}) {
            checks.push_back(skip(name, "a virtual adapter needs none"));
        }
        checks.push_back(checkEnumeration(subject));
        checks.push_back(checkStrings(machine, subject, true));
    } else {
        const UsbDevice& device = *subject.device;
        const bool mayOpen = machine.mayOpen(device.node);
        checks.push_back(checkPermission(machine, device, mayOpen));
        checks.push_back(checkRule(machine, mayOpen));
        checks.push_back(checkDriver(device));
        checks.push_back(checkHolder(machine, device));
        checks.push_back(checkEnumeration(subject));
        checks.push_back(checks[4].state == State::Fail
                             ? skip("strings", "needs the other program to end")
                             : checkStrings(machine, subject, mayOpen));
    }
    checks.push_back(checkVersions(machine));
    return checks;
}

} // namespace veltra
