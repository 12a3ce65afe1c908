#include <X11/XSettings.h>

#include <QtEndian>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

enum class Order { little, big };

/// Writes a manager's property as the protocol says.
class Writer {
public:
    explicit Writer(Order order)
        : order_(order) {
        bytes_.append(order == Order::big ? '\1' : '\0').append(3, '\0');
        number<quint32>(7);
    }
    template<class Number>
    Writer& number(Number value) {
        Number ordered = order_ == Order::big ? qToBigEndian(value) : qToLittleEndian(value);
        bytes_.append(static_cast<const char*>(static_cast<const void*>(&ordered)),
                      sizeof(ordered));
        return *this;
    }
    Writer& head(char kind, const QByteArray& name) {
        bytes_.append(kind).append('\0');
        number(static_cast<quint16>(name.size()));
        padded(name);
        return number<quint32>(3);
    }
    Writer& padded(const QByteArray& text) {
        bytes_.append(text);
        while (bytes_.size() % 4 != 0)
            bytes_.append('\0');
        return *this;
    }
    [[nodiscard]] const QByteArray& bytes() const { return bytes_; }

private:
    Order order_;
    QByteArray bytes_;
};

QByteArray settings(Order order) {
    Writer writer(order);
    writer.number<quint32>(4);
    writer.head(1, "Net/ThemeName").number<quint32>(5).padded("Plain");
    writer.head(2, "Some/Color");
    for (int i = 0; i < 4; ++i)
        writer.number<quint16>(0x1234);
    writer.head(0, "Gtk/EnableAnimations").number<qint32>(0);
    writer.head(0, "Xft/DPI").number<qint32>(-98304);
    return writer.bytes();
}

} // namespace

TEST(XSettings, FindsAnIntegerAmongSettingsOfEveryTypeInBothByteOrders) {
    for (const Order order : {Order::little, Order::big}) {
        EXPECT_EQ(integerXSetting(settings(order), "Gtk/EnableAnimations"), 0);
        EXPECT_EQ(integerXSetting(settings(order), "Xft/DPI"), -98304);
    }
}

TEST(XSettings, HasNoneOfAnotherNameOrAnotherType) {
    EXPECT_EQ(integerXSetting(settings(Order::little), "Gtk/EnableAnimation"), std::nullopt);
    EXPECT_EQ(integerXSetting(settings(Order::little), "Net/ThemeName"), std::nullopt);
    EXPECT_EQ(integerXSetting(settings(Order::little), "Some/Color"), std::nullopt);
}

TEST(XSettings, HasNoneInBytesThatEndTooEarly) {
    const QByteArray whole = settings(Order::little);
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_EQ(integerXSetting(whole.left(length), "Xft/DPI"), std::nullopt) << length;
}

TEST(XSettings, HasNoneInDamagedBytes) {
    Writer unknownType(Order::little);
    unknownType.number<quint32>(2).head(9, "What").head(0, "Xft/DPI").number<qint32>(1);
    EXPECT_EQ(integerXSetting(unknownType.bytes(), "Xft/DPI"), std::nullopt);
    Writer endless(Order::little);
    endless.number<quint32>(0xffffffff).head(1, "Text").number<quint32>(0xfffffff0);
    EXPECT_EQ(integerXSetting(endless.bytes(), "Xft/DPI"), std::nullopt);
}

} // namespace tilewright
