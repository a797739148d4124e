// The calendar export (iCalendar, RFC 5545): one event per finished session.
//
//   BEGIN:VCALENDAR
//   VERSION:2.0
//   PRODID:-//Lumenote//Session export//EN
//   CALSCALE:GREGORIAN
//   BEGIN:VEVENT
//   UID:E621E1F8-C36C-495A-93FC-0C247A3E6E5F@sessions.lumenote
//   DTSTAMP:20261116T120000Z
//   DTSTART:20261116T080000Z
//   DTEND:20261116T090000Z
//   SUMMARY:Linear algebra
//   DESCRIPTION:Status: completed\nFocus score: 83%
//   END:VEVENT
//   END:VCALENDAR
//
// Only sessions with an end date become events: a running or paused session
// has no end yet, and an event that kept growing would be wrong the moment
// it was written. An interrupted session has an end and is included. An end
// before the start (a wall clock set back during the session) is written as
// the start, since an event may not end before it begins. The event shows
// nothing the session's CSV row does not: the subject, the status and the
// focus score as every screen shows it ("83%", or "Focus score not
// available"); no goal or notes, which may be private and travel further
// in a shared calendar.
//
// The UID is the session's id at a fixed domain, so that importing a newer
// export updates the same events instead of doubling them. Times are UTC
// (YYYYMMDDTHHMMSSZ, whole seconds, by the timestamp rule); DTSTAMP is the
// moment of export. Text is valid UTF-8 (ill-formed bytes become U+FFFD)
// with backslash, semicolon and comma escaped by a backslash, each line
// break (CR LF, CR or LF) written as \n, and other control characters left
// out (the format has no way to carry them). Lines end with CR LF and are
// folded before they pass 75 octets: the break goes before the first octet
// that would pass it, never inside a UTF-8 sequence, and each continuation
// line starts with one space (which counts towards its 75).
#pragma once

#include <string>
#include <string_view>

#include "portability/export_model.hpp"
#include "portability/export_output.hpp"

namespace lumenote::portability {

// The domain after the session id in every event's UID.
inline constexpr std::string_view kEventUidDomain = "sessions.lumenote";
// The longest content line, in octets, line break excluded.
inline constexpr std::size_t kMaximumLineOctets = 75;

class IcsExportWriter {
  public:
    IcsExportWriter(ExportOutput& output, Date exportedAt);

    void begin();
    // Writes the session's event; false (and nothing written) for a session
    // without an end.
    bool writeSession(const ExportSession& session);
    void end();

  private:
    // Writes `name:value` folded; `value` must be ready (escaped, valid UTF-8).
    void contentLine(std::string_view name, std::string_view value);
    // `text` escaped as a TEXT value into `escaped_`.
    std::string_view escapedText(std::string_view text);

    ExportOutput& output_;
    std::string stamp_;    // DTSTAMP's value
    std::string line_;     // reused for each unfolded line
    std::string escaped_;  // reused for each escaped value
    std::string scratch_;  // reused for text that needs repair
};

// "20261116T080000Z": the timestamp rule's date in the basic form.
std::string icsDateTime(Date date);

}  // namespace lumenote::portability
