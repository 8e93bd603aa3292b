// Comparison of names without regard to case: one rule (Unicode simple folding) for file names,
// registry names, section names, keys and database texts.
#pragma once

#include <QString>
#include <QStringView>

namespace vt {

/// The text with every character simply folded; equal names fold to equal texts.
[[nodiscard]] QString foldCase(QStringView text);

/// < 0, 0 or > 0, by the folded characters.
[[nodiscard]] int compareNoCase(QStringView a, QStringView b);
[[nodiscard]] bool equalNoCase(QStringView a, QStringView b);
[[nodiscard]] bool startsWithNoCase(QStringView text, QStringView beginning);
[[nodiscard]] bool endsWithNoCase(QStringView text, QStringView end);
/// Index of the first occurrence at or after \a from, or -1.
[[nodiscard]] qsizetype indexOfNoCase(QStringView text, QStringView part, qsizetype from = 0);
[[nodiscard]] bool containsNoCase(QStringView text, QStringView part);
/// Hash that agrees with equalNoCase().
[[nodiscard]] size_t hashNoCase(QStringView text, size_t seed = 0);

/// A hash key that compares without regard to case: QHash<NoCase, T>.
struct NoCase
{
    QString text;

    friend bool operator==(const NoCase& a, const NoCase& b) { return equalNoCase(a.text, b.text); }

    friend size_t qHash(const NoCase& key, size_t seed) { return hashNoCase(key.text, seed); }
};

/// "'NAME': text", or the text alone when it holds the name already.
[[nodiscard]] QString textAbout(const QString& name, const QString& text);

/// "1 file", "2 files".
[[nodiscard]] QString countText(qint64 number, const QString& one, const QString& many);

/// 12,345,678 bytes as "11.8 MB"; below 1,024 bytes as "512 bytes".
[[nodiscard]] QString sizeText(qint64 bytes);

} // namespace vt
