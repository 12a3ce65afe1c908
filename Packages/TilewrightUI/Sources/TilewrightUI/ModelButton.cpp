#include "ModelButton.h"

#include <QKeyEvent>

namespace tilewright {

ModelButton::ModelButton(QWidget* parent)
    : QAbstractButton(parent) {
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void ModelButton::setOn(bool on) {
    isShowingModel_ = true;
    setChecked(on);
    isShowingModel_ = false;
}

void ModelButton::checkStateSet() {
    if (isShowingModel_)
        return;
    // Assistive tools flip the state itself; to this button that, too, is a wish.
    const bool wanted = isChecked();
    setOn(!wanted);
    Q_EMIT toggleRequested(wanted);
}

void ModelButton::keyPressEvent(QKeyEvent* event) {
    // A plain button answers only to Space.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace tilewright
