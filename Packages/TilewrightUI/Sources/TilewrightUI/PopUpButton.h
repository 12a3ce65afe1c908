#pragma once

#include <QComboBox>

namespace tilewright {

/// A button that shows one of several choices and pops up the list of them. Titles are plain text;
/// one that is wider than the button ends in an ellipsis. The list stays above its window where
/// that is wide enough for it.
///
/// It shows a model's state: connect `activated`, which only the user causes, to the model, and
/// call `select` when the model has changed.
class PopUpButton final : public QComboBox {
    Q_OBJECT

public:
    /// One choice.
    struct Item {
        /// Names the choice for `select`.
        QString id;
        QString title;
        friend bool operator==(const Item&, const Item&) = default;
    };

    /// The button has no visible label; the name is what assistive tools call it.
    explicit PopUpButton(const QString& accessibleName, QWidget* parent = nullptr);

    /// Replaces the choices, keeping the selection where it still exists.
    void setItems(const std::vector<Item>& items);
    [[nodiscard]] const std::vector<Item>& items() const { return items_; }
    /// Shows a choice; one that does not exist shows none.
    void select(const QString& id);
    /// The id of the choice shown; empty for none.
    [[nodiscard]] QString selectedID() const { return currentData().toString(); }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    void showPopup() override;

protected:
    void wheelEvent(QWheelEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<Item> items_;
};

} // namespace tilewright
