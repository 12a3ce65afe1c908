#pragma once

#include <QWidget>

namespace tilewright {

class TextLabel;

/// A name and, at the other end of its line, a count. The name goes first: where there is too
/// little room beside the count for a name of some letters, at large sizes of text, the count is on
/// a line of its own. A name that is too long for its line all the same ends in an ellipsis.
class NameAndCount final : public QWidget {
    Q_OBJECT

public:
    explicit NameAndCount(QWidget* parent = nullptr);

    void setTexts(const QString& name, const QString& count);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] bool isOnTwoLines(int width) const;
    void arrange();

    TextLabel* name_;
    TextLabel* count_;
};

} // namespace tilewright
