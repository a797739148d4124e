// `templates`: list, show, add, edit, delete, favourite, enable, disable and
// move session templates. Every change goes through the template store, so
// its refusals are printed as the application words them.
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <memory>

#include "cli/commands.hpp"
#include "cli/duration_argument.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/session_template_store.hpp"

namespace lumenote::cli {

namespace {

// The user's templates, opened for one command. What the load found (a
// quarantined, refused or newer file) is told on the error stream first.
struct OpenTemplates {
    settings::FileSessionTemplateRepository repository;
    settings::SessionTemplateStore store;

    explicit OpenTemplates(CliContext& context)
        : repository(settings::FileSessionTemplateRepository::pathFor(context.paths), systemNow),
          store(repository, systemNow) {
        if (const auto& message = store.loadMessage()) {
            context.err << *message << '\n';
        }
    }
};

// The template a name or an id refers to; refuses when there is none.
const settings::SessionTemplate* resolve(CliContext& context,
                                         const settings::SessionTemplateStore& store,
                                         const std::string& reference) {
    const settings::SessionTemplate* found = nullptr;
    if (const auto id = Uuid::parse(reference)) {
        found = store.find(*id);
    }
    if (found == nullptr) {
        found = store.findByName(reference);
    }
    if (found == nullptr) {
        context.refuse(fmt::format("No session template has the name or id \"{}\".", reference));
    }
    return found;
}

// Reads a duration option; refuses and returns nullopt when it cannot.
std::optional<double> durationOption(CliContext& context, const std::string& text) {
    auto seconds = parseDurationArgument(text);
    if (!seconds) {
        context.refuse(message(seconds.error()));
        return std::nullopt;
    }
    return seconds.value();
}

std::string timingText(const settings::SessionTemplate& t) {
    if (t.timingMode() == recording::SessionTimingMode::openEnded) {
        return fmt::format("open-ended ({} planned)", formatDurationArgument(t.duration));
    }
    return formatDurationArgument(t.duration);
}

std::string summary(const settings::SessionTemplate& t) {
    std::string text = fmt::format("{} — {}, {}", t.name, t.subject, timingText(t));
    if (t.breakDuration) {
        text += fmt::format(", break {}", formatDurationArgument(*t.breakDuration));
    }
    if (t.isFavorite) {
        text += ", favourite";
    }
    if (!t.isEnabled) {
        text += ", disabled";
    }
    return text;
}

std::string dateText(const std::optional<Date>& date) {
    return date ? LocalCalendar::current().formatIso8601(*date) : "never";
}

void listTemplates(CliContext& context) {
    OpenTemplates templates(context);
    const auto& list = templates.store.templates();
    if (list.empty()) {
        context.out << "No session templates yet. Add one with \"lumenote-cli templates add\".\n";
        return;
    }
    for (std::size_t index = 0; index < list.size(); ++index) {
        context.out << fmt::format("{:>3}. {}\n", index + 1, summary(list[index]));
    }
}

void showTemplate(CliContext& context, const std::string& reference) {
    OpenTemplates templates(context);
    const settings::SessionTemplate* t = resolve(context, templates.store, reference);
    if (t == nullptr) {
        return;
    }
    context.out << fmt::format("Name:      {}\n", t->name)
                << fmt::format("Id:        {}\n", t->id.upperString())
                << fmt::format("Subject:   {}\n", t->subject)
                << fmt::format("Goal:      {}\n", t->defaultGoal)
                << fmt::format("Duration:  {}\n", timingText(*t))
                << fmt::format("Break:     {}\n", t->breakDuration
                                                      ? formatDurationArgument(*t->breakDuration)
                                                      : std::string("none"))
                << fmt::format("Favourite: {}\n", t->isFavorite ? "yes" : "no")
                << fmt::format("Enabled:   {}\n", t->isEnabled ? "yes" : "no")
                << fmt::format("Created:   {}\n", dateText(t->createdDate))
                << fmt::format("Modified:  {}\n", dateText(t->modifiedDate))
                << fmt::format("Last used: {}\n", dateText(t->lastUsedDate));
}

// The options of `add` and `edit`; empty optionals were not given.
struct TemplateOptions {
    std::string reference;
    std::optional<std::string> name;
    std::optional<std::string> subject;
    std::optional<std::string> goal;
    std::optional<std::string> duration;
    std::optional<std::string> breakDuration;
    bool noBreak = false;
    bool openEnded = false;
    bool timer = false;
};

// Applies the given options to `draft`; refuses and returns false when a
// duration cannot be read.
bool applyOptions(CliContext& context, const TemplateOptions& options,
                  settings::SessionTemplateDraft& draft) {
    if (options.name) {
        draft.name = *options.name;
    }
    if (options.subject) {
        draft.subject = *options.subject;
    }
    if (options.goal) {
        draft.defaultGoal = *options.goal;
    }
    if (options.duration) {
        const auto seconds = durationOption(context, *options.duration);
        if (!seconds) {
            return false;
        }
        draft.duration = *seconds;
    }
    if (options.breakDuration) {
        const auto seconds = durationOption(context, *options.breakDuration);
        if (!seconds) {
            return false;
        }
        draft.breakDuration = *seconds;
    }
    if (options.noBreak) {
        draft.breakDuration.reset();
    }
    if (options.openEnded) {
        draft.timingMode = recording::SessionTimingMode::openEnded;
    }
    if (options.timer) {
        draft.timingMode = recording::SessionTimingMode::timer;
    }
    return true;
}

// The planned duration an open-ended template keeps when none is given: the
// user's default duration, within the templates' range, so that switching
// the template to a timer later starts from a familiar length.
double openEndedPlannedDuration(const UserPaths& paths) {
    settings::JsonFileDefaultsDomain defaults(settings::JsonFileDefaultsDomain::pathFor(paths),
                                              systemNow);
    const settings::PreferencesStore preferences(defaults);
    return std::clamp(preferences.defaultDuration(), settings::kMinimumTemplateDuration,
                      settings::kMaximumTemplateDuration);
}

void addTemplate(CliContext& context, const TemplateOptions& options) {
    if (!options.duration && !options.openEnded) {
        context.err << "templates add: give --duration, or --open-ended for sessions that run "
                       "until ended\n";
        context.exitCode = kExitUsage;
        return;
    }
    settings::SessionTemplateDraft draft;
    if (!options.duration) {
        draft.duration = openEndedPlannedDuration(context.paths);
    }
    if (!applyOptions(context, options, draft)) {
        return;
    }
    OpenTemplates templates(context);
    const auto created = templates.store.create(draft);
    if (!created) {
        context.refuse(message(created.error()));
        return;
    }
    context.out << fmt::format("Added template \"{}\" ({}).\n", created->name,
                               created->id.upperString());
}

void editTemplate(CliContext& context, const TemplateOptions& options) {
    OpenTemplates templates(context);
    const settings::SessionTemplate* t = resolve(context, templates.store, options.reference);
    if (t == nullptr) {
        return;
    }
    settings::SessionTemplateDraft draft = settings::SessionTemplateDraft::of(*t);
    if (!applyOptions(context, options, draft)) {
        return;
    }
    const auto updated = templates.store.update(t->id, draft);
    if (!updated) {
        context.refuse(message(updated.error()));
        return;
    }
    context.out << fmt::format("Updated template \"{}\".\n", updated->name);
}

void deleteTemplate(CliContext& context, const std::string& reference) {
    OpenTemplates templates(context);
    const settings::SessionTemplate* t = resolve(context, templates.store, reference);
    if (t == nullptr) {
        return;
    }
    const std::string name = t->name;
    const auto deleted = templates.store.deleteTemplate(t->id);
    if (!deleted) {
        context.refuse(message(deleted.error()));
        return;
    }
    context.out << fmt::format("Deleted template \"{}\".\n", name);
}

void setFavourite(CliContext& context, const std::string& reference, bool isFavorite) {
    OpenTemplates templates(context);
    const settings::SessionTemplate* t = resolve(context, templates.store, reference);
    if (t == nullptr) {
        return;
    }
    const auto changed = templates.store.setFavorite(t->id, isFavorite);
    if (!changed) {
        context.refuse(message(changed.error()));
        return;
    }
    context.out << fmt::format("\"{}\" {} a favourite.\n", changed->name,
                               isFavorite ? "is" : "is no longer");
}

void setEnabled(CliContext& context, const std::string& reference, bool isEnabled) {
    OpenTemplates templates(context);
    const settings::SessionTemplate* t = resolve(context, templates.store, reference);
    if (t == nullptr) {
        return;
    }
    const auto changed = templates.store.setEnabled(t->id, isEnabled);
    if (!changed) {
        context.refuse(message(changed.error()));
        return;
    }
    context.out << fmt::format("\"{}\" is {}.\n", changed->name,
                               isEnabled ? "enabled" : "disabled");
}

// The position typed for `move`, counting from 1; nullopt when it is not a
// whole number from 1 to `count`.
std::optional<std::size_t> positionIn(std::string_view text, std::size_t count) {
    std::size_t position = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), position);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || position < 1 ||
        position > count) {
        return std::nullopt;
    }
    return position;
}

void moveTemplate(CliContext& context, const std::string& reference,
                  const std::string& positionText) {
    OpenTemplates templates(context);
    const settings::SessionTemplate* t = resolve(context, templates.store, reference);
    if (t == nullptr) {
        return;
    }
    const std::size_t count = templates.store.templates().size();
    const auto position = positionIn(positionText, count);
    if (!position) {
        context.refuse(fmt::format("Choose a position from 1 to {}.", count));
        return;
    }
    const Uuid id = t->id;
    const auto moved = templates.store.move(id, *position - 1);
    if (!moved) {
        context.refuse(message(moved.error()));
        return;
    }
    const auto& list = templates.store.templates();
    for (std::size_t index = 0; index < list.size(); ++index) {
        if (list[index].id == id) {
            context.out << fmt::format("\"{}\" is now number {}.\n", list[index].name, index + 1);
        }
    }
}

// Adds a subcommand taking one template name or id.
CLI::App* addReferenceCommand(CLI::App& parent, const std::string& name,
                              const std::string& description,
                              const std::shared_ptr<std::string>& reference) {
    auto* command = parent.add_subcommand(name, description);
    command->add_option("template", *reference, "The template's name or id")->required();
    return command;
}

void addFieldOptions(CLI::App& command, TemplateOptions& options) {
    command.add_option("--goal", options.goal, "The default goal (may be empty)");
    command.add_option("--break", options.breakDuration,
                       "A suggested break, 1 minute to 2 hours: 5m, 300 ...");
    command.add_flag("--open-ended", options.openEnded,
                     "Sessions run until ended instead of a timer");
}

}  // namespace

void installTemplatesCommands(CLI::App& app, CliContext& context) {
    auto* templates = app.add_subcommand("templates", "Manage session templates");
    templates->require_subcommand(1);

    templates->add_subcommand("list", "List the templates, favourites first")->callback([&context] {
        listTemplates(context);
    });

    auto showReference = std::make_shared<std::string>();
    addReferenceCommand(*templates, "show", "Show every field of one template", showReference)
        ->callback([&context, showReference] { showTemplate(context, *showReference); });

    auto addOptions = std::make_shared<TemplateOptions>();
    auto* add = templates->add_subcommand("add", "Create a template");
    add->add_option("--name", addOptions->name, "A name no other template has")->required();
    add->add_option("--subject", addOptions->subject, "The session subject")->required();
    add->add_option("--duration", addOptions->duration,
                    "Planned duration, 1 minute to 12 hours: 25m, 1h30m, 1500 ... (may be left "
                    "out with --open-ended: the default duration setting is kept)");
    addFieldOptions(*add, *addOptions);
    add->callback([&context, addOptions] { addTemplate(context, *addOptions); });

    auto editOptions = std::make_shared<TemplateOptions>();
    auto* edit = templates->add_subcommand("edit", "Change a template's settings");
    edit->add_option("template", editOptions->reference, "The template's name or id")->required();
    edit->add_option("--name", editOptions->name, "A new name");
    edit->add_option("--subject", editOptions->subject, "A new subject");
    edit->add_option("--duration", editOptions->duration, "A new planned duration");
    addFieldOptions(*edit, *editOptions);
    edit->add_flag("--no-break", editOptions->noBreak, "Remove the suggested break");
    edit->add_flag("--timer", editOptions->timer, "Sessions end when the timer runs out");
    edit->get_option("--open-ended")->excludes(edit->get_option("--timer"));
    edit->get_option("--break")->excludes(edit->get_option("--no-break"));
    edit->callback([&context, editOptions] { editTemplate(context, *editOptions); });

    auto deleteReference = std::make_shared<std::string>();
    addReferenceCommand(*templates, "delete", "Delete a template", deleteReference)
        ->callback([&context, deleteReference] { deleteTemplate(context, *deleteReference); });

    auto favouriteReference = std::make_shared<std::string>();
    auto favouriteOff = std::make_shared<bool>(false);
    auto* favourite = addReferenceCommand(*templates, "favorite", "Mark a template as a favourite",
                                          favouriteReference);
    favourite->add_flag("--off", *favouriteOff, "Remove the favourite mark instead");
    favourite->callback([&context, favouriteReference, favouriteOff] {
        setFavourite(context, *favouriteReference, !*favouriteOff);
    });

    auto enableReference = std::make_shared<std::string>();
    addReferenceCommand(*templates, "enable", "Offer a template for use again", enableReference)
        ->callback([&context, enableReference] { setEnabled(context, *enableReference, true); });

    auto disableReference = std::make_shared<std::string>();
    addReferenceCommand(*templates, "disable", "Keep a template but stop offering it",
                        disableReference)
        ->callback([&context, disableReference] { setEnabled(context, *disableReference, false); });

    auto moveReference = std::make_shared<std::string>();
    auto movePosition = std::make_shared<std::string>();
    auto* move = addReferenceCommand(
        *templates, "move", "Move a template to another place in the list (favourites stay first)",
        moveReference);
    move->add_option("--to", *movePosition, "The new position, from 1 to the number of templates")
        ->required();
    move->callback([&context, moveReference, movePosition] {
        moveTemplate(context, *moveReference, *movePosition);
    });
}

}  // namespace lumenote::cli
