#include <Companion/CompanionOutbox.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

QJsonArray commandsOf(const QString& answer) {
    const QJsonDocument document = QJsonDocument::fromJson(answer.toUtf8());
    EXPECT_TRUE(document.isObject()) << answer.toStdString();
    return document.object()[QStringLiteral("do")].toArray();
}

QStringList namesOf(const QJsonArray& commands) {
    QStringList names;
    for (const auto& command : commands)
        names.append(command.toObject()[QStringLiteral("c")].toString());
    return names;
}

CompanionOverlay overlay(std::size_t tiles) {
    CompanionOverlay overlay;
    overlay.area = {0, 0, 1920, 1080};
    overlay.tiles.resize(tiles);
    return overlay;
}

} // namespace

TEST(CompanionOutbox, AnswersAnEmptyObjectWhereThereIsNothingToDo) {
    CompanionOutbox outbox;
    EXPECT_TRUE(outbox.isEmpty());
    EXPECT_EQ(outbox.take(), QStringLiteral("{}"));
}

TEST(CompanionOutbox, WritesEachCommandAsTheCompanionReadsIt) {
    CompanionOutbox outbox;
    CompanionOverlay shown = overlay(1);
    shown.transition = std::chrono::milliseconds(120);
    shown.tiles[0] = {{8, 9, 100, 50}, 14, {1, 0.5, 0, 0.25}, {0, 0, 1, 1}, 2, {}, 0.9};
    shown.tiles[0].lines = {{{1, {1, 1, 1, 1}}, {1.5, {0, 0, 0, 0.5}}}};
    outbox.showOverlay(shown);
    outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
    outbox.showItem({QStringLiteral("tilewright-symbolic"), QStringLiteral("Tilewright")});
    outbox.setPanel(
        {true, QStringLiteral("Panel"), {9, 10}, {1, 2, 3, 4}, {0, 32, 10, 20}, {5, 6, 7, 8}});
    outbox.bringForward(QStringLiteral("Settings"));
    outbox.askForPointer();
    EXPECT_EQ(
        outbox.take(),
        QStringLiteral(
            R"({"do":[{"c":"frame","frame":[1,2,3,4],"window":7},)"
            R"({"area":[0,0,1920,1080],"c":"overlay",)"
            R"("lines":[[[1,[255,255,255,1]],[1.5,[0,0,0,0.5]]]],)"
            R"("tiles":[[8,9,100,50,14,[255,128,0,0.25],[0,0,255,1],2,0.9]],"transition":120},)"
            R"({"c":"item","icon":"tilewright-symbolic","name":"Tilewright","shown":true},)"
            R"({"anchor":[5,6,7,8],"area":[0,32,10,20],"c":"panel","corner":[9,10],"margins":[1,2,3,4],)"
            R"("shown":true,"title":"Panel"},)"
            R"({"c":"front","title":"Settings"},{"c":"pointer"}]})"));
    EXPECT_TRUE(outbox.isEmpty()) << "what was taken is not done twice";
}

TEST(CompanionOutbox, LetsALaterWishTakeTheEarlierOnesPlace) {
    CompanionOutbox outbox;
    outbox.showOverlay(overlay(1));
    outbox.setFrame(CompanionWindowID{7}, {1, 2, 3, 4});
    outbox.setFrame(CompanionWindowID{7}, {5, 6, 7, 8});
    outbox.hideOverlay();
    const QJsonArray commands = commandsOf(outbox.take());
    EXPECT_EQ(namesOf(commands),
              (QStringList{QStringLiteral("frame"), QStringLiteral("overlayGone")}));
    EXPECT_EQ(commands[0].toObject()[QStringLiteral("frame")].toArray(), (QJsonArray{5, 6, 7, 8}));
}

TEST(CompanionOutbox, StaysWithinWhatACompanionTakes) {
    CompanionOutbox outbox;
    outbox.showOverlay(overlay(10'000));
    for (int i = 0; i < 1000; ++i)
        outbox.setFrame(CompanionWindowID{static_cast<quint64>(i)}, {1, 2, 3, 4});
    outbox.setPanel({});
    outbox.showItem({});
    outbox.bringForward({});
    outbox.askForPointer();
    const QString answer = outbox.take();
    EXPECT_LE(answer.size(), 64 * 1024);
    const QJsonArray commands = commandsOf(answer);
    EXPECT_LE(commands.size(), 32);
    EXPECT_EQ(commands[static_cast<qsizetype>(CompanionOutbox::mostFrames)]
                  .toObject()[QStringLiteral("tiles")]
                  .toArray()
                  .size(),
              static_cast<qsizetype>(CompanionOutbox::mostTiles));
}

TEST(CompanionOutbox, TellsItsListenerOfEveryWishAndForgetsThemAll) {
    CompanionOutbox outbox;
    int news = 0;
    outbox.onNews([&] { ++news; });
    outbox.hideOverlay();
    outbox.askForPointer();
    EXPECT_EQ(news, 2);
    outbox.clear();
    EXPECT_TRUE(outbox.isEmpty());
    EXPECT_EQ(news, 2);
}

} // namespace tilewright::testing
