#pragma once

#include <Platform/ObservableObject.h>
#include <WindowManager/ZoneLayout.h>

#include <QScrollArea>
#include <optional>

namespace tilewright {

class AdaptiveGridLayout;
class ConfirmationDialog;
class LayoutManagerCard;
class TextLabel;

/// Lists every layout, the user's and the built-in ones, as cards, and deletes the user's own after
/// a confirmation. Scrolls vertically. It shows and changes the shared layout store.
class LayoutManagerView final : public QScrollArea {
    Q_OBJECT

public:
    explicit LayoutManagerView(QWidget* parent = nullptr);
    ~LayoutManagerView() override;

    /// The layout whose deletion waits for confirmation; the dialog is shown exactly while there is
    /// one.
    [[nodiscard]] const std::optional<ZoneLayout>& pendingDelete() const { return pendingDelete_; }
    void setPendingDelete(const std::optional<ZoneLayout>& layout);
    /// The confirmation while it is shown.
    [[nodiscard]] ConfirmationDialog* confirmation() const { return confirmation_; }

    [[nodiscard]] const std::vector<LayoutManagerCard*>& customCards() const {
        return customCards_;
    }
    [[nodiscard]] const std::vector<LayoutManagerCard*>& builtInCards() const {
        return builtInCards_;
    }
    /// The line under the first title; hidden while the user has layouts.
    [[nodiscard]] TextLabel* hint() const { return hint_; }

private:
    void refresh();
    void showConfirmation();

    std::optional<ZoneLayout> pendingDelete_;
    ConfirmationDialog* confirmation_ = nullptr;
    TextLabel* hint_ = nullptr;
    TextLabel* builtInTitle_ = nullptr;
    AdaptiveGridLayout* customGrid_ = nullptr;
    std::vector<LayoutManagerCard*> customCards_;
    std::vector<LayoutManagerCard*> builtInCards_;
    Refresh refresh_;
};

} // namespace tilewright
