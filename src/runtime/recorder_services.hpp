// RecorderServices: everything a recording process needs, wired once at
// start-up and kept for the process's life: the store and the recorder lock,
// the preferences, the desktop's services (the observers this desktop offers), the
// browser bridge, the classification rules, the history and the session
// manager. Every front end
// (the terminal, the desktop application) opens one and hands it to the
// recorder runtime.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bridge/bridge_tracking_coordinator.hpp"
#include "bridge/browser_status_report.hpp"
#include "bridge/native_host_registration.hpp"
#include "classification/classification_rules.hpp"
#include "foundation/result.hpp"
#include "foundation/user_paths.hpp"
#include "recording/history_import.hpp"
#include "recording/session_history.hpp"
#include "recording/session_history_reader.hpp"
#include "recording/session_manager.hpp"
#include "runtime/desktop_observation.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::recording {
class UnclassifiedReviewService;
}

namespace lumenote::runtime {

// Why the recorder's services could not be opened, with the sentence to show.
struct ServicesOpenError {
    enum class Kind {
        storageUnavailable,  // the store could not be opened: nothing can be recorded
        anotherRecorder,     // another process records (the recorder lock is held)
        lockUnusable         // the recorder lock could not be taken for another reason
    };
    Kind kind;
    std::string message;
};

class RecorderServices {
  public:
    // Opens the store (refused while another recorder holds the lock), the
    // preferences and the desktop's services, and starts the session manager
    // up. Needs a Qt application object (the notifications use the session
    // bus). What start-up met that does not stop recording (no X display, a
    // damaged checkpoint) is appended to `warnings` as sentences to show.
    static Result<std::unique_ptr<RecorderServices>, ServicesOpenError> open(
        const UserPaths& paths, std::vector<std::string>& warnings);
    ~RecorderServices();
    RecorderServices(const RecorderServices&) = delete;
    RecorderServices& operator=(const RecorderServices&) = delete;

    recording::SessionManager& manager();
    recording::SessionHistory& history();
    classification::ClassificationRules& rules();
    bridge::BridgeTrackingCoordinator& browserTracking();
    settings::PreferencesStore& preferences();
    // The user's defaults domain itself, for the keys no store owns (the
    // receipt options).
    settings::DefaultsDomain& defaults();
    recording::RecordingStore& store();
    // The store's walks over the whole history (export, review).
    recording::SessionHistoryReader& historyReader();
    // Where a restore writes the history it reads.
    recording::HistoryImporter& importer();
    recording::WallClock& wallClock();
    // The review of unclassified activity, its list kept between looks.
    recording::UnclassifiedReviewService& review();
    // The desktop's notification server (every notice the recorder posts).
    recording::NotificationService& notifications();
    // The wall clock's time now.
    Date now();
    const UserPaths& paths() const;
    // Why the browser in front has its websites unrecorded, in one sentence;
    // empty when nothing is amiss.
    std::string browserWarning();
    // Each registrable browser's diagnosis, as the recorder sees it now; the
    // registration judged by `checker` when given (a screen that changes the
    // manifests with its own), else by the recorder's.
    std::vector<bridge::BrowserStatusRow> browserStatusRows(
        const bridge::NativeHostRegistrationChecker* checker = nullptr);
    // Each browser's status text, as the recorder sees it now, keyed by the
    // browser's case name (a JSON object).
    std::string browserStatusJson();
    // The native-host manifests of this user and this installation.
    const bridge::NativeHostRegistrationChecker& registration() const;

    // The observers of the application in front and of idle time, and
    // what they can see now.
    DesktopObservation& desktop();
    // The descriptor that becomes readable when the frontmost window may
    // have changed; -1 when the backend reports over D-Bus or is missing.
    int activationDescriptor() const;
    // Drains the desktop's activation events; true when the frontmost
    // window changed since the last call.
    bool takeActivation();
    // True once the display connection went away: its descriptor stays readable at
    // end of file, and nothing can be observed any more.
    bool displayLost() const;

  private:
    struct Parts;
    explicit RecorderServices(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace lumenote::runtime
