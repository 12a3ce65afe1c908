#include "AccessibleApplication.h"

#include "SettingsWindow.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QApplication>
#include <QWindow>
#include <vector>

namespace tilewright {

namespace {

/// The pop-ups that are on the screen, in the order in which Qt made their windows.
std::vector<QAccessibleInterface*> shownPopUps() {
    std::vector<QAccessibleInterface*> found;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    found.reserve(static_cast<std::size_t>(windows.size()));
    for (const QWindow* window : windows) {
        if (window->type() != Qt::Popup || !window->isVisible())
            continue;
        if (QAccessibleInterface* root = window->accessibleRoot())
            found.push_back(root);
    }
    return found;
}

class ApplicationInterface final : public QAccessibleApplication {
public:
    int childCount() const override {
        return QAccessibleApplication::childCount() + static_cast<int>(shownPopUps().size());
    }
    QAccessibleInterface* child(int index) const override {
        const int windows = QAccessibleApplication::childCount();
        if (index < windows)
            return QAccessibleApplication::child(index);
        const auto popUps = shownPopUps();
        const auto place = static_cast<std::size_t>(index - windows);
        return place < popUps.size() ? popUps[place] : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto popUps = shownPopUps();
        for (std::size_t place = 0; child && place < popUps.size(); ++place) {
            if (popUps[place]->object() == child->object())
                return QAccessibleApplication::childCount() + static_cast<int>(place);
        }
        return QAccessibleApplication::indexOfChild(child);
    }
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    // Qt owns what a factory answers.
    if (object == qApp)
        return new ApplicationInterface;
    if (auto* settings = qobject_cast<SettingsWindow*>(object))
        return new QAccessibleWidget(settings, QAccessible::Window);
    return nullptr;
}

} // namespace

void installAccessibleApplication() {
    // A factory installed twice is asked once.
    QAccessible::installFactory(makeInterface);
}

} // namespace tilewright
