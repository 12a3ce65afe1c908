#include "RunningProgram.h"

#include <ProgramWindows.h>
#include <Waiting.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

quint32 keyFor(const QString& modifier) {
    if (modifier == QStringLiteral("shift"))
        return keysym::shift;
    if (modifier == QStringLiteral("option"))
        return keysym::alt;
    if (modifier == QStringLiteral("command"))
        return keysym::super;
    return keysym::control;
}

RunningProgram::RunningProgram(DesktopSession& desktop, const QString& modifier,
                               const std::map<QString, QString>& environment)
    : desktop_(desktop)
    , end_(End::withThisObject)
    , modifier_(modifier) {
    writeFile(desktop.home() + QStringLiteral("/.config/Tilewright/Tilewright.conf"),
              "[General]\nsnapActivationModifier=" + modifier.toLatin1() + "\n");
    process_ = &desktop.start(QStringLiteral(TILEWRIGHT_PROGRAM), {}, environment);
    waitUntilReady();
}

RunningProgram::RunningProgram(DesktopSession& desktop, Subprocess& process,
                               const QString& modifier)
    : desktop_(desktop)
    , end_(End::elsewhere)
    , process_(&process)
    , modifier_(modifier) {
    waitUntilReady();
}

RunningProgram::~RunningProgram() {
    if (end_ == End::withThisObject)
        process_->stop();
}

quint32 RunningProgram::key() const {
    return keyFor(modifier_);
}

void RunningProgram::pressKey() {
    desktop_.input().pressKey(key());
    expectModifierHeld(true);
}

void RunningProgram::releaseKey() {
    desktop_.input().releaseKey(key());
    expectModifierHeld(false);
}

void RunningProgram::expectModifierHeld(bool isHeld) {
    EXPECT_TRUE(waitUntil([&] { return desktop_.inspector().isModifierHeld() == isHeld; }))
        << "the keyboard is frozen" << desktop_.describe();
}

XInspector::Window RunningProgram::overlay() const {
    const XInspector& inspector = desktop_.inspector();
    if (overlay_ != 0 && inspector.exists(overlay_))
        return overlay_;
    overlay_ = overlayWindow(inspector, pid()).value_or(0);
    return overlay_;
}

bool RunningProgram::overlayShows() const {
    const XInspector::Window window = overlay();
    return window != 0 && desktop_.inspector().isMapped(window);
}

void RunningProgram::waitUntilReady() {
    XInputInjector& input = desktop_.input();
    const QSize screen = desktop_.inspector().screenSize();
    const QPoint emptyPlace(screen.width() / 4, screen.height() - 40);
    // It tells nobody that it listens: drag over the empty desktop until it does.
    bool shown = false;
    const bool answers = waitUntil([&] {
        input.move(emptyPlace);
        // The button first: with the key held, a press belongs to some window managers.
        input.press();
        pressKey();
        const bool shows = waitUntil(
            [&] {
                input.move(emptyPlace + QPoint(3, 0));
                input.move(emptyPlace);
                return overlayShows();
            },
            std::chrono::milliseconds(300));
        // The key first: nothing is snapped.
        releaseKey();
        const bool isHidden = waitUntil([&] { return !overlayShows(); });
        input.release();
        shown = shown || shows;
        return shows && isHidden;
    });
    EXPECT_TRUE(answers) << "the program does not answer to a drag: "
                         << (shown ? "the overlay stays" : "the overlay never showed")
                         << (isRunning() ? "" : ", the program has ended") << desktop_.describe();
}

} // namespace tilewright::testing
