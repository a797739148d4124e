// The terminal recorder behind `lumenote-cli record`: one event loop that owns
// the session manager, ticks it once a second and delivers the desktop's
// events to it on the same thread. This header is free of Qt so that the
// command line can call it; the loop itself runs on QCoreApplication.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "recording/session_manager.hpp"

namespace lumenote::recorder {

struct RecorderOptions {
    SessionStartRequest request;  // an empty subject is asked for on a terminal
    // A template's name or id: its subject, goal, duration and timing apply
    // where the options did not set them.
    std::optional<std::string> templateName;
    bool durationGiven = false;
    bool timingGiven = false;
    // Standard input and output are terminals: a live status line, keys and
    // questions. Otherwise plain lines, no questions, and a clean end on SIGTERM.
    bool interactive = false;
};

// Records one session until it ends, the user quits or a signal arrives, then
// returns the process exit status: 0 when the session ended or was left for
// recovery cleanly, 1 when recording could not start. Reads keys from
// standard input when interactive.
int runRecorder(const RecorderOptions& options, const UserPaths& paths, std::ostream& out,
                std::ostream& err);

// What the desktop lets the recorder observe, one line per part, each marked
// "ok" or "gap" with what is missing and what it costs.
struct SetupCheck {
    std::string report;
    bool complete = true;  // no gap
};
SetupCheck checkSetup();

// The commands another process can send to the recorder.
enum class RecorderControl { pause, resume, end, away, back, status };

// Sends `control` to the recorder of this user session over the session bus
// and returns what to print: the recorder's status for `status`, a short
// confirmation otherwise. Fails with the sentence to show, including when
// nothing is recording.
Result<std::string, std::string> controlRecorder(RecorderControl control);

}  // namespace lumenote::recorder
