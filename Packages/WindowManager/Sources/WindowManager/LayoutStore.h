#pragma once

#include "LayoutsFile.h"
#include "ZoneLayout.h"

#include <Platform/ObservableObject.h>
#include <Platform/Platform.h>

#include <map>

namespace tilewright {

/// The user's layouts and the choice of layout for each display, kept in a JSON file.
///
/// Loaded once, at creation; every change is saved at once, atomically. Failures of either are
/// silent: an unreadable file is an empty store, and the first change leaves a copy of it beside
/// it; a change that cannot be saved stays in memory. Main thread only; looking a layout up by its
/// id, updating and removing one assert it.
class LayoutStore : public ObservableObject {
    Q_OBJECT

public:
    /// Layout ids by display key.
    using Assignments = std::map<QString, QUuid>;

    /// The store of the running program, at the default location.
    [[nodiscard]] static LayoutStore& shared();

    /// A store at a file; without one, "layouts.json" in the folder "Tilewright" of the installed
    /// platform's application support folder, which is created. A platform without such a folder
    /// is fatal.
    explicit LayoutStore(std::optional<QString> fileURL = std::nullopt);
    ~LayoutStore() override;

    /// Published: the user's layouts in the order in which they were added.
    [[nodiscard]] const std::vector<ZoneLayout>& customLayouts() const;
    /// Published: which layout each display uses.
    [[nodiscard]] const Assignments& assignments() const;
    /// The presets, then the user's layouts.
    [[nodiscard]] std::vector<ZoneLayout> allLayouts() const;

    /// The first of `allLayouts()` with that id.
    [[nodiscard]] std::optional<ZoneLayout> layoutWithID(const QUuid& id) const;
    /// The layout to use on a display: the one assigned, else Bento Box.
    [[nodiscard]] ZoneLayout layoutFor(const Screen& screen) const;

    /// Makes the display use the layout; nothing happens for a display without identity.
    void assign(const ZoneLayout& layout, const Screen& screen);
    /// Appends a layout as it is. A fresh id and a unique name are the caller's duty.
    void addCustomLayout(const ZoneLayout& layout);
    /// Replaces the first custom layout with the same id; nothing happens when there is none.
    void updateCustomLayout(const ZoneLayout& layout);
    /// Removes every custom layout with that id and every assignment to it.
    void removeCustomLayout(const QUuid& id);

private:
    void save();

    LayoutsFile file_;
    Published<std::vector<ZoneLayout>> customLayouts_;
    Published<Assignments> assignments_;
};

} // namespace tilewright
