// Text into bytes that are there already, without a text in between.
#pragma once

#include <QByteArray>
#include <QStringEncoder>
#include <QStringView>

namespace vt {

/// A half of a pair that stands alone becomes the replacement character.
inline void appendUtf8(QByteArray& bytes, QStringView text)
{
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const qsizetype before = bytes.size();
    bytes.resize(before + encoder.requiredSpace(text.size()));
    const char* end = encoder.appendToBuffer(bytes.data() + before, text);
    bytes.resize(end - bytes.constData());
}

} // namespace vt
