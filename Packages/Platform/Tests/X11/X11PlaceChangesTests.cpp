#include <X11/X11PlaceChanges.h>

#include <gmock/gmock.h>

namespace tilewright::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t one = 7;
constexpr std::uint32_t another = 9;

} // namespace

TEST(X11PlaceChanges, AreOfAWindowThatIsToldOfAtTwoPlaces) {
    X11PlaceChanges changes;
    changes.configured(one, {10, 20});
    EXPECT_THAT(changes.moved(), IsEmpty()) << "where it was before is not known";
    EXPECT_FALSE(changes.hasMoved());
    changes.configured(one, {11, 20});
    EXPECT_THAT(changes.moved(), ElementsAre(one));
    changes.configured(one, {10, 20});
    EXPECT_THAT(changes.moved(), ElementsAre(one)) << "it came back";
    EXPECT_TRUE(changes.hasMoved());
    changes.clear();
    EXPECT_FALSE(changes.hasMoved());
}

TEST(X11PlaceChanges, AreNotOfAWindowThatIsRaisedOrResizedInItsPlace) {
    X11PlaceChanges changes;
    for (int i = 0; i < 3; ++i)
        changes.configured(one, {10, 20});
    EXPECT_THAT(changes.moved(), IsEmpty());
}

TEST(X11PlaceChanges, AreOfEveryWindowForItself) {
    X11PlaceChanges changes;
    changes.configured(one, {10, 20});
    changes.configured(another, {30, 20});
    EXPECT_THAT(changes.moved(), IsEmpty());
    changes.configured(another, {31, 20});
    EXPECT_THAT(changes.moved(), ElementsAre(another));
    changes.configured(one, {10, 21});
    EXPECT_THAT(changes.moved(), ElementsAre(one, another));
}

TEST(X11PlaceChanges, AreForgotten) {
    X11PlaceChanges changes;
    changes.configured(one, {10, 20});
    changes.configured(one, {11, 20});
    changes.clear();
    EXPECT_THAT(changes.moved(), IsEmpty());
    changes.configured(one, {10, 20});
    EXPECT_THAT(changes.moved(), IsEmpty());
}

TEST(X11PlaceChanges, AreOfNoMoreWindowsThanAnybodyDrags) {
    X11PlaceChanges changes;
    for (int place = 0; place < 2; ++place) {
        for (std::uint32_t window = 0; window < 10'000; ++window)
            changes.configured(window, {place, 0});
    }
    EXPECT_EQ(changes.moved().size(), X11PlaceChanges::most);
}

} // namespace tilewright::testing
