#include <FakePlatform.h>
#include <Platform/ObservableObject.h>

#include <gtest/gtest.h>

using namespace tilewright;
using tilewright::testing::FakeDesktop;

namespace {
class Model : public ObservableObject {
public:
    Published<int> value{*this, 1};
};
} // namespace

TEST(ObservableObject, AnnouncesEachAssignmentBeforeItHappens) {
    Model model;
    std::vector<int> seen;
    QObject::connect(&model, &ObservableObject::objectWillChange,
                     [&] { seen.push_back(model.value.value()); });
    model.value = 2;
    model.value = 2;
    model.value = 3;
    EXPECT_EQ(seen, (std::vector{1, 2, 2}));
    EXPECT_EQ(model.value.value(), 3);
}

TEST(Refresh, MergesChangesOfOneTurnIntoOneCallThatSeesThemAll) {
    FakeDesktop desktop;
    Model model;
    std::vector<int> seen;
    Refresh refresh([&] { seen.push_back(model.value.value()); });
    refresh.observe(model);
    model.value = 2;
    model.value = 3;
    EXPECT_TRUE(seen.empty());
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(seen, (std::vector{3}));
    model.value = 4;
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(seen, (std::vector{3, 4}));
}

TEST(Refresh, IsDroppedWithItsOwner) {
    FakeDesktop desktop;
    Model model;
    int calls = 0;
    {
        Refresh refresh([&] { ++calls; });
        refresh.observe(model);
        model.value = 2;
    }
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(calls, 0);
}

TEST(Refresh, OutlivesTheObservedObject) {
    FakeDesktop desktop;
    int calls = 0;
    Refresh refresh([&] { ++calls; });
    {
        Model model;
        refresh.observe(model);
        model.value = 2;
    }
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(calls, 1);
}

TEST(Refresh, ComesAgainForAChangeThatItsOwnCallMakes) {
    FakeDesktop desktop;
    Model model;
    std::vector<int> seen;
    Refresh refresh([&] {
        seen.push_back(model.value.value());
        if (model.value.value() == 2)
            model.value = 3;
    });
    refresh.observe(model);
    model.value = 2;
    desktop.platform.fakeMainLoop.runPosted();
    desktop.platform.fakeMainLoop.runPosted();
    EXPECT_EQ(seen, (std::vector{2, 3}));
    EXPECT_EQ(desktop.platform.fakeMainLoop.postedCount(), 0U);
}
