#include "process_memory.hpp"

#include <fstream>
#include <string>
#include <string_view>

namespace lumenote::bench {

namespace {

// A "Name:   1234 kB" line of /proc/self/status, in bytes.
std::optional<double> statusField(std::string_view name) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.size() > name.size() && line.starts_with(name) && line[name.size()] == ':') {
            return std::stod(line.substr(name.size() + 1)) * 1024.0;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<double> peakResidentBytes() {
    return statusField("VmHWM");
}

std::optional<double> residentBytes() {
    return statusField("VmRSS");
}

double bytesWrittenByProcess() {
    std::ifstream io("/proc/self/io");
    std::string key;
    double value = 0;
    while (io >> key >> value) {
        if (key == "wchar:") {
            return value;
        }
    }
    return 0;
}

bool resetPeakResident() {
    std::ofstream clear("/proc/self/clear_refs");
    clear << "5";
    clear.flush();
    return clear.good();
}

}  // namespace lumenote::bench
