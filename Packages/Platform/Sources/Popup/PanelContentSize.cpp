#include "PanelContentSize.h"

#include <Platform/PanelContent.h>

#include <QLayout>
#include <QWidget>
#include <algorithm>

namespace tilewright {

QSize panelContentSize(QWidget& content, int availableHeight) {
    content.ensurePolished();
    QSize size = content.sizeHint();
    if (content.layout()) {
        content.layout()->activate();
        size = content.layout()->totalSizeHint();
    }
    size = size.expandedTo(content.minimumSize()).boundedTo(content.maximumSize());
    return {size.width(), std::min(size.height(), availableHeight)};
}

int panelRoomToGrow(const QWidget& content) {
    const auto* panel = dynamic_cast<const PanelContent*>(&content);
    return panel ? panel->roomToGrow() : 0;
}

} // namespace tilewright
