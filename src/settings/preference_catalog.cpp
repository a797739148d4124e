#include "settings/preference_catalog.hpp"

#include <array>
#include <cstdlib>
#include <limits>
#include <vector>

#include "settings/preference_keys.hpp"
#include "settings/preference_rules.hpp"
#include "settings/study_mode_names.hpp"

namespace lumenote::settings {

namespace {

namespace keys = preference_keys;
using K = PreferenceValueKind;
using S = PreferencesStore;
using V = PreferenceValue;
using R = Result<void, PreferenceAssignmentError>;

constexpr std::array<std::string_view, 3> kAppearanceChoices{"system", "light", "dark"};
constexpr std::array<std::string_view, 3> kStudyModeChoices{"computerBased", "mixedStudy",
                                                            "offlineBookStudy"};
constexpr auto kStudyModeAliases = [] {
    std::array<std::string_view, kStudyModeShortNames.size()> words{};
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = kStudyModeShortNames[i].word;
    }
    return words;
}();
constexpr std::array<std::string_view, 2> kTimingModeChoices{"timer", "open_ended"};
constexpr std::array<std::string_view, 4> kLongSleepChoices{"300", "600", "1800", "0"};

struct Row {
    PreferenceKeyInfo info;
    V defaultValue;
    V (*get)(const S&);
    R (*set)(S&, const V&);
};

R setBool(S& store, const V& value, void (S::*setter)(bool)) {
    const auto* flag = std::get_if<bool>(&value);
    if (flag == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    (store.*setter)(*flag);
    return {};
}

R setInteger(S& store, const V& value, void (S::*setter)(long long)) {
    const auto* integer = std::get_if<long long>(&value);
    if (integer == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    (store.*setter)(*integer);
    return {};
}

R setSeconds(S& store, const V& value, void (S::*setter)(double)) {
    if (const auto* integer = std::get_if<long long>(&value)) {
        (store.*setter)(static_cast<double>(*integer));
        return {};
    }
    const auto* seconds = std::get_if<double>(&value);
    if (seconds == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    (store.*setter)(*seconds);
    return {};
}

template <typename Setter>
R setText(S& store, const V& value, Setter setter) {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    (store.*setter)(*text);
    return {};
}

R setStudyMode(S& store, const V& value) {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    const auto mode = studyModeNamed(*text);
    if (!mode) {
        return fail(PreferenceAssignmentError::notAChoice);
    }
    store.setDefaultStudyMode(*mode);
    return {};
}

template <typename E>
R setChoice(S& store, const V& value, void (S::*setter)(E)) {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    const auto choice = fromRawValue<E>(*text);
    if (!choice) {
        return fail(PreferenceAssignmentError::notAChoice);
    }
    (store.*setter)(*choice);
    return {};
}

R setLongSleep(S& store, const V& value) {
    const auto* seconds = std::get_if<long long>(&value);
    if (seconds == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    for (auto preference : {LongSleepPreference::fiveMinutes, LongSleepPreference::tenMinutes,
                            LongSleepPreference::thirtyMinutes, LongSleepPreference::never}) {
        if (longSleepSeconds(preference) == *seconds) {
            store.setLongSleep(preference);
            return {};
        }
    }
    return fail(PreferenceAssignmentError::notAChoice);
}

R setHotkeyPart(S& store, const V& value, std::uint32_t GlobalHotkeyBinding::*part) {
    const auto* integer = std::get_if<long long>(&value);
    if (integer == nullptr) {
        return fail(PreferenceAssignmentError::wrongKind);
    }
    if (*integer < 0 || *integer > std::numeric_limits<std::uint32_t>::max()) {
        return fail(PreferenceAssignmentError::outOfRange);
    }
    GlobalHotkeyBinding binding = store.globalHotkey();
    binding.*part = static_cast<std::uint32_t>(*integer);
    store.setGlobalHotkey(binding);
    return {};
}

V raw(auto value) {
    return std::string(rawValue(value));
}

constexpr PreferenceBounds secondsBounds(const ThresholdRange& range) {
    return {range.lower, range.upper, PreferenceUnit::seconds};
}

const std::vector<Row>& rows() {
    static const std::vector<Row> table{
        {{keys::launchAtLogin, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.launchAtLogin(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setLaunchAtLogin); }},
        {{keys::startHidden, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.startHidden(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setStartHidden); }},
        {{keys::appearance, K::text, kAppearanceChoices},
         raw(TallywiseAppearance::system),
         [](const S& s) { return raw(s.appearance()); },
         [](S& s, const V& v) { return setChoice(s, v, &S::setAppearance); }},
        {{.key = keys::defaultDuration,
          .kind = K::seconds,
          .bounds = secondsBounds(kDefaultDurationRange)},
         1500.0,
         [](const S& s) -> V { return s.defaultDuration(); },
         [](S& s, const V& v) { return setSeconds(s, v, &S::setDefaultDuration); }},
        {{keys::rememberLastDuration, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.rememberLastDuration(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setRememberLastDuration); }},
        {{keys::defaultSubject, K::text, {}},
         std::string(),
         [](const S& s) -> V { return s.defaultSubject(); },
         [](S& s, const V& v) { return setText(s, v, &S::setDefaultSubject); }},
        {{keys::rememberLastSubject, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.rememberLastSubject(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setRememberLastSubject); }},
        {{keys::defaultGoal, K::text, {}},
         std::string(),
         [](const S& s) -> V { return s.defaultGoal(); },
         [](S& s, const V& v) { return setText(s, v, &S::setDefaultGoal); }},
        {{keys::rememberLastGoal, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.rememberLastGoal(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setRememberLastGoal); }},
        {{.key = keys::defaultStudyMode,
          .kind = K::text,
          .choices = kStudyModeChoices,
          .choiceAliases = kStudyModeAliases},
         raw(recording::StudySessionMode::mixedStudy),
         [](const S& s) { return raw(s.defaultStudyMode()); },
         setStudyMode},
        {{keys::lastTimingMode, K::text, kTimingModeChoices},
         raw(recording::SessionTimingMode::timer),
         [](const S& s) { return raw(s.lastTimingMode()); },
         [](S& s, const V& v) { return setChoice(s, v, &S::setLastTimingMode); }},
        {{keys::hasSeenPassiveStudyIntroduction, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.hasSeenPassiveStudyIntroduction(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setHasSeenPassiveStudyIntroduction); }},
        {{keys::globalHotkeyEnabled, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.globalHotkeyEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setGlobalHotkeyEnabled); }},
        {{keys::globalHotkeyKeyCode, K::integer, {}},
         static_cast<long long>(GlobalHotkeyBinding{}.keyCode),
         [](const S& s) -> V { return static_cast<long long>(s.globalHotkey().keyCode); },
         [](S& s, const V& v) { return setHotkeyPart(s, v, &GlobalHotkeyBinding::keyCode); }},
        {{keys::globalHotkeyModifiers, K::integer, {}},
         static_cast<long long>(GlobalHotkeyBinding{}.modifiers),
         [](const S& s) -> V { return static_cast<long long>(s.globalHotkey().modifiers); },
         [](S& s, const V& v) { return setHotkeyPart(s, v, &GlobalHotkeyBinding::modifiers); }},
        {{.key = keys::passiveStudyPromptThreshold,
          .kind = K::seconds,
          .bounds = secondsBounds(kPassiveStudyPromptRange)},
         300.0,
         [](const S& s) -> V { return s.passiveStudyPromptThreshold(); },
         [](S& s, const V& v) { return setSeconds(s, v, &S::setPassiveStudyPromptThreshold); }},
        {{.key = keys::inactivityThreshold,
          .kind = K::seconds,
          .bounds = secondsBounds(kInactivityThresholdRange)},
         90.0,
         [](const S& s) -> V { return s.inactivityThreshold(); },
         [](S& s, const V& v) { return setSeconds(s, v, &S::setInactivityThreshold); }},
        {{keys::longSleep, K::integer, kLongSleepChoices},
         600LL,
         [](const S& s) -> V { return longSleepSeconds(s.longSleep()); },
         setLongSleep},
        {{keys::notificationsEnabled, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.notificationsEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setNotificationsEnabled); }},
        {{keys::notificationsIncludeSubject, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.notificationsIncludeSubject(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setNotificationsIncludeSubject); }},
        {{keys::browserTrackingEnabled, K::boolean, {}},
         true,
         [](const S& s) -> V { return s.browserTrackingEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setBrowserTrackingEnabled); }},
        {{keys::hostnameTrackingEnabled, K::boolean, {}},
         true,
         [](const S& s) -> V { return s.hostnameTrackingEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setHostnameTrackingEnabled); }},
        {{keys::localPDFDetectionEnabled, K::boolean, {}},
         true,
         [](const S& s) -> V { return s.localPDFDetectionEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setLocalPDFDetectionEnabled); }},
        {{keys::manualPDFLabelsEnabled, K::boolean, {}},
         true,
         [](const S& s) -> V { return s.manualPDFLabelsEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setManualPDFLabelsEnabled); }},
        {{keys::pauseAllBrowserTracking, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.pauseAllBrowserTracking(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setPauseAllBrowserTracking); }},
        {{keys::onboardingCompletedVersion, K::integer, {}},
         0LL,
         [](const S& s) -> V { return s.onboardingCompletedVersion(); },
         [](S& s, const V& v) { return setInteger(s, v, &S::setOnboardingCompletedVersion); }},
        {{keys::onboardingLastStep, K::integer, {}},
         0LL,
         [](const S& s) -> V { return s.onboardingLastStep(); },
         [](S& s, const V& v) { return setInteger(s, v, &S::setOnboardingLastStep); }},
        {{.key = keys::firstName,
          .kind = K::text,
          .normalisation = "white space at both ends is dropped, inner white space becomes one "
                           "space, and only the first 40 characters are kept"},
         std::string(),
         [](const S& s) -> V { return s.firstName(); },
         [](S& s, const V& v) { return setText(s, v, &S::setFirstName); }},
        {{.key = keys::dailyStudyGoalMinutes,
          .kind = K::integer,
          .bounds = PreferenceBounds{1.0, static_cast<double>(kMaximumDailyStudyGoalMinutes),
                                     PreferenceUnit::minutes, true}},
         0LL,
         [](const S& s) -> V { return s.dailyStudyGoalMinutes(); },
         [](S& s, const V& v) { return setInteger(s, v, &S::setDailyStudyGoalMinutes); }},
        {{keys::sessionCelebrationsEnabled, K::boolean, {}},
         true,
         [](const S& s) -> V { return s.sessionCelebrationsEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setSessionCelebrationsEnabled); }},
        {{keys::insightsAIPhrasingEnabled, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.insightsAIPhrasingEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setInsightsAIPhrasingEnabled); }},
        {{.key = keys::insightsAIProviderIdentifier,
          .kind = K::text,
          .normalisation = "no phrasing provider is available, so it is always \"none\""},
         std::string(kNoAIProvider),
         [](const S& s) -> V { return s.insightsAIProviderIdentifier(); },
         [](S& s, const V& v) { return setText(s, v, &S::setInsightsAIProviderIdentifier); }},
        {{keys::updatesCheckEnabled, K::boolean, {}},
         false,
         [](const S& s) -> V { return s.updatesCheckEnabled(); },
         [](S& s, const V& v) { return setBool(s, v, &S::setUpdatesCheckEnabled); }},
        {{.key = keys::updatesFeedAddress,
          .kind = K::text,
          .normalisation = "white space at both ends is dropped"},
         std::string(),
         [](const S& s) -> V { return s.updatesFeedAddress(); },
         [](S& s, const V& v) { return setText(s, v, &S::setUpdatesFeedAddress); }},
        {{keys::derivedRevision, K::integer, {}},
         0LL,
         [](const S& s) -> V { return s.derivedRevision(); },
         [](S& s, const V& v) { return setInteger(s, v, &S::setDerivedRevision); }},
    };
    return table;
}

const Row& rowFor(const PreferenceKeyInfo& info) {
    for (const Row& row : rows()) {
        if (row.info.key == info.key) {
            return row;
        }
    }
    // Only entries of the catalog are ever passed in.
    std::abort();
}

}  // namespace

std::span<const PreferenceKeyInfo> preferenceKeyCatalog() {
    static const std::vector<PreferenceKeyInfo> infos = [] {
        std::vector<PreferenceKeyInfo> list;
        for (const Row& row : rows()) {
            list.push_back(row.info);
        }
        return list;
    }();
    return infos;
}

const PreferenceKeyInfo* findPreferenceKey(std::string_view key) {
    for (const PreferenceKeyInfo& info : preferenceKeyCatalog()) {
        if (info.key == key) {
            return &info;
        }
    }
    return nullptr;
}

PreferenceValue preferenceValue(const PreferencesStore& store, const PreferenceKeyInfo& info) {
    return rowFor(info).get(store);
}

PreferenceValue defaultPreferenceValue(const PreferenceKeyInfo& info) {
    return rowFor(info).defaultValue;
}

Result<PreferenceValue, PreferenceAssignmentError> assignPreference(PreferencesStore& store,
                                                                    const PreferenceKeyInfo& info,
                                                                    const PreferenceValue& value) {
    const Row& row = rowFor(info);
    if (auto assigned = row.set(store, value); !assigned) {
        return fail(assigned.error());
    }
    return row.get(store);
}

}  // namespace lumenote::settings
