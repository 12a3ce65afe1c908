// Renders the views, with a made-up desktop behind them, into PNG files: one light and one dark
// picture of the panel and of each tab of the settings. The one argument is the folder; the scale
// is the toolkit's (QT_SCALE_FACTOR).

#include <KeepAwake/KeepAwakeManager.h>
#include <Tilewright/MenuBarView.h>
#include <Tilewright/PanelChrome.h>
#include <Tilewright/SettingsView.h>
#include <TilewrightUI/Look.h>
#include <WindowManager/LayoutStore.h>

#include "FakePlatform.h"

#include <QApplication>
#include <QDir>
#include <QPainter>
#include <QStyleFactory>
#include <cstdio>

namespace {

using namespace tilewright;

/// A palette whose roles all go with the ground.
QPalette palette(bool isDark) {
    const QColor window = isDark ? QColor(0x2a, 0x2b, 0x2f) : QColor(0xee, 0xef, 0xf2);
    const QColor text = isDark ? QColor(0xf2, 0xf2, 0xf4) : QColor(0x1c, 0x1c, 0x1f);
    QPalette result(window, window);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        result.setColor(role, text);
    result.setColor(QPalette::Base, isDark ? QColor(0x1f, 0x20, 0x23) : QColor(Qt::white));
    result.setColor(QPalette::Highlight, look::tilewrightAmber());
    QColor faint = text;
    faint.setAlphaF(0.4F);
    result.setColor(QPalette::PlaceholderText, faint);
    return result;
}

/// A layout of the user's own.
ZoneLayout focusAndSide() {
    const auto zone = [](const QString& name, double x, double y, double width, double height) {
        return Zone{QUuid::createUuid(), name, x, y, width, height};
    };
    return {QUuid::createUuid(),
            QStringLiteral("Focus + Side"),
            QStringLiteral("square.dashed"),
            false,
            {zone(QStringLiteral("Zone 1"), 0, 0, 0.7, 1),
             zone(QStringLiteral("Zone 2"), 0.7, 0, 0.3, 0.5),
             zone(QStringLiteral("Zone 3"), 0.7, 0.5, 0.3, 0.5)}};
}

void addScreens(testing::FakePlatform& platform) {
    testing::FakeScreen::Values studio;
    studio.frame = {0, 0, 2560, 1440};
    studio.localizedName = QStringLiteral("Studio Display");
    testing::FakeScreen::Values laptop;
    laptop.frame = {2560, 0, 1440, 900};
    laptop.displayID = 2;
    laptop.localizedName = QStringLiteral("Built-in Display");
    platform.fakeScreens.setScreens({testing::makeScreen(studio), testing::makeScreen(laptop)});
}

bool save(const QPixmap& picture, const QDir& folder, const QString& name) {
    const QString path = folder.filePath(name);
    if (picture.toImage().convertToFormat(QImage::Format_ARGB32).save(path))
        return true;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
    return false;
}

/// The view on the panel's ground, shadow included.
QPixmap panelPicture() {
    MenuBarView view;
    view.setAttribute(Qt::WA_NoSystemBackground);
    view.resize(view.sizeHint());
    view.show();
    testing::FakePlatform& platform = static_cast<testing::FakePlatform&>(Platform::current());
    platform.fakeMainLoop.advance(std::chrono::seconds(2));
    PanelChrome chrome;
    chrome.setBlending(true);
    const QRect window = QRect(QPoint(), view.size().grownBy(chrome.margins()));
    QPixmap picture(window.size() * view.devicePixelRatioF());
    picture.setDevicePixelRatio(view.devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    chrome.paint(painter, window, view.palette());
    view.render(&painter, QPoint(chrome.margins().left(), chrome.margins().top()), QRegion(),
                QWidget::DrawChildren);
    return picture;
}

bool render(const QDir& folder, bool isDark) {
    QApplication::setPalette(palette(isDark));
    const QString tone = isDark ? QStringLiteral("dark") : QStringLiteral("light");
    testing::FakeDesktop desktop;
    addScreens(desktop.platform);
    desktop.platform.fakeAccessibility.trusted = !isDark;
    LayoutStore::shared().addCustomLayout(focusAndSide());
    bool isSaved = save(panelPicture(), folder, QStringLiteral("panel-%1.png").arg(tone));
    SettingsView settings;
    settings.show();
    const std::array names{"layouts", "manage", "general", "accessibility"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        settings.setSelection(static_cast<SettingsView::Tab>(i));
        isSaved =
            save(settings.grab(), folder,
                 QStringLiteral("settings-%1-%2.png").arg(QString::fromLatin1(names[i]), tone)) &&
            isSaved;
    }
    return isSaved;
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: render_pictures <folder>\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const bool isSaved = render(folder, false) && render(folder, true);
    return isSaved ? 0 : 1;
}
