#include "platform/qt/KernelWireless.h"

#include "platform/qt/Nl80211.h"
#include "tests/platform/qt/MainLoop.h"
#include "tests/support/Fakes.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

using namespace platform;
using platform::qt::strengthsOf;
using testing::ElementsAre;
using testing::Pair;

namespace {

TEST(KernelStrength, IsReadFromTheLevelOrElseTheQuality) {
    EXPECT_THAT(strengthsOf("Inter-| sta-|   Quality        |   Discarded packets\n"
                            " face | tus | link level noise |  nwid  crypt   frag\n"
                            " wlan0: 0000   54.  -56.  -256        0      0      0\n"
                            "wlan1: 0000   70   -100  -256        0\n"
                            "wlan2: 0000   35.  -256  -256        0\n"
                            "wlan3: 0000   99.   200  -256        0\n"
                            "wlan4: 0000   10.  -20.  -256        0\n"
                            "wlan5: 0000   x    y\n"
                            "wlan6: 0000\n"
                            "wlan7 without colon"),
                ElementsAre(Pair("wlan0", 73), Pair("wlan1", 0), Pair("wlan2", 50),
                            Pair("wlan3", 100), Pair("wlan4", 100)));
}

TEST(KernelNames, AreReadFromGenericNetlink) {
    const std::string odd("\x05\0\x07\0a\0\0\0", 8), name("\x08\0\x34\0Home", 8);
    for (const auto& [bytes, value] :
         std::vector<std::pair<std::string, std::optional<std::string_view>>>{
             {odd + name, "Home"},
             {name.substr(0, 7), {}},
             {std::string("\x03\0\x34\0", 4), {}},
             {std::string("\x04\0\x34\x80", 4), ""},
             {odd.substr(0, 5), {}},
             {"", {}}})
        EXPECT_EQ(platform::qt::netlinkAttribute(bytes, 0x34), value);
    EXPECT_EQ(platform::qt::genericNetlinkFamily("nlctrl"), 16);
    EXPECT_EQ(platform::qt::genericNetlinkFamily("missing"), std::nullopt);
}

TEST(KernelSpeed, IsReadFromTheStation) {
    const auto attribute = [](std::uint16_t type, const std::string& value) {
        const auto size = static_cast<char>(value.size() + 4);
        return std::string{size, 0, static_cast<char>(type), 0} + value +
               std::string((4 - value.size() % 4) % 4, '\0');
    };
    const auto station = [&](const std::string& rates) {
        return attribute(3, "x") +
               attribute(0x15,
                         attribute(7, "x") + attribute(8, rates)); // 8: sending, 14: receiving
    };
    const std::string slow = attribute(1, std::string("\x1C\x02", 2)),
                      fast = attribute(5, std::string("\xB8\x88\x01\0", 4));
    for (const auto& [bytes, speed] :
         std::vector<std::pair<std::string, std::optional<std::uint64_t>>>{
             {station(slow), 54'000'000},
             {station(slow + fast), 10'053'600'000},
             {station(attribute(5, "xy")), {}},
             {attribute(0x15, attribute(14, slow)), {}},
             {slow, {}},
             {"", {}}})
        EXPECT_EQ(platform::qt::speedOfStation(bytes), speed);
    EXPECT_EQ(platform::qt::kernelSpeed("lo"), std::nullopt);
}

TEST(KernelWireless, DescribesTheAdaptersInTheFolder) {
    struct Row {
        const char *name, *marker, *flags, *operstate, *blocked;
        std::optional<WirelessState> state;
    };
    using State = WirelessState;
    const test::TemporaryFolder folder;
    const std::vector<Row> rows{{"lo", "wireless", "0x1003", "up", "0", State::Connected},
                                {"wlan1", "phy80211", "0x1003", "down", "0", State::Disconnected},
                                {"wlan2", "phy80211", "0x1003", "dormant", "0", State::Connecting},
                                {"wlan3", "phy80211", "0x1003", "up", "1", State::Off},
                                {"wlan4", "phy80211", "0x1002", "up", "0", State::Off},
                                {"wlan5", "phy80211", "garbage", "", "", State::Off},
                                {"eth0", "device", "0x1003", "up", "0", {}}};
    for (const auto& [name, marker, flags, operstate, blocked, state] : rows) {
        const std::string path = std::string(name) + '/';
        folder.write(path + marker + "/rfkill0/soft", "0\n");
        folder.write(path + marker + "/rfkill0/hard", std::string(blocked) + '\n');
        folder.write(path + "flags", std::string(flags) + '\n');
        folder.write(path + "operstate", std::string(operstate) + '\n');
        folder.write(path + "address", "00:11\n");
    }
    const test::MainLoop mainLoop;
    const platform::qt::KernelWireless kernel(
        {folder.path().string(), folder.write("proc", "lo: 0 35. -70. 0")}, [] {});
    const WirelessStatus status = kernel.read();
    EXPECT_TRUE(status.isReady && status.isRadioOn && !status.canChange);
    ASSERT_EQ(status.adapters.size(), rows.size() - 1);
    for (std::size_t i = 0; i < status.adapters.size(); ++i) {
        EXPECT_EQ(status.adapters[i].interface, rows[i].name);
        EXPECT_EQ(status.adapters[i].state, rows[i].state) << rows[i].name;
    }
    EXPECT_EQ(status.adapters[0].network->strength, 50);
    EXPECT_EQ(status.adapters[0].hardwareAddress, "00:11");
    EXPECT_EQ(status.adapters[0].addresses.front(), "127.0.0.1");
    EXPECT_EQ(status.adapters[2].network->strength, 0);
}

TEST(KernelWireless, WakesOnceAMinuteOnlyWithAnAdapter) {
    const test::MainLoop mainLoop;
    test::ManualClock clock;
    const test::TemporaryFolder folder;
    const platform::qt::KernelFiles files{folder.path().string(), folder.file("proc")};
    int changes = 0;
    {
        const platform::qt::KernelWireless none(files, [&] { ++changes; });
        EXPECT_TRUE(clock.intervals().empty());
    }
    folder.write("wlan0/wireless/x", "");
    const platform::qt::KernelWireless one(files, [&] { ++changes; });
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Minute));
    clock.moveTo(60);
    EXPECT_EQ(changes, 1);
}

} // namespace
