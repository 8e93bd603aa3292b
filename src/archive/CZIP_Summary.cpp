// The archive summary, and entries extracted to be looked at.
#include "archive/CUnRAR.h"
#include "archive/CZIP.h"
#include "platform/TempFolder.h"
#include "platform/WinPath.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace vt {

/// What a RAR archive says of itself, or why that cannot be read; empty when it says nothing.
QStringList CZIP::comment() const
{
    if (!m_unrar)
        return {};
    CTKUnrar& unrar = m_unrar->unrar();
    QString text;
    if (!unrar.Comment(text))
        text = unrar.strLastErrorMsg;
    return text.isEmpty() ? QStringList()
                          : (u"Comment:  "_s + text.trimmed().remove(u'\r')).split(u'\n');
}

QStringList CZIP::ZIP_Summary() const
{
    const QLocale numbers(QLocale::English);
    const auto bytes = [&](qint64 value) { return numbers.toString(value) + u" bytes"_s; };
    const QLocale user = QLocale::system();
    QStringList lines;
    qint64 entries = 0;
    qint64 packed = 0;
    qint64 unpacked = 0;
    for (const CZIPFile& file : colZIPContents) {
        const QDateTime& at = file.dteDateTime;
        lines += u"Folder:  "_s + file.sFolder;
        lines += u"Filename:  "_s + file.sFilename;
        lines +=
            u"Date/Time:  "_s + (at.isValid() ? user.toString(at.date(), QLocale::ShortFormat) +
                                                    u' ' + at.time().toString(u"HH:mm:ss"_s)
                                              : QString());
        lines += u"Parent:  "_s + file.sFilename_Parent;
        lines += u"Parent Folder:  "_s + file.sFolder_Parent;
        lines += u"Entries:  "_s + numbers.toString(file.lngTotal_Items);
        lines += u"Compressed:  "_s + bytes(file.lngTotal_SizeCompressed);
        lines += u"Uncompressed:  "_s + bytes(file.lngTotal_SizeUncompressed);
        lines += u"Total Savings:  "_s +
                 bytes(file.lngTotal_SizeUncompressed - file.lngTotal_SizeCompressed);
        lines += u"Imbedded Zips?  "_s + (file.boolHasImbeddedZIPs ? u"Yes"_s : u"No"_s);
        if (&file == &colZIPContents.front())
            lines += comment();
        lines += QString();
        entries += file.lngTotal_Items;
        packed += file.lngTotal_SizeCompressed;
        unpacked += file.lngTotal_SizeUncompressed;
    }
    lines += u"Total Entries:  "_s + numbers.toString(entries);
    lines += u"Total Compressed:  "_s + bytes(packed);
    lines += u"Total Uncompressed:  "_s + bytes(unpacked);
    return lines;
}

bool CZIP::ZIP_Items_ExtractToTemporaryFolder(const QList<EntryRef>& entries,
                                              const QString& base,
                                              QStringList& files)
{
    files.clear();
    if (entries.isEmpty())
        return finish(Result::failure(u"Nothing specified for extraction."_s));
    const ResultOf<QString> folder =
        TempFolder(m_services.gate, base).makeUnique(winpath::asFolder(base), u"OPN"_s);
    if (!folder)
        return finish(folder.error());
    for (const EntryRef& ref : entries) {
        const CZIPFileItem* item = entry(ref);
        const QString target = item ? *folder + item->fullName() : QString();
        if (!Entry_Extract(ref, target))
            return false;
        files += target;
    }
    m_count = int(files.size());
    return finish(
        Result::success(m_count == 1 ? u"File was extracted."_s : u"Files were extracted."_s));
}

bool CZIP::ZIP_Items_Selected_ExtractToTemporaryFolder(const QString& base, QStringList& files)
{
    QList<EntryRef> entries;
    for (size_t i = 0; i < colZIPContents.size(); ++i) {
        for (const int key : colZIPContents[i].ZIPItems_Items_Selected_Get()) {
            if (colZIPContents[i].item(key)->kind == EntryKind::File)
                entries += EntryRef{int(i), key};
        }
    }
    return ZIP_Items_ExtractToTemporaryFolder(entries, base, files);
}

} // namespace vt
