// Where the bytes of an export go: a sink (a file being written, a stream),
// fed in large blocks from one reused buffer, so that writers can append
// small pieces without a system call or an allocation per piece.
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "foundation/result.hpp"
#include "portability/export_error.hpp"

namespace lumenote::portability {

// Takes the bytes of an export in order. A failure is final: the export
// stops and the sink is abandoned.
class ByteSink {
  public:
    virtual ~ByteSink() = default;
    virtual Result<void, ExportError> write(std::string_view bytes) = 0;
};

// A sink over a stream (standard output); a stream that goes bad fails with
// `streamName` as the reason.
class StreamSink final : public ByteSink {
  public:
    StreamSink(std::ostream& stream, std::string streamName)
        : stream_(stream), streamName_(std::move(streamName)) {}
    Result<void, ExportError> write(std::string_view bytes) override;

  private:
    std::ostream& stream_;
    std::string streamName_;
};

// The buffer between the writers and a sink. It hands its bytes on whenever
// it holds a block, and on flush(). After the sink's first failure further
// bytes are dropped and the failure is kept for flush() to return, so that
// writers stay free of error handling; ok() lets a long walk stop early.
class ExportOutput {
  public:
    // Bytes gathered before they are handed on: large enough to make the
    // per-call cost of a write negligible, small enough to keep memory flat.
    static constexpr std::size_t kBlockBytes = std::size_t{1} << 20;

    explicit ExportOutput(ByteSink& sink);

    void append(std::string_view bytes) {
        buffer_.append(bytes);
        handOnWhenFull();
    }
    void append(char byte) {
        buffer_.push_back(byte);
        handOnWhenFull();
    }

    bool ok() const { return !error_.has_value(); }
    // Hands every buffered byte to the sink; the first failure met so far.
    Result<void, ExportError> flush();

  private:
    void handOnWhenFull() {
        if (buffer_.size() >= kBlockBytes) {
            handOn();
        }
    }
    void handOn();

    ByteSink& sink_;
    std::string buffer_;
    std::optional<ExportError> error_;
};

}  // namespace lumenote::portability
