// The colours of the design system: the five classes, the goal and the
// texts on them, each for a light and a dark window. Colour is never the
// only sign: every coloured thing also carries its word or its figure.
#pragma once

#include <QColor>
#include <QPalette>

#include "classification/classification_enumerations.hpp"
#include "recording/enumerations.hpp"

namespace lumenote::ui::design {

// True when the palette's window colour is dark (a dark appearance).
bool isDark(const QPalette& palette);

// A class's soft colour: the background of its chip, behind text.
QColor classificationColor(classification::ActivityClassification classification, bool dark);
// A class's strong colour: its blocks in a timeline, its bars and slices in
// a chart, where no text sits on it. Each differs from the others in
// lightness as well as hue, so that the classes stay apart in grey.
QColor classificationFill(classification::ActivityClassification classification, bool dark);
// The text on a chip.
QColor chipTextColor(bool dark);
// Progress towards a goal (the ring, the study-time bars).
QColor accentColor(bool dark);
// A session status's soft colour, the background of its chip: quiet tones
// apart from the five classes', so that a status never reads as a class.
QColor statusColor(recording::StudySessionStatus status, bool dark);
// The computer asleep or locked in a timeline: a plain grey.
QColor sleepFill(bool dark);

}  // namespace lumenote::ui::design
