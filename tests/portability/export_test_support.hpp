// Shared pieces of the export tests: a sink that keeps what it is given (and
// can fail after a number of writes), and CSV files read back by Python's
// csv module, the standard reader the tables must survive.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "portability/export_output.hpp"

namespace lumenote::portability::testing {

class StringSink final : public ByteSink {
  public:
    // Fails every write from the `failFrom`-th on (counted from 1).
    explicit StringSink(std::size_t failFrom = 0) : failFrom_(failFrom) {}
    Result<void, ExportError> write(std::string_view bytes) override {
        ++writes;
        if (failFrom_ != 0 && writes >= failFrom_) {
            return fail(ExportError{ExportFailure::writeFailed, "No space left on device"});
        }
        text.append(bytes);
        return {};
    }

    std::string text;
    std::size_t writes = 0;

  private:
    std::size_t failFrom_;
};

// What `write` appends to an output, as text.
template <typename Write>
std::string writtenBy(Write write) {
    StringSink sink;
    ExportOutput output(sink);
    write(output);
    EXPECT_TRUE(output.flush().ok());
    return sink.text;
}

// The rows of the CSV file at `path` as Python's csv module reads them
// (UTF-8, strictly: a byte that is not UTF-8 fails the read); an empty list
// and a test failure when Python fails.
inline std::vector<std::vector<std::string>> readCsvWithPython(const std::filesystem::path& path) {
    const std::string command = "timeout 60 python3 '" LUMENOTE_SOURCE_DIR
                                "/tests/portability/read_csv.py' '" +
                                path.string() + "'";
    std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    if (!pipe) {
        ADD_FAILURE() << "python3 could not be started";
        return {};
    }
    std::string printed;
    char buffer[65536];
    for (std::size_t read; (read = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) {
        printed.append(buffer, read);
    }
    const int status = ::pclose(pipe.release());
    if (status != 0) {
        ADD_FAILURE() << "python3 failed to read " << path << " (status " << status << ")";
        return {};
    }
    return nlohmann::json::parse(printed).get<std::vector<std::vector<std::string>>>();
}

}  // namespace lumenote::portability::testing
