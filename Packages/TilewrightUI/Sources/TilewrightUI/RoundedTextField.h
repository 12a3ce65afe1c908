#pragma once

#include <QLineEdit>

namespace tilewright {

/// A text field with a rounded border in the program's look. While nobody edits it, a text that is
/// wider than the field ends in an ellipsis.
class RoundedTextField final : public QLineEdit {
    Q_OBJECT

public:
    /// The placeholder is what assistive tools call the field, too.
    explicit RoundedTextField(const QString& placeholder, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    /// Whose colours the field is painted in: its surroundings'.
    [[nodiscard]] QPalette ground() const;
    void applyPalette();
    /// Paints a text that is too wide for the field with an ellipsis; false where it is not.
    bool paintShortened();
};

} // namespace tilewright
