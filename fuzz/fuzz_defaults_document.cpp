// Fuzzes the defaults document ($XDG_CONFIG_HOME/Lumenote/defaults.json), the
// one file of settings a user may edit by hand. A document that decodes must
// be written back into one that decodes to the same values and writes the
// same bytes again; the preferences read from it must each be valid under
// the preference rules: of the key's kind, within its bounds, one of its
// choices, normalised, so that assigning a value read changes nothing.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <variant>

#include "foundation/text.hpp"
#include "round_trip.hpp"
#include "settings/defaults_document.hpp"
#include "settings/global_hotkey_binding.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preference_catalog.hpp"
#include "settings/preference_keys.hpp"
#include "settings/preference_rules.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::fuzz {
namespace {

using namespace settings;

const Date kToday = *parseIso8601("2026-11-25T10:00:00Z");

bool ofKind(const PreferenceValue& value, PreferenceValueKind kind) {
    switch (kind) {
        case PreferenceValueKind::boolean:
            return std::holds_alternative<bool>(value);
        case PreferenceValueKind::integer:
            return std::holds_alternative<long long>(value);
        case PreferenceValueKind::seconds:
            return std::holds_alternative<double>(value);
        case PreferenceValueKind::text:
            return std::holds_alternative<std::string>(value);
    }
    return false;
}

std::string choiceText(const PreferenceValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    if (const auto* integer = std::get_if<long long>(&value)) {
        return std::to_string(*integer);
    }
    return {};
}

bool withinBounds(const PreferenceValue& value, const PreferenceBounds& bounds) {
    double number = 0.0;
    if (const auto* integer = std::get_if<long long>(&value)) {
        number = static_cast<double>(*integer);
    } else if (const auto* seconds = std::get_if<double>(&value)) {
        number = *seconds;
    } else {
        return false;
    }
    if (bounds.zeroMeansNone && number == 0.0) {
        return true;
    }
    return std::isfinite(number) && number >= bounds.lower && number <= bounds.upper;
}

// The one stored shortcut the store refuses to convert: a usable pair whose
// modifier mask does not fit 32 bits stops the program by design
// (globalHotkeyBindingFromStored), so such a document is not read here.
bool stopsTheProgram(const DefaultsValues& values) {
    const auto stored = [&values](std::string_view key) -> std::optional<DefaultsValue> {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    };
    const auto keyCode = asInteger(stored(preference_keys::globalHotkeyKeyCode));
    const auto modifiers = asInteger(stored(preference_keys::globalHotkeyModifiers));
    return keyCode && modifiers && isUsableGlobalHotkey(*keyCode, *modifiers) &&
           *modifiers > std::numeric_limits<std::uint32_t>::max();
}

void checkPreferences(const DefaultsValues& values, std::string_view document) {
    if (stopsTheProgram(values)) {
        return;
    }
    InMemoryDefaultsDomain domain(values);
    PreferencesStore store(domain);
    for (const PreferenceKeyInfo& info : preferenceKeyCatalog()) {
        const PreferenceValue value = preferenceValue(store, info);
        const std::string key(info.key);
        check(ofKind(value, info.kind), key, "a preference read is not of its key's kind",
              document);
        if (info.bounds) {
            check(withinBounds(value, *info.bounds), key, "a preference read is out of bounds",
                  document);
        }
        if (!info.choices.empty()) {
            bool listed = false;
            for (const std::string_view choice : info.choices) {
                listed = listed || choice == choiceText(value);
            }
            check(listed, key, "a preference read is none of its key's choices", document);
        }
        const auto assigned = assignPreference(store, info, value);
        check(assigned.ok() && assigned.value() == value, key,
              "assigning a preference as read changed it", document);
    }
    check(store.firstName() == normalisedFirstName(store.firstName()), "firstName",
          "the first name read is not normalised", document);
    check(store.updatesFeedAddress() == text::trimmed(store.updatesFeedAddress()),
          "updates.feedAddress", "the feed address read is not trimmed", document);
    const GlobalHotkeyBinding hotkey = store.globalHotkey();
    check(hotkey == GlobalHotkeyBinding{} || isUsableGlobalHotkey(hotkey.keyCode, hotkey.modifiers),
          "shortcut", "an unusable shortcut was read", document);
    // The daily goal is acknowledged once a day.
    const LocalCalendar calendar = LocalCalendar::utc();
    if (store.acknowledgeDailyGoalIfNeeded(kToday, calendar)) {
        check(!store.acknowledgeDailyGoalIfNeeded(kToday, calendar), "dailyGoalAcknowledgement",
              "the daily goal was acknowledged twice in one day", document);
    }
}

void fuzzDefaults(std::string_view bytes) {
    const auto decoded = decodeDefaultsDocument(bytes);
    if (!decoded) {
        return;
    }
    const std::string written = encodeDefaultsDocument(*decoded);
    const auto reread = decodeDefaultsDocument(written);
    check(reread.has_value(), "defaults",
          "a decoded document was written as one that does not decode", written);
    check(encodeDefaultsDocument(*reread) == written, "defaults",
          "writing the reread document changed it", written);
    check(*reread == *decoded, "defaults", "the written document reads back as other values",
          written);
    checkPreferences(*decoded, bytes);
}

}  // namespace
}  // namespace lumenote::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lumenote::fuzz::fuzzDefaults(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
