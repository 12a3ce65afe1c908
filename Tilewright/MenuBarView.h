#pragma once

#include <Platform/PanelContent.h>

#include <QWidget>
#include <functional>

namespace tilewright {

class KeepAwakeControl;

/// The content of the panel: the keep-awake control, the layout picker, and the ways to the
/// settings and out of the program. 300 points wide, as high as its content; where it is given less
/// height, the layout picker scrolls between the other parts. It holds no state of its own: made
/// anew each time the panel opens. It paints no ground.
class MenuBarView final : public QWidget, public PanelContent {
    Q_OBJECT

public:
    /// Opens the settings window or brings it forward.
    using OpenSettings = std::function<void()>;

    explicit MenuBarView(OpenSettings openSettings = {}, QWidget* parent = nullptr);

    [[nodiscard]] int roomToGrow() const override;

private:
    [[nodiscard]] static QWidget* makeMiddle();
    [[nodiscard]] QWidget* makeFooter();

    OpenSettings openSettings_;
    KeepAwakeControl* keepAwake_;
};

} // namespace tilewright
