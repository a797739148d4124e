// A list of change callbacks: how the stores and services tell their observers
// (the screens, the services that follow a setting) that something changed.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace lumenote {
inline namespace foundation {

template <typename... Arguments>
class ObserverList {
  public:
    using Callback = std::function<void(Arguments...)>;
    using Token = std::uint64_t;

    // Adds a callback; the token removes it again.
    Token add(Callback callback) {
        const Token token = ++lastToken_;
        entries_.emplace_back(token, std::move(callback));
        return token;
    }

    void remove(Token token) {
        std::erase_if(entries_, [token](const auto& entry) { return entry.first == token; });
    }

    // Calls every callback in the order they were added. A callback may add or
    // remove observers; the change applies from the next notification on.
    void notify(const Arguments&... arguments) const {
        const auto snapshot = entries_;
        for (const auto& entry : snapshot) {
            entry.second(arguments...);
        }
    }

  private:
    std::vector<std::pair<Token, Callback>> entries_;
    Token lastToken_ = 0;
};

}  // namespace foundation
}  // namespace lumenote
