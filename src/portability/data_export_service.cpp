#include "portability/data_export_service.hpp"

#include <memory>

#include "portability/csv_export_writer.hpp"
#include "portability/export_model.hpp"
#include "portability/ics_export_writer.hpp"
#include "portability/json_export_writer.hpp"
#include "recording/study_time.hpp"

namespace lumenote::portability {

namespace {

// One format's frame and its sessions, each given with its children unless
// the format does without them.
class SessionFormat {
  public:
    virtual ~SessionFormat() = default;
    // Whether writeSession needs the session's children.
    virtual bool readsChildren() const { return true; }
    virtual void begin() = 0;
    virtual void writeSession(const recording::StudySession& session, ExportSummary& summary) = 0;
    virtual void end() = 0;
};

class JsonFormat final : public SessionFormat {
  public:
    JsonFormat(ExportOutput& output, Date exportedAt)
        : writer_(output), document_{kExportFormatVersion, exportedAt} {}
    void begin() override { writer_.begin(document_); }
    void writeSession(const recording::StudySession& session, ExportSummary& summary) override {
        writer_.writeSession(makeExportSession(session, ExportContent::segmentsAndRuns));
        ++summary.sessions;
        summary.segments += session.segments.size();
    }
    void end() override { writer_.end(); }

  private:
    JsonExportWriter writer_;
    TallywiseExportDocument document_;
};

class SessionTableFormat final : public SessionFormat {
  public:
    explicit SessionTableFormat(ExportOutput& output) : writer_(output) {}
    void begin() override { writer_.writeSessionHeader(); }
    void writeSession(const recording::StudySession& session, ExportSummary& summary) override {
        writer_.writeSessionRow(makeExportSession(session, ExportContent::runs),
                                recording::unconfirmedNoInputTime(session));
        ++summary.sessions;
    }
    void end() override {}

  private:
    CsvExportWriter writer_;
};

class SegmentTableFormat final : public SessionFormat {
  public:
    explicit SegmentTableFormat(ExportOutput& output) : writer_(output) {}
    void begin() override { writer_.writeSegmentHeader(); }
    void writeSession(const recording::StudySession& session, ExportSummary& summary) override {
        for (const recording::ActivitySegment& segment : session.segments) {
            writeSegment(session.id, segment, summary);
        }
        ++summary.sessions;
    }
    void writeSegment(const Uuid& session, const recording::ActivitySegment& segment,
                      ExportSummary& summary) {
        writer_.writeSegmentRow(session, makeExportSegment(segment));
        ++summary.segments;
    }
    void end() override {}

  private:
    CsvExportWriter writer_;
};

class CalendarFormat final : public SessionFormat {
  public:
    CalendarFormat(ExportOutput& output, Date exportedAt) : writer_(output, exportedAt) {}
    bool readsChildren() const override { return false; }
    void begin() override { writer_.begin(); }
    void writeSession(const recording::StudySession& session, ExportSummary& summary) override {
        if (writer_.writeSession(makeExportSession(session, ExportContent::fieldsOnly))) {
            ++summary.sessions;
        }
    }
    void end() override { writer_.end(); }

  private:
    IcsExportWriter writer_;
};

ExportError unreadable(const StoreError& error) {
    return ExportError{ExportFailure::historyUnreadable, error.description};
}

}  // namespace

std::string_view defaultExportFileName(const ExportRequest& request) {
    const bool one = request.session.has_value();
    switch (request.format) {
        case ExportFormat::json:
            return one ? "Lumenote Session.json" : "Lumenote Sessions.json";
        case ExportFormat::csv:
            if (request.table == ExportTable::segments) {
                return one ? "Lumenote Session Segments.csv" : "Lumenote Segments.csv";
            }
            return one ? "Lumenote Session.csv" : "Lumenote Sessions.csv";
        case ExportFormat::ics:
            return one ? "Lumenote Session.ics" : "Lumenote Sessions.ics";
    }
    return {};
}

Result<ExportSummary, ExportError> DataExportService::write(const ExportRequest& request,
                                                            Date exportedAt, ByteSink& sink,
                                                            const Progress& progress) {
    ExportOutput output(sink);
    ExportSummary summary;
    std::size_t visited = 0;
    const auto sessionDone = [&] {
        ++visited;
        if (progress) {
            progress(visited);
        }
    };

    std::unique_ptr<SessionFormat> format;
    SegmentTableFormat* segmentTable = nullptr;
    switch (request.format) {
        case ExportFormat::json:
            format = std::make_unique<JsonFormat>(output, exportedAt);
            break;
        case ExportFormat::csv:
            if (request.table == ExportTable::segments) {
                auto table = std::make_unique<SegmentTableFormat>(output);
                segmentTable = table.get();
                format = std::move(table);
            } else {
                format = std::make_unique<SessionTableFormat>(output);
            }
            break;
        case ExportFormat::ics:
            format = std::make_unique<CalendarFormat>(output, exportedAt);
            break;
    }

    format->begin();
    if (request.session) {
        auto loaded = store_.loadSession(*request.session);
        if (!loaded) {
            return fail(unreadable(loaded.error()));
        }
        if (!loaded->has_value()) {
            return fail(ExportError{ExportFailure::sessionNotFound, {}});
        }
        format->writeSession(**loaded, summary);
        sessionDone();
    } else if (request.sessions && segmentTable == nullptr) {
        for (const Uuid& id : *request.sessions) {
            auto loaded = store_.loadSession(id);
            if (!loaded) {
                return fail(unreadable(loaded.error()));
            }
            if (loaded->has_value()) {
                format->writeSession(**loaded, summary);
                sessionDone();
            }
            if (!output.ok()) {
                break;
            }
        }
    } else if (segmentTable != nullptr) {
        // The segments alone: no session is loaded with its children.
        std::optional<Uuid> owner;
        auto walked = history_.forEachSegment(
            {.sessions = request.sessions},
            [&](const recording::StudySession& session, const recording::ActivitySegment& segment) {
                if (owner != session.id) {
                    if (owner) {
                        sessionDone();
                    }
                    owner = session.id;
                    ++summary.sessions;
                }
                segmentTable->writeSegment(session.id, segment, summary);
                return output.ok();
            });
        if (!walked) {
            return fail(unreadable(walked.error()));
        }
        if (owner) {
            sessionDone();
        }
    } else {
        auto walked = history_.forEachSession({.includeChildren = format->readsChildren()},
                                              [&](const recording::StudySession& session) {
                                                  format->writeSession(session, summary);
                                                  sessionDone();
                                                  return output.ok();
                                              });
        if (!walked) {
            return fail(unreadable(walked.error()));
        }
    }
    format->end();
    if (auto flushed = output.flush(); !flushed) {
        return fail(flushed.error());
    }
    return summary;
}

}  // namespace lumenote::portability
