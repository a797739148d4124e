#include "ui/design/palette.hpp"

namespace lumenote::ui::design {

using classification::ActivityClassification;

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor classificationColor(ActivityClassification classification, bool dark) {
    switch (classification) {
        case ActivityClassification::focused:
            return dark ? QColor(0x2e, 0x7d, 0x4f) : QColor(0xc8, 0xe8, 0xd2);
        case ActivityClassification::distracting:
            return dark ? QColor(0x9c, 0x3b, 0x3b) : QColor(0xf6, 0xd0, 0xcc);
        case ActivityClassification::neutral:
            return dark ? QColor(0x3d, 0x5a, 0x80) : QColor(0xd3, 0xe1, 0xf3);
        case ActivityClassification::unclassified:
            return dark ? QColor(0x8a, 0x6d, 0x1f) : QColor(0xf5, 0xe6, 0xb8);
        case ActivityClassification::ignored:
            return dark ? QColor(0x55, 0x57, 0x53) : QColor(0xe0, 0xe0, 0xdd);
    }
    return {};
}

QColor classificationFill(ActivityClassification classification, bool dark) {
    switch (classification) {
        case ActivityClassification::focused:
            return dark ? QColor(0x57, 0xe3, 0x89) : QColor(0x26, 0xa2, 0x69);
        case ActivityClassification::distracting:
            return dark ? QColor(0xf6, 0x61, 0x51) : QColor(0xc0, 0x1c, 0x28);
        case ActivityClassification::neutral:
            return dark ? QColor(0x99, 0xc1, 0xf1) : QColor(0x35, 0x84, 0xe4);
        case ActivityClassification::unclassified:
            return dark ? QColor(0xf8, 0xe4, 0x5c) : QColor(0xe5, 0xa5, 0x0a);
        case ActivityClassification::ignored:
            return dark ? QColor(0x77, 0x76, 0x7b) : QColor(0xc0, 0xbf, 0xbc);
    }
    return {};
}

QColor chipTextColor(bool dark) {
    return dark ? QColor(0xf6, 0xf5, 0xf4) : QColor(0x24, 0x1f, 0x31);
}

QColor accentColor(bool dark) {
    return classificationFill(ActivityClassification::focused, dark);
}

QColor statusColor(recording::StudySessionStatus status, bool dark) {
    switch (status) {
        case recording::StudySessionStatus::running:
            return dark ? QColor(0x5a, 0x4a, 0x9c) : QColor(0xe0, 0xd9, 0xf7);
        case recording::StudySessionStatus::paused:
            return dark ? QColor(0x4c, 0x55, 0x63) : QColor(0xdc, 0xe2, 0xea);
        case recording::StudySessionStatus::completed:
            return dark ? QColor(0x4a, 0x4a, 0x48) : QColor(0xe4, 0xe4, 0xe1);
        case recording::StudySessionStatus::interrupted:
            return dark ? QColor(0x7a, 0x52, 0x30) : QColor(0xf5, 0xdf, 0xc8);
    }
    return {};
}

QColor sleepFill(bool dark) {
    return dark ? QColor(0x5e, 0x5c, 0x64) : QColor(0x9a, 0x99, 0x96);
}

}  // namespace lumenote::ui::design
