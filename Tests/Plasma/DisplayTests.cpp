// The program with its companion on other displays than the one plain one, in sessions of KWin.

#include "ProgramInPlasma.h"

#include <FreeDesktop/DisplayKeys.h>

#include <cmath>
#include <set>

namespace tilewright::testing {
namespace {

/// Two displays, the second of which divides otherwise than the first.
struct ProgramOnTwoDisplays : ProgramInPlasma {
    ProgramOnTwoDisplays()
        : ProgramInPlasma("control", {.count = 2}, thirdsOn(QStringLiteral("Virtual-1"))) {}

    [[nodiscard]] static QByteArray thirdsOn(const QString& connector) {
        return QStringLiteral(R"({"customLayouts":[],"assignments":{"display-%1":"%2"}})")
            .arg(displayNumber(connector))
            .arg(ZoneLayout::thirds().id.toString(QUuid::WithoutBraces).toUpper())
            .toUtf8();
    }
    [[nodiscard]] QRect zoneOnSecond(std::size_t index) {
        return frameOf(ZoneLayout::thirds().zones[index], session.displays()[1]);
    }
};

/// A display with as many pixels along each unit.
struct ProgramAtScale : ProgramInPlasma, ::testing::WithParamInterface<double> {
    ProgramAtScale()
        : ProgramInPlasma("control", {.scale = GetParam()}) {}
};

INSTANTIATE_TEST_SUITE_P(Of, ProgramAtScale, ::testing::Values(1.25, 2), [](const auto& scale) {
    return QString::number(scale.param * 100).toStdString();
});

/// The colours of the first zone's border, left and right, and of what is beside it: one each where
/// every pixel is wholly the one or the other.
struct Edges {
    explicit Edges(const QImage& picture) {
        const double scale = picture.devicePixelRatio();
        const auto pixel = [&](double units) { return int(std::floor(units * scale + 0.5)); };
        const double right = ZoneLayout::bentoBox().zones[0].width * picture.width() / scale;
        const int row = picture.height() - pixel(60);
        const auto look = [&](int column) { return picture.pixelColor(column, row).name(); };
        constexpr double margin = 4;
        const int border = int(3 * scale);
        for (int column = 0; column < pixel(margin); ++column)
            beside.insert(look(column));
        for (int column = pixel(right - margin); column < pixel(right + margin); ++column)
            beside.insert(look(column));
        for (int column = 0; column < border; ++column) {
            on.insert(look(pixel(margin) + column));
            on.insert(look(pixel(right - margin) - 1 - column));
        }
    }

    std::set<QString> beside;
    std::set<QString> on;
};

} // namespace

TEST_F(ProgramOnTwoDisplays, ShowsTheZonesOfTheOneUnderThePointerAndEndsInThem) {
    // KWin by itself clears what lies bare on the first one only.
    static_cast<void>(session.startClient(CompositorClient::qt, session.displays()[1]));
    const QColor ground = session.pixel(zoneOnSecond(0).center());
    const auto isBare = [&](const QRect& zone, const QColor& bare) {
        return waitUntil([&] { return session.pixel(zone.center()) == bare; });
    };
    const QString title = session.startClient(CompositorClient::qt, start);
    dragToFirstZone(title);
    EXPECT_TRUE(isBare(zoneOnSecond(0), ground));
    session.input().glide(zoneOnSecond(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zoneOnSecond(1)); })) << session.describe();
    EXPECT_NE(session.pixel(zoneOnSecond(0).center()), ground);
    EXPECT_TRUE(isBare(zone(3), Qt::black));
    drop();
    EXPECT_TRUE(endsIn(title, zoneOnSecond(1))) << session.describe();
    EXPECT_TRUE(isBare(zoneOnSecond(0), ground));

    dragToFirstZone(title);
    EXPECT_TRUE(isBare(zoneOnSecond(0), ground));
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();
}

TEST_P(ProgramAtScale, ShowsTheZonesPixelByPixelAndEndsInThem) {
    const QString title = session.startClient(CompositorClient::qt, {100, 100, 400, 300});
    dragToFirstZone(title);
    const auto isCrisp = [&] {
        const Edges edges(session.picture());
        return edges.on == std::set<QString>{QStringLiteral("#d18c33")} &&
               edges.beside == std::set<QString>{QStringLiteral("#000000")};
    };
    EXPECT_TRUE(waitUntil(isCrisp)) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(0))) << session.describe();

    session.grab(title);
    session.input().pressKey(KernelKey::control);
    session.input().glide(zone(1).center());
    EXPECT_TRUE(waitUntil([&] { return isHighlighted(zone(1)); })) << session.describe();
    drop();
    EXPECT_TRUE(endsIn(title, zone(1))) << session.describe();
}

} // namespace tilewright::testing
