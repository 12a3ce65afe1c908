#pragma once

#include <QLayout>
#include <vector>

namespace tilewright {

/// Lays its items out in as many equal columns of at least a minimum width as the width at hand
/// allows, row by row from the leading edge. Each row is as high as its highest item; items lie at
/// the top of their cell.
class AdaptiveGridLayout final : public QLayout {
    Q_OBJECT

public:
    /// Lengths are in points; `spacing` is between columns and between rows.
    AdaptiveGridLayout(int minimumColumnWidth, int spacing, QWidget* parent = nullptr);
    ~AdaptiveGridLayout() override;

    /// How many columns fit into a width: at least one.
    [[nodiscard]] int columnCount(int width) const;

    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSize() const override;
    /// Never: without items it is a grid of no height, which keeps its place among its neighbours
    /// and the spacing before it.
    [[nodiscard]] bool isEmpty() const override;
    /// Rows are as high as their items, whatever room is left below.
    [[nodiscard]] Qt::Orientations expandingDirections() const override;
    void setGeometry(const QRect& rect) override;

private:
    enum class Pass { measure, place };
    int arrange(const QRect& rect, Pass pass) const;

    const int minimumColumnWidth_;
    std::vector<QLayoutItem*> items_;
};

} // namespace tilewright
