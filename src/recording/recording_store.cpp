#include "recording/recording_store.hpp"

namespace lumenote::recording {

void StoreChangeSet::append(const StoreChangeSet& later) {
    sessions.insert(sessions.end(), later.sessions.begin(), later.sessions.end());
    segments.insert(segments.end(), later.segments.begin(), later.segments.end());
    confirmedIntervals.insert(confirmedIntervals.end(), later.confirmedIntervals.begin(),
                              later.confirmedIntervals.end());
    pdfIdentities.insert(pdfIdentities.end(), later.pdfIdentities.begin(),
                         later.pdfIdentities.end());
    deletedSegments.insert(deletedSegments.end(), later.deletedSegments.begin(),
                           later.deletedSegments.end());
    deletedSessions.insert(deletedSessions.end(), later.deletedSessions.begin(),
                           later.deletedSessions.end());
    durable = durable || later.durable;
}

StoreSaveOperation saveOperationOr(StoreSaveOperation given, RecordingStore& store) {
    if (given) {
        return given;
    }
    return [&store](const StoreChangeSet& changes) { return store.apply(changes); };
}

}  // namespace lumenote::recording
