#pragma once

#include <QTabBar>

namespace tilewright {

/// A row of tabs, each a symbol above its title, the chosen one in the accent colour.
class SymbolTabBar final : public QTabBar {
    Q_OBJECT

public:
    explicit SymbolTabBar(QWidget* parent = nullptr);

    /// Appends a tab. The title is plain text.
    void addSymbolTab(const QString& symbol, const QString& title);
    /// The symbol of a tab.
    [[nodiscard]] QString tabSymbol(int index) const { return tabData(index).toString(); }

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;

private:
    void paintTab(QPainter& painter, int index) const;
};

} // namespace tilewright
