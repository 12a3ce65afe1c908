#pragma once

#include "ShellDesktop.h"

#include <AccessibilityReader.h>

namespace tilewright::testing {

/// Uses the running program with pointer and keys, finding its parts by what they tell assistive
/// tools.
class ShellUser {
public:
    explicit ShellUser(ShellDesktop& desktop);

    /// Starts the program so that it can be read.
    Subprocess& startProgram(std::map<QString, QString> moreEnvironment = {});

    /// What is shown in this role under this name (any, where that is null) now. The panel and
    /// menus are not among what Qt tells of.
    [[nodiscard]] std::optional<AccessibleNode> find(const QString& role, const QString& name);
    /// Waits until it is shown and stands still. Fails the test when it does not come.
    AccessibleNode place(const QString& role, const QString& name);
    /// Clicks it in its middle, once it is there.
    void click(const QString& role, const QString& name);
    /// Presses the pointer's button on it and moves by this many pixels.
    void drag(const QString& role, const QString& name, QPoint by);

    /// Opens the settings window from the panel, at the tab with this title.
    void openSettings(const QString& tab);
    /// Closes the settings window by the window manager.
    void closeSettings();
    /// Chooses the entry of the only combo box shown that stands this many places below the chosen
    /// one.
    void chooseBelow(int steps);
    /// Quits from the panel, and waits for the process's end.
    void quit();

private:
    /// How many menus, panels and the like the program shows.
    [[nodiscard]] std::size_t popups();
    /// Waits until a part is found twice in a row at the same place.
    AccessibleNode waitUntilStill(const std::function<std::optional<AccessibleNode>()>& look,
                                  const QString& name);
    /// For the message of a failed test.
    [[nodiscard]] std::string whatIsShown();

    ShellDesktop& desktop_;
    AccessibilityReader reader_;
    Subprocess* program_ = nullptr;
};

} // namespace tilewright::testing
