// Shared by the Linux set tests: a sensorctl run, and the USB bus as sysfs shows it.
#pragma once

#include <string>
#include <vector>

namespace linuxsettest {

struct Outcome {
    int exitCode = -1;
    std::vector<std::string> lines; // standard output
    std::string errors;
    std::vector<std::string> log; // the lines liblorvant2 wrote, without their time stamps
};

// Runs the built sensorctl with `environment` (assignments for env(1)) and
// `arguments`, both already quoted for the shell, and `script` on standard
// input. Unless the environment names another, the system bus address names
// nothing, so no colord is reachable.
Outcome Sensorctl(std::string const& environment, std::string const& arguments,
                  std::string const& script = "");

// The names of the whole USB devices (not their interfaces) in
// /sys/bus/usb/devices, in folder order: the product string, else
// "vendor:product" ids. Empty on a machine without a USB bus.
std::vector<std::string> UsbNames();

} // namespace linuxsettest
