#include "classification/classification_messages.hpp"

#include <array>

namespace lumenote::classification {
namespace {

using F = ClassificationFailure;

enum class Placeholder { none, name, error };

struct Sentence {
    F failure;
    std::string_view text;
    Placeholder placeholder;
};

constexpr std::array<Sentence, 9> kSentences{{
    {F::applicationRulesNotLoaded, "Saved app classifications could not be loaded.",
     Placeholder::none},
    {F::websiteRulesNotLoaded, "Saved website classifications could not be loaded.",
     Placeholder::none},
    {F::pdfPreferencesNotLoaded, "Local PDF preferences could not be loaded.", Placeholder::none},
    {F::classificationNotSaved, "The classification for {name} could not be saved.",
     Placeholder::name},
    {F::classificationNotRemoved, "The classification for {name} could not be removed.",
     Placeholder::name},
    {F::filenameLabelsNotCleared, "Filename-derived PDF labels could not be cleared.",
     Placeholder::none},
    {F::applicationRulesNotCleared, "Could not clear application classifications: {error}",
     Placeholder::error},
    {F::websiteRulesNotCleared, "Could not clear website classifications: {error}",
     Placeholder::error},
    {F::pdfRecordsNotCleared, "Could not clear local PDF labels and preferences: {error}",
     Placeholder::error},
}};

// `text` with its one place named `placeholder` replaced by `value`. Only one
// place is filled, so braces inside a name are never expanded.
std::string filled(std::string_view text, std::string_view placeholder, std::string_view value) {
    std::string result(text);
    const auto at = result.find(placeholder);
    if (at != std::string::npos) {
        result.replace(at, placeholder.size(), value);
    }
    return result;
}

}  // namespace

std::string classificationFailureMessage(ClassificationFailure failure, std::string_view name,
                                         std::string_view error) {
    for (const Sentence& sentence : kSentences) {
        if (sentence.failure != failure) {
            continue;
        }
        switch (sentence.placeholder) {
            case Placeholder::none:
                return std::string(sentence.text);
            case Placeholder::name:
                return filled(sentence.text, "{name}", name);
            case Placeholder::error:
                return filled(sentence.text, "{error}", error);
        }
    }
    return {};
}

}  // namespace lumenote::classification
