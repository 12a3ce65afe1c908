#pragma once

#include "SettingsWindow.h"

#include <vector>

class QStackedWidget;

namespace tilewright {

class SlimScrollArea;
class SymbolTabBar;

/// The content of the settings window: a row of four tabs above their contents, which have 520 ×
/// 460 points and scroll where there is less room. Starts at the layouts. The views of all tabs
/// live as long as it does: changing the tab keeps what they hold.
class SettingsView final : public SettingsContent {
    Q_OBJECT

public:
    enum class Tab { layouts, manage, general, accessibility };

    static constexpr QSize contentSize{520, 460};

    explicit SettingsView(QWidget* parent = nullptr);

    /// The tab that shows.
    [[nodiscard]] Tab selection() const;
    /// Shows a tab, as a click on it does.
    void setSelection(Tab tab);
    void limitHeight(int most) override;
    /// The view of a tab.
    [[nodiscard]] QWidget* content(Tab tab) const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    void add(Tab tab, const char* symbol, const QString& title, QWidget* content);
    [[nodiscard]] int indexOf(Tab tab) const;
    /// The height that this page cannot do without, in points; no more than that of the contents.
    [[nodiscard]] static int heightNeededBy(const QWidget& page);
    /// Gives the tab that shows the height that there is.
    void makeRoom();

    SymbolTabBar* tabBar_;
    QStackedWidget* pages_;
    SlimScrollArea* room_;
    /// How high the contents of a tab are to be seen, in points.
    int height_ = 0;
    /// In the order of the row and of the pages.
    std::vector<Tab> tabs_;
};

} // namespace tilewright
