#include "FakeAppKit.h"

#include "FakeCoreFoundation.h"

#include <MacOS/MacApplicationSupport.h>
#include <MacOS/MacPointer.h>
#include <MacOS/MacUserDefaults.h>

#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {
FakeAppKit* currentAppKit = nullptr;
}

FakeAppKit::FakeAppKit() {
    if (currentAppKit)
        fakecf::die("there are two AppKits");
    currentAppKit = this;
}

FakeAppKit::~FakeAppKit() {
    EXPECT_TRUE(monitors.empty()) << "an event monitor is left";
    EXPECT_TRUE(observers.empty()) << "an observer is left";
    EXPECT_TRUE(activities.empty()) << "an activity is left";
    for (const auto& window : windows) {
        EXPECT_FALSE(window->isAlive) << "a window is left";
        EXPECT_FALSE(window->content) << "a view did not leave its window";
    }
    currentAppKit = nullptr;
}

FakeAppKit& FakeAppKit::current() {
    if (!currentAppKit)
        fakecf::die("there is no AppKit");
    return *currentAppKit;
}

QWidget* FakeAppKit::keyView() const {
    for (const auto& window : windows) {
        if (window->isKey)
            return QWidget::find(window->content.value_or(0));
    }
    return nullptr;
}

void FakeAppKit::announce(appkit::Notification notification) {
    const auto copy = observers;
    for (const auto& [id, observer] : copy) {
        if (observer.notification == notification && observers.contains(id))
            observer.callback();
    }
}

void FakeAppKit::send(appkit::MonitorKind kind, const Event& event) {
    const auto copy = monitors;
    for (const auto& [id, monitor] : copy) {
        if (monitor.kind == kind && monitor.mask.contains(event.type) && monitors.contains(id))
            monitor.handler(event);
    }
}

} // namespace tilewright::testing

namespace tilewright::appkit {

using testing::FakeAppKit;

namespace {

class FakeObservation final : public Observation {
public:
    explicit FakeObservation(int id)
        : id_(id) {}
    ~FakeObservation() override { FakeAppKit::current().observers.erase(id_); }

private:
    const int id_;
};

class FakeMonitor final : public EventMonitor {
public:
    explicit FakeMonitor(int id)
        : id_(id) {}
    ~FakeMonitor() override { FakeAppKit::current().monitors.erase(id_); }

private:
    const int id_;
};

class FakeActivity final : public Activity {
public:
    explicit FakeActivity(const QString& reason)
        : reason_(reason) {
        FakeAppKit::current().activities.insert(reason_);
        ++FakeAppKit::current().activitiesBegun;
    }
    ~FakeActivity() override {
        auto& activities = FakeAppKit::current().activities;
        activities.erase(activities.find(reason_));
    }

private:
    const QString reason_;
};

class FakeStatusItem final : public StatusItem {
public:
    explicit FakeStatusItem(std::function<void()> clicked) {
        FakeAppKit::current().statusItem.emplace().clicked = std::move(clicked);
    }
    ~FakeStatusItem() override { FakeAppKit::current().statusItem.reset(); }
    void setTemplateImage(const QByteArray& png, int side) override {
        FakeAppKit::current().statusItem->images.push_back(png);
        FakeAppKit::current().statusItem->side = side;
    }
    void setAccessibleName(const QString& name) override {
        FakeAppKit::current().statusItem->accessibleName = name;
    }
    void setHighlighted(bool isHighlighted) override {
        FakeAppKit::current().statusItem->isHighlighted = isHighlighted;
    }
    std::optional<AppKitRect> frame() const override {
        return FakeAppKit::current().statusItem->frame;
    }
};

class FakeWindow final : public HostWindow {
public:
    explicit FakeWindow(std::shared_ptr<FakeAppKit::Window> record)
        : record_(std::move(record)) {}
    ~FakeWindow() override {
        record_->isAlive = false;
        record_->isShown = false;
        record_->isKey = false;
    }
    void setContent(WId view) override {
        record_->content = view;
        if (QWidget* content = QWidget::find(view))
            content->resize(int(record_->frame.width), int(record_->frame.height));
        record_->calls.emplace_back("setContent");
    }
    void removeContent() override {
        record_->content.reset();
        record_->calls.emplace_back("removeContent");
    }
    void setFrame(const AppKitRect& frame) override {
        resizeContent(frame.width - record_->frame.width, frame.height - record_->frame.height);
        record_->frame = frame;
        record_->calls.emplace_back("setFrame");
    }
    void makeKeyAndOrderFront() override {
        // AppKit has no window without a title bar be the key window, save a panel that asks for
        // it.
        for (const auto& window : FakeAppKit::current().windows)
            window->isKey = window == record_ && record_->properties.isKeyPanel;
        record_->isShown = true;
        record_->calls.emplace_back("makeKeyAndOrderFront");
    }
    void orderFrontRegardless() override {
        record_->isShown = true;
        record_->calls.emplace_back("orderFrontRegardless");
    }
    void orderOut() override {
        record_->isShown = false;
        record_->isKey = false;
        record_->calls.emplace_back("orderOut");
    }

private:
    /// Both of the view's sides are flexible: it takes what the window gains or loses.
    void resizeContent(double width, double height) const {
        QWidget* content = record_->content ? QWidget::find(*record_->content) : nullptr;
        if (content)
            content->resize(content->size() + QSize(int(width), int(height)));
    }

    const std::shared_ptr<FakeAppKit::Window> record_;
};

} // namespace

std::unique_ptr<Observation> observe(Notification notification, std::function<void()> callback) {
    auto& fake = FakeAppKit::current();
    const int id = ++fake.observersAdded;
    fake.observers.emplace(id, FakeAppKit::Observer{notification, std::move(callback)});
    return std::make_unique<FakeObservation>(id);
}

std::unique_ptr<Activity> beginActivity(const QString& reason) {
    return std::make_unique<FakeActivity>(reason);
}

std::unique_ptr<StatusItem> addStatusItem(std::function<void()> clicked) {
    return std::make_unique<FakeStatusItem>(std::move(clicked));
}

void requestPanel() {
    ++FakeAppKit::current().panelRequests;
}

std::optional<ProcessID> frontmostApplication() {
    return FakeAppKit::current().frontmost;
}

std::optional<QString> localizedNameOf(ProcessID process) {
    const auto& names = FakeAppKit::current().names;
    const auto found = names.find(process);
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

void openURL(const QString& url) {
    FakeAppKit::current().openedURLs.push_back(url);
}

void activateApplication(ProcessID process) {
    FakeAppKit::current().broughtForward.push_back(process);
    FakeAppKit::current().frontmost = process;
}

void activateThisApplication() {
    ++FakeAppKit::current().activations;
}

bool prefersReducedMotion() {
    return FakeAppKit::current().reducesMotion;
}

std::vector<RunningInstance> runningInstances() {
    return FakeAppKit::current().instances;
}

std::unique_ptr<EventMonitor> addMonitor(MonitorKind kind, EventMask mask,
                                         EventMonitors::Handler handler) {
    auto& fake = FakeAppKit::current();
    if (kind == MonitorKind::global ? fake.refusesGlobalMonitors : fake.refusesLocalMonitors)
        return nullptr;
    const int id = ++fake.monitorsInstalled;
    fake.monitors.emplace(id, FakeAppKit::Monitor{kind, mask, std::move(handler)});
    return std::make_unique<FakeMonitor>(id);
}

std::vector<ScreenFacts> screens() {
    return FakeAppKit::current().screens;
}

std::optional<ScreenFacts> mainScreen() {
    const auto& fake = FakeAppKit::current();
    if (!fake.mainScreen)
        return std::nullopt;
    return fake.screens.at(*fake.mainScreen);
}

std::unique_ptr<HostWindow> makeWindow(const WindowProperties& properties) {
    auto record = std::make_shared<FakeAppKit::Window>();
    record->properties = properties;
    FakeAppKit::current().windows.push_back(record);
    return std::make_unique<FakeWindow>(std::move(record));
}

} // namespace tilewright::appkit

// The classes whose own implementation is Objective-C.
namespace tilewright {

using testing::FakeAppKit;

AppKitPoint MacPointer::location() const {
    return FakeAppKit::current().mouse;
}

std::optional<QString> MacUserDefaults::string(const QString& key) const {
    const auto& defaults = FakeAppKit::current().defaults;
    const auto found = defaults.find(key);
    return found == defaults.end() ? std::nullopt : std::optional(found->second);
}

void MacUserDefaults::setString(const QString& value, const QString& key) {
    FakeAppKit::current().defaults[key] = value;
}

std::optional<QString> MacApplicationSupport::folder() const {
    return FakeAppKit::current().applicationSupport.path();
}

} // namespace tilewright
