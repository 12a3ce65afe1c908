#pragma once

#include <QScrollArea>

namespace tilewright {

/// A column that scrolls where it is given less height than its content wants, with a slim bar at
/// its trailing edge that keeps its room where there is nothing to scroll. It wants the height of
/// its content. A focus that the keyboard moves is scrolled into view. It paints no ground.
class SlimScrollArea final : public QScrollArea {
    Q_OBJECT

public:
    /// Takes the content over.
    explicit SlimScrollArea(QWidget* content, QWidget* parent = nullptr);
    ~SlimScrollArea() override;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void followFocus(QWidget* focused);
};

} // namespace tilewright
