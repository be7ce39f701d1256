#pragma once

#include "platform/base/NonCopyable.h"

#include <new>
#include <type_traits>
#include <utility>

/// Failed allocations. The library's operations do not throw std::bad_alloc: if memory runs out,
/// they log this and return a result that means failure.
namespace platform {

/// Whose code a thread is running during the lifetime of the object.
class OperationScope : NonCopyable {
  public:
    enum class Code { Operation, PlugIn };

    explicit OperationScope(Code code = Code::Operation);
    ~OperationScope();

    /// Returns whether another operation called this one.
    bool isNested() const { return outer_ == Code::Operation; }

  private:
    Code outer_;
};

/// Writes "operation failed: out of memory". Allocates nothing.
void logOutOfMemory();

/// Runs @p code, the body of an operation. If memory runs out, logs this and returns @p fallback,
/// or else an empty result: false, null, std::nullopt, an empty list.
///
/// An operation that another one calls lets std::bad_alloc pass instead. So the whole outer
/// operation fails, rather than continue with a wrong answer such as "the file does not exist".
template <class Code, class... Fallback>
std::invoke_result_t<const Code&> guardedOperation(const Code& code, Fallback... fallback) {
    const OperationScope scope;
    try {
        return code();
    } catch (const std::bad_alloc&) {
        if (scope.isNested())
            throw;
        logOutOfMemory();
        return std::invoke_result_t<const Code&>(std::move(fallback)...);
    }
}

/// Same as guardedOperation, but also catches std::bad_alloc within another operation. Used where
/// an empty result always means failure, for example of writing a file, and in destructors.
template <class Code>
std::invoke_result_t<const Code&> guardedStep(const Code& code) {
    try {
        return code();
    } catch (const std::bad_alloc&) {
        logOutOfMemory();
        return std::invoke_result_t<const Code&>();
    }
}

} // namespace platform
