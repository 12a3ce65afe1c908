#include "Platform.h"

#include "MainThread.h"

#include <cstdio>
#include <cstdlib>

namespace tilewright {

namespace {

Platform* installedPlatform = nullptr;

std::vector<std::function<void()>>& uninstallActions() {
    static std::vector<std::function<void()>> actions;
    return actions;
}

[[noreturn]] void fail(const char* message) {
    std::fprintf(stderr, "tilewright: %s\n", message);
    std::abort();
}

} // namespace

StatusItem::~StatusItem() = default;
PanelSurface::~PanelSurface() = default;
Workspace::~Workspace() = default;
Appearance::~Appearance() = default;
Platform::~Platform() = default;

Platform& Platform::current() {
    if (!installedPlatform)
        fail("no platform is installed");
    return *installedPlatform;
}

Platform::Installation::Installation(Platform& platform) {
    assertMainThread(__FILE__, __LINE__);
    if (installedPlatform)
        fail("a platform is installed already");
    installedPlatform = &platform;
}

Platform::Installation::~Installation() {
    auto& actions = uninstallActions();
    while (!actions.empty()) {
        auto destroy = std::move(actions.back());
        actions.pop_back();
        destroy();
    }
    installedPlatform = nullptr;
}

void detail::whenUninstalled(std::function<void()> destroy) {
    assertMainThread(__FILE__, __LINE__);
    if (!installedPlatform)
        fail("a shared instance was used while no platform is installed");
    uninstallActions().push_back(std::move(destroy));
}

} // namespace tilewright
