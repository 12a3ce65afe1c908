#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QVariantMap>
#include <optional>

namespace tilewright {

/// One wish out of what several sources tell: reduced motion where any of them asks for it, none
/// where none says anything.
[[nodiscard]] std::optional<bool> combinedMotionWish(std::optional<bool> first,
                                                     std::optional<bool> second);

/// How the user wishes programs to look and to move, as the desktop portal's settings tell it,
/// followed by their signal. The portal is not started for this; one that starts later is asked
/// then. Without a session bus nothing is known. Main thread only.
class FreeDesktopAppearance final : public QObject {
    Q_OBJECT

public:
    explicit FreeDesktopAppearance(QDBusConnection bus = QDBusConnection::sessionBus());
    ~FreeDesktopAppearance() override;

    /// None while the portal says nothing about it.
    [[nodiscard]] std::optional<bool> prefersReducedMotion() const;
    /// Whether dark colours are wished for; false while the portal says nothing about it.
    [[nodiscard]] bool prefersDark() const;

Q_SIGNALS:
    /// `prefersReducedMotion()` has another answer than before.
    void reducedMotionChanged();
    /// `prefersDark()` has another answer than before.
    void darkChanged();

private Q_SLOTS:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    /// The settings of each group by their names.
    using Groups = QMap<QString, QVariantMap>;

    void readAll();
    void take(Groups groups);

    QDBusConnection bus_;
    int generation_ = 0;
    Groups groups_;
    /// What changed after all settings were asked for last.
    Groups changedSince_;
};

} // namespace tilewright
