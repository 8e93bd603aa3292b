#include "archive/RarNames.h"

#include "archive/ZipNames.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QRegularExpression>
#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace vt::rarnames {

namespace {

constexpr int hostUnix = 3;
constexpr int hostMac = 4;

/// The second half of the field gives, two bits a character, how each comes about: its low byte
/// under no page or the name's page, both bytes, or a run of the plain name's characters, corrected
/// or not.
QString unpackName(QByteArrayView plain, QByteArrayView packed)
{
    QString text;
    qsizetype at = 0;
    const auto next = [&] { return at < packed.size() ? quint8(packed[at++]) : quint8(0); };
    const auto plainAt = [&](qsizetype i) {
        return i < plain.size() ? quint8(plain[i]) : quint8(0);
    };
    const char16_t page = char16_t(next() << 8);
    quint8 ways = 0;
    int left = 0;
    while (at < packed.size()) {
        if (left == 0) {
            ways = next();
            left = 4;
            if (at >= packed.size())
                break;
        }
        const int way = ways >> 6;
        ways = quint8(ways << 2);
        --left;
        if (way == 0) {
            text += QChar(char16_t(next()));
        } else if (way == 1) {
            text += QChar(char16_t(page | next()));
        } else if (way == 2) {
            const quint8 low = next();
            text += QChar(char16_t(next() << 8 | low));
        } else {
            const quint8 run = next();
            const bool corrected = (run & 0x80) != 0;
            const quint8 correction = corrected ? next() : quint8(0);
            for (int length = (run & 0x7F) + 2; length > 0; --length) {
                const quint8 c = plainAt(text.size());
                text +=
                    corrected ? QChar(char16_t(page | quint8(c + correction))) : QChar(char16_t(c));
            }
        }
    }
    return text;
}

} // namespace

QString decode4(QByteArrayView field, bool unicode, int host)
{
    if (unicode) {
        const qsizetype zero = field.indexOf('\0');
        if (zero < 0)
            return QString::fromUtf8(field);
        return unpackName(field.first(zero), field.sliced(zero + 1));
    }
    const bool unixLike = host == hostUnix || host == hostMac;
    const quint16 madeBy = quint16(unixLike ? hostUnix << 8 : 0);
    return zipnames::decode(field, zipnames::pageOf(field, madeBy, 0));
}

void split(const QString& full, QString& folder, QString& name)
{
    QString text = full;
    text.replace(u'/', u'\\');
    if (text.endsWith(u'\\'))
        text.chop(1);
    const qsizetype cut = text.lastIndexOf(u'\\') + 1;
    name = text.sliced(cut);
    const QString above = zipnames::folderText(text.first(cut));
    if (above != folder)
        folder = above;
}

QDateTime stampOf(quint32 stamp)
{
    QDate date;
    QTime time;
    zipnames::stampOf(stamp, date, time);
    return date.isValid() ? QDateTime(date, time) : QDateTime();
}

QString nextVolume(const QString& path, bool numbered)
{
    const QString folder = winpath::parent(path);
    QString name = winpath::name(path);
    if (endsWithNoCase(name, u".exe") || endsWithNoCase(name, u".sfx"))
        name = name.chopped(3) + u"rar"_s;
    if (numbered) {
        // The last number before the extension.
        const qsizetype dot = name.lastIndexOf(u'.');
        qsizetype end = dot < 0 ? name.size() : dot;
        while (end > 0 && !name[end - 1].isDigit())
            --end;
        qsizetype at = end - 1;
        for (; at >= 0 && name[at].isDigit(); --at) {
            if (name[at] != u'9') {
                name[at] = QChar(char16_t(name[at].unicode() + 1));
                return folder + name;
            }
            name[at] = u'0';
        }
        name.insert(at + 1, u'1');
        return folder + name;
    }
    if (endsWithNoCase(name, u".rar") || !name.contains(u'.'))
        return folder + (name.contains(u'.') ? name.chopped(3) : name + u'.') + u"r00"_s;
    for (qsizetype at = name.size() - 1; at >= 0 && name[at] != u'.'; --at) {
        if (name[at] != u'9') {
            name[at] = QChar(char16_t(name[at].unicode() + 1));
            break;
        }
        name[at] = u'0';
    }
    return folder + name;
}

QString firstVolume(const QString& path, bool numbered)
{
    const QString folder = winpath::parent(path);
    const QString name = winpath::name(path);
    if (!numbered) {
        const qsizetype dot = name.lastIndexOf(u'.');
        return dot < 0 ? path : folder + name.first(dot) + u".rar"_s;
    }
    static const QRegularExpression number(u"^(.*?)(\\d+)(\\D*\\.[^.]*)$"_s,
                                           QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = number.match(name);
    if (!match.hasMatch())
        return path;
    const QString digits = match.captured(2);
    return folder + match.captured(1) + QString(digits.size() - 1, u'0') + u'1' + match.captured(3);
}

} // namespace vt::rarnames
