// The setup assistant's steps and where it resumes. It is shown at the first
// start and again from "Run Setup Assistant Again…"; each step reached is
// kept in "onboarding.lastStep", so that a student who quits half-way comes
// back to the step they left, and finishing keeps this assistant's version in
// "onboarding.completedVersion", so that it is not shown at start again
// until a later version of the assistant has something new to say.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/browser_status_report.hpp"

namespace lumenote::ui::models {

enum class OnboardingStep { welcome, observation, browsers, classifications, goal, done };

inline constexpr std::array kOnboardingSteps{
    OnboardingStep::welcome,         OnboardingStep::observation, OnboardingStep::browsers,
    OnboardingStep::classifications, OnboardingStep::goal,        OnboardingStep::done};

// The assistant's version; raise it when a step is added that users who
// finished an earlier one should see.
inline constexpr long long kOnboardingVersion = 1;

// Whether the assistant opens by itself at start: only until this version
// of it was finished once.
bool onboardingDueAtStart(long long completedVersion);

// Where the assistant opens: the step kept in "onboarding.lastStep" while it
// is unfinished (a value out of range, written by another version or by
// hand, starts over), the welcome once finished (running it again).
OnboardingStep onboardingResumeStep(long long lastStep, long long completedVersion);

// The step's title in the assistant's heading: "Welcome to Lumenote", …
std::string_view onboardingStepTitle(OnboardingStep step);

// "Step 2 of 6".
std::string onboardingProgressText(OnboardingStep step);

// What the first step promises, in plain words.
inline constexpr std::string_view kPrivacyPromise =
    "Lumenote records your study sessions on this computer and nowhere else. It notes which "
    "application is in front, how long since you last typed or moved the mouse, and, with the "
    "browser extension, the name of the website (never its address, page title or what you "
    "type). There is no account, no server and no telemetry: nothing leaves your computer.";

// One line of the desktop check ("ok  …" or "gap  …") as the observation
// step lists it.
struct ObservationLine {
    bool ok = false;
    std::string text;
    friend bool operator==(const ObservationLine&, const ObservationLine&) = default;
};

// The lines of the desktop check's report; a line without its mark is kept
// as a gap, so that nothing unexpected reads as fine.
std::vector<ObservationLine> observationLines(std::string_view report);

// One browser as the browser step lists it: only browsers found on this
// computer, each with its name and its state in one sentence.
struct OnboardingBrowserRow {
    bridge::SupportedBrowser browser;
    std::string name;   // "Firefox"
    std::string state;  // "Connected: the extension sent its last event at 10:42."
    bool registered = false;
    bool connected = false;
};

std::vector<OnboardingBrowserRow> onboardingBrowserRows(
    const std::vector<bridge::BrowserStatusRow>& rows);

// What the browser step says when no supported browser is installed.
inline constexpr std::string_view kNoBrowserInstalled =
    "No supported browser was found on this computer. Lumenote records applications without "
    "one; you can set up a browser later in Settings.";

}  // namespace lumenote::ui::models
