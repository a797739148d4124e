// Result<T, E>: the value of a fallible call, either a T or an error E.
#pragma once

#include <cassert>
#include <type_traits>
#include <utility>
#include <variant>

namespace lumenote {
inline namespace foundation {

// Wraps an error so that Result's constructors can tell it from a value even
// when T and E are the same type.
template <typename E>
struct Failure {
    E error;
};

template <typename E>
Failure<std::decay_t<E>> fail(E&& error) {
    return Failure<std::decay_t<E>>{std::forward<E>(error)};
}

// A small stand-in for std::expected (not in GCC 12's C++20). Reading the
// value of a failed result, or the error of a successful one, is a programming
// error and asserts.
template <typename T, typename E>
class [[nodiscard]] Result {
  public:
    Result(T value) : storage_(std::in_place_index<0>, std::move(value)) {}
    template <typename F>
    Result(Failure<F> failure) : storage_(std::in_place_index<1>, E(std::move(failure.error))) {}

    bool ok() const { return storage_.index() == 0; }
    explicit operator bool() const { return ok(); }

    T& value() & {
        assert(ok());
        return std::get<0>(storage_);
    }
    const T& value() const& {
        assert(ok());
        return std::get<0>(storage_);
    }
    T&& value() && {
        assert(ok());
        return std::get<0>(std::move(storage_));
    }
    const E& error() const {
        assert(!ok());
        return std::get<1>(storage_);
    }
    T valueOr(T fallback) const { return ok() ? std::get<0>(storage_) : std::move(fallback); }

    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }

  private:
    std::variant<T, E> storage_;
};

// The void form: success carries nothing.
template <typename E>
class [[nodiscard]] Result<void, E> {
  public:
    Result() = default;
    template <typename F>
    Result(Failure<F> failure) : error_(E(std::move(failure.error))), failed_(true) {}

    bool ok() const { return !failed_; }
    explicit operator bool() const { return ok(); }
    const E& error() const {
        assert(failed_);
        return error_;
    }

  private:
    E error_{};
    bool failed_ = false;
};

}  // namespace foundation
}  // namespace lumenote
