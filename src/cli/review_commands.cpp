// `review`: the unclassified activity of every stored session, one row per
// application, website or local PDF, longest first; `review classify` gives
// one group its class, as a rule for its application or hostname, or as the
// PDF's class.
#include <fmt/format.h>

#include <memory>
#include <string>

#include "cli/classification_argument.hpp"
#include "cli/commands.hpp"
#include "cli/history_environment.hpp"
#include "cli/json_output.hpp"
#include "cli/session_text.hpp"
#include "recording/session_figures.hpp"
#include "recording/unclassified_review_service.hpp"

namespace lumenote::cli {

namespace {

using recording::UnclassifiedActivityGroup;

nlohmann::json groupJson(const UnclassifiedActivityGroup& group) {
    nlohmann::json json{{"id", group.id},
                        {"kind", rawValue(group.kind)},
                        {"title", group.title},
                        {"subtitle", group.subtitle},
                        {"bundleIdentifier", group.bundleIdentifier},
                        {"segmentCount", group.segmentCount},
                        {"totalDuration", group.totalDuration},
                        {"sessionCount", group.sessionCount}};
    if (group.hostname) {
        json["hostname"] = *group.hostname;
    }
    if (group.browserBundleIdentifier) {
        json["browserBundleIdentifier"] = *group.browserBundleIdentifier;
    }
    if (group.pdfIdentifier) {
        json["pdfIdentifier"] = group.pdfIdentifier->upperString();
    }
    nlohmann::json sessions = nlohmann::json::array();
    for (const Uuid& id : group.sessionIDs) {
        sessions.push_back(id.upperString());
    }
    json["sessionIDs"] = std::move(sessions);
    return json;
}

std::string groupsText(const std::vector<UnclassifiedActivityGroup>& groups) {
    if (groups.empty()) {
        return "Nothing waits for review: every recorded activity has a class.\n";
    }
    std::string text = fmt::format("{} waiting for review, longest first:\n",
                                   countText(groups.size(), "activity", "activities"));
    for (const UnclassifiedActivityGroup& group : groups) {
        text += fmt::format("  {:>9}  {}  ({}, {} in {})\n    {}\n",
                            recording::clockDurationText(group.totalDuration), group.title,
                            group.subtitle, countText(group.segmentCount, "segment", "segments"),
                            countText(group.sessionCount, "session", "sessions"), group.id);
    }
    text += "Classify one with `lumenote-cli review classify ID CLASS`.\n";
    return text;
}

void showReview(CliContext& context, bool asJson) {
    auto environment = openHistoryEnvironment(context);
    if (!environment) {
        return;
    }
    recording::UnclassifiedReviewService review(environment->historyReader(),
                                                environment->rules(context.err));
    auto groups = review.groups();
    if (!groups) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    groups.error().description));
        return;
    }
    if (asJson) {
        nlohmann::json array = nlohmann::json::array();
        for (const UnclassifiedActivityGroup& group : **groups) {
            array.push_back(groupJson(group));
        }
        printJson(context, array);
    } else {
        context.out << groupsText(**groups);
    }
}

struct ClassifyOptions {
    std::string groupID;
    std::string classification;
    std::string scope = "this-pdf";
};

classification::LocalPDFClassificationScope parsedScope(const std::string& scope) {
    using classification::LocalPDFClassificationScope;
    if (scope == "all-pdfs") {
        return LocalPDFClassificationScope::allPDFsInSession;
    }
    return scope == "future-default" ? LocalPDFClassificationScope::futureDefault
                                     : LocalPDFClassificationScope::thisPDFInSession;
}

void classifyGroup(CliContext& context, const ClassifyOptions& options) {
    auto environment = openHistoryEnvironment(context);
    if (!environment) {
        return;
    }
    recording::UnclassifiedReviewService review(environment->historyReader(),
                                                environment->rules(context.err));
    auto group = review.group(options.groupID);
    if (!group) {
        context.refuse(historyCommandFailureMessage(HistoryCommandFailure::historyUnreadable,
                                                    group.error().description));
        return;
    }
    if (!*group) {
        context.refuse(fmt::format(
            "No activity waiting for review has the id \"{}\". Run \"lumenote-cli review\" to "
            "see them.",
            options.groupID));
        return;
    }
    auto classified = review.classify(**group, parsedClassification(options.classification),
                                      parsedScope(options.scope));
    if (!classified) {
        context.refuse(classified.error().message());
        return;
    }
    context.out << fmt::format("{} is now {}.\n", (*group)->title, options.classification);
}

}  // namespace

void installReviewCommands(CLI::App& app, CliContext& context) {
    auto* review = app.add_subcommand(
        "review",
        "List the unclassified activity of every recorded session, one row per application, "
        "website or local PDF, longest first");
    auto asJson = std::make_shared<bool>(false);
    review->add_flag("--json", *asJson, "Print the groups as JSON");
    auto options = std::make_shared<ClassifyOptions>();
    auto* classify = review->add_subcommand(
        "classify",
        "Give one group its class: a rule for its application or website, or the PDF's class; "
        "later recordings use it and the group leaves the list");
    classify->add_option("GROUP-ID", options->groupID, "The group's id as `review` prints it")
        ->required();
    addClassificationArgument(*classify, options->classification, ClassChoices::exceptUnclassified);
    classify
        ->add_option("--scope", options->scope,
                     "For a local PDF: this-pdf (this PDF), all-pdfs (every PDF of its session) "
                     "or future-default (also the class of PDFs met from now on)")
        ->capture_default_str()
        ->check(CLI::IsMember({"this-pdf", "all-pdfs", "future-default"}));
    classify->callback([&context, options] { classifyGroup(context, *options); });
    // A parent's callback runs after its subcommand's: list only when no
    // subcommand was given.
    review->callback([&context, classify, asJson] {
        if (!classify->parsed()) {
            showReview(context, *asJson);
        }
    });
}

}  // namespace lumenote::cli
