// The JSON export, written one session at a time:
//
//   {
//   ⇥"exportedAt": "2026-11-16T08:00:00Z",
//   ⇥"formatVersion": 1,
//   ⇥"sessions": [
//   ⇥⇥{
//   ⇥⇥⇥"confirmedBreakDuration": 0,
//   ⇥⇥⇥...
//   ⇥⇥⇥"segments": [
//   ⇥⇥⇥⇥{
//   ⇥⇥⇥⇥⇥"applicationDisplayName": "Text Editor",
//   ⇥⇥⇥⇥⇥...
//   ⇥⇥⇥⇥}
//   ⇥⇥⇥],
//   ⇥⇥⇥...
//   ⇥⇥}
//   ⇥]
//   }
//
// Pretty-printed with one tab (⇥ above) of indentation a level, one member
// or element per line, "key": value with one space after the colon, an
// empty array as [], and a line feed after the closing brace. Tabs rather
// than spaces: indentation was a quarter of a whole history's document with
// two spaces a level, and every byte costs time to write. Keys come sorted by
// their bytes in every object. Absent optional fields are left out, never
// written as null. Dates follow the timestamp rule; durations and the score
// are numbers in their shortest exact form after the seconds rule (not
// finite or negative -> 0), so that JSON never holds a NaN; the score is a
// number from 0 to 100. Text is valid UTF-8 (ill-formed bytes become U+FFFD)
// with '"', '\', every control character below U+0020 and U+2028 and U+2029
// (line separators to JavaScript) escaped; short escapes (\n, \t ...) where
// JSON has them, \u00XX otherwise.
#pragma once

#include <string>
#include <string_view>

#include "portability/export_model.hpp"
#include "portability/export_output.hpp"

namespace lumenote::portability {

class JsonExportWriter {
  public:
    explicit JsonExportWriter(ExportOutput& output) : output_(output) {}

    // The document's own members, up to the opening of the sessions array.
    void begin(const TallywiseExportDocument& document);
    void writeSession(const ExportSession& session);
    // Closes the array and the document.
    void end();

  private:
    // Starts a member at `depth`; `afterAnother` ends the previous one first.
    void key(std::string_view name, int depth, bool afterAnother = false);
    void string(std::string_view text);
    // A string of the system's own vocabulary (an id, a raw value), which
    // never needs escaping or repair: written without looking at its bytes.
    void word(std::string_view text);
    void date(Date value);
    void seconds(double value);
    void writeSegment(const ExportSegment& segment);

    ExportOutput& output_;
    bool wroteSession_ = false;
    std::string scratch_;  // reused for text that needs repair
};

}  // namespace lumenote::portability
