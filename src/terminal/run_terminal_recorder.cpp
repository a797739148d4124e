// Runs the terminal recorder: the session's template, the recorder's services
// wired once, the runtime with the terminal as its front end, and the loop.
#include "terminal/run_terminal_recorder.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <QCoreApplication>

#include "platform/system/system_clocks.hpp"
#include "runtime/recorder_services.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/session_template_store.hpp"
#include "terminal/raw_terminal.hpp"
#include "terminal/terminal_recorder.hpp"

namespace lumenote::terminal {

namespace {

// Runs `use` over the user's template store.
template <typename Use>
auto withTemplates(const UserPaths& paths, Use use) {
    platform::system::SystemWallClock clock;
    settings::FileSessionTemplateRepository repository(
        settings::FileSessionTemplateRepository::pathFor(paths), [&clock] { return clock.now(); });
    settings::SessionTemplateStore templates(repository, [&clock] { return clock.now(); });
    return use(templates);
}

// Fills the request from a template where the options left it open. The
// template is marked used only once the session exists (see runRecorder).
// Fails with the sentence to show.
Result<void, std::string> applyTemplate(const RecorderOptions& options,
                                        settings::SessionTemplateStore& templates,
                                        recording::SessionStartRequest& request) {
    const settings::SessionTemplate* chosen = templates.findByName(*options.templateName);
    if (chosen == nullptr) {
        if (const auto id = Uuid::parse(*options.templateName)) {
            chosen = templates.find(*id);
        }
    }
    if (chosen == nullptr) {
        return fail(
            fmt::format("No session template has the name or id \"{}\".", *options.templateName));
    }
    if (request.subject.empty()) {
        request.subject = chosen->subject;
    }
    if (request.goal.empty()) {
        request.goal = chosen->defaultGoal;
    }
    if (!options.durationGiven) {
        request.plannedDuration = chosen->duration;
    }
    if (!options.timingGiven) {
        request.timingMode = chosen->timingMode();
    }
    request.templateID = chosen->id;
    return {};
}

}  // namespace

int runRecorder(const RecorderOptions& options, const UserPaths& paths, std::ostream& out,
                std::ostream& err) {
    recording::SessionStartRequest request = options.request;
    if (options.templateName) {
        auto applied = withTemplates(paths, [&](settings::SessionTemplateStore& templates) {
            return applyTemplate(options, templates, request);
        });
        if (!applied.ok()) {
            err << applied.error() << '\n';
            return 1;
        }
    }
    int argc = 1;
    char name[] = "lumenote-cli";
    char* argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);

    std::vector<std::string> warnings;
    auto services = runtime::RecorderServices::open(paths, warnings);
    for (const std::string& warning : warnings) {
        err << warning << '\n';
    }
    if (!services.ok()) {
        err << services.error().message << '\n';
        return 1;
    }

    RawTerminal terminal(STDIN_FILENO);
    settings::PreferencesStore& preferences = (*services)->preferences();
    TerminalRecorder::Setup setup{out, options.interactive};
    setup.startRequest = request;
    setup.recovery = options.recovery;
    setup.sessionStarted = [&paths](const recording::StudySession& session) {
        if (const auto templateID = session.originatingTemplateID()) {
            (void)withTemplates(paths, [&](settings::SessionTemplateStore& templates) {
                return templates.markUsed(*templateID);
            });
        }
    };
    setup.introduceAwayStudy = [&preferences] {
        if (preferences.hasSeenPassiveStudyIntroduction()) {
            return false;
        }
        preferences.setHasSeenPassiveStudyIntroduction(true);
        return true;
    };
    TerminalRecorder recorder(std::move(setup), **services);
    for (const std::string& gap : recorder.recorder().begin()) {
        err << gap << '\n';
    }
    if (!recorder.begin()) {
        return 1;
    }
    if (const auto unserved = recorder.recorder().serveCommands()) {
        err << *unserved << '\n';
    }
    application.exec();
    return recorder.recorder().exitStatus();
}

}  // namespace lumenote::terminal
