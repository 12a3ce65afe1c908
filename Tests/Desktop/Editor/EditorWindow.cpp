// The layout editor alone in a window, and where everything in it stands:
// EditorWindow APPLICATION-SUPPORT-FOLDER REPORT-FILE.
//
// The report is a JSON object: "places" maps the names of what can be clicked to [x, y, width,
// height] in the window's pixels, "menu" the entries of the open menu to the same in the screen's,
// "toasts" lists the messages shown since the start, "selectedText" is what is selected in the
// name.

#include "FakePlatform.h"

#include <Platform/QtMainLoop.h>
#include <TilewrightUI/GlassButton.h>
#include <TilewrightUI/LayoutEditorCanvas.h>
#include <TilewrightUI/LayoutEditorView.h>

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMenu>
#include <QSaveFile>
#include <QScreen>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace tilewright {
namespace {

/// Writes the report afresh after whatever may have changed it.
class Reporter final : public QObject {
public:
    Reporter(LayoutEditorView& view, QString file)
        : view_(view)
        , file_(std::move(file)) {
        timer_.setSingleShot(true);
        connect(&timer_, &QTimer::timeout, this, [this] { write(); });
        connect(&view.model(), &ObservableObject::objectWillChange, this, [this] { schedule(); });
        QApplication::instance()->installEventFilter(this);
        connect(view.findChild<QLineEdit*>(), &QLineEdit::selectionChanged, this,
                [this] { schedule(); });
        schedule();
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        switch (event->type()) {
        case QEvent::Show:
        case QEvent::Hide:
        case QEvent::Move:
        case QEvent::Resize:
        case QEvent::EnabledChange:
            schedule();
            break;
        default:
            break;
        }
        return false;
    }

private:
    void schedule() { timer_.start(0); }

    static QJsonArray array(const QRectF& rect) {
        return {rect.x(), rect.y(), rect.width(), rect.height()};
    }

    void write() {
        if (const auto& toast = view_.model().toast(); toast != lastToast_) {
            lastToast_ = toast;
            if (toast)
                toasts_.append(toast->message);
        }
        QJsonObject places;
        const auto add = [&](const QString& name, const QWidget& widget, const QRectF& rect) {
            places[name] = array(rect.translated(widget.mapTo(&view_, QPointF())));
        };
        for (QWidget* widget : view_.findChildren<QWidget*>()) {
            const auto* button = qobject_cast<GlassButton*>(widget);
            const QString name = button ? button->title() : widget->accessibleName();
            if (widget->isVisible() && widget->isEnabled() && !name.isEmpty())
                add(name, *widget, widget->rect());
        }
        LayoutEditorCanvas& canvas = view_.canvas();
        add(u"Canvas"_s, canvas, canvas.canvasFrame());
        for (std::size_t index = 0; index < view_.model().zones().size(); ++index) {
            add(u"tile %1"_s.arg(index), canvas, canvas.tile(index).zoneFrame());
            if (canvas.tile(index).isSelected())
                add(u"selected tile"_s, canvas, canvas.tile(index).zoneFrame());
        }
        QJsonObject entries;
        if (const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
            for (QAction* action : menu->actions())
                entries[action->text()] =
                    array(menu->actionGeometry(action).translated(menu->mapToGlobal(QPoint())));
        }
        const auto* field = view_.findChild<QLineEdit*>();
        QSaveFile file(file_);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(QJsonDocument(QJsonObject{{u"places"_s, places},
                                                 {u"menu"_s, entries},
                                                 {u"toasts"_s, toasts_},
                                                 {u"selectedText"_s,
                                                  field ? field->selectedText() : QString()}})
                           .toJson());
            file.commit();
        }
    }

    LayoutEditorView& view_;
    const QString file_;
    QTimer timer_;
    std::optional<LayoutEditorModel::Toast> lastToast_;
    QJsonArray toasts_;
};

} // namespace
} // namespace tilewright

int main(int argc, char** argv) {
    using namespace tilewright;
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3)
        return 2;
    QtMainLoop loop;
    testing::FakeDesktop desktop(loop);
    desktop.platform.fakeApplicationSupport.replacement = arguments[1];
    LayoutEditorView view;
    view.setWindowTitle(u"Layouts"_s);
    view.resize(520, 400);
    const Reporter reporter(view, arguments[2]);
    view.show();
    return QApplication::exec();
}
