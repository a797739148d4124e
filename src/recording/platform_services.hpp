// The platform services the session manager reads besides the clocks: the
// frontmost application, user notifications and the browser's activity.
// Backends live in platform/ (linux/ for the real desktop, fake/ for tests).
#pragma once

#include <optional>
#include <string>

#include "foundation/dates.hpp"
#include "foundation/uuid.hpp"
#include "recording/enumerations.hpp"

namespace lumenote::recording {

struct FrontmostApplication {
    std::string localizedName;     // may be empty when the platform has none
    std::string bundleIdentifier;  // desktop-entry id on Linux

    friend bool operator==(const FrontmostApplication&, const FrontmostApplication&) = default;
};

class FrontmostApplicationSource {
  public:
    virtual ~FrontmostApplicationSource() = default;
    // nullopt when nothing is frontmost (no window has focus), reported as it
    // is even for a moment during a switch: the recorder decides what such a
    // gap counts as (frontmost_gaps.hpp).
    virtual std::optional<FrontmostApplication> frontmostApplication() = 0;
};

enum class NotificationAuthorization { authorized, denied, unavailable };

class NotificationService {
  public:
    virtual ~NotificationService() = default;
    virtual void post(const std::string& title, const std::string& body) = 0;
    virtual NotificationAuthorization authorization() = 0;
};

// What the browser bridge knows about the frontmost browser right now.
struct BrowserResolution {
    enum class Kind { website, localPDF, fallback };
    Kind kind = Kind::fallback;
    std::string browserBundleIdentifier;
    std::optional<std::string> hostname;  // for `website`
    std::optional<Uuid> pdfIdentifier;    // for `localPDF`
    std::optional<std::string> pdfDisplayLabel;
    std::optional<classification::BrowserPDFLabelSource> pdfLabelSource;
    std::optional<BrowserFallbackReason> fallbackReason;  // for `fallback`
    std::optional<Uuid> tabSessionIdentifier;
    bool isPrivate = false;
};

// Hands the validated browser activity to the session manager and hears back
// which session runs and which application is in front.
class BrowserTrackingCoordinator {
  public:
    virtual ~BrowserTrackingCoordinator() = default;
    // The resolution for `frontmostBundleIdentifier` at `now`, with the
    // seconds since the user's last input; nullopt when it is not a supported
    // browser or browsers are not tracked (the application is then recorded).
    virtual std::optional<BrowserResolution> resolution(
        const std::string& frontmostBundleIdentifier, Date now, double idleSeconds) = 0;
    virtual void setRunningSession(const std::optional<Uuid>& sessionID) = 0;
    virtual void setFrontmostBundleIdentifier(const std::string& bundleIdentifier) = 0;
};

// Used when no browser bridge is present: every application is recorded as itself.
class NoBrowserTracking final : public BrowserTrackingCoordinator {
  public:
    std::optional<BrowserResolution> resolution(const std::string&, Date, double) override {
        return std::nullopt;
    }
    void setRunningSession(const std::optional<Uuid>&) override {}
    void setFrontmostBundleIdentifier(const std::string&) override {}
};

}  // namespace lumenote::recording
