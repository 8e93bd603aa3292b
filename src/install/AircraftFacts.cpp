#include "install/AircraftFacts.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/ConfigFacts.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct Field
{
    QStringView key;
    QString AircraftSection::*member;
};

constexpr Field fields[] = {
    {u"title", &AircraftSection::title},
    {u"sim", &AircraftSection::sim},
    {u"model", &AircraftSection::model},
    {u"panel", &AircraftSection::panel},
    {u"sound", &AircraftSection::sound},
    {u"texture", &AircraftSection::texture},
    {u"ui_manufacturer", &AircraftSection::manufacturer},
    {u"ui_type", &AircraftSection::type},
    {u"ui_variation", &AircraftSection::variation},
};

void takeEntry(AircraftSection& section, QStringView key, QStringView value)
{
    for (const Field& field : fields) {
        if (!equalNoCase(key, field.key))
            continue;
        QString& member = section.*field.member;
        if (member.isEmpty())
            member = configfacts::plainValue(value).toString();
        if (field.member == &AircraftSection::texture)
            member.replace(u'/', u'\\');
        return;
    }
}

/// The name of a header line; text behind the bracket does not count.
QStringView headerName(QStringView line)
{
    const qsizetype end = line.indexOf(u']');
    return end < 0 ? QStringView() : line.sliced(1, end - 1).trimmed();
}

} // namespace

AircraftFacts aircraftFacts(QStringView text)
{
    AircraftFacts facts;
    AircraftSection* current = nullptr;
    bool general = false;
    qsizetype from = 0;
    while (from < text.size()) {
        qsizetype end = from;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r')
            ++end;
        const QStringView line = text.sliced(from, end - from).trimmed();
        from = end + 1;
        if (line.isEmpty())
            continue;
        if (line.front() == u'[') {
            const QStringView name = headerName(line);
            current = nullptr;
            general = equalNoCase(name, u"general");
            if (name.size() > 7 && startsWithNoCase(name, u"fltsim.")) {
                facts.sections.append(
                    AircraftSection{name.toString(), {}, {}, {}, {}, {}, {}, {}, {}, {}});
                current = &facts.sections.last();
            }
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals <= 0)
            continue;
        const QStringView key = line.first(equals).trimmed();
        if (current)
            takeEntry(*current, key, line.sliced(equals + 1));
        else if (general && equalNoCase(key, u"category"))
            facts.category = configfacts::plainValue(line.sliced(equals + 1)).toString();
    }
    return facts;
}

QString AircraftFacts::folderName() const
{
    if (sections.isEmpty())
        return {};
    const AircraftSection& first = sections.first();
    QString name = first.title;
    if (sections.size() > 1 && !first.manufacturer.isEmpty() && !first.type.isEmpty()) {
        name = startsWithNoCase(first.type, first.manufacturer)
                   ? first.type
                   : first.manufacturer + u' ' + first.type;
    }
    return winpath::safeName(name);
}

QString decodedText(QByteArrayView bytes, const AnsiCodec& ansi)
{
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")) {
        QStringDecoder decoder(QStringDecoder::Utf16);
        return decoder.decode(bytes);
    }
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes.sliced(3));
    return ansi.decode(bytes);
}

} // namespace vt
