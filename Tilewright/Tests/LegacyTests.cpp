#include <Tilewright/Legacy.h>

#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace std::chrono_literals;

namespace tilewright::testing {
namespace {

std::optional<Legacy> readFrom(std::vector<std::string> arguments) {
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    return Legacy::in(pointers);
}

} // namespace

TEST(Legacy, IsReadAsItWasWritten) {
    const std::array<Legacy, 5> all{
        Legacy{}, Legacy{3, std::nullopt}, Legacy{0, Legacy::Session{}},
        Legacy{5, Legacy::Session{KeepAwakeSession::timed(900), 123'456'789'012ms}},
        Legacy{0, Legacy::Session{KeepAwakeSession::timed(0.1 + 0.2), -1ms}}};
    for (const Legacy& legacy : all)
        EXPECT_EQ(readFrom({"tilewright", legacy.asArgument()}), legacy) << legacy.asArgument();
}

TEST(Legacy, IsNoneAmongOtherArguments) {
    EXPECT_EQ(Legacy::in({}), std::nullopt);
    EXPECT_EQ(readFrom({"tilewright", "", "--display-server", "--display-server-lost",
                        "--display-server-lost=", "--display-server-lost=x",
                        "--display-server-lost=-1", "--display-server-lost=,indefinite"}),
              std::nullopt);
}

TEST(Legacy, HasNoSessionWhereThatCannotBeRead) {
    for (const char* text : {"2,", "2,forever", "2,900", "2,900,", "2,900,soon", "2,nan,1",
                             "2,inf,1", "2,x,1", "2,900,1,1", "2,900,1.5"})
        EXPECT_EQ(readFrom({std::string("--display-server-lost=") + text}),
                  (Legacy{2, std::nullopt}))
            << text;
}

TEST(Legacy, EndsWithTooManyShortLivesInARow) {
    std::optional<Legacy> legacy = Legacy{};
    for (int i = 1; i <= Legacy::mostShortLives; ++i) {
        legacy = legacy->after(Legacy::shortLife);
        ASSERT_TRUE(legacy);
        EXPECT_EQ(legacy->shortLives, i);
    }
    EXPECT_EQ(legacy->after(Legacy::shortLife), std::nullopt);
    EXPECT_EQ(legacy->after(Legacy::shortLife + 1ms), Legacy{});
}

TEST(Legacy, HandsItsSessionOn) {
    const Legacy legacy{2, Legacy::Session{KeepAwakeSession::timed(900), 5ms}};
    EXPECT_EQ(legacy.after(1h)->session, legacy.session);
    EXPECT_EQ(legacy.after(1s)->session, legacy.session);
}

} // namespace tilewright::testing
