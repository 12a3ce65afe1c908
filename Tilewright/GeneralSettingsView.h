#pragma once

#include "SnapSettings.h"

#include <QWidget>

namespace tilewright {

class PopUpButton;
class TextLabel;

/// The general tab: which key turns a drag into a snap, and where keep-awake is to be found.
/// It shows and changes the shared snap settings.
class GeneralSettingsView final : public QWidget {
    Q_OBJECT

public:
    explicit GeneralSettingsView(QWidget* parent = nullptr);

    /// The choice of the key.
    [[nodiscard]] PopUpButton* modifierPicker() const { return modifierPicker_; }
    /// The explanation under it, which names the chosen key.
    [[nodiscard]] TextLabel* caption() const { return caption_; }

private:
    void refresh();

    SnapSettings& snapSettings_;
    PopUpButton* modifierPicker_;
    TextLabel* caption_;
    Refresh refresh_;
};

} // namespace tilewright
