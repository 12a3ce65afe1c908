#include "CompanionTexts.h"

#include <Companion/CompanionAccessibility.h>
#include <Companion/CompanionDecoder.h>
#include <FakeMainLoop.h>

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace tilewright::testing {

TEST(CompanionAccessibility, IsTrustedWhileACompanionIsThereAndSomebodyTellsTheKeys) {
    CompanionState state;
    CompanionOutbox outbox;
    FakeMainLoop loop;
    const CompanionScreens screens(state, DrmConnectors(QStringLiteral("/nonexistent")));
    const CompanionAccessibility accessibility(state, screens, outbox, loop, [] {});
    const QSignalSpy changed(&accessibility, &Accessibility::trustChanged);
    const auto greet = [&](const QByteArray& tellsKeys) {
        state.take(*CompanionDecoder::decode(u"Hello", R"({"tellsKeys":)" + tellsKeys + "," +
                                                           helloText().mid(1)));
    };
    greet("false");
    EXPECT_FALSE(accessibility.isTrusted());
    EXPECT_EQ(changed.size(), 0);
    state.setKeys(ModifierFlags());
    EXPECT_TRUE(accessibility.isTrusted());
    EXPECT_EQ(changed.size(), 1);
    state.setKeys(std::nullopt);
    EXPECT_FALSE(accessibility.isTrusted());
    EXPECT_EQ(changed.size(), 2);
    greet("true");
    EXPECT_TRUE(accessibility.isTrusted());
    state.lose();
    EXPECT_FALSE(accessibility.isTrusted());
    EXPECT_EQ(changed.size(), 4);
}

} // namespace tilewright::testing
