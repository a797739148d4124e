#include "store/recorder_lock.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>

#include "foundation/private_file.hpp"

namespace lumenote::store {

namespace {

RecorderLockError unusable(std::string detail) {
    return RecorderLockError{RecorderLockFailure::unusable, std::nullopt, std::move(detail)};
}

// The process id at the start of the file: decimal digits, then a newline or
// the end. Anything else (an empty or half-written file) gives none.
std::optional<long long> readProcessId(int descriptor) {
    char buffer[32];
    const ssize_t size = ::pread(descriptor, buffer, sizeof buffer, 0);
    if (size <= 0) {
        return std::nullopt;
    }
    const char* end = buffer + size;
    long long processId = 0;
    const auto [next, error] = std::from_chars(buffer, end, processId);
    if (error != std::errc{} || processId <= 0 || (next != end && *next != '\n')) {
        return std::nullopt;
    }
    return processId;
}

}  // namespace

std::string recorderLockMessage(const RecorderLockError& error) {
    switch (error.failure) {
        case RecorderLockFailure::heldByAnotherProcess:
            if (error.holderProcessId) {
                return "Another Lumenote process (pid " + std::to_string(*error.holderProcessId) +
                       ") is already recording, or waits in the tray to record: use it, or quit "
                       "it first.";
            }
            return "Another Lumenote process is already recording, or waits in the tray to "
                   "record: use it, or quit it first.";
        case RecorderLockFailure::unusable:
            return "Lumenote could not take its recording lock (" + error.detail + ").";
    }
    return {};
}

Result<RecorderLock, RecorderLockError> RecorderLock::acquire(const std::filesystem::path& path) {
    if (auto folder = private_file::ensureFolder(path.parent_path()); !folder) {
        return fail(unusable("the folder " + path.parent_path().string() +
                             " could not be created or made private"));
    }
    const int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) {
        return fail(unusable(path.string() + ": " + std::strerror(errno)));
    }
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        const int error = errno;
        // Only closed: the file is the holder's and keeps its process id.
        std::optional<long long> holder;
        if (error == EWOULDBLOCK) {
            holder = readProcessId(descriptor);
        }
        ::close(descriptor);
        if (error == EWOULDBLOCK) {
            return fail(RecorderLockError{RecorderLockFailure::heldByAnotherProcess, holder, {}});
        }
        return fail(unusable(path.string() + ": " + std::strerror(error)));
    }
    RecorderLock lock(descriptor);
    const std::string processId = std::to_string(::getpid()) + "\n";
    if (::ftruncate(descriptor, 0) != 0 || ::pwrite(descriptor, processId.data(), processId.size(),
                                                    0) != static_cast<ssize_t>(processId.size())) {
        return fail(unusable(path.string() + ": " + std::strerror(errno)));
    }
    return lock;
}

std::optional<long long> RecorderLock::runningHolder(const std::filesystem::path& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (descriptor < 0) {
        return std::nullopt;
    }
    const std::optional<long long> holder = readProcessId(descriptor);
    ::close(descriptor);
    if (!holder || (::kill(static_cast<pid_t>(*holder), 0) != 0 && errno != EPERM)) {
        return std::nullopt;
    }
    return holder;
}

RecorderLock::~RecorderLock() {
    if (descriptor_ >= 0) {
        (void)::ftruncate(descriptor_, 0);
        ::close(descriptor_);
    }
}

}  // namespace lumenote::store
