// `prefs`: list, read, change and reset the stored preferences by key. A
// change goes through the preferences store's own setter, so a value is
// clamped exactly as the application clamps it, and the command says so.
#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <charconv>
#include <chrono>
#include <cmath>
#include <memory>

#include "cli/commands.hpp"
#include "cli/duration_argument.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preference_catalog.hpp"
#include "settings/preferences_store.hpp"

namespace lumenote::cli {

namespace {

// The user's preferences, opened for one command.
struct OpenPreferences {
    settings::JsonFileDefaultsDomain domain;
    settings::PreferencesStore store;

    explicit OpenPreferences(CliContext& context)
        : domain(settings::JsonFileDefaultsDomain::pathFor(context.paths), systemNow),
          store(domain) {
        if (const auto& moved = domain.lastQuarantinedPath()) {
            context.err << fmt::format(
                "The preferences file could not be read and was moved to {}; defaults are used.\n",
                moved->string());
        }
    }

    // Refuses when the last change could not be written; true when it was.
    bool saved(CliContext& context) const {
        if (const auto error = domain.lastWriteError()) {
            context.refuse(
                fmt::format("Lumenote could not save its preferences ({}).", describe(*error)));
            return false;
        }
        return true;
    }
};

std::string valueText(const settings::PreferenceValue& value) {
    return std::visit(
        [](const auto& held) -> std::string {
            using T = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<T, bool>) {
                return held ? "true" : "false";
            } else if constexpr (std::is_same_v<T, std::string>) {
                return held;
            } else {
                return fmt::format("{}", held);
            }
        },
        value);
}

// Strings are quoted in listings so that an empty value stays visible.
std::string listedText(const settings::PreferenceValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return fmt::format("{:?}", *text);
    }
    return valueText(value);
}

std::string lowercase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

std::optional<long long> parseInteger(std::string_view text) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

// A number of seconds (fractions allowed, but not infinity or NaN, which the
// store would silently replace by the default) or a duration such as 25m.
std::optional<double> parseSeconds(std::string_view text) {
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (!text.empty() && error == std::errc() && end == text.data() + text.size()) {
        return std::isfinite(value) ? std::optional<double>(value) : std::nullopt;
    }
    if (auto duration = parseDurationArgument(text)) {
        return duration.value();
    }
    return std::nullopt;
}

// The typed form of `text` for a key of `kind`; nullopt when it cannot be one.
std::optional<settings::PreferenceValue> parseValue(const settings::PreferenceKeyInfo& info,
                                                    std::string_view text) {
    switch (info.kind) {
        case settings::PreferenceValueKind::boolean: {
            const std::string word = lowercase(text);
            if (word == "true" || word == "yes" || word == "on" || word == "1") {
                return true;
            }
            if (word == "false" || word == "no" || word == "off" || word == "0") {
                return false;
            }
            return std::nullopt;
        }
        case settings::PreferenceValueKind::integer:
            if (auto integer = parseInteger(text)) {
                return *integer;
            }
            return std::nullopt;
        case settings::PreferenceValueKind::seconds:
            if (auto seconds = parseSeconds(text)) {
                return *seconds;
            }
            return std::nullopt;
        case settings::PreferenceValueKind::text:
            return std::string(text);
    }
    return std::nullopt;
}

// A bound in words: seconds and minutes as a readable duration.
std::string boundText(double value, settings::PreferenceUnit unit) {
    return readableDuration(unit == settings::PreferenceUnit::minutes ? value * 60.0 : value);
}

// "from 90 seconds to 30 minutes", with ", or 0 for none" where 0 is kept.
std::string rangeText(const settings::PreferenceBounds& bounds) {
    return fmt::format("from {} to {}{}", boundText(bounds.lower, bounds.unit),
                       boundText(bounds.upper, bounds.unit),
                       bounds.zeroMeansNone ? ", or 0 for none" : "");
}

std::string choicesText(const settings::PreferenceKeyInfo& info) {
    std::string list;
    for (std::size_t index = 0; index < info.choices.size(); ++index) {
        list += list.empty() ? "" : ", ";
        list += info.choices[index];
        if (index < info.choiceAliases.size()) {
            list += fmt::format(" (or {})", info.choiceAliases[index]);
        }
    }
    return list;
}

std::string expectation(const settings::PreferenceKeyInfo& info) {
    if (!info.choices.empty()) {
        return "use one of " + choicesText(info);
    }
    const std::string range = info.bounds ? fmt::format(" ({})", rangeText(*info.bounds)) : "";
    switch (info.kind) {
        case settings::PreferenceValueKind::boolean:
            return "use true or false";
        case settings::PreferenceValueKind::integer:
            return "use a whole number" + range;
        case settings::PreferenceValueKind::seconds:
            return "use a number of seconds or a duration such as 25m" + range;
        case settings::PreferenceValueKind::text:
            break;
    }
    return "use some text";
}

const settings::PreferenceKeyInfo* knownKey(CliContext& context, std::string_view key) {
    const settings::PreferenceKeyInfo* info = settings::findPreferenceKey(key);
    if (info == nullptr) {
        context.refuse(fmt::format(
            "There is no preference named \"{}\". Run \"lumenote-cli prefs list\" to see them all.",
            key));
    }
    return info;
}

void listPreferences(CliContext& context) {
    OpenPreferences preferences(context);
    std::size_t width = 0;
    for (const settings::PreferenceKeyInfo& info : settings::preferenceKeyCatalog()) {
        width = std::max(width, info.key.size());
    }
    for (const settings::PreferenceKeyInfo& info : settings::preferenceKeyCatalog()) {
        const settings::PreferenceValue value = settings::preferenceValue(preferences.store, info);
        const bool isDefault = value == settings::defaultPreferenceValue(info);
        context.out << fmt::format("{:<{}} = {}{}\n", info.key, width, listedText(value),
                                   isDefault ? "  (default)" : "");
    }
}

void getPreference(CliContext& context, const std::string& key) {
    const settings::PreferenceKeyInfo* info = knownKey(context, key);
    if (info == nullptr) {
        return;
    }
    OpenPreferences preferences(context);
    context.out << valueText(settings::preferenceValue(preferences.store, *info)) << '\n';
}

double numberIn(const settings::PreferenceValue& value) {
    if (const auto* integer = std::get_if<long long>(&value)) {
        return static_cast<double>(*integer);
    }
    return std::get<double>(value);
}

// What was stored and why, when the store clamped or rewrote the value asked
// for; nullopt when it kept it (a choice given by another spelling counts as
// kept: the value line shows the stored spelling).
std::optional<std::string> adjustmentNote(const settings::PreferenceKeyInfo& info,
                                          const settings::PreferenceValue& requested,
                                          const settings::PreferenceValue& stored) {
    if (stored == requested || !info.choices.empty()) {
        return std::nullopt;
    }
    if (info.bounds) {
        const double value = numberIn(stored);
        return fmt::format(
            "{} is {}: the {} allowed ({}).", info.key, boundText(value, info.bounds->unit),
            value < numberIn(requested) ? "largest" : "smallest", rangeText(*info.bounds));
    }
    assert(!info.normalisation.empty());
    return fmt::format("{} is {}: {}.", info.key, listedText(stored), info.normalisation);
}

void setPreference(CliContext& context, const std::string& key, const std::string& text) {
    const settings::PreferenceKeyInfo* info = knownKey(context, key);
    if (info == nullptr) {
        return;
    }
    const auto requested = parseValue(*info, text);
    if (!requested) {
        context.refuse(fmt::format("\"{}\" is not a valid value for {}: {}.", text, info->key,
                                   expectation(*info)));
        return;
    }
    OpenPreferences preferences(context);
    const auto assigned = settings::assignPreference(preferences.store, *info, *requested);
    if (!assigned) {
        const std::string expected =
            assigned.error() == settings::PreferenceAssignmentError::outOfRange
                ? "use a whole number from 0 to 4294967295"
                : expectation(*info);
        context.refuse(
            fmt::format("\"{}\" is not a valid value for {}: {}.", text, info->key, expected));
        return;
    }
    if (!preferences.saved(context)) {
        return;
    }
    context.out << fmt::format("{} = {}\n", info->key, valueText(assigned.value()));
    if (const auto note = adjustmentNote(*info, *requested, assigned.value())) {
        context.out << *note << '\n';
    }
    const settings::GlobalHotkeyBinding& binding = preferences.store.globalHotkey();
    if ((info->key == settings::preference_keys::globalHotkeyKeyCode ||
         info->key == settings::preference_keys::globalHotkeyModifiers) &&
        !settings::isUsableGlobalHotkey(binding.keyCode, binding.modifiers)) {
        context.out << fmt::format(
            "{} is not a usable shortcut: it needs Ctrl, Alt, Shift or Super and a key with a "
            "name. Lumenote uses {} until it is changed.\n",
            settings::globalHotkeyDisplayText(binding),
            settings::globalHotkeyDisplayText(settings::GlobalHotkeyBinding{}));
    }
}

void resetPreferences(CliContext& context) {
    OpenPreferences preferences(context);
    preferences.store.resetToDefaults();
    if (preferences.saved(context)) {
        context.out << "Preferences were reset to their defaults.\n";
    }
}

}  // namespace

void installPrefsCommands(CLI::App& app, CliContext& context) {
    auto* prefs = app.add_subcommand("prefs", "Show and change Lumenote's preferences");
    prefs->require_subcommand(1);

    prefs->add_subcommand("list", "Show every preference, its value and whether it is the default")
        ->callback([&context] { listPreferences(context); });

    auto getKey = std::make_shared<std::string>();
    auto* get = prefs->add_subcommand("get", "Print the value of one preference");
    get->add_option("key", *getKey, "The preference's key, such as tracking.inactivityThreshold")
        ->required();
    get->callback([&context, getKey] { getPreference(context, *getKey); });

    auto setArguments = std::make_shared<std::pair<std::string, std::string>>();
    auto* set = prefs->add_subcommand(
        "set",
        "Change one preference; an out-of-range value is clamped as in the application, and the "
        "command says what was stored and why");
    set->add_option("key", setArguments->first, "The preference's key")->required();
    set->add_option("value", setArguments->second,
                    "true/false, a number, seconds (or 25m, 1h30m) or text, by key")
        ->required();
    set->callback([&context, setArguments] {
        setPreference(context, setArguments->first, setArguments->second);
    });

    prefs
        ->add_subcommand("reset",
                         "Put every preference back to its default (history and templates stay)")
        ->callback([&context] { resetPreferences(context); });
}

}  // namespace lumenote::cli
