#pragma once

#include <QByteArray>

namespace tilewright {

/// Reads any bytes as a layouts file. Aborts when the decoder breaks its word: what it reads, it
/// can write, and reads again as the same. Answers whether the bytes are a layouts file.
bool checkLayoutsFile(const QByteArray& bytes);

} // namespace tilewright
