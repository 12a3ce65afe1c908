#pragma once

#include <QWidget>
#include <functional>

namespace tilewright {

/// A symbol standing by itself: a square of fixed size that lets the pointer through.
class SymbolView final : public QWidget {
    Q_OBJECT

public:
    /// A colour taken from the palette of the moment.
    using Color = std::function<QColor(const QPalette&)>;

    /// `side` is in points.
    explicit SymbolView(int side, QWidget* parent = nullptr);

    /// Shows a symbol; the second colour is the background of symbols of two tones.
    void setSymbol(const QString& name, Color color, Color second);
    [[nodiscard]] const QString& symbol() const { return name_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    Color color_;
    Color second_;
};

} // namespace tilewright
