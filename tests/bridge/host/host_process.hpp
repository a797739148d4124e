// The real TallywiseBrowserHost in a child process, its standard input and
// output on pipes, as a browser runs it. Every wait is bounded; the child is
// killed if it outlives the test.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "bridge/host/native_frames.hpp"

extern char** environ;

namespace lumenote::bridge::host::testing {

inline std::filesystem::path hostExecutable() {
    const char* folder = std::getenv("LUMENOTE_BIN_DIR");
    return std::filesystem::path(folder ? folder : LUMENOTE_BINARY_DIR "/bin") /
           "TallywiseBrowserHost";
}

class HostProcess {
  public:
    HostProcess(const std::filesystem::path& bridgeRoot, std::vector<std::string> arguments) {
        int input[2];
        int output[2];
        if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
            ADD_FAILURE() << "pipe: " << std::strerror(errno);
            return;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        std::vector<std::string> environment{"TALLYWISE_BRIDGE_DIR=" + bridgeRoot.string()};
        for (char** entry = environ; *entry; ++entry) {
            if (std::strncmp(*entry, "TALLYWISE_BRIDGE_DIR=", 21) != 0) {
                environment.emplace_back(*entry);
            }
        }
        const std::string program = hostExecutable().string();
        arguments.insert(arguments.begin(), program);
        std::vector<char*> argv = pointers(arguments);
        std::vector<char*> envp = pointers(environment);
        const int spawned =
            ::posix_spawn(&pid_, program.c_str(), &actions, nullptr, argv.data(), envp.data());
        posix_spawn_file_actions_destroy(&actions);
        ::close(input[0]);
        ::close(output[1]);
        input_ = input[1];
        output_ = output[0];
        if (spawned != 0) {
            pid_ = -1;
            ADD_FAILURE() << "could not start " << program << ": " << std::strerror(spawned);
        }
    }

    ~HostProcess() {
        closeInput();
        if (output_ >= 0) {
            ::close(output_);
        }
        if (pid_ > 0 && !exitStatus_) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
    }

    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;

    void writeBytes(const std::string& bytes) {
        ASSERT_EQ(::write(input_, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    void send(const std::string& message) { writeBytes(encodeNativeFrame(message)); }

    void closeInput() {
        if (input_ >= 0) {
            ::close(input_);
            input_ = -1;
        }
    }

    // The next message the host sent, or nullopt when none came in time or the
    // output ended.
    std::optional<std::string> nextMessage(
        std::chrono::milliseconds timeout = std::chrono::seconds(10)) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        std::vector<NativeFrameReading> frames;
        while (pending_.empty()) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            pollfd wait{output_, POLLIN, 0};
            if (left.count() <= 0 || ::poll(&wait, 1, static_cast<int>(left.count())) <= 0) {
                return std::nullopt;
            }
            char buffer[4096];
            const ssize_t length = ::read(output_, buffer, sizeof buffer);
            if (length <= 0) {
                return std::nullopt;
            }
            frames.clear();
            reader_.feed({buffer, static_cast<std::size_t>(length)}, frames);
            for (auto& frame : frames) {
                pending_.push_back(std::get<NativeFrame>(frame).payload);
            }
        }
        std::string message = pending_.front();
        pending_.erase(pending_.begin());
        return message;
    }

    // The next message containing `fragment`, skipping others.
    std::optional<std::string> nextMessageContaining(const std::string& fragment) {
        while (auto message = nextMessage()) {
            if (message->find(fragment) != std::string::npos) {
                return message;
            }
        }
        return std::nullopt;
    }

    // Closes the input and waits for the exit; the exit code, or nullopt
    // when the host did not end in time (it is then killed).
    std::optional<int> finish(std::chrono::milliseconds timeout = std::chrono::seconds(10)) {
        closeInput();
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (std::chrono::steady_clock::now() < deadline) {
            int status = 0;
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                exitStatus_ = status;
                return WIFEXITED(status) ? std::optional(WEXITSTATUS(status))
                                         : std::optional(128 + WTERMSIG(status));
            }
            // Drains the output so that a host blocked on a full pipe can end.
            pollfd wait{output_, POLLIN, 0};
            if (::poll(&wait, 1, 20) > 0) {
                char buffer[4096];
                (void)!::read(output_, buffer, sizeof buffer);
            }
        }
        return std::nullopt;
    }

  private:
    static std::vector<char*> pointers(std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (auto& text : texts) {
            result.push_back(text.data());
        }
        result.push_back(nullptr);
        return result;
    }

    pid_t pid_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::optional<int> exitStatus_;
    NativeFrameReader reader_{1 << 20};
    std::vector<std::string> pending_;
};

}  // namespace lumenote::bridge::host::testing
