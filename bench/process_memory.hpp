// The resident memory of this process, read from /proc/self/status, for
// benchmarks that report memory next to time.
#pragma once

#include <optional>

namespace lumenote::bench {

// The peak resident set size of this process so far (VmHWM), in bytes;
// nullopt when /proc cannot be read.
std::optional<double> peakResidentBytes();

// The resident set size now (VmRSS), in bytes; nullopt likewise.
std::optional<double> residentBytes();

// Lowers the recorded peak to the current resident size (Linux's clear_refs
// "5"), so that the next peakResidentBytes() is the peak of what ran in
// between rather than of the whole process. False when the kernel refuses;
// the peak then stays the process's.
bool resetPeakResident();

// Bytes this process has handed to write(2) and its kin so far (wchar of
// /proc/self/io); 0 when it cannot be read.
double bytesWrittenByProcess();

// Bytes as MiB, the unit the benchmarks report memory in.
inline double mebibytes(double bytes) {
    return bytes / (1024.0 * 1024.0);
}

}  // namespace lumenote::bench
