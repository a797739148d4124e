// Test support: runs a real program to its end, with what it prints on
// standard output and standard error gathered, bounded by coreutils' timeout.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

extern char** environ;

namespace lumenote::testing {

struct ProgramRun {
    int exitStatus = -1;  // -1 when the program could not be started or was killed
    std::string output;   // standard output and standard error, interleaved
};

// Runs `arguments` (the program first, looked up in PATH) under `timeout`:
// after `seconds` it is sent SIGTERM, five seconds later SIGKILL, and the
// exit status is then 124 or 137. Reads until every process holding the
// output pipe has closed it, so a program's children that print are awaited
// too.
inline ProgramRun runProgram(const std::vector<std::string>& arguments, int seconds = 60) {
    std::vector<std::string> command{"timeout", "--kill-after=5", std::to_string(seconds)};
    command.insert(command.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (const std::string& argument : command) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    ProgramRun run;
    int output[2];
    if (::pipe2(output, O_CLOEXEC) != 0) {
        return run;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDERR_FILENO);
    pid_t pid = -1;
    const int spawned = ::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(output[1]);
    if (spawned == 0) {
        char buffer[4096];
        for (;;) {
            const ssize_t count = ::read(output[0], buffer, sizeof buffer);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count <= 0) {
                break;
            }
            run.output.append(buffer, static_cast<std::size_t>(count));
        }
        int status = 0;
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    ::close(output[0]);
    return run;
}

}  // namespace lumenote::testing
