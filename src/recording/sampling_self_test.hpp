// A check of the sampling pipeline that touches nothing outside memory: two
// made-up samples go through the activity timeline, and the stretches that
// come out must carry exactly what went in, for the right lengths.
#pragma once

namespace lumenote::recording {

// True when the timeline opened, closed and finalised both stretches as it
// must. The samples name a made-up application, never anything the user did.
bool samplingPipelineSelfTest();

}  // namespace lumenote::recording
