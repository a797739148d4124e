#include "ui/models/onboarding.hpp"

#include <algorithm>

namespace lumenote::ui::models {

namespace {

constexpr long long stepCount() {
    return static_cast<long long>(kOnboardingSteps.size());
}

std::string browserState(const std::string& name, bool registered, bool connected) {
    if (!registered) {
        return "Not registered yet: choose Register so that " + name + " can reach Lumenote.";
    }
    if (connected) {
        return "Registered and connected: the extension is talking to Lumenote.";
    }
    return "Registered. Add the Lumenote extension to " + name + ", then choose Test Again.";
}

}  // namespace

bool onboardingDueAtStart(long long completedVersion) {
    return completedVersion < kOnboardingVersion;
}

OnboardingStep onboardingResumeStep(long long lastStep, long long completedVersion) {
    if (!onboardingDueAtStart(completedVersion) || lastStep < 0 || lastStep >= stepCount()) {
        return OnboardingStep::welcome;
    }
    return kOnboardingSteps[static_cast<std::size_t>(lastStep)];
}

std::string_view onboardingStepTitle(OnboardingStep step) {
    switch (step) {
        case OnboardingStep::welcome:
            return "Welcome to Lumenote";
        case OnboardingStep::observation:
            return "What Lumenote can see on this desktop";
        case OnboardingStep::browsers:
            return "Websites in your browser";
        case OnboardingStep::classifications:
            return "What counts as focused";
        case OnboardingStep::goal:
            return "Your daily goal and shortcut";
        case OnboardingStep::done:
            return "You are ready";
    }
    return {};
}

std::string onboardingProgressText(OnboardingStep step) {
    const auto position = std::find(kOnboardingSteps.begin(), kOnboardingSteps.end(), step);
    return "Step " + std::to_string(position - kOnboardingSteps.begin() + 1) + " of " +
           std::to_string(stepCount());
}

std::vector<ObservationLine> observationLines(std::string_view report) {
    std::vector<ObservationLine> lines;
    while (!report.empty()) {
        const std::size_t end = report.find('\n');
        std::string_view line = report.substr(0, end);
        report = end == std::string_view::npos ? std::string_view() : report.substr(end + 1);
        if (line.empty()) {
            continue;
        }
        ObservationLine parsed;
        for (const auto& [mark, ok] : {std::pair{std::string_view("ok "), true},
                                       std::pair{std::string_view("gap "), false}}) {
            if (line.starts_with(mark)) {
                parsed.ok = ok;
                line.remove_prefix(mark.size());
                break;
            }
        }
        while (!line.empty() && line.front() == ' ') {
            line.remove_prefix(1);
        }
        parsed.text = std::string(line);
        lines.push_back(std::move(parsed));
    }
    return lines;
}

std::vector<OnboardingBrowserRow> onboardingBrowserRows(
    const std::vector<bridge::BrowserStatusRow>& rows) {
    std::vector<OnboardingBrowserRow> listed;
    for (const bridge::BrowserStatusRow& row : rows) {
        if (!row.diagnosis.browserInstalled) {
            continue;
        }
        OnboardingBrowserRow browser;
        browser.browser = row.diagnosis.browser;
        browser.name = std::string(bridge::displayName(row.diagnosis.browser));
        browser.registered = row.registration.isReady();
        browser.connected = row.diagnosis.extensionConnected;
        browser.state = browserState(browser.name, browser.registered, browser.connected);
        listed.push_back(std::move(browser));
    }
    return listed;
}

}  // namespace lumenote::ui::models
