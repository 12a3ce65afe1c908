#include "SettingsWindow.h"

#include <Platform/Platform.h>
#include <TilewrightUI/Symbols.h>

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>

namespace tilewright {

SettingsWindow::SettingsWindow(std::unique_ptr<QWidget> view) {
    setObjectName(QStringLiteral("settings"));
    setWindowTitle(tr("Tilewright Settings"));
    setWindowIcon(symbols::applicationIcon());
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->addWidget(view.release());
}

SettingsWindow::~SettingsWindow() = default;

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
