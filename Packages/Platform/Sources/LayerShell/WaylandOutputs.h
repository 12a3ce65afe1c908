#pragma once

#include "WaylandConnection.h"

#include <QObject>
#include <QRect>
#include <QSize>
#include <QString>
#include <memory>
#include <vector>

namespace tilewright {

/// A display as the compositor tells its clients of it. Texts are empty where it has none.
struct WaylandOutput {
    /// Stands for it while it is connected.
    std::uint32_t number = 0;
    /// The connector.
    QString name;
    QString description;
    QString make;
    QString model;
    /// In the compositor's own units, its scale taken out, from the top-left corner of the whole
    /// desktop, y downward.
    QRect frame;
    /// As it is turned.
    QSize pixels;
    /// How many pixels of a buffer the compositor asks for along one unit, in whole numbers.
    int wholeScale = 1;

    /// How many of its pixels lie along one unit.
    [[nodiscard]] double pixelsPerUnit() const;

    friend bool operator==(const WaylandOutput&, const WaylandOutput&) = default;
};

/// The displays of a Wayland session, of which everything is known; empty while there is no
/// connection. Main thread only.
class WaylandOutputs final : public QObject {
    Q_OBJECT

public:
    /// The connection has to outlive this.
    explicit WaylandOutputs(WaylandConnection& connection);
    ~WaylandOutputs() override;

    /// In the order in which they came.
    [[nodiscard]] const std::vector<WaylandOutput>& all() const { return all_; }
    /// The one on this connector; null where none is.
    [[nodiscard]] const WaylandOutput* named(const QString& name) const;
    /// The one that covers this rectangle best; null without any that lies there.
    [[nodiscard]] const WaylandOutput* at(const QRect& frame) const;

    /// For requests about an output; null where it is gone.
    [[nodiscard]] wl_output* object(std::uint32_t number) const;

Q_SIGNALS:
    /// `all()` has another answer.
    void changed();

private:
    class Source;

    void begin();
    void end();
    void add(const WaylandOffer& offer);
    void remove(std::uint32_t number);
    void refresh();

    WaylandConnection& connection_;
    std::vector<std::unique_ptr<Source>> sources_;
    std::vector<WaylandOutput> all_;
};

} // namespace tilewright
