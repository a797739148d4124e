#include "recording/session_checkpoint_store.hpp"

#include <unistd.h>

#include <cerrno>
#include <string>

namespace lumenote::recording {

namespace {

SessionCheckpointStoreError readFailure(PrivateFileError error) {
    return error == PrivateFileError::tooLarge ? SessionCheckpointStoreError::oversized
                                               : SessionCheckpointStoreError::invalidFile;
}

}  // namespace

std::string_view describe(SessionCheckpointStoreError error) {
    switch (error) {
        case SessionCheckpointStoreError::oversized:
            return "The recovery checkpoint file is larger than allowed.";
        case SessionCheckpointStoreError::invalidFile:
            return "The recovery checkpoint file is not a valid checkpoint file.";
        case SessionCheckpointStoreError::writeFailed:
            return "The recovery checkpoint file could not be written.";
    }
    return "The recovery checkpoint file could not be used.";
}

FileSessionCheckpointStore::FileSessionCheckpointStore(std::filesystem::path rootURL,
                                                       WallClock& clock,
                                                       FileWriteOperations& operations)
    : rootURL_(std::move(rootURL)), clock_(clock), operations_(operations) {}

Result<SessionCheckpointLoadResult, SessionCheckpointStoreError>
FileSessionCheckpointStore::load() {
    const std::filesystem::path path = fileURL();
    auto contents = private_file::read(path, kActiveSessionCheckpointByteLimit);
    if (!contents) {
        if (contents.error() == PrivateFileError::missing) {
            return SessionCheckpointLoadResult::missing();
        }
        return fail(readFailure(contents.error()));
    }
    if (auto checkpoint = decodeCheckpoint(*contents);
        checkpoint && isValidCheckpoint(*checkpoint)) {
        return SessionCheckpointLoadResult::found(std::move(*checkpoint));
    }
    // A damaged file that cannot be moved aside stays where it is; it is
    // never deleted, so the next launch meets it again.
    if (!private_file::quarantine(path, clock_.now())) {
        return fail(SessionCheckpointStoreError::invalidFile);
    }
    return SessionCheckpointLoadResult::corruptQuarantined();
}

Result<void, SessionCheckpointStoreError> FileSessionCheckpointStore::save(
    const ActiveSessionCheckpoint& checkpoint) {
    if (!isValidCheckpoint(checkpoint)) {
        return fail(SessionCheckpointStoreError::invalidFile);
    }
    if (!private_file::writeAtomically(fileURL(), encodeCheckpoint(checkpoint), operations_)) {
        return fail(SessionCheckpointStoreError::writeFailed);
    }
    return {};
}

Result<void, SessionCheckpointStoreError> FileSessionCheckpointStore::remove() {
    if (::unlink(fileURL().c_str()) != 0 && errno != ENOENT) {
        return fail(SessionCheckpointStoreError::writeFailed);
    }
    return {};
}

Result<SessionCheckpointLoadResult, SessionCheckpointStoreError>
InMemorySessionCheckpointStore::load() {
    if (returnsCorrupt || (checkpoint && !isValidCheckpoint(*checkpoint))) {
        checkpoint.reset();
        return SessionCheckpointLoadResult::corruptQuarantined();
    }
    if (!checkpoint) {
        return SessionCheckpointLoadResult::missing();
    }
    return SessionCheckpointLoadResult::found(*checkpoint);
}

Result<void, SessionCheckpointStoreError> InMemorySessionCheckpointStore::save(
    const ActiveSessionCheckpoint& value) {
    ++saveCount;
    if (!isValidCheckpoint(value)) {
        return fail(SessionCheckpointStoreError::invalidFile);
    }
    if (failWrites) {
        return fail(SessionCheckpointStoreError::writeFailed);
    }
    checkpoint = value;
    return {};
}

Result<void, SessionCheckpointStoreError> InMemorySessionCheckpointStore::remove() {
    ++removeCount;
    if (failRemoves) {
        return fail(SessionCheckpointStoreError::writeFailed);
    }
    checkpoint.reset();
    return {};
}

}  // namespace lumenote::recording
