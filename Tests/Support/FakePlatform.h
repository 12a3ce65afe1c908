#pragma once

#include "FakeAccessibility.h"
#include "FakeEventMonitors.h"
#include "FakeMainLoop.h"
#include "FakePanelSurface.h"
#include "FakeScreens.h"

#include <Platform/Platform.h>

#include <QIcon>
#include <QPointer>
#include <QTemporaryDir>
#include <map>
#include <set>

namespace tilewright::testing {

class FakePointer final : public Pointer {
public:
    AppKitPoint location() const override { return at; }
    AppKitPoint at;
};

class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(FakeAccessibility& log)
        : log_(log) {}

    std::optional<ProcessID> frontmostApplication() const override {
        log_.log("frontmostApplication");
        return frontmost;
    }
    std::optional<QString> localizedName(ProcessID process) const override {
        const auto found = names.find(process);
        return found == names.end() ? std::nullopt : std::optional(found->second);
    }
    void openAccessibilitySettings() override { ++settingsOpened; }
    void activateThisApplication() override { ++activations; }

    std::optional<ProcessID> frontmost;
    std::map<ProcessID, QString> names;
    int settingsOpened = 0;
    int activations = 0;

private:
    FakeAccessibility& log_;
};

class FakeAppearance final : public Appearance {
    Q_OBJECT

public:
    bool blendsWindows() const override { return blends; }
    std::optional<bool> prefersReducedMotion() const override { return reducedMotion; }
    bool prefersDark() const override { return isDark; }
    /// As a desktop whose setting changes does.
    void changeDark(bool dark) {
        isDark = dark;
        Q_EMIT prefersDarkChanged();
    }
    void changeReducedMotion(std::optional<bool> reduced) {
        reducedMotion = reduced;
        Q_EMIT prefersReducedMotionChanged();
    }

    bool blends = false;
    std::optional<bool> reducedMotion;
    bool isDark = false;
};

/// Keys that bear the words that a test says.
class FakeKeyNames final : public KeyNames {
public:
    std::optional<QString> localName(ModifierFlag key) const override {
        const auto name = names.find(key);
        return name == names.end() ? std::nullopt : std::optional(name->second);
    }

    std::map<ModifierFlag, QString> names;
};

/// Power assertions that are counted, and refused on demand.
class FakePowerAssertions final : public PowerAssertions {
public:
    struct Creation {
        QString type;
        quint32 level;
        QString name;
    };

    PowerAssertionResult create(const QString& type, quint32 level, const QString& name) override {
        creations.push_back({type, level, name});
        if (failure != 0)
            return {failure, 0};
        held.insert(++lastID);
        mostHeld = std::max(mostHeld, held.size());
        return {0, lastID};
    }
    void release(PowerAssertionID id) override {
        releases.push_back(id);
        held.erase(id);
    }

    /// The status that `create` answers; 0 grants.
    int failure = 0;
    PowerAssertionID lastID = 0;
    std::vector<Creation> creations;
    std::vector<PowerAssertionID> releases;
    std::set<PowerAssertionID> held;
    std::size_t mostHeld = 0;
};

class FakeUserDefaults final : public UserDefaults {
public:
    std::optional<QString> string(const QString& key) const override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void setString(const QString& value, const QString& key) override {
        values[key] = value;
        writes.emplace_back(key, value);
    }

    std::map<QString, QString> values;
    std::vector<std::pair<QString, QString>> writes;
};

/// A folder of its own for each fake platform, gone with it.
class FakeApplicationSupport final : public ApplicationSupport {
public:
    std::optional<QString> folder() const override {
        if (!isReported)
            return std::nullopt;
        return replacement.isEmpty() ? directory_.path() : replacement;
    }
    bool isReported = true;
    /// Stands in for the folder where something has to outlive the platform.
    QString replacement;

private:
    QTemporaryDir directory_;
};

class FakeInstanceActivation final : public InstanceActivation {
    Q_OBJECT

public:
    Claim claim() override { return answer; }
    Claim answer = Claim::first;
};

class FakeStatusItem final : public StatusItem {
    Q_OBJECT

public:
    void setSymbol(const QString& symbolName, const QIcon& newIcon) override {
        symbols.push_back(symbolName);
        icon = newIcon;
    }
    void setAccessibleName(const QString& name) override { accessibleName = name; }
    /// As a click of the user does.
    void click(const std::optional<AppKitRect>& place) { Q_EMIT activated(place); }

    std::vector<QString> symbols;
    QIcon icon;
    QString accessibleName;
};

/// What happened to the overlay surface, in order.
class FakeOverlaySurface final : public OverlaySurface {
public:
    struct Record {
        std::vector<std::string> calls;
        ScreenPtr screen;
        bool isVisible = false;
        int madeCount = 0;
        std::shared_ptr<OverlayView> view;
    };

    FakeOverlaySurface(Record& record, std::shared_ptr<OverlayView> view)
        : record_(record) {
        ++record_.madeCount;
        record_.view = std::move(view);
    }
    ~FakeOverlaySurface() override {
        record_.isVisible = false;
        record_.view.reset();
    }

    void setScreen(const ScreenPtr& screen) override {
        record_.calls.emplace_back("setScreen");
        record_.screen = screen;
    }
    void orderFront() override {
        record_.calls.emplace_back("orderFront");
        record_.isVisible = true;
    }
    void orderOut() override {
        record_.calls.emplace_back("orderOut");
        record_.isVisible = false;
    }

private:
    Record& record_;
};

/// Everything of a desktop that tests control.
struct Fakes {
    FakeScreens fakeScreens;
    FakePointer fakePointer;
    FakeEventMonitors fakeEventMonitors;
    FakeAccessibility fakeAccessibility;
    FakeWorkspace fakeWorkspace{fakeAccessibility};
    FakeAppearance fakeAppearance;
    FakePowerAssertions fakePowerAssertions;
    FakeUserDefaults fakeUserDefaults;
    FakeMainLoop fakeMainLoop;
    FakeApplicationSupport fakeApplicationSupport;
    FakeInstanceActivation fakeInstanceActivation;
    FakeKeyNames fakeKeyNames;
    FakeStatusItem fakeStatusItem;
    FakeOverlaySurface::Record overlay;
    /// The last one made, while there is one.
    QPointer<FakePanelSurface> panel;

    /// The fakes as a platform's services, with another loop than the fake one if there is one.
    [[nodiscard]] PlatformServices services(MainLoop* loop = nullptr) {
        return {.screens = fakeScreens,
                .pointer = fakePointer,
                .eventMonitors = fakeEventMonitors,
                .accessibility = fakeAccessibility,
                .workspace = fakeWorkspace,
                .appearance = fakeAppearance,
                .powerAssertions = fakePowerAssertions,
                .userDefaults = fakeUserDefaults,
                .mainLoop = loop ? *loop : fakeMainLoop,
                .applicationSupport = fakeApplicationSupport,
                .instanceActivation = fakeInstanceActivation,
                .keyNames = fakeKeyNames};
    }
};

/// A whole desktop that tests control. Install it with `FakeDesktop`.
class FakePlatform : public Fakes, public Platform {
public:
    FakePlatform()
        : Platform(services()) {}
    /// With another loop, which is not owned, where a test needs Qt's own.
    explicit FakePlatform(MainLoop& loop)
        : Platform(services(&loop)) {}

    FakeStatusItem& statusItem() override { return fakeStatusItem; }
    std::unique_ptr<OverlaySurface> makeOverlaySurface(std::shared_ptr<OverlayView> view) override {
        return std::make_unique<FakeOverlaySurface>(overlay, std::move(view));
    }
    std::unique_ptr<PanelSurface> makePanelSurface(PanelSurface::ViewFactory makeView,
                                                   std::unique_ptr<PanelChrome> chrome) override {
        auto made =
            std::make_unique<FakePanelSurface>(fakeScreens, std::move(makeView), std::move(chrome));
        panel = made.get();
        QObject::connect(&fakeWorkspace, &Workspace::activeWindowChanged, panel,
                         [this] { panel->dismiss(PanelDismissal::anotherWindow); });
        return made;
    }
};

/// A fake platform, installed for as long as it lives: one for each test.
struct FakeDesktop {
    FakeDesktop() = default;
    /// With Qt's own loop, or another.
    explicit FakeDesktop(MainLoop& loop)
        : platform(loop) {}

    FakePlatform platform;
    Platform::Installation installation{platform};
};

} // namespace tilewright::testing
