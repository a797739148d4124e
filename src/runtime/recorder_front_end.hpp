// RecorderFrontEnd: what the recorder runtime tells the front end that shows
// it (the terminal, the desktop application). Every call comes on the loop's
// thread; a front end keeps no recording state of its own and reads the rest
// from the session manager when it draws.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/result.hpp"
#include "recording/no_input_prompt.hpp"
#include "recording/personal_best.hpp"
#include "recording/session_records.hpp"
#include "runtime/recorder_control.hpp"

namespace lumenote::runtime {

class RecorderFrontEnd {
  public:
    virtual ~RecorderFrontEnd() = default;
    // What the recorder shows may have changed: a tick, an activation.
    virtual void refresh() = 0;
    // A command was carried out, whether the front end or another process
    // (the command service) asked for it; never `status`.
    virtual void controlled(RecorderControl control) = 0;
    // A failure to show: a refused operation, or one the recorder met on
    // its own (a save during a tick). The runtime keeps it as lastError().
    virtual void showError(const std::string& message) = 0;
    // A new question about time without input waits for an answer.
    virtual void noInputQuestionArrived(const recording::NoInputClassificationPrompt& prompt) = 0;
    // A session ended; `finished` is its final record when it could be
    // read, `bests` the personal bests it set. The runtime goes on: a front
    // end that records one session stops it here.
    virtual void sessionEnded(const std::optional<recording::StudySession>& finished,
                              const std::vector<recording::PersonalBest>& bests) = 0;
    // The recorder stops for `reason` (a signal, the system shutting down)
    // with the session saved for recovery.
    virtual void terminated(const std::string& reason) = 0;
    // Another start of the application asks this one to come forward; fails
    // with the sentence to show when this front end has nothing to show.
    virtual Result<void, std::string> present() = 0;
};

}  // namespace lumenote::runtime
