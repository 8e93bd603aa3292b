#include "archive/CZIP.h"

#include "archive/CUnRAR.h"
#include "archive/ZipReader.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace vt {

CZIP::CZIP(Services& services)
    : m_services(services), m_unsynced(services.gate, DirectActions::Sync::None),
      m_scratch(std::make_shared<ZipScratch>())
{}

CZIP::~CZIP() = default;

bool CZIP::GetItems()
{
    return finish(list());
}

bool CZIP::Test()
{
    return finish(test());
}

bool CZIP::Extract()
{
    return finish(extract());
}

bool CZIP::Add(FileActions* actions)
{
    return finish(add(actions ? *actions : m_services.actions));
}

bool CZIP::Added_Verify()
{
    return finish(compareAdded());
}

bool CZIP::Delete(FileActions* actions)
{
    return finish(deleteEntries(actions ? *actions : m_services.actions));
}

bool CZIP::finish(const Result& result, const QString& caption)
{
    m_result = result;
    if (!result.ok && result.kind != ErrorKind::Declined && boolErrorMessages_Show)
        m_services.prompts.ask(announcement(
            caption.isEmpty() ? u"Zip Error"_s : caption, result.text, Icon::Critical));
    return result.ok;
}

void CZIP::Error_Show()
{
    m_services.prompts.ask(announcement(
        u"Zip Error"_s, m_result.text, m_result.ok ? Icon::Information : Icon::Critical));
}

QStringList CZIP::volumes() const
{
    QStringList paths;
    if (m_unrar && m_unrar->unrar().directory()->volumes().size() > 1) {
        for (const auto& volume : m_unrar->unrar().directory()->volumes())
            paths += volume->name();
    }
    return paths;
}

bool CZIP::cancelled() const
{
    return varStatusBar && varStatusBar->cancelled();
}

void CZIP::status(const QString& text) const
{
    if (varStatusBar)
        varStatusBar->text(u"Primary"_s, text);
}

void CZIP::progress(qint64 done, qint64 total) const
{
    if (CProgressBarEx)
        CProgressBarEx->progress(done, total);
}

const CZIPFileItem* CZIP::entry(const EntryRef& ref) const
{
    return ref.archive >= 0 && size_t(ref.archive) < colZIPContents.size()
               ? colZIPContents[size_t(ref.archive)].item(ref.key)
               : nullptr;
}

/// As the item's own, but asks the system about time zones once an hour of the archive's times
/// instead of once an entry: each asking costs two calls.
qint64 CZIP::modifiedNs(const CZIPFileItem& item)
{
    if (!item.dteDate.isValid())
        return -1;
    const int hour = item.dteTime.hour();
    const qint64 key = item.dteDate.toJulianDay() * 24 + hour;
    auto known = m_hours.constFind(key);
    if (known == m_hours.constEnd())
        known = m_hours.insert(key, QDateTime(item.dteDate, QTime(hour, 0)).toMSecsSinceEpoch());
    const qint64 ms = *known + item.dteTime.msecsSinceStartOfDay() - hour * 3'600'000LL;
    return ms < 0 ? -1 : ms * 1'000'000;
}

Result CZIP::entryReadable(const EntryRef& ref) const
{
    if (!entry(ref))
        return Result::failure(u"The archive '"_s + sZIPFile + u"' has no such entry."_s);
    return colZIPContents[size_t(ref.archive)].reader->readable(ref.key);
}

ResultOf<Content> CZIP::entryContent(const EntryRef& ref)
{
    const CZIPFileItem* item = entry(ref);
    if (!item)
        return Result::failure(u"The archive '"_s + sZIPFile + u"' has no such entry."_s);
    Content content;
    content.size = item->lngSize_Uncompressed;
    content.modifiedNs = modifiedNs(*item);
    content.transfer = [reader = colZIPContents[size_t(ref.archive)].reader, key = ref.key](
                           const Content::Sink& sink) { return reader->read(key, sink); };
    return content;
}

ResultOf<QByteArray> CZIP::entryBytes(const EntryRef& ref, qint64 limit)
{
    const CZIPFileItem* item = entry(ref);
    if (!item)
        return Result::failure(u"The archive '"_s + sZIPFile + u"' has no such entry."_s);
    if (item->lngSize_Uncompressed > limit)
        return Result::failure(u"The entry '"_s + item->fullName() + u"' of the archive '"_s +
                               colZIPContents[size_t(ref.archive)].fullName() +
                               u"' is larger than "_s + sizeText(limit) + u'.');
    QByteArray bytes;
    bytes.reserve(item->lngSize_Uncompressed);
    const Result read =
        colZIPContents[size_t(ref.archive)].reader->read(ref.key, [&](QByteArrayView piece) {
            bytes.append(piece);
            return true;
        });
    if (!read)
        return read;
    return bytes;
}

} // namespace vt
