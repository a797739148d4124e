#include "platform/kde/kwin_activation_report.hpp"

#include <cmath>
#include <limits>

namespace lumenote::platform::kde {

namespace {

std::optional<std::int32_t> processIdOf(const QVariant& value) {
    constexpr qlonglong kLargestInteger = std::numeric_limits<std::int32_t>::max();
    constexpr double kLargest = kLargestInteger;
    switch (value.metaType().id()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Short:
        case QMetaType::UShort:
        case QMetaType::UChar: {
            const qlonglong number = value.toLongLong();
            return number > 0 && number <= kLargestInteger ? static_cast<std::int32_t>(number) : 0;
        }
        case QMetaType::Double: {
            const double number = value.toDouble();
            if (!std::isfinite(number) || std::floor(number) != number || number <= 0 ||
                number > kLargest) {
                return 0;
            }
            return static_cast<std::int32_t>(number);
        }
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<ActivationReport> readActivationCall(const QString& member,
                                                   const QList<QVariant>& arguments) {
    if (member == QLatin1String("NoWindowActive")) {
        return arguments.isEmpty() ? std::optional(ActivationReport{}) : std::nullopt;
    }
    if (member != QLatin1String("WindowActivated") || arguments.size() != 4) {
        return std::nullopt;
    }
    for (int index = 0; index < 3; ++index) {
        if (arguments[index].metaType().id() != QMetaType::QString) {
            return std::nullopt;
        }
    }
    const auto processId = processIdOf(arguments[3]);
    if (!processId) {
        return std::nullopt;
    }
    return ActivationReport{KWinWindow{arguments[0].toString().toStdString(),
                                       arguments[1].toString().toStdString(),
                                       arguments[2].toString().toStdString(), *processId}};
}

}  // namespace lumenote::platform::kde
