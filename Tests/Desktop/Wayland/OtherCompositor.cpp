#include "OtherCompositor.h"

#include <ProgramWindows.h>

namespace tilewright::testing {

namespace {

const QString switchRole = u"check box"_s;
const QString switchName = u"Keep Awake"_s;

} // namespace

void OtherCompositor::SetUp() {
    session = GetParam().start(GetParam().beside);
    environment = session->environment();
    environment.insert(u"HOME"_s, folder.path());
    if (isOnX()) {
        environment.insert(u"DISPLAY"_s, session->xDisplay());
        look_ = std::make_unique<XInspector>(session->xDisplay());
    }
    startBus();
    AccessibilityReader::enable(environment);
    reader_ = std::make_unique<AccessibilityReader>(environment);
    input = std::make_unique<VirtualInput>(session->socketPath(), GetParam().display);
}

void OtherCompositor::runProgram() {
    ASSERT_TRUE(startProgram());
    ASSERT_TRUE(waitUntil([&] { return hasClaimed(); })) << contentsOf(programLog()).toStdString();
}

std::optional<QRect> OtherCompositor::panelOnX() const {
    return openPanelFrame(*look_, program.pid());
}

bool OtherCompositor::shows(const QString& role, const QString& name) {
    return reader_->find(program.pid(), role, name).has_value();
}

bool OtherCompositor::isPanelOpen() {
    return isOnX() ? panelOnX().has_value()
                   : reader_->find(program.pid(), switchRole, switchName).has_value();
}

std::optional<AccessibleNode> OtherCompositor::focused() {
    for (const AccessibleNode& node : reader_->showing(program.pid()))
        if (node.is(u"focused"_s))
            return node;
    return std::nullopt;
}

std::string OtherCompositor::whatIsShown() {
    QStringList lines;
    for (const AccessibleNode& node : reader_->showing(program.pid()))
        lines.append(node.role + u" \""_s + node.name + u"\" ("_s + node.states.join(u' ') + u')');
    return lines.join(u'\n').toStdString();
}

void OtherCompositor::openPanel() {
    const QImage before = session->picture();
    ASSERT_EQ(startAgain(), 0);
    ASSERT_TRUE(waitUntil([&] { return isPanelOpen() && (isOnX() || focused()); }))
        << whatIsShown() << contentsOf(programLog()).toStdString();
    // A press that comes in the moment in which it opens finds nothing in it to press yet.
    ASSERT_TRUE(waitUntil([&] {
        const QImage now = session->picture();
        return now != before &&
               staysTrue([&] { return session->picture() == now; }, std::chrono::milliseconds(300));
    }));
}

void OtherCompositor::pressSwitch() {
    const QImage before = session->picture();
    if (isOnX()) {
        constexpr QPoint fromUpperRight(-36, 28);
        input->move(panelOnX()->topRight() + fromUpperRight);
        input->click();
    } else {
        press(switchRole, switchName);
    }
    EXPECT_TRUE(waitUntil([&] { return session->picture() != before; }));
}

void OtherCompositor::moveFocus(KernelKey key,
                                const std::function<bool(const AccessibleNode&)>& isThere) {
    constexpr int most = 60;
    for (int i = 0; i < most; ++i) {
        const std::optional<AccessibleNode> before = focused();
        if (before && isThere(*before))
            return;
        input->tap(key);
        static_cast<void>(waitUntil(
            [&] {
                const std::optional<AccessibleNode> now = focused();
                return now && (!before || now->name != before->name || now->role != before->role ||
                               now->frame != before->frame);
            },
            std::chrono::milliseconds(1000)));
    }
    ADD_FAILURE() << "the focus is not to be had\n" << whatIsShown();
}

void OtherCompositor::press(const QString& role, const QString& name) {
    moveFocus(KernelKey::tab,
              [&](const AccessibleNode& node) { return node.role == role && node.name == name; });
    input->tap(KernelKey::space);
}

void OtherCompositor::openSettings(const QString& tab) {
    openPanel();
    if (isOnX()) {
        constexpr QPoint fromLowerLeft(36, -23);
        input->move(panelOnX()->bottomLeft() + fromLowerLeft);
        input->click();
    } else {
        press(u"button"_s, u"Settings…"_s);
    }
    const auto isTab = [](const AccessibleNode& node) { return node.role.startsWith(u"page tab"); };
    ASSERT_TRUE(waitUntil([&] { return focused() && !isPanelOpen(); })) << whatIsShown();
    moveFocus(KernelKey::tab, isTab);
    moveFocus(KernelKey::right, [&](const AccessibleNode&) {
        const auto node = reader_->find(program.pid(), u"page tab"_s, tab);
        return node && node->is(u"selected"_s);
    });
}

} // namespace tilewright::testing
