#include "DesktopPalettes.h"
#include "ViewFixture.h"

#include <TilewrightUI/Contrast.h>
#include <TilewrightUI/EditingBadge.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/LayoutCard.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorModel.h>
#include <TilewrightUI/LayoutManagerCard.h>
#include <TilewrightUI/PopUpButton.h>
#include <TilewrightUI/RoundedTextField.h>
#include <TilewrightUI/TextLabel.h>

#include <cmath>
#include <map>

namespace tilewright::testing {
namespace {

using namespace Qt::StringLiterals;

double channel(double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}
double luminance(QRgb color) {
    return (0.2126 * channel(qRed(color) / 255.0)) + (0.7152 * channel(qGreen(color) / 255.0)) +
           (0.0722 * channel(qBlue(color) / 255.0));
}
double contrastOf(QRgb one, QRgb other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

/// Pictures of views in which the strokes of letters are several pixels thick.
constexpr double enlargement = 6;

/// The contrast between what most of the picture is and what stands out most from that.
double strongestContrast(const QImage& image) {
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    }
    const auto ground = std::max_element(counts.begin(), counts.end(),
                                         [](auto& a, auto& b) { return a.second < b.second; });
    double strongest = 1;
    for (const auto& [color, count] : counts)
        strongest = std::max(strongest, contrastOf(color, ground->first));
    return strongest;
}

class TextsOnDesktops : public ViewFixture {
protected:
    ~TextsOnDesktops() override { QApplication::setPalette(QPalette()); }

    /// What the user sees of a part of a window, enlarged.
    static QImage seen(QWidget& window, const QRect& part) {
        QImage image(part.size() * enlargement, QImage::Format_RGB32);
        image.setDevicePixelRatio(enlargement);
        window.render(&image, QPoint(), part);
        return image;
    }
    /// The inner part of a widget, free of borders, as it looks in its window.
    static QImage seen(QWidget& widget, int sides = 6, int ends = 2) {
        QWidget& window = *widget.window();
        return seen(window, place(&widget, &window).adjusted(sides, ends, -sides, -ends));
    }
    /// Has a window with one view in it checked in each of the palettes.
    template<class View, class Check>
    void inEachPalette(View& view, Check check) {
        for (const DesktopPalette& theme : desktopPalettes()) {
            SCOPED_TRACE(theme.name);
            QApplication::setPalette(theme.palette);
            view.window()->setPalette(theme.palette);
            settle();
            check(view);
        }
    }
    static void expectReadable(QWidget& widget, const char* what) {
        EXPECT_GE(strongestContrast(seen(widget)), 4.5) << what;
    }
};

TEST_F(TextsOnDesktops, OfSecondaryImportanceCanBeReadInWindowsAndOnCards) {
    QWidget window;
    window.resize(300, 200);
    auto* label = new TextLabel(u"Display sleep allowed"_s, look::TextStyle::caption,
                                TextLabel::Importance::secondary, &window);
    label->setGeometry(10, 10, 200, 20);
    auto* card = new LayoutManagerCard(customLayout(u"Desk"_s, {{0, 0, 1, 1}}),
                                       LayoutManagerCard::Deletable::yes, &window);
    card->setGeometry(10, 50, 200, 140);
    window.show();
    inEachPalette(*card, [&](LayoutManagerCard&) {
        expectReadable(*label, "in a window");
        for (TextLabel* text : card->findChildren<TextLabel*>())
            EXPECT_GE(strongestContrast(seen(*text, 0, 0)), 4.5) << text->text().toStdString();
    });
}

TEST_F(TextsOnDesktops, OfDeletionCanBeReadOnCards) {
    QWidget window;
    window.resize(300, 200);
    auto* card = new LayoutManagerCard(customLayout(u"Desk"_s, {{0, 0, 1, 1}}),
                                       LayoutManagerCard::Deletable::yes, &window);
    card->setGeometry(10, 10, 200, 140);
    window.show();
    inEachPalette(*card, [](LayoutManagerCard& shown) {
        expectReadable(*shown.deleteButton(), "at rest");
        shown.deleteButton()->setDown(true);
        expectReadable(*shown.deleteButton(), "pressed");
        shown.deleteButton()->setDown(false);
    });
}

TEST_F(TextsOnDesktops, OnButtonsOfEveryKindCanBeRead) {
    for (const auto kind : {GlassButton::Kind::glass, GlassButton::Kind::prominent,
                            GlassButton::Kind::bordered, GlassButton::Kind::plain}) {
        SCOPED_TRACE(static_cast<int>(kind));
        QWidget window;
        window.resize(300, 60);
        auto* button = new GlassButton(u"Save Layout"_s, kind, &window);
        button->setGeometry(QRect(QPoint(10, 10), button->sizeHint() + QSize(12, 0)));
        window.show();
        inEachPalette(*button, [](GlassButton& shown) {
            expectReadable(shown, "at rest");
            shown.setDown(true);
            expectReadable(shown, "pressed");
            shown.setDown(false);
        });
    }
}

TEST_F(TextsOnDesktops, OnTheEditingBadgeCanBeRead) {
    QWidget window;
    window.resize(300, 60);
    auto* badge = new EditingBadge(&window);
    badge->setGeometry(QRect(QPoint(10, 10), badge->sizeHint()));
    window.show();
    inEachPalette(*badge, [](EditingBadge& shown) { expectReadable(shown, "editing"); });
}

TEST_F(TextsOnDesktops, ThatAskForANameCanBeRead) {
    QWidget window;
    window.resize(300, 60);
    auto* field = new RoundedTextField(u"Layout name"_s, &window);
    field->setGeometry(10, 10, 200, 26);
    // The caret could be seen where the text cannot.
    field->setFocusPolicy(Qt::NoFocus);
    window.show();
    inEachPalette(*field, [](RoundedTextField& shown) {
        expectReadable(shown, "placeholder");
        shown.setText(u"My Layout"_s);
        expectReadable(shown, "name");
        shown.clear();
    });
}

TEST_F(TextsOnDesktops, OnCardsAndPopUpsCanBeRead) {
    QWidget window;
    window.resize(300, 160);
    auto* card = new LayoutCard(customLayout(u"Desk"_s, {{0, 0, 1, 1}}), &window);
    card->setGeometry(10, 10, 100, 80);
    auto* popUp = new PopUpButton(u"Display"_s, &window);
    popUp->setItems({{u"a"_s, u"Studio"_s}});
    popUp->select(u"a"_s);
    popUp->setGeometry(QRect(QPoint(10, 110), popUp->sizeHint()));
    window.show();
    inEachPalette(*card, [&](LayoutCard& shown) {
        auto* name = shown.findChild<TextLabel*>();
        for (const bool isCurrent : {false, true}) {
            shown.setOn(isCurrent);
            EXPECT_GE(strongestContrast(seen(*name, 0, 0)), 4.5) << isCurrent;
        }
        expectReadable(*popUp, "pop-up");
    });
}

TEST_F(TextsOnDesktops, OfAZonesSizeCanBeReadHoweverManyZonesLieThere) {
    LayoutEditorModel model(LayoutStore::shared(), desktop.platform.mainLoop);
    QWidget window;
    window.resize(500, 340);
    auto* canvas = new LayoutEditorCanvas(model, &window);
    canvas->setGeometry(window.rect());
    window.show();
    for (const std::size_t count : {1U, 2U, 12U}) {
        SCOPED_TRACE(count);
        model.loadForEditing(
            customLayout(u"Desk"_s, std::vector<QRectF>(count, QRectF(0.1, 0.1, 0.8, 0.8))));
        canvas->refresh();
        inEachPalette(*canvas, [&](LayoutEditorCanvas& shown) {
            const QRect readout =
                shown.tile(count - 1).readoutFrame().toAlignedRect().adjusted(5, 2, -5, -2);
            EXPECT_GE(strongestContrast(seen(window, readout)), 4.5);
        });
    }
}

TEST(Contrast, IsThatOfTheLuminancesAsTheyAreSeen) {
    EXPECT_NEAR(look::contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(look::contrast(Qt::white, Qt::white), 1, 0.001);
    EXPECT_NEAR(look::contrast(QColor(0x76, 0x76, 0x76), Qt::white), 4.54, 0.01);
    EXPECT_NEAR(look::contrast(QColor(0, 0, 0, 128), Qt::white),
                look::contrast(QColor(127, 127, 127), Qt::white), 0.02);
}

TEST(Contrast, LeavesAColourThatCanBeReadAndMovesOneThatCannot) {
    const QColor blue(0x20, 0x40, 0x80);
    EXPECT_EQ(look::legible(blue, {Qt::white}), blue);
    const QColor pale(0xd0, 0xa0, 0x60);
    const QColor darker = look::legible(pale, {Qt::white});
    EXPECT_GE(look::contrast(darker, Qt::white), 4.5);
    EXPECT_LE(look::contrast(darker, Qt::white), 5) << "no further than needed";
    EXPECT_GT(darker.redF(), darker.blueF()) << "of the same hue";
}

TEST(Contrast, FindsAColourForEveryGround) {
    for (int grey = 0; grey < 256; ++grey) {
        const QColor ground(grey, grey, grey);
        for (const QColor& color : {QColor(Qt::black), QColor(Qt::white), ground}) {
            const QColor found = look::legible(color, {ground});
            EXPECT_GE(contrastOf(look::over(found, ground).rgb(), ground.rgb()), 4.5) << grey;
        }
    }
    const QColor both = look::legible(Qt::gray, {Qt::white, Qt::black});
    EXPECT_TRUE(both == QColor(Qt::white) || both == QColor(Qt::black));
}

} // namespace
} // namespace tilewright::testing
