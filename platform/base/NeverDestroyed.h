#pragma once

namespace platform {

/// Holds an object that is never destroyed, because threads that outlive main may still use it.
/// Unlike an object created with new, it allocates no memory.
template <class T>
class NeverDestroyed {
  public:
    NeverDestroyed() : object_() {}
    ~NeverDestroyed() {} // a member of a union is not destroyed

    T& get() { return object_; }

  private:
    union {
        T object_;
    };
};

} // namespace platform
