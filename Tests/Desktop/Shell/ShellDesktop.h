#pragma once

#include <DesktopSession.h>
#include <RecordingIdleService.h>

#include <QRect>
#include <QRegion>
#include <map>
#include <optional>

namespace tilewright::testing {

/// Who shows the program's item.
enum class TrayHost { none, statusNotifier, systemTray };

/// A desktop in which the program runs as a user runs it, seen and used from outside only.
class ShellDesktop {
public:
    explicit ShellDesktop(WindowManagerKind windowManager = WindowManagerKind::openbox,
                          std::unique_ptr<XServer> server = XServer::virtualScreen());

    /// Starts a tray host, the only thing on its bar, and waits until it takes items in; an earlier
    /// one is ended.
    void startTray(TrayHost host);
    void killTray() { tray_->stop(); }
    /// The program as it was built.
    [[nodiscard]] static QString program();
    /// Starts the program as it was built, or another copy of it.
    Subprocess& startProgram(const QString& path = {},
                             const std::map<QString, QString>& moreEnvironment = {},
                             const QStringList& arguments = {});
    /// Starts the program again while it runs, and waits until that second process has ended.
    [[nodiscard]] int startAgain();

    /// Waits for the program's item on the bar: its centre. Fails the test when it does not show.
    [[nodiscard]] QPoint item();
    /// Whether the item shows now.
    [[nodiscard]] bool showsItem();
    /// How much of the bar the item's drawing covers, in pixels: a filled cup is more than the
    /// outline of one.
    [[nodiscard]] int itemCoverage();

    /// The open panel, without its shadow; none while it is closed.
    [[nodiscard]] std::optional<QRect> panel();
    [[nodiscard]] bool waitForPanel(bool isOpen = true);
    /// Clicks the item and waits for the panel: where it is. Empty, and a failed test, without.
    QRect openPanel();
    /// The centre of a zone in the panel's thumbnail that lies at its leading edge, at the top.
    [[nodiscard]] QPoint firstZone(const QRect& panel);
    /// The centre of the card in a row and a column of the panel, counted from 0.
    [[nodiscard]] QPoint card(const QRect& panel, int row, int column);
    [[nodiscard]] static QPoint settingsButton(const QRect& panel);
    [[nodiscard]] static QPoint quitButton(const QRect& panel);
    /// Starts an indefinite session by the panel's switch.
    void startSession();

    /// The window titled "Tilewright Settings"; none while there is none.
    [[nodiscard]] std::optional<XInspector::Window> settingsWindow();

    [[nodiscard]] QString layoutsFile() const;
    [[nodiscard]] QByteArray layouts() const;
    void writeLayouts(const QByteArray& json) const;

    [[nodiscard]] DesktopSession& session() { return session_; }
    [[nodiscard]] XInspector& inspector() { return session_.inspector(); }
    [[nodiscard]] XInputInjector& input() { return session_.input(); }

private:
    /// The pixels of the bar that have the item's tone.
    [[nodiscard]] QRegion itemPixels();
    [[nodiscard]] std::optional<QPoint> findItem();
    /// Whether the program shows a window on the bar, which it takes away for the host that there
    /// is: a click on that one may go nowhere.
    [[nodiscard]] bool isInFormerHost();
    [[nodiscard]] std::vector<int> amberRows(const QRect& panel);

    DesktopSession session_;
    Subprocess* tray_ = nullptr;
    Subprocess* program_ = nullptr;
    TrayHost host_ = TrayHost::none;
};

} // namespace tilewright::testing
