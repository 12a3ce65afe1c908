#pragma once

#include "SnapSettings.h"

#include <QWidget>
#include <memory>

class QHBoxLayout;

namespace tilewright {

class PopUpButton;
class TextLabel;

/// The general tab: which key turns a drag into a snap, and where keep-awake is to be found.
/// It shows and changes the shared snap settings.
class GeneralSettingsView final : public QWidget {
    Q_OBJECT

public:
    explicit GeneralSettingsView(QWidget* parent = nullptr);
    ~GeneralSettingsView() override;

    /// The choice of the key.
    [[nodiscard]] PopUpButton* modifierPicker() const { return modifierPicker_; }
    /// The word that the chosen key bears on this desktop's keyboards, beside the choice; null
    /// where it bears no other.
    [[nodiscard]] TextLabel* localName() const { return localName_.get(); }
    /// The explanation under it, which names the chosen key.
    [[nodiscard]] TextLabel* caption() const { return caption_; }

private:
    void refresh();
    void showLocalName(SnapModifier modifier);

    SnapSettings& snapSettings_;
    PopUpButton* modifierPicker_;
    QHBoxLayout* modifierRow_;
    std::unique_ptr<TextLabel> localName_;
    TextLabel* caption_;
    Refresh refresh_;
};

} // namespace tilewright
