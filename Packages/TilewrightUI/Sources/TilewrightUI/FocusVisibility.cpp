#include "FocusVisibility.h"

#include <QApplication>
#include <QFocusEvent>
#include <QPointer>
#include <QWidget>

namespace tilewright::look {

namespace {

/// Follows what the user last used, in all windows of the application.
class InputWatch final : public QObject {
public:
    /// The one watch of the running application.
    static InputWatch& shared() {
        static QPointer<InputWatch> watch;
        if (!watch)
            watch = new InputWatch(QCoreApplication::instance());
        return *watch;
    }

    [[nodiscard]] bool usesKeyboard() const { return device_ == Device::keyboard; }
    void noteKeyboard() { note(Device::keyboard); }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        switch (event->type()) {
        case QEvent::KeyPress:
            note(Device::keyboard);
            break;
        case QEvent::MouseButtonPress:
            note(Device::mouse);
            break;
        case QEvent::FocusIn: {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            if (reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason)
                note(Device::keyboard);
            break;
        }
        default:
            break;
        }
        return false;
    }

private:
    enum class Device { keyboard, mouse };

    explicit InputWatch(QObject* parent)
        : QObject(parent) {
        parent->installEventFilter(this);
    }
    void note(Device device) {
        if (device == device_)
            return;
        device_ = device;
        if (QWidget* focused = QApplication::focusWidget())
            focused->update();
    }

    Device device_ = Device::keyboard;
};

/// The first click counts as well: the watch begins with the application.
void startWatch() {
    static_cast<void>(InputWatch::shared());
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(startWatch)

bool showsFocus(const QWidget& widget) {
    return InputWatch::shared().usesKeyboard() && widget.hasFocus();
}

void focusFirstControl(const QWidget& view) {
    InputWatch::shared().noteKeyboard();
    for (QWidget* each = view.nextInFocusChain(); each != &view; each = each->nextInFocusChain()) {
        const bool isControl = (each->focusPolicy() & Qt::TabFocus) != 0 && each->isEnabled();
        if (isControl && view.isAncestorOf(each) && each->isVisibleTo(&view)) {
            each->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

} // namespace tilewright::look
