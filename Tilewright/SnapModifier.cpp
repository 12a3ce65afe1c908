#include "SnapModifier.h"

using namespace Qt::StringLiterals;

namespace tilewright {

namespace {

struct Properties {
    QString rawValue;
    QString symbol;
    QString pickerLabel;
    ModifierFlag flag;
};

Properties propertiesOf(SnapModifier modifier) {
    switch (modifier) {
    case SnapModifier::control:
        return {u"control"_s, u"\u2303"_s, u"\u2303 Control"_s, ModifierFlag::control};
    case SnapModifier::shift:
        return {u"shift"_s, u"\u21E7"_s, u"\u21E7 Shift"_s, ModifierFlag::shift};
    case SnapModifier::option:
        return {u"option"_s, u"\u2325"_s, u"\u2325 Option"_s, ModifierFlag::option};
    case SnapModifier::command:
        return {u"command"_s, u"\u2318"_s, u"\u2318 Command"_s, ModifierFlag::command};
    }
    Q_UNREACHABLE();
}

} // namespace

QString rawValue(SnapModifier modifier) {
    return propertiesOf(modifier).rawValue;
}

std::optional<SnapModifier> snapModifierFromRawValue(const QString& text) {
    for (const SnapModifier modifier : SnapModifiers::allCases) {
        if (rawValue(modifier) == text)
            return modifier;
    }
    return std::nullopt;
}

QString symbol(SnapModifier modifier) {
    return propertiesOf(modifier).symbol;
}

QString pickerLabel(SnapModifier modifier) {
    return propertiesOf(modifier).pickerLabel;
}

ModifierFlag eventFlag(SnapModifier modifier) {
    return propertiesOf(modifier).flag;
}

} // namespace tilewright
