#include "FakePlatform.h"

#include <KeepAwake/KeepAwakeManager.h>
#include <Tilewright/MenuBarView.h>
#include <Tilewright/SettingsView.h>
#include <Tilewright/SymbolTabBar.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorView.h>
#include <TilewrightUI/LayoutManagerCard.h>
#include <TilewrightUI/LayoutManagerView.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/NameAndCount.h>
#include <TilewrightUI/TextLabel.h>
#include <TilewrightUI/ToggleSwitch.h>
#include <WindowManager/LayoutStore.h>

#include <QApplication>
#include <QLayout>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

using namespace Qt::StringLiterals;

/// Each view with the desktop's size of text at that many points.
class LargeFonts : public ::testing::TestWithParam<int> {
protected:
    LargeFonts() {
        look::setPrefersReducedMotion(true);
        QFont font = before_;
        font.setPointSize(GetParam());
        QApplication::setFont(font);
        LayoutStore::shared().addCustomLayout({QUuid::createUuid(), u"Quarters"_s, {}, false, {}});
    }
    ~LargeFonts() override {
        look::setPrefersReducedMotion(false);
        QApplication::setFont(before_);
    }

    void settle() {
        desktop.platform.fakeMainLoop.runPosted();
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
    static QRect placeIn(const QWidget& window, const QWidget& widget) {
        return {widget.mapTo(&window, QPoint()), widget.size()};
    }
    /// No text is wider or higher than what it stands in, save that it ends in an ellipsis.
    static void expectNothingCut(const QWidget& window) {
        for (const TextLabel* label : window.findChildren<TextLabel*>()) {
            if (!label->isVisible())
                continue;
            SCOPED_TRACE(label->text().toStdString());
            if (label->wordWrap()) {
                EXPECT_GE(label->height(), label->heightForWidth(label->width()));
            } else {
                QFont font = label->font();
                font.setPointSizeF(font.pointSizeF() * label->shownScale());
                const QFontMetrics metrics(font);
                EXPECT_LE(metrics.horizontalAdvance(label->shownText()), label->width());
                EXPECT_GE(label->height(), metrics.height());
            }
            EXPECT_TRUE(label->parentWidget()->rect().contains(label->geometry()));
        }
        for (const GlassButton* button : window.findChildren<GlassButton*>()) {
            if (!button->isVisible())
                continue;
            SCOPED_TRACE(button->title().toStdString());
            EXPECT_GE(button->width(), button->minimumSizeHint().width());
            EXPECT_GE(button->height(), button->sizeHint().height());
            EXPECT_TRUE(button->parentWidget()->rect().contains(button->geometry()));
        }
    }

    FakeDesktop desktop;

private:
    QFont before_ = QApplication::font();
};

TEST_P(LargeFonts, CutNothingInThePanel) {
    MenuBarView view;
    view.show();
    settle();
    view.resize(view.sizeHint());
    settle();
    expectNothingCut(view);
    KeepAwakeManager::shared().activate(KeepAwakeSession::timed(7200));
    settle();
    expectNothingCut(view);
    EXPECT_EQ(view.width(), 300);
}

TEST_P(LargeFonts, CutNothingInTheSettings) {
    SettingsView view;
    view.show();
    using Tab = SettingsView::Tab;
    auto* editor = view.content(Tab::layouts)->findChild<LayoutEditorCanvas*>();
    ASSERT_NE(editor, nullptr);
    for (const Tab tab : {Tab::layouts, Tab::manage, Tab::general, Tab::accessibility}) {
        SCOPED_TRACE(static_cast<int>(tab));
        view.setSelection(tab);
        settle();
        expectNothingCut(view);
        EXPECT_LE(view.findChild<SymbolTabBar*>()->sizeHint().width(), view.width());
    }
}

TEST_P(LargeFonts, KeepALabelBesideItsSwitch) {
    LayoutEditorView editor;
    editor.resize(520, 460);
    editor.show();
    settle();
    const auto* toggle = editor.findChild<ToggleSwitch*>();
    const TextLabel* label = nullptr;
    for (const TextLabel* candidate : editor.findChildren<TextLabel*>()) {
        if (candidate->text() == u"Snap to edges"_s)
            label = candidate;
    }
    ASSERT_NE(label, nullptr);
    for (int width = 520; width > 300; width -= 7) {
        editor.resize(width, 460);
        EXPECT_EQ(toggle->x() - (label->geometry().right() + 1), 8) << width;
        EXPECT_NEAR(toggle->geometry().center().y(), label->geometry().center().y(), 1) << width;
    }
}

TEST_P(LargeFonts, ShowALayoutsNameBeforeItsCount) {
    LayoutManagerView view;
    view.resize(520, 460);
    view.show();
    settle();
    for (const LayoutManagerCard* card : {view.customCards()[0], view.builtInCards()[0]}) {
        const auto labels = card->findChild<NameAndCount*>()->findChildren<TextLabel*>();
        EXPECT_EQ(labels[0]->shownText(), card->zoneLayout().name);
        EXPECT_EQ(labels[1]->shownText(), card->countText());
        EXPECT_FALSE(labels[0]->geometry().intersects(labels[1]->geometry()));
    }
}

TEST_P(LargeFonts, LeaveAZonesSizeInWordsAtTenPoints) {
    LayoutEditorView editor;
    editor.resize(520, 460);
    editor.show();
    settle();
    const QSizeF whole = editor.canvas().tile(0).readoutFrame().size();
    QFont font = look::font(look::TextStyle::body);
    font.setPixelSize(10);
    EXPECT_NEAR(whole.height(), QFontMetricsF(font).height() + 4, 0.01);
    editor.model().loadForEditing(
        {QUuid::createUuid(), u"Thin"_s, {}, false, {{QUuid::createUuid(), {}, 0, 0, 0.06, 0.06}}});
    settle();
    EXPECT_NEAR(editor.canvas().tile(0).readoutFrame().height(), whole.height(), 0.01)
        << "neither grown nor shrunk";
    EXPECT_GT(editor.canvas().tile(0).readoutFrame().width(),
              editor.canvas().tile(0).zoneFrame().width());
}

INSTANTIATE_TEST_SUITE_P(Points, LargeFonts, ::testing::Values(14, 16, 20),
                         ::testing::PrintToStringParamName());

} // namespace
} // namespace tilewright::testing
