#include "Bars.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace tilewright::testing {

namespace {

QByteArray property(const char* name, const char* type, const QByteArray& value) {
    return QByteArray("<property name=\"") + name + "\" type=\"" + type + "\" value=\"" + value +
           "\"/>\n";
}

} // namespace

Subprocess& startTint2(DesktopSession& desktop, int monitor, BarEdge edge) {
    const QString file = desktop.home() + u"/tint2rc"_s;
    writeFile(file, "panel_items = S\npanel_size = 100% " + QByteArray::number(barHeight) +
                        "\npanel_position = " + (edge == BarEdge::top ? "top" : "bottom") +
                        " center horizontal\nstrut_policy = follow_size\n"
                        "systray_icon_size = 22\nsystray_padding = 4 4 4\npanel_background_id = 0\n"
                        "panel_monitor = " +
                        QByteArray::number(monitor + 1) + "\n");
    return desktop.start(u"tint2"_s, {u"-c"_s, file});
}

Subprocess& startLoneTray(DesktopSession& desktop) {
    if (QStandardPaths::findExecutable(u"trayer"_s).isEmpty())
        return desktop.start(u"stalonetray"_s,
                             {u"--geometry"_s, u"1x1-0+0"_s, u"--slot-size"_s,
                              QString::number(barHeight), u"--window-type"_s, u"dock"_s});
    return desktop.start(u"trayer"_s, {u"--edge"_s, u"top"_s, u"--align"_s, u"right"_s,
                                       u"--height"_s, QString::number(barHeight), u"--widthtype"_s,
                                       u"request"_s, u"--SetDockType"_s, u"true"_s});
}

Subprocess& startXfcePanel(DesktopSession& desktop, XfceItems items) {
    QByteArray tone;
    QByteArray symbols;
    if (items != XfceItems::asGiven) {
        const QByteArray isDark = items == XfceItems::symbolsOnDark ? "true" : "false";
        writeFile(desktop.home() + u"/.config/gtk-3.0/settings.ini"_s,
                  "[Settings]\ngtk-theme-name=Adwaita\ngtk-application-prefer-dark-theme=" +
                      isDark + "\n");
        tone = property("dark-mode", "bool", isDark);
        symbols = property("symbolic-icons", "bool", "true");
    }
    writeFile(desktop.home() + u"/.config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"_s,
              R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    )" + tone + R"(
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      )" + property("size", "uint", QByteArray::number(barHeight)) +
                  R"(
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      )" + symbols +
                  R"(
    </property>
  </property>
</channel>
)");
    return desktop.start(u"xfce4-panel"_s, {u"--disable-wm-check"_s});
}

} // namespace tilewright::testing
