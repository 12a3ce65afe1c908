#pragma once

#include <QByteArray>
#include <QString>

namespace tilewright::testing {

// What a companion sends, as its text.

inline QByteArray displayText(bool isPrimary = true, const QByteArray& frame = "[0,0,1920,1080]",
                              const QByteArray& work = "[0,32,1920,1048]",
                              const QByteArray& connector = "Virtual-7") {
    return R"({"primary":)" + QByteArray(isPrimary ? "true" : "false") + R"(,"frame":)" + frame +
           R"(,"work":)" + work + R"(,"scale":1,"unit":1,"connector":")" + connector +
           R"(","vendor":"Red","product":"Virtual remote monitor","serial":"0x1"})";
}

inline QByteArray windowText(int id = 7, const QByteArray& frame = "[100,120,400,300]",
                             bool isOurs = false, int process = 123) {
    return R"({"id":)" + QByteArray::number(id) + R"(,"pid":)" + QByteArray::number(process) +
           R"(,"x11":false,"ours":)" + (isOurs ? "true" : "false") + R"(,"frame":)" + frame + "}";
}

inline QByteArray helloText(const QByteArray& displays = displayText(),
                            const QByteArray& focus = "null") {
    return R"({"protocol":1,"shell":"43.9","displays":[)" + displays + R"(],"focus":)" + focus +
           R"(,"pointer":[10,20],"keys":0})";
}

inline QByteArray dragText(int serial, const QByteArray& pointer, int keys,
                           const QByteArray& window = windowText()) {
    return R"({"drag":)" + QByteArray::number(serial) + R"(,"window":)" + window +
           R"(,"pointer":)" + pointer + R"(,"keys":)" + QByteArray::number(keys) + "}";
}

inline QByteArray dragEndText(int serial, const QByteArray& pointer, int keys, bool isCancelled,
                              const QByteArray& window = windowText()) {
    QByteArray text = dragText(serial, pointer, keys, window);
    text.chop(1);
    return text + R"(,"cancelled":)" + (isCancelled ? "true}" : "false}");
}

} // namespace tilewright::testing
