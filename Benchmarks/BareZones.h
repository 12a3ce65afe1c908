#pragma once

#include <FakeProgram.h>

#include <QRect>
#include <QString>
#include <vector>

namespace tilewright::testing {

/// The least that a program can answer a companion to let windows be dragged into zones with
/// Control: one tile for each zone, and the frame of the one under the pointer.
class BareZones {
public:
    /// All of it in the companion's units.
    BareZones(QRect area, std::vector<QRect> zones)
        : area_(area)
        , zones_(std::move(zones)) {}

    /// To be handed to another process, and back.
    [[nodiscard]] QString toText() const;
    [[nodiscard]] static BareZones fromText(const QString& text);

    [[nodiscard]] QJsonArray answer(const CompanionCall& call) const;

private:
    [[nodiscard]] QJsonObject overlay(QPoint pointer) const;

    QRect area_;
    std::vector<QRect> zones_;
};

} // namespace tilewright::testing
