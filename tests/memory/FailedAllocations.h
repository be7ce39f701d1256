#pragma once

#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/base/Service.h"
#include "platform/values/PropertyList.h"
#include "tests/support/FailingAllocation.h"

#include <atomic>
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace test {

/// Counts lines. Unlike RecordingLog, allocates no memory.
class CountingLog final : public platform::Log {
  public:
    std::atomic<int> lines = 0;

    void write(std::string_view) override { ++lines; }
    void beep() override {}

  private:
    platform::ScopedService<platform::Log> service_{*this};
};

/// The outcome of a call that throws.
constexpr const char* kException = "an exception";

inline std::string shown(bool result) {
    return result ? "true" : "false";
}
inline std::string shown(std::int32_t result) {
    return std::to_string(result);
}
inline std::string shown(const std::string& result) {
    return '"' + result + '"';
}
template <class T>
std::string shown(const std::shared_ptr<T>& result) {
    return result ? "object" : "null";
}
template <class T>
std::string shown(const std::unique_ptr<T>& result) {
    return result ? "object" : "null";
}
template <class T>
std::string shown(const std::vector<T>& list) {
    return std::to_string(list.size()) + " elements";
}
template <class T>
std::string shown(const std::optional<T>& result) {
    return result ? shown(*result) : "nullopt";
}

/// A call of an operation. Its outcome is the result, followed by what @p state returns.
struct OperationCall {
    template <class Call>
    OperationCall(std::string operation, Call call, std::vector<std::string> outcomesOfFailure = {},
                  std::function<void()> prepare = {}, std::function<std::string()> state = {})
        : name(std::move(operation)), legal(std::move(outcomesOfFailure)),
          run([=](int failing, bool& failed) {
              if (prepare)
                  prepare();
              std::string outcome = outcomeOf(call, failing, failed);
              return state ? outcome + ' ' + state() : outcome;
          }) {}

    std::string name;
    std::vector<std::string> legal;
    std::function<std::string(int failing, bool& failed)> run;

  private:
    template <class Call>
    static std::string outcomeOf(const Call& call, int failing, bool& failed) {
        using Result = std::invoke_result_t<const Call&>;
        constexpr bool isVoid = std::is_void_v<Result>;
        std::optional<std::conditional_t<isVoid, bool, Result>> result;
        try {
            const FailingAllocation allocation(failing);
            struct Reporter {
                const FailingAllocation& allocation;
                bool& failed;
                ~Reporter() { failed = allocation.hasFailed(); }
            } const reporter{allocation, failed};
            if constexpr (isVoid)
                call();
            else
                result.emplace(call());
        } catch (...) {
            return kException;
        }
        return isVoid ? "done" : shown(*result);
    }
};

/// Calls each operation with its first allocation failing, then with its second, and so on. The
/// outcome must be that of an undisturbed call or, with a line in the log, one of those given.
inline void failEachAllocation(CountingLog& log, const std::vector<OperationCall>& calls) {
    for (const OperationCall& call : calls) {
        bool failed = false;
        const std::string complete = call.run(0, failed);
        std::set<std::string> wrong;
        int number = 1;
        for (; number < 2000; ++number) {
            log.lines = 0;
            const std::string outcome = call.run(number, failed);
            if (!failed)
                break;
            if (outcome == complete)
                continue;
            const bool isReported = log.lines > 0 || outcome.starts_with(kException);
            if (std::ranges::count(call.legal, outcome) == 0 || !isReported)
                wrong.insert(outcome + (isReported ? "" : ", not logged"));
        }
        EXPECT_THAT(wrong, testing::IsEmpty()) << call.name << " instead of " << complete;
        EXPECT_FALSE(failed) << call.name;
        EXPECT_GT(number, 1) << call.name << " allocates nothing";
    }
}

} // namespace test
