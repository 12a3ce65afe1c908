#pragma once

#include <QByteArray>

namespace tilewright {

/// Takes any bytes for what a companion tells: the method's name up to the first line feed, then
/// the text. Aborts when the decoder breaks its word: what it reads is within the bounds that it
/// states. Answers whether the bytes are a message.
bool checkCompanionMessage(const QByteArray& bytes);

} // namespace tilewright
