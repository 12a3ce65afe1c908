#include "FreeDesktopGuidance.h"

#include <QDir>
#include <QWindow>
#include <utility>

namespace tilewright {

FreeDesktopGuidance::FreeDesktopGuidance(UserNotifications& notifications,
                                         BringForward bringForward)
    : notifications_(notifications)
    , bringForward_(std::move(bringForward)) {}

FreeDesktopGuidance::~FreeDesktopGuidance() = default;

void FreeDesktopGuidance::notify() {
    notifications_.show(tr("Tilewright cannot move windows"), step().title, [this] { show(); });
}

void FreeDesktopGuidance::show() {
    lookAgain();
    if (!window_) {
        window_ = std::make_unique<GuidanceWindow>();
        connect(window_.get(), &GuidanceWindow::actionChosen, this, [this] { act(); });
        // The window is what is closing: it has to outlive this call.
        connect(window_.get(), &GuidanceWindow::closed, this,
                [this] { window_.release()->deleteLater(); });
        update();
    }
    window_->show();
    bringForward_(*window_->windowHandle());
}

void FreeDesktopGuidance::update() {
    if (window_)
        window_->setStep(step());
}

QString FreeDesktopGuidance::sessionsThatHelp() {
    return tr("Windows can be moved in X11 sessions and, with qt6-wayland installed, in those of "
              "GNOME and Plasma. Choose one when you log in.");
}

FreeDesktopGuidance::Step FreeDesktopGuidance::lastStep() {
    return {tr("Everything is in place"),
            tr("Hold the snap modifier and drag a window: the zones appear."),
            {}};
}

FreeDesktopGuidance::Step FreeDesktopGuidance::otherSessionStep() {
    return {
        tr("Windows cannot be moved in this session"),
        sessionsThatHelp() + QStringLiteral("\n\n") +
            tr("The list of sessions is on the login screen, often behind a gear: those for X11 "
               "say “X11” or “Xorg”. If this is GNOME or Plasma already, install the package "
               "qt6-wayland and start Tilewright again.\n\nKeep-awake, the panel and the "
               "layout editor work here all the same."),
        {}};
}

QString FreeDesktopGuidance::forReading(QString path) {
    const QString home = QDir::homePath();
    if (path.startsWith(home + u'/'))
        path.replace(0, home.size(), u'~');
    return path.replace(u'/', QStringLiteral("/\u200B"));
}

} // namespace tilewright
