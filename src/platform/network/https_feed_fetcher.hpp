// The update check's fetch over HTTPS with Qt Network: one GET, bounded in
// time and size, that never follows a redirect to anything but https://,
// keeps no cookies, caches nothing and sends no header that tells more than
// "Lumenote/VERSION".
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "updates/feed_fetcher.hpp"

namespace lumenote::platform::network {

struct HttpsFetchOptions {
    // The whole request, from connecting to the last byte.
    std::chrono::milliseconds timeout{20000};
    std::string userAgent;
    // PEM certificates trusted in addition to the system's (a test server's
    // own authority); the product passes none.
    std::vector<std::string> extraTrustedCertificates;
};

class HttpsFeedFetcher final : public updates::FeedFetcher {
  public:
    explicit HttpsFeedFetcher(HttpsFetchOptions options);

    // Runs its own event loop until the answer is complete; makes a
    // QCoreApplication for the call when the process has none (the command
    // line).
    Result<std::string, updates::FetchError> fetch(const std::string& httpsAddress,
                                                   std::size_t maximumBytes) override;

  private:
    HttpsFetchOptions options_;
};

}  // namespace lumenote::platform::network
