#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace tilewright {

/// What a monitor tells of itself in its EDID block.
struct Edid {
    /// Manufacturer and product, as the block has them.
    quint16 manufacturer = 0;
    quint16 product = 0;
    /// 0 where the block has none.
    quint32 serialNumber = 0;
    /// Empty where the block has none.
    QString serialText;
    /// The model's name for users; empty where the block has none.
    QString name;

    /// Reads a block of any length; none when it is no EDID block. Damaged descriptors are left
    /// out.
    [[nodiscard]] static std::optional<Edid> parse(const QByteArray& block);

    /// Whether two monitors of the same model can be told apart by it.
    [[nodiscard]] bool hasSerial() const { return serialNumber != 0 || !serialText.isEmpty(); }
    /// The manufacturer's three letters.
    [[nodiscard]] QString manufacturerLetters() const;
    /// What is the same for one physical monitor wherever it is plugged in.
    [[nodiscard]] QByteArray identity() const;

    friend bool operator==(const Edid&, const Edid&) = default;
};

} // namespace tilewright
