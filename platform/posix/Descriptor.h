#pragma once

#include <unistd.h>
#include <utility>

namespace platform::posix {

/// Owns a file descriptor and closes it when destroyed. A descriptor of -1 is empty.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0)
            ::close(number_);
    }

    int get() const { return number_; }
    int release() { return std::exchange(number_, -1); }
    explicit operator bool() const { return number_ >= 0; }

  private:
    int number_;
};

} // namespace platform::posix
