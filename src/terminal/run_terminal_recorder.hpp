// The terminal recorder behind `lumenote-cli record`: one event loop that runs
// the recorder runtime with the terminal as its front end. This header is
// free of Qt so that the command line can call it; the loop itself runs on
// QCoreApplication.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "foundation/user_paths.hpp"
#include "recording/session_manager.hpp"

namespace lumenote::terminal {

// What to do with a session left unfinished by a recorder that stopped
// early, when the command says.
enum class RecoveryChoice { continueSession, endSession };

struct RecorderOptions {
    recording::SessionStartRequest request;  // an empty subject is asked for on a terminal
    // A template's name or id: its subject, goal, duration and timing apply
    // where the options did not set them.
    std::optional<std::string> templateName;
    bool durationGiven = false;
    bool timingGiven = false;
    // Standard input and output are terminals: a live status line, keys and
    // questions. Otherwise plain lines, no questions, and a clean end on SIGTERM.
    bool interactive = false;
    // Without a choice a terminal asks; without a terminal the recorder
    // leaves the unfinished session as it is and starts nothing.
    std::optional<RecoveryChoice> recovery;
};

// Records one session until it ends, the user quits or a signal arrives, then
// returns the process exit status: 0 when the session ended or was left for
// recovery cleanly, 1 when recording could not start. Reads keys from
// standard input when interactive.
int runRecorder(const RecorderOptions& options, const UserPaths& paths, std::ostream& out,
                std::ostream& err);

}  // namespace lumenote::terminal
