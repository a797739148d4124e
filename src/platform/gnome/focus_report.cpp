#include "platform/gnome/focus_report.hpp"

#include <QMetaType>

namespace lumenote::platform::gnome {

namespace {

bool hasType(const QVariant& value, QMetaType::Type type) {
    return value.metaType().id() == type;
}

}  // namespace

std::optional<FocusReport> parseFocusReport(const QVariantList& arguments) {
    if (arguments.size() != 6 || !hasType(arguments[0], QMetaType::Bool) ||
        !hasType(arguments[5], QMetaType::UInt)) {
        return std::nullopt;
    }
    for (int index = 1; index <= 4; ++index) {
        if (!hasType(arguments[index], QMetaType::QString)) {
            return std::nullopt;
        }
    }
    FocusReport report;
    report.hasWindow = arguments[0].toBool();
    report.appId = arguments[1].toString().toStdString();
    report.wmClass = arguments[2].toString().toStdString();
    report.wmClassInstance = arguments[3].toString().toStdString();
    report.sandboxedAppId = arguments[4].toString().toStdString();
    report.processId = arguments[5].toUInt();
    return report;
}

std::optional<recording::FrontmostApplication> focusedApplication(
    const FocusReport& report, const linux_desktop::DesktopEntryIndex& entries,
    const ProcessNameReader& processName) {
    if (!report.hasWindow) {
        return std::nullopt;
    }
    linux_desktop::WindowClassHints hints;
    hints.gtkApplicationId = report.appId.empty() ? report.sandboxedAppId : report.appId;
    hints.instanceName = report.wmClassInstance;
    hints.className = report.wmClass;
    if (hints.gtkApplicationId.empty() && hints.instanceName.empty() && hints.className.empty() &&
        report.processId != 0 && processName) {
        hints.processName = processName(report.processId);
    }
    return linux_desktop::resolveApplication(entries, hints);
}

}  // namespace lumenote::platform::gnome
