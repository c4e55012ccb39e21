// Descriptor: an open file, closed when it goes. Everything this host opens is closed on exec.
#pragma once

#include <utility>

namespace quillfile::mailbox {

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      reset();
      number_ = std::exchange(other.number_, -1);
    }
    return *this;
  }
  ~Descriptor() { reset(); }

  int get() const { return number_; }
  explicit operator bool() const { return number_ >= 0; }
  void reset() noexcept;

 private:
  int number_ = -1;
};

}  // namespace quillfile::mailbox
