// The small enumerations every part of the recorder speaks in, with the raw
// text each case is stored and exchanged as. The classification and the PDF
// label source belong to the classification rules and come from there.
#pragma once

#include <array>
#include <string_view>
#include <utility>

#include "classification/classification_enumerations.hpp"
#include "foundation/raw_enum.hpp"

namespace lumenote::recording {

enum class StudySessionStatus { running, paused, completed, interrupted };
enum class SessionTimingMode { timer, openEnded };
enum class StudySessionMode { computerBased, mixedStudy, offlineBookStudy };
enum class ActivitySourceType { application, browserFallback, website, localPDF, system };
enum class ConfirmedStudyState { passiveStudy, confirmedBreak };
enum class ConfirmedStudyStateSource { returnPrompt, sessionControl, replayEdit, sessionMode };
enum class BrowserFallbackReason {
    awaitingFreshEvent,
    staleEvent,
    extensionDisconnected,
    privateOrRestricted,
    applicationSwitch,
    inactivity,
    paused,
    unknown
};
// The state the running session is in right now; never stored.
enum class LiveStudyState { computerActivity, passiveStudy, unconfirmedNoInput };

}  // namespace lumenote::recording

// Raw values are specialised where the template lives.
namespace lumenote {

template <>
struct RawValues<recording::StudySessionStatus> {
    using E = recording::StudySessionStatus;
    static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{
        {E::running, "running"},
        {E::paused, "paused"},
        {E::completed, "completed"},
        {E::interrupted, "interrupted"},
    }};
};

template <>
struct RawValues<recording::SessionTimingMode> {
    using E = recording::SessionTimingMode;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::timer, "timer"},
        {E::openEnded, "open_ended"},
    }};
};

template <>
struct RawValues<recording::StudySessionMode> {
    using E = recording::StudySessionMode;
    static constexpr std::array<std::pair<E, std::string_view>, 3> entries{{
        {E::computerBased, "computerBased"},
        {E::mixedStudy, "mixedStudy"},
        {E::offlineBookStudy, "offlineBookStudy"},
    }};
};

template <>
struct RawValues<recording::ActivitySourceType> {
    using E = recording::ActivitySourceType;
    static constexpr std::array<std::pair<E, std::string_view>, 5> entries{{
        {E::application, "application"},
        {E::browserFallback, "browserFallback"},
        {E::website, "website"},
        {E::localPDF, "localPDF"},
        {E::system, "system"},
    }};
};

template <>
struct RawValues<recording::ConfirmedStudyState> {
    using E = recording::ConfirmedStudyState;
    static constexpr std::array<std::pair<E, std::string_view>, 2> entries{{
        {E::passiveStudy, "passiveStudy"},
        {E::confirmedBreak, "confirmedBreak"},
    }};
};

template <>
struct RawValues<recording::ConfirmedStudyStateSource> {
    using E = recording::ConfirmedStudyStateSource;
    static constexpr std::array<std::pair<E, std::string_view>, 4> entries{{
        {E::returnPrompt, "returnPrompt"},
        {E::sessionControl, "sessionControl"},
        {E::replayEdit, "replayEdit"},
        {E::sessionMode, "sessionMode"},
    }};
};

template <>
struct RawValues<recording::BrowserFallbackReason> {
    using E = recording::BrowserFallbackReason;
    static constexpr std::array<std::pair<E, std::string_view>, 8> entries{{
        {E::awaitingFreshEvent, "awaitingFreshEvent"},
        {E::staleEvent, "staleEvent"},
        {E::extensionDisconnected, "extensionDisconnected"},
        {E::privateOrRestricted, "privateOrRestricted"},
        {E::applicationSwitch, "applicationSwitch"},
        {E::inactivity, "inactivity"},
        {E::paused, "paused"},
        {E::unknown, "unknown"},
    }};
};

template <>
struct RawValues<recording::LiveStudyState> {
    using E = recording::LiveStudyState;
    static constexpr std::array<std::pair<E, std::string_view>, 3> entries{{
        {E::computerActivity, "computerActivity"},
        {E::passiveStudy, "passiveStudy"},
        {E::unconfirmedNoInput, "unconfirmedNoInput"},
    }};
};

}  // namespace lumenote

namespace lumenote::recording {}  // namespace lumenote::recording
