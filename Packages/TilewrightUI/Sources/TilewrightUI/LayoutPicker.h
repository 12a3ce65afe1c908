#pragma once

#include <Platform/ObservableObject.h>
#include <Platform/Screens.h>
#include <WindowManager/ZoneLayout.h>

#include <QWidget>
#include <optional>

class QGridLayout;

namespace tilewright {

class LayoutCard;
class LayoutThumbnail;
class PopUpButton;

/// The panel's section for window zones: a display's layout as a thumbnail, whose zones snap the
/// focused window, and a grid of cards that give the display another layout.
///
/// It shows and changes the shared layout store. The choice of display is its own and lives as long
/// as it does. Main thread only.
class LayoutPicker final : public QWidget {
    Q_OBJECT

public:
    /// One connected display that has an identity.
    struct DisplayInfo {
        /// The key of the display's identity.
        QString id;
        QString name;
        ScreenPtr screen;
    };
    /// How many cards make a row.
    static constexpr std::size_t columnCount = 3;

    explicit LayoutPicker(QWidget* parent = nullptr);

    [[nodiscard]] const std::vector<DisplayInfo>& displays() const { return displays_; }
    /// The key of the display picked; it stays when that display goes.
    [[nodiscard]] const std::optional<QString>& selectedDisplayKey() const {
        return selectedDisplayKey_;
    }
    /// Picks the display of a key, whether it is connected or not.
    void setSelectedDisplayKey(const QString& key);
    /// The display picked while it is connected, else the first; none without displays.
    [[nodiscard]] std::optional<DisplayInfo> selectedDisplay() const;
    /// The store's layouts in rows of `columnCount`; only the last may be shorter.
    [[nodiscard]] std::vector<std::vector<ZoneLayout>> layoutRows() const;
    /// The selected display's layout; Bento Box without one.
    [[nodiscard]] ZoneLayout currentLayout() const;
    /// Reads the display list again. Runs by itself at first and at each change of the displays.
    void refreshDisplays();

    /// The cards, row by row.
    [[nodiscard]] const std::vector<LayoutCard*>& cards() const { return cards_; }

private:
    void refresh();
    void refreshCards();
    [[nodiscard]] LayoutCard* makeCard(const ZoneLayout& layout);
    void snapFocusedWindow(const Zone& zone);
    void assign(const ZoneLayout& layout);
    void moveFocus(const LayoutCard* from, int columns, int rows);

    std::vector<DisplayInfo> displays_;
    std::optional<QString> selectedDisplayKey_;
    PopUpButton* displayPicker_;
    LayoutThumbnail* thumbnail_;
    QGridLayout* grid_;
    std::vector<LayoutCard*> cards_;
    Refresh refresh_;
};

} // namespace tilewright
