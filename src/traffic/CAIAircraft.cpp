#include "traffic/CAIAircraft.h"

#include "platform/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool isNumber(const QString& text)
{
    bool ok = false;
    (void)text.toDouble(&ok);
    return ok;
}

/// Fields between commas; those inside quotes do not part, and the quotes go.
QStringList quotedFields(QStringView text)
{
    QStringList fields = {QString()};
    bool quoted = false;
    for (const QChar c : text) {
        if (c == u'"')
            quoted = !quoted;
        else if (c == u',' && !quoted)
            fields.append(QString());
        else
            fields.last().append(c);
    }
    for (QString& field : fields)
        field = field.trimmed();
    return fields;
}

bool isAsciiDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isCode(QStringView field)
{
    return (field.size() == 3 || field.size() == 4) &&
           std::all_of(field.begin(), field.end(), [](QChar c) {
               return isAsciiDigit(c) || (c.toUpper() >= u'A' && c.toUpper() <= u'Z');
           });
}

bool isComment(QStringView line)
{
    return line.startsWith(u'/') || line.startsWith(u';');
}

} // namespace

std::optional<qint64> CAIAircraft::numberOf(QStringView text)
{
    if (!startsWithNoCase(text, u"AC#"))
        return std::nullopt;
    qsizetype end = 3;
    while (end < text.size() && isAsciiDigit(text[end]))
        ++end;
    bool ok = false;
    const qint64 number = text.sliced(3, end - 3).toLongLong(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<CAIAircraft> CAIAircraft::ofLine(const QString& line)
{
    const QStringView trimmed = QStringView(line).trimmed();
    const qsizetype comma = trimmed.indexOf(u',');
    const auto number = comma < 0 ? std::nullopt : numberOf(trimmed.first(comma));
    if (!number || trimmed.sliced(comma + 1).trimmed().isEmpty())
        return std::nullopt;
    return CAIAircraft{line, *number, quotedFields(trimmed.sliced(comma + 1))};
}

QByteArray CAIAircraft::renumbered(const QByteArray& line, qint64 number)
{
    qsizetype begin = 0;
    while (begin < line.size() && (line[begin] == ' ' || line[begin] == '\t'))
        ++begin;
    if (line.size() - begin < 3 || line[begin + 2] != '#')
        return line;
    begin += 3;
    qsizetype end = begin;
    while (end < line.size() && line[end] >= '0' && line[end] <= '9')
        ++end;
    return line.first(begin) + QByteArray::number(number) + line.sliced(end);
}

QString CAIAircraft::name() const
{
    const auto title =
        std::find_if(sarrayValues.crbegin(), sarrayValues.crend(), [](const QString& value) {
            return !value.isEmpty() && !isNumber(value);
        });
    return title == sarrayValues.crend() ? u"AC#"_s + QString::number(lngNumber) : *title;
}

QString CAIAircraft::detail() const
{
    QString text = u"AC#"_s + QString::number(lngNumber);
    if (sarrayValues.size() > 1 && isNumber(sarrayValues.constFirst()))
        text += u", "_s + sarrayValues.constFirst() + u" knots"_s;
    return text;
}

QString CAIAircraft::identity() const
{
    return foldCase(name());
}

QStringList AirportList::codesOf(const QString& line)
{
    const QStringView trimmed = QStringView(line).trimmed();
    if (trimmed.isEmpty() || isComment(trimmed))
        return {};
    QStringList codes;
    const QList<QStringView> fields = trimmed.split(u',');
    // "KSEA,N47* 26.94',W122* 18.56',433": here the "*" is a degree sign.
    const bool position = std::any_of(fields.begin(), fields.end(), [](QStringView field) {
        return field.trimmed().size() > 1 && (field.contains(u'*') || field.contains(u'\''));
    });
    for (const QStringView field : fields) {
        const QStringView code = field.trimmed();
        if (isCode(code))
            codes.append(code.toString().toUpper());
        if (position)
            break;
    }
    return codes;
}

bool AirportList::standsForAll(const QString& line)
{
    const QList<QStringView> fields = QStringView(line).split(u',');
    return std::any_of(
        fields.begin(), fields.end(), [](QStringView field) { return field.trimmed() == u"*"; });
}

void AirportList::addLine(const QString& line)
{
    m_all = m_all || standsForAll(line);
    for (const QString& code : codesOf(line))
        m_codes.insert(code);
}

bool AirportList::contains(const QString& code) const
{
    return m_all || m_codes.contains(code.toUpper());
}

} // namespace vt
