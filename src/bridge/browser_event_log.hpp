// The receiver's event log in the forms it travels and is read in: a JSON
// document (the recorder answers `lumenote-cli browser events` with it) and
// one line of text per event.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/browser_event_receiver.hpp"
#include "foundation/dates.hpp"
#include "foundation/result.hpp"

namespace lumenote::bridge {

// {"events":[{"receivedAt":...,"accepted":true,...}, ...]}, oldest first;
// absent fields are left out.
std::string browserEventLogJson(const std::deque<BrowserEventLogEntry>& log);

// Reads what browserEventLogJson() wrote; fails with a short description.
// Unknown fields and unknown enumeration cases are ignored, so that a newer
// recorder can add some.
Result<std::vector<BrowserEventLogEntry>, std::string> parseBrowserEventLog(std::string_view json);

// "14:02:05  accepted  Chromium  tabActivated  website github.com", or for a
// refused event "14:02:07  refused   Chromium  The browser event was sent
// twice." The time is local; a private event shows "private" instead of a page.
std::string browserEventLogLine(const BrowserEventLogEntry& entry, const LocalCalendar& calendar);

}  // namespace lumenote::bridge
