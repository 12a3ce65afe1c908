#include "HostDisplay.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace tilewright::testing {

HostDisplay::HostDisplay(int displays, QSize displaySize)
    : displays_(displays)
    , displaySize_(displaySize)
    , server_(XServer::virtualScreen({displaySize.width() * displays, displaySize.height()})) {
    EXPECT_NE(server_, nullptr);
    inspector_ = std::make_unique<XInspector>(name());
    EXPECT_TRUE(inspector_->isConnected());
}

QString HostDisplay::name() const {
    return server_ ? server_->display() : QString();
}

bool HostDisplay::spread() {
    std::vector<XInspector::Window> windows;
    for (const XInspector::Window window : inspector_->allWindows())
        if (inspector_->isMapped(window) && inspector_->clientFrame(window).size() == displaySize_)
            windows.push_back(window);
    if (windows.size() != std::size_t(displays_))
        return false;
    std::sort(windows.begin(), windows.end());
    std::uint32_t left = 0;
    for (const XInspector::Window window : windows) {
        xcb_configure_window(inspector_->connection(), window, XCB_CONFIG_WINDOW_X, &left);
        left += std::uint32_t(displaySize_.width());
    }
    return xcb_flush(inspector_->connection()) > 0;
}

} // namespace tilewright::testing
