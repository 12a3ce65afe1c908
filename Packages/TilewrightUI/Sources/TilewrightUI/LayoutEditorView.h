#pragma once

#include "LayoutEditorModel.h"

#include <QWidget>
#include <memory>
#include <vector>

class QMenu;

namespace tilewright {

class EditingBadge;
class EditorToast;
class GlassButton;
class LayoutEditorCanvas;
class RoundedTextField;
class TextLabel;
class ToggleSwitch;
class WrappingRow;

/// The tab of the settings window in which the user designs a layout.
///
/// It reads and writes the shared layout store, and keeps its state only as long as it lives.
class LayoutEditorView final : public QWidget {
    Q_OBJECT

public:
    explicit LayoutEditorView(QWidget* parent = nullptr);
    ~LayoutEditorView() override;

    [[nodiscard]] LayoutEditorModel& model() { return model_; }
    [[nodiscard]] LayoutEditorCanvas& canvas() { return *canvas_; }
    /// Takes up at once what the model says; it does so by itself on the next turn of the loop.
    void refresh();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void makeHeader();
    void makeControls();
    void fillOpenMenu(QMenu& menu);
    void addZone();
    void arrange();

    LayoutEditorModel model_;
    RoundedTextField* nameField_ = nullptr;
    EditingBadge* badge_ = nullptr;
    GlassButton* openButton_ = nullptr;
    GlassButton* newButton_ = nullptr;
    TextLabel* snapLabel_ = nullptr;
    ToggleSwitch* snapSwitch_ = nullptr;
    LayoutEditorCanvas* canvas_ = nullptr;
    GlassButton* addButton_ = nullptr;
    GlassButton* deleteButton_ = nullptr;
    GlassButton* saveAsNewButton_ = nullptr;
    GlassButton* saveButton_ = nullptr;
    EditorToast* toast_ = nullptr;
    std::unique_ptr<WrappingRow> header_;
    std::unique_ptr<WrappingRow> controls_;
};

} // namespace tilewright
