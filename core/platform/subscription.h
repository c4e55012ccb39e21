// Subscription: holds a listener on an event source. Move-only; ends when it is destroyed, reset or assigned
// to, and nothing is delivered after that. Ending twice, or from inside a delivery, is allowed.
#pragma once

#include <functional>
#include <utility>

namespace quillfile {

class Subscription {
 public:
  Subscription() = default;
  explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
  Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  Subscription& operator=(Subscription&& other) noexcept {
    if (this != &other) {
      reset();
      end_ = std::exchange(other.end_, nullptr);
    }
    return *this;
  }
  ~Subscription() { reset(); }

  void reset() noexcept {
    if (auto end = std::exchange(end_, nullptr)) end();
  }
  explicit operator bool() const { return static_cast<bool>(end_); }

 private:
  std::function<void()> end_;
};

}  // namespace quillfile
