#include "SettingsWindow.h"

#include <Platform/Platform.h>

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>

namespace tilewright {

SettingsWindow::SettingsWindow(std::unique_ptr<SettingsContent> content)
    : content_(content.get())
    , displaysChanged_([this] {
        fitToDisplay();
        if (isVisible())
            moveIntoView();
    }) {
    setObjectName(QStringLiteral("settings"));
    setWindowTitle(tr("Tilewright Settings"));
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(content.release());
    fitToDisplay();
    // Qt tells of a display that goes before the window has another one: look once all is told.
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](const QScreen* screen) {
        follow(*screen);
        displaysChanged_.schedule();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, &displaysChanged_, &Refresh::schedule);
    for (const QScreen* each : QGuiApplication::screens())
        follow(*each);
}

SettingsWindow::~SettingsWindow() = default;

void SettingsWindow::follow(const QScreen& screen) {
    connect(&screen, &QScreen::geometryChanged, &displaysChanged_, &Refresh::schedule);
    connect(&screen, &QScreen::availableGeometryChanged, &displaysChanged_, &Refresh::schedule);
}

void SettingsWindow::fitToDisplay() {
    // The frame is known once a window manager has made it; until then, as high as they make it.
    const int known = frameGeometry().height() - height();
    const int frame = known > 0 ? known : style()->pixelMetric(QStyle::PM_TitleBarHeight);
    content_->limitHeight(screen()->availableGeometry().height() - frame);
    // At once: where the window belongs depends on how high it is.
    layout()->activate();
}

void SettingsWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    connect(windowHandle(), &QWindow::screenChanged, &displaysChanged_, &Refresh::schedule,
            Qt::UniqueConnection);
}

void SettingsWindow::moveIntoView() {
    QRegion outOfSight(frameGeometry());
    for (const QScreen* each : QGuiApplication::screens())
        outOfSight -= each->geometry();
    if (outOfSight.isEmpty())
        return;
    // Its display is gone, or is a smaller one now.
    const QRect room = screen()->availableGeometry();
    const QSize size = frameGeometry().size();
    const QPoint last(room.right() + 1 - size.width(), room.bottom() + 1 - size.height());
    move(std::max(std::min(x(), last.x()), room.left()),
         std::max(std::min(y(), last.y()), room.top()));
}

void SettingsWindow::bringForward() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    const bool isShown = isVisible();
    wantsActivation_ = !isShown;
    if (isShown)
        moveIntoView();
    show();
    raise();
    activateWindow();
    if (isShown)
        Platform::current().workspace.activateThisApplication();
}

bool SettingsWindow::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    // Window managers know the window, and heed requests for it, once it is on the screen.
    if (event->type() == QEvent::Paint && wantsActivation_) {
        wantsActivation_ = false;
        displaysChanged_.schedule();
        Platform::current().workspace.activateThisApplication();
    }
    return isHandled;
}

void SettingsWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

SettingsScene::SettingsScene(ViewFactory makeView)
    : makeView_(std::move(makeView)) {}

SettingsScene::~SettingsScene() = default;

void SettingsScene::open() {
    if (!window_) {
        window_ = std::make_unique<SettingsWindow>(makeView_());
        // The window is what is closing: it has to outlive this call.
        connect(window_.get(), &SettingsWindow::closed, this,
                [this] { window_.release()->deleteLater(); });
    }
    window_->bringForward();
}

} // namespace tilewright
