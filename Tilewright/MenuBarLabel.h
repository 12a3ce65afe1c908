#pragma once

#include <KeepAwake/KeepAwakeManager.h>
#include <Platform/StatusItem.h>

namespace tilewright {

/// The menu-bar item's image and its name: either tells whether a keep-awake session runs. Shows
/// them on the installed platform's status item for as long as it lives.
class MenuBarLabel final : public QObject {
    Q_OBJECT

public:
    explicit MenuBarLabel(QObject* parent = nullptr);
    ~MenuBarLabel() override;

    /// The name of the symbol shown now.
    [[nodiscard]] const QString& symbolName() const { return symbolName_; }

private:
    void update();

    KeepAwakeManager& keepAwake_;
    StatusItem& item_;
    Refresh refresh_;
    QString symbolName_;
};

} // namespace tilewright
