// Test support: ports on 127.0.0.1 for network tests — a listener nobody
// serves, which shows whether anything connected, and a port nobody listens on.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>

namespace lumenote::testing {

// A listening TCP socket on 127.0.0.1 that nobody serves: whether anything
// connected shows as a pending connection that accept() takes.
class PlainListener final {
  public:
    PlainListener() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
            ::listen(socket_, 8) != 0 ||
            ::getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
            std::abort();
        }
        port_ = ntohs(address.sin_port);
    }
    ~PlainListener() { ::close(socket_); }

    int port() const { return port_; }

    int acceptedConnections() {
        int count = 0;
        while (true) {
            const int accepted = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
            if (accepted < 0) {
                return count;
            }
            ::close(accepted);
            ++count;
        }
    }

  private:
    int socket_;
    int port_ = 0;
};

// A port on 127.0.0.1 that was free a moment ago and has no listener.
inline int closedPort() {
    const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    ::bind(probe, reinterpret_cast<sockaddr*>(&address), length);
    ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &length);
    ::close(probe);
    return ntohs(address.sin_port);
}

}  // namespace lumenote::testing
