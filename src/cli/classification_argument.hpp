// The CLASS argument that the commands which classify activity share.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "classification/classification_enumerations.hpp"

namespace lumenote::cli {

// Which classes the argument admits.
enum class ClassChoices { all, exceptUnclassified };

// Adds the required CLASS positional, checked against the raw values.
void addClassificationArgument(CLI::App& command, std::string& target,
                               ClassChoices choices = ClassChoices::all);

// The class an admitted CLASS names.
classification::ActivityClassification parsedClassification(const std::string& name);

}  // namespace lumenote::cli
