#pragma once

#include <QTabBar>
#include <vector>

namespace tilewright {

/// A row of tabs, each a symbol above its title, the chosen one in the accent colour. The focus is
/// drawn for those who use the keyboard: not after a click, nor when the window has just opened.
class SymbolTabBar final : public QTabBar {
    Q_OBJECT

public:
    explicit SymbolTabBar(QWidget* parent = nullptr);

    /// Appends a tab. The title is plain text.
    void addSymbolTab(const QString& symbol, const QString& title);
    /// The symbol of a tab, which there has to be.
    [[nodiscard]] const QString& tabSymbol(int index) const {
        return tabs_.at(static_cast<std::size_t>(index)).symbol;
    }

protected:
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void showFocus(bool shows);
    void paintTab(QPainter& painter, int index) const;

    struct Tab {
        QString symbol;
        QString title;
    };
    std::vector<Tab> tabs_;
    bool showsFocus_ = false;
};

} // namespace tilewright
