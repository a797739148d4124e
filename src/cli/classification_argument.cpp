#include "cli/classification_argument.hpp"

#include <fmt/format.h>

namespace lumenote::cli {

namespace {

std::vector<std::string> classificationNames(ClassChoices choices) {
    std::vector<std::string> names;
    for (const classification::ActivityClassification classification :
         allCases<classification::ActivityClassification>()) {
        if (choices == ClassChoices::all ||
            classification != classification::ActivityClassification::unclassified) {
            names.emplace_back(rawValue(classification));
        }
    }
    return names;
}

}  // namespace

void addClassificationArgument(CLI::App& command, std::string& target, ClassChoices choices) {
    const std::vector<std::string> names = classificationNames(choices);
    command
        .add_option("CLASS", target,
                    fmt::format("{} or {}", fmt::join(names.begin(), std::prev(names.end()), ", "),
                                names.back()))
        ->required()
        ->check(CLI::IsMember(names));
}

classification::ActivityClassification parsedClassification(const std::string& name) {
    // The argument parser admitted only the raw values.
    return fromRawValue<classification::ActivityClassification>(name).value_or(
        classification::ActivityClassification::unclassified);
}

}  // namespace lumenote::cli
