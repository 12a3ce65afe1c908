#pragma once

#include <Platform/PanelSurface.h>
#include <Platform/Screens.h>

#include <QWidget>
#include <algorithm>
#include <vector>

namespace tilewright::testing {

/// A panel that shows its content in a plain window, and goes when a test says that the user, or
/// the desktop, wants it gone.
class FakePanelSurface final : public PanelSurface {
    Q_OBJECT

public:
    FakePanelSurface(const Screens& allScreens, ViewFactory makeView,
                     std::unique_ptr<PanelChrome> newChrome)
        : chrome(std::move(newChrome))
        , screens_(allScreens)
        , makeView_(std::move(makeView)) {}

    void open(const Anchor& anchor) override {
        if (view)
            return;
        anchors.push_back(anchor);
        view = makeView_();
        QSize size = view->sizeHint().expandedTo(view->minimumSize());
        if (const ScreenPtr screen = screens_.nearest(anchor.value_or(AppKitRect()).center()))
            size.setHeight(std::min(size.height(), int(screen->visibleFrame().height)));
        view->resize(size);
        view->show();
        Q_EMIT opened();
    }
    void close() override { dismiss(PanelDismissal::request); }
    void toggle(const Anchor& item) override {
        if (view)
            close();
        else
            open(item);
    }
    bool isOpen() const override { return view != nullptr; }

    /// As when the user or the desktop dismisses it.
    void dismiss(PanelDismissal why) {
        if (!view)
            return;
        // It may be what asks.
        view->hide();
        view.release()->deleteLater();
        Q_EMIT dismissed(why);
    }

    /// Where it was opened, each time.
    std::vector<Anchor> anchors;
    std::unique_ptr<PanelChrome> chrome;
    /// The content while it is open.
    std::unique_ptr<QWidget> view;

private:
    const Screens& screens_;
    ViewFactory makeView_;
};

} // namespace tilewright::testing
