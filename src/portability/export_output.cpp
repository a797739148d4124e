#include "portability/export_output.hpp"

namespace lumenote::portability {

Result<void, ExportError> StreamSink::write(std::string_view bytes) {
    stream_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!stream_) {
        return fail(ExportError{ExportFailure::writeFailed, streamName_ + " could not be written"});
    }
    return {};
}

ExportOutput::ExportOutput(ByteSink& sink) : sink_(sink) {
    // A little headroom over a block: the piece that fills it lands whole.
    buffer_.reserve(kBlockBytes + kBlockBytes / 8);
}

void ExportOutput::handOn() {
    if (error_) {
        buffer_.clear();
        return;
    }
    if (auto written = sink_.write(buffer_); !written) {
        error_ = written.error();
    }
    buffer_.clear();
}

Result<void, ExportError> ExportOutput::flush() {
    if (!buffer_.empty()) {
        handOn();
    }
    if (error_) {
        return fail(*error_);
    }
    return {};
}

}  // namespace lumenote::portability
