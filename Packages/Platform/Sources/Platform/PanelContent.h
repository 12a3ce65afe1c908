#pragma once

namespace tilewright {

/// What a panel's content says of itself where it is more than a widget. Main thread only.
class PanelContent {
public:
    PanelContent() = default;
    PanelContent(const PanelContent&) = delete;
    PanelContent& operator=(const PanelContent&) = delete;
    virtual ~PanelContent() = default;

    /// How much higher than now the content may become by what the user does in it, in points. A
    /// panel that opens beside a bar below it keeps that much room free, so that nothing moves from
    /// under the pointer.
    [[nodiscard]] virtual int roomToGrow() const = 0;
};

} // namespace tilewright
