// The one network operation of an update check, behind an interface so that
// the check runs against a real HTTPS server or a stand-in alike.
#pragma once

#include <cstddef>
#include <string>

#include "foundation/result.hpp"

namespace lumenote::updates {

enum class FetchError {
    unreachable,      // no connection, a TLS failure, a time-out or an HTTP error status
    tooLarge,         // the answer grew past the size it may have
    insecureRedirect  // the server sent the request on to an address that is not https://
};

class FeedFetcher {
  public:
    virtual ~FeedFetcher() = default;
    // The body found at `httpsAddress` (already checked to be https://), at
    // most `maximumBytes` long. Blocks until it arrived or failed.
    virtual Result<std::string, FetchError> fetch(const std::string& httpsAddress,
                                                  std::size_t maximumBytes) = 0;
};

}  // namespace lumenote::updates
