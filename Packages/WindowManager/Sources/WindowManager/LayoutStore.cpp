#include "LayoutStore.h"

#include "DisplayIdentity.h"
#include "LayoutCoding.h"

#include <Platform/MainThread.h>

#include <QDir>
#include <algorithm>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* thisFile = "LayoutStore";

QString defaultFile() {
    const std::optional<QString> support = Platform::current().applicationSupport.folder();
    if (!support)
        qFatal("%s: the platform reports no application support folder", thisFile);
    const QDir folder(*support + u"/Tilewright"_s);
    // A failure shows in the reading and the writing, which stay silent about it.
    folder.mkpath(u"."_s);
    return folder.filePath(u"layouts.json"_s);
}

} // namespace

LayoutStore& LayoutStore::shared() {
    return SharedInstance<LayoutStore>::get();
}

LayoutStore::LayoutStore(std::optional<QString> fileURL)
    : file_(fileURL ? *std::move(fileURL) : defaultFile())
    , customLayouts_(*this, {})
    , assignments_(*this, {}) {
    file_.removeStrayFiles();
    const auto contents = file_.read();
    auto persisted = contents ? LayoutCoding::decodePersisted(*contents) : std::nullopt;
    if (!persisted) {
        file_.keepOldContents();
        return;
    }
    customLayouts_ = std::move(persisted->customLayouts);
    assignments_ = std::move(persisted->assignments);
}

LayoutStore::~LayoutStore() = default;

const std::vector<ZoneLayout>& LayoutStore::customLayouts() const {
    return customLayouts_.value();
}

const LayoutStore::Assignments& LayoutStore::assignments() const {
    return assignments_.value();
}

std::vector<ZoneLayout> LayoutStore::allLayouts() const {
    std::vector<ZoneLayout> layouts = ZoneLayout::builtIns();
    layouts.insert(layouts.end(), customLayouts().begin(), customLayouts().end());
    return layouts;
}

std::optional<ZoneLayout> LayoutStore::layoutWithID(const QUuid& id) const {
    assertMainThread(thisFile, __LINE__);
    for (const auto* layouts : {&ZoneLayout::builtIns(), &customLayouts()}) {
        const auto found = std::find_if(layouts->begin(), layouts->end(),
                                        [&](const ZoneLayout& layout) { return layout.id == id; });
        if (found != layouts->end())
            return *found;
    }
    return std::nullopt;
}

ZoneLayout LayoutStore::layoutFor(const Screen& screen) const {
    if (const auto identity = displayIdentity(screen)) {
        const auto assigned = assignments().find(identity->key);
        if (assigned != assignments().end()) {
            if (auto layout = layoutWithID(assigned->second))
                return *std::move(layout);
        }
    }
    return ZoneLayout::bentoBox();
}

void LayoutStore::assign(const ZoneLayout& layout, const Screen& screen) {
    const auto identity = displayIdentity(screen);
    if (!identity)
        return;
    Assignments changed = assignments();
    changed[identity->key] = layout.id;
    assignments_ = std::move(changed);
    save();
}

void LayoutStore::addCustomLayout(const ZoneLayout& layout) {
    auto changed = customLayouts();
    changed.push_back(layout);
    customLayouts_ = std::move(changed);
    save();
}

void LayoutStore::updateCustomLayout(const ZoneLayout& layout) {
    assertMainThread(thisFile, __LINE__);
    auto changed = customLayouts();
    const auto found =
        std::find_if(changed.begin(), changed.end(),
                     [&](const ZoneLayout& candidate) { return candidate.id == layout.id; });
    if (found == changed.end())
        return;
    *found = layout;
    customLayouts_ = std::move(changed);
    save();
}

void LayoutStore::removeCustomLayout(const QUuid& id) {
    assertMainThread(thisFile, __LINE__);
    // A copy: the id given may be part of a layout that goes.
    const QUuid removed = id;
    auto layouts = customLayouts();
    std::erase_if(layouts, [&](const ZoneLayout& layout) { return layout.id == removed; });
    customLayouts_ = std::move(layouts);
    auto remaining = assignments();
    std::erase_if(remaining, [&](const auto& entry) { return entry.second == removed; });
    assignments_ = std::move(remaining);
    save();
}

void LayoutStore::save() {
    if (const auto bytes = LayoutCoding::encode({customLayouts(), assignments()}))
        file_.write(*bytes);
}

} // namespace tilewright
