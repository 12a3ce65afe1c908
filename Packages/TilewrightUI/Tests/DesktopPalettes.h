#pragma once

#include <QPalette>
#include <QString>
#include <vector>

namespace tilewright::testing {

/// A desktop's palette as its theme has it.
struct DesktopPalette {
    const char* name;
    QPalette palette;
};

/// The light and the dark palettes of five desktops.
inline std::vector<DesktopPalette> desktopPalettes() {
    const auto make = [](const char* name, QRgb window, QRgb windowText, QRgb base, QRgb text) {
        QPalette palette{QColor(window)};
        for (const auto role : {QPalette::WindowText, QPalette::ButtonText})
            palette.setColor(role, QColor(windowText));
        palette.setColor(QPalette::Base, QColor(base));
        palette.setColor(QPalette::Text, QColor(text));
        // Not every desktop says what this is; black is what some dark ones leave there.
        palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));
        return DesktopPalette{name, palette};
    };
    return {make("GNOME, Adwaita", 0xf6f5f4, 0x2e3436, 0xffffff, 0x000000),
            make("GNOME, Adwaita dark", 0x353535, 0xeeeeec, 0x2d2d2d, 0xffffff),
            make("Plasma, Breeze", 0xeff0f1, 0x232629, 0xffffff, 0x232629),
            make("Plasma, Breeze dark", 0x2a2e32, 0xfcfcfc, 0x1b1e20, 0xfcfcfc),
            make("Xfce, Greybird", 0xcecece, 0x3c3c3c, 0xfcfcfc, 0x212121),
            make("Xfce, Greybird dark", 0x3b3e3f, 0xeeeeec, 0x2d2e30, 0xffffff),
            make("MATE, Menta", 0xd4d4d4, 0x2c2c2c, 0xf7f7f7, 0x2c2c2c),
            make("MATE, BlackMATE", 0x3b3b3e, 0xffffff, 0x3b3b3e, 0xffffff),
            make("LXQt, Fusion", 0xefefef, 0x000000, 0xffffff, 0x000000),
            make("LXQt, Fusion dark", 0x323232, 0xf0f0f0, 0x242424, 0xf0f0f0)};
}

} // namespace tilewright::testing
