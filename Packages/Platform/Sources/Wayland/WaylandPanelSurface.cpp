#include "WaylandPanelSurface.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QWidget>
#include <functional>
#include <utility>

namespace tilewright {

class WaylandPanelSurface::Window final : public QWidget {
public:
    using Dismiss = std::function<void(PanelDismissal)>;

    Window(std::unique_ptr<QWidget> view, PanelChrome& chrome, Dismiss dismiss)
        : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint)
        , chrome_(chrome)
        , dismiss_(std::move(dismiss)) {
        setObjectName(QStringLiteral("panel"));
        setWindowTitle(QStringLiteral("Tilewright"));
        setAccessibleName(QStringLiteral("Tilewright"));
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_QuitOnClose, false);
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(chrome_.margins(PanelRendering::translucent));
        // As large as its content wants to be, also when that changes.
        column->setSizeConstraint(QLayout::SetFixedSize);
        column->addWidget(view.release());
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        chrome_.paint(painter, rect(), palette(), PanelRendering::translucent);
    }
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Escape)
            dismiss_(PanelDismissal::escape);
        else
            QWidget::keyPressEvent(event);
    }
    bool event(QEvent* event) override {
        const bool isHandled = QWidget::event(event);
        if (event->type() == QEvent::WindowDeactivate)
            dismiss_(PanelDismissal::anotherWindow);
        return isHandled;
    }
    void closeEvent(QCloseEvent* event) override {
        QWidget::closeEvent(event);
        dismiss_(PanelDismissal::desktop);
    }

private:
    PanelChrome& chrome_;
    Dismiss dismiss_;
};

WaylandPanelSurface::WaylandPanelSurface(ViewFactory makeView, std::unique_ptr<PanelChrome> chrome)
    : makeView_(std::move(makeView))
    , chrome_(std::move(chrome)) {}

WaylandPanelSurface::~WaylandPanelSurface() = default;

QWidget* WaylandPanelSurface::window() const {
    return window_.get();
}

void WaylandPanelSurface::open(const Anchor&) {
    if (window_)
        return;
    window_ = std::make_unique<Window>(makeView_(), *chrome_,
                                       [this](PanelDismissal why) { dismiss(why); });
    window_->show();
    window_->activateWindow();
    Q_EMIT opened();
}

void WaylandPanelSurface::close() {
    dismiss(PanelDismissal::request);
}

void WaylandPanelSurface::toggle(const Anchor& item) {
    // A press on the item takes no focus from the panel here.
    if (window_)
        close();
    else
        open(item);
}

void WaylandPanelSurface::dismiss(PanelDismissal why) {
    if (!window_)
        return;
    // Perhaps called by the window itself.
    Window* window = window_.release();
    window->hide();
    window->deleteLater();
    Q_EMIT dismissed(why);
}

} // namespace tilewright
