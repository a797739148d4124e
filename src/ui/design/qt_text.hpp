// The one conversion of the system's UTF-8 texts into Qt's strings.
#pragma once

#include <string_view>

#include <QString>

namespace lumenote::ui {

inline QString qt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace lumenote::ui
