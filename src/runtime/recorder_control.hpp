// Commanding the running recorder from another process (`lumenote-cli pause`,
// `resume`, `end`, `away`, `back`, `status`) over the session bus.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "bridge/browser_event_receiver.hpp"
#include "foundation/result.hpp"
#include "runtime/command_protocol.hpp"

namespace lumenote::runtime {

// The commands another process can send to the recorder.
enum class RecorderControl { pause, resume, end, away, back, status };

// Sends `control` to the recorder of this user session over the session bus
// and returns what to print: the recorder's status for `status`, a short
// confirmation otherwise. Fails with the sentence to show, including when
// nothing is recording.
Result<std::string, std::string> controlRecorder(RecorderControl control);

// The running recorder's status. Fails with the sentence to show, including
// when nothing is recording.
Result<RecorderStatus, std::string> recorderStatus();

// The browser events the running recorder handled lately, oldest first.
// Fails with the sentence to show, including when nothing is recording.
Result<std::vector<bridge::BrowserEventLogEntry>, std::string> recorderBrowserEvents();

// Each browser's lines of `browser status` as the running recorder sees them,
// keyed by the browser's case name.
Result<std::map<std::string, std::string>, std::string> recorderBrowserStatus();

// Asks the running recorder to bring its window forward (a second start of
// the desktop application). Fails with the sentence to show, including when
// the recorder runs in a terminal.
Result<void, std::string> presentRecorder();

}  // namespace lumenote::runtime
