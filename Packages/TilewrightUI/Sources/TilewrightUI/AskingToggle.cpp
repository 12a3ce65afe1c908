#include "AskingToggle.h"

namespace tilewright {

AskingToggle::AskingToggle(QWidget* parent)
    : QPushButton(parent) {
    setCheckable(true);
    // Only such buttons answer to Enter as well.
    setAutoDefault(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void AskingToggle::setOn(bool on) {
    isShowingModel_ = true;
    setChecked(on);
    isShowingModel_ = false;
}

void AskingToggle::checkStateSet() {
    if (isShowingModel_)
        return;
    // Assistive tools flip the state itself; to this button that, too, is a wish.
    const bool wanted = isChecked();
    setOn(!wanted);
    Q_EMIT toggleRequested(wanted);
}

} // namespace tilewright
