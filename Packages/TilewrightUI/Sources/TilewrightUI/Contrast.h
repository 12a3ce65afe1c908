#pragma once

#include <QColor>
#include <initializer_list>

/// What can be read on what. Colours are sRGB; grounds are opaque.
namespace tilewright::look {

/// The least contrast of text with what it stands on.
inline constexpr double textContrast = 4.5;

/// The colour as it looks over an opaque one.
[[nodiscard]] QColor over(const QColor& top, const QColor& ground);
/// How far a colour stands out from its ground: 1, not at all, to 21, black on white. A translucent
/// colour counts as it looks there.
[[nodiscard]] double contrast(const QColor& color, const QColor& ground);
/// The colour where it can be read on every one of the grounds, else the nearest on the way from it
/// to black or white that can. Grounds so far apart that nothing can be read on all of them get
/// black or white, whichever is the better one.
[[nodiscard]] QColor legible(const QColor& color, std::initializer_list<QColor> grounds);

} // namespace tilewright::look
