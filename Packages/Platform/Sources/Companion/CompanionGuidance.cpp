#include "CompanionGuidance.h"

#include <QDir>
#include <utility>

namespace tilewright {

CompanionGuidance::CompanionGuidance(FreeDesktopUserNotifications& notifications,
                                     std::function<void()> bringForward)
    : notifications_(notifications)
    , bringForward_(std::move(bringForward)) {}

CompanionGuidance::~CompanionGuidance() = default;

void CompanionGuidance::notify() {
    notifications_.show(tr("Tilewright cannot move windows"), step().title, [this] { show(); });
}

void CompanionGuidance::show() {
    lookAgain();
    if (!window_) {
        window_ = std::make_unique<CompanionGuidanceWindow>();
        connect(window_.get(), &CompanionGuidanceWindow::actionChosen, this, [this] { act(); });
        // The window is what is closing: it has to outlive this call.
        connect(window_.get(), &CompanionGuidanceWindow::closed, this,
                [this] { window_.release()->deleteLater(); });
        update();
    }
    window_->show();
    window_->raise();
    window_->activateWindow();
    bringForward_();
}

void CompanionGuidance::update() {
    if (window_)
        window_->setStep(step());
}

CompanionGuidance::Step CompanionGuidance::lastStep() {
    return {tr("Everything is in place"),
            tr("Hold the snap modifier and drag a window: the zones appear."),
            {}};
}

QString CompanionGuidance::forReading(QString path) {
    const QString home = QDir::homePath();
    if (path.startsWith(home + u'/'))
        path.replace(0, home.size(), u'~');
    return path.replace(u'/', QStringLiteral("/\u200B"));
}

} // namespace tilewright
