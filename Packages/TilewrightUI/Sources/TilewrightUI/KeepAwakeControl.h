#pragma once

#include "Spring.h"

#include <KeepAwake/KeepAwakeManager.h>
#include <Platform/ObservableObject.h>

#include <QUuid>
#include <QWidget>

namespace tilewright {

class SlidingRow;
class TextLabel;
class ToggleSwitch;

/// The panel's keep-awake section: whether the display may sleep, how long a session has left, a
/// switch for an indefinite session and, while none runs, buttons that start timed ones. It shows
/// the shared manager's state and keeps none of its own; its height follows the session row's
/// coming and going.
class KeepAwakeControl final : public QWidget {
    Q_OBJECT

public:
    KeepAwakeControl();
    ~KeepAwakeControl() override;

    /// How much higher it becomes when the session row comes, in points.
    [[nodiscard]] int roomToGrow() const;

    /// What the control says of a manager in this state. Seconds that are not finite, or beyond
    /// 64 bits, are a fatal error: the manager never counts such.
    [[nodiscard]] static QString statusText(bool isActive,
                                            const std::optional<KeepAwakeSession>& session,
                                            double remainingSeconds);

private:
    [[nodiscard]] QWidget* makeHeader();
    [[nodiscard]] QWidget* makeSessionRow();
    [[nodiscard]] bool showsSessionRow() const;
    void refresh();

    KeepAwakeManager& manager_;
    /// Asks for the session row during a session too; nothing does so yet.
    bool showSessionPicker_ = false;
    /// Sets this control's glass surfaces apart from other views'; nothing is drawn by it.
    [[maybe_unused]] const QUuid glassNamespace_ = QUuid::createUuid();

    TextLabel* status_ = nullptr;
    ToggleSwitch* switch_ = nullptr;
    SlidingRow* sessionRow_ = nullptr;
    Refresh refresh_;
};

} // namespace tilewright
