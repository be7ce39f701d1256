#include "platform/runtime/HandlerList.h"

#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>

using namespace platform;
using testing::ElementsAre;

namespace {

TEST(HandlerList, CallsTheHandlersThatExistInOrder) {
    test::RecordingLog log;
    int emptied = 0;
    std::optional<HandlerList<int>> list(std::in_place, [&] { ++emptied; });
    std::vector<std::string> calls;
    std::unique_ptr<Watch> first, second, third, added;
    const auto record = [&](const char* name, int number) {
        calls.push_back(currentOwner() + name + std::to_string(number));
    };
    runGuarded("owner ", [&] {
        first = list->add([&](int number) {
            record("first", number);
            first.reset();
            second.reset();
            added = list->add([&](int later) { record("added", later); });
            throw std::runtime_error("from the handler");
        });
    });
    second = list->add([&](int number) { record("second", number); });
    // Destroying this handler destroys the registration of another one.
    third = list->add([&, inner = std::shared_ptr<Watch>(list->add([](int) {}))](int number) {
        record("third", number);
    });
    list->call(1);
    list->call(2);
    EXPECT_THAT(calls, ElementsAre("owner first1", "third1", "third2", "owner added2"));
    EXPECT_EQ(log.take().size(), 1U);
    third.reset();
    EXPECT_EQ(emptied, 0);
    added.reset();
    EXPECT_EQ(emptied, 1);
    EXPECT_TRUE(list->isEmpty());
    first = list->add([](int) {});
    list.reset();
    first.reset();
    EXPECT_EQ(emptied, 1) << "the list no longer exists";
}

} // namespace
