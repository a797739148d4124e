#include "shell/quit_decision.hpp"

namespace lumenote::shell {

QuitDecision quitDecision(QuitReason reason, bool sessionActive, bool deciding) {
    if (reason != QuitReason::userQuit) {
        return sessionActive ? QuitDecision::leaveForRecovery : QuitDecision::quitNow;
    }
    if (deciding) {
        return QuitDecision::alreadyAsking;
    }
    return sessionActive ? QuitDecision::askAboutSession : QuitDecision::quitNow;
}

std::string_view quitChoiceTitle(QuitChoice choice) {
    switch (choice) {
        case QuitChoice::endSessionAndQuit:
            return "End Session and Quit";
        case QuitChoice::keepRunning:
            return "Keep Lumenote Running";
        case QuitChoice::quitAndMarkInterrupted:
            return "Quit and Mark Session Interrupted";
    }
    return {};
}

}  // namespace lumenote::shell
