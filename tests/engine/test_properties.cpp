#include "engine/ConfigDisk.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <array>
#include <functional>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::modRoutines_INI;

namespace {

/// Files in the likeness of real ones, their odd lines more frequent.
class RandomFile
{
public:
    explicit RandomFile(quint32 seed) : m_random(seed) {}

    QByteArray text()
    {
        QByteArray bytes;
        for (int i = m_random.bounded(30); i > 0; --i)
            bytes += line() + "\r\n";
        if (m_random.bounded(4) == 0)
            bytes += line();
        return bytes;
    }

    QString section() { return QString::fromLatin1(pick({"a", "fltsim.0", "fltsim.1", "G\xe9n"})); }

    QString key() { return QString::fromLatin1(pick({"title", "uitype", "\xfc", "texture"})); }

private:
    QByteArray pick(const QList<QByteArray>& from)
    {
        return from.at(m_random.bounded(from.size()));
    }

    QByteArray blank() { return pick({"", "", "", " ", "\t", "  "}); }

    QByteArray line()
    {
        switch (m_random.bounded(8)) {
        case 0:
            return blank();
        case 1:
            return blank() + pick({";", "//", "'", "/"}) + blank() + pick({"[a]", "title=x", "x"});
        case 2:
        case 3:
            return blank() + "[" + blank() + section().toLatin1() + blank() + "]" +
                   pick({"", "", " ; c", " junk", " // [b]"});
        case 4:
            return pick({"=x", "junk", "[open", "\xe9\xff", "\r", "x\ry=1", "]["});
        default:
            return blank() + pick({"title", "UI type", "\xdc", "texture", "tex ture"}) + blank() +
                   "=" + blank() + pick({"", "1", "a/b ; c", "x // y", "'q'", "\tz", "\"v\""}) +
                   blank();
        }
    }

    QRandomGenerator m_random;
};

/// What is left of \a lines when each of \a others is struck out once, in order.
QList<QByteArray> without(QList<QByteArray> lines, const QList<QByteArray>& others)
{
    qsizetype at = 0;
    for (const QByteArray& other : others) {
        const qsizetype found = lines.indexOf(other, at);
        if (found < 0)
            return {"<not a subsequence>"};
        lines.removeAt(found);
        at = found;
    }
    return lines;
}

} // namespace

class TestProperties : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void splitAndJoin_areInverse()
    {
        test::ConfigDisk disk;
        test::MemoryActions memory;
        const QString path = u"C:\\FSX\\a.cfg"_s;
        for (quint32 seed = 0; seed < 2'000; ++seed) {
            const QByteArray text = RandomFile(seed).text();
            QCOMPARE(disk.linesOf(text).joined(), text);
            LineArray lines(disk.ansi);
            QVERIFY(memory.replace(path, text).ok);
            QVERIFY(INI_File_Read(memory, path, lines).ok);
            QVERIFY(INI_File_Write(memory, path, lines).ok);
            const bool ended = text.isEmpty() || text.endsWith("\r\n");
            QCOMPARE(memory.bytes.value(NoCase{path}), ended ? text : text + "\r\n");
        }
    }

    void edit_touchesOnlyWhatItNames()
    {
        test::ConfigDisk disk;
        const QString value = u"new value"_s;
        int updated = 0;
        for (quint32 seed = 0; seed < 3'000; ++seed) {
            RandomFile file(seed);
            const LineArray before = disk.linesOf(file.text());
            if (!before.hasContent())
                continue;
            const QString section = file.section();
            const QString key = file.key();
            const bool had = INI_Entry_Get(before, section, key).has_value();
            const bool hadSection = INI_Section_GetLines(before, section).has_value();
            LineArray after = before;
            QVERIFY(INI_Entry_Set(after, section, key, value).ok);
            QCOMPARE(INI_Entry_Get(after, section, key), std::optional(value));
            const qsizetype growth = after.lines.size() - before.lines.size();
            QCOMPARE(growth, had ? 0 : hadSection ? 1 : 2);
            if (had) {
                ++updated;
                int different = 0;
                for (qsizetype i = 0; i < before.lines.size(); ++i)
                    different += before.lines.at(i) != after.lines.at(i);
                QCOMPARE(different, 1);
            } else {
                QCOMPARE(without(after.lines, before.lines).size(), growth);
            }

            LineArray deleted = before;
            if (INI_Entry_Delete(deleted, section, key)) {
                QVERIFY(had);
                QCOMPARE(without(before.lines, deleted.lines).size(), 1);
            } else {
                QCOMPARE(deleted.lines, before.lines);
            }
        }
        QVERIFY(updated > 300);
    }

    void deletedSection_leavesTheRest()
    {
        test::ConfigDisk disk;
        for (quint32 seed = 0; seed < 2'000; ++seed) {
            RandomFile file(seed);
            const LineArray before = disk.linesOf(file.text());
            const QString section = file.section();
            const QStringList names = INI_Sections_GetNames(before);
            const QStringList others = [&] {
                QStringList kept = names;
                kept.removeIf([&](const QString& n) { return equalNoCase(n, section); });
                return kept;
            }();
            LineArray after = before;
            QCOMPARE(INI_Section_Delete(after, section), others.size() != names.size());
            QCOMPARE(INI_Sections_GetNames(after), others);
            for (const QString& other : others) {
                // Two pieces of a section that lost what stood between them read on as one.
                if (names.count(other) == 1)
                    QCOMPARE(INI_Section_GetLines(after, other)->lines,
                             INI_Section_GetLines(before, other)->lines);
            }
            QVERIFY(!INI_Section_GetLines(after, section));
        }
    }

    void sectionEdits_leaveTheRest()
    {
        test::ConfigDisk disk;
        const LineArray block = disk.linesOf("[New one]\r\nmark=1");
        // What is left without the block, which must stand in one piece.
        const auto withoutBlock = [&](const LineArray& lines) {
            const qsizetype at = lines.lines.indexOf(block.lines.constFirst());
            if (at < 0 || lines.lines.value(at + 1) != block.lines.constLast())
                return QList<QByteArray>{"<no block>"};
            return lines.lines.first(at) + lines.lines.sliced(at + 2);
        };
        std::array<int, 3> done = {};
        for (quint32 seed = 0; seed < 3'000; ++seed) {
            RandomFile file(seed);
            const LineArray before = disk.linesOf(file.text());
            const QString section = file.section();

            LineArray inserted = before;
            if (INI_Section_InsertAfter(inserted, block, section)) {
                ++done[0];
                QCOMPARE(withoutBlock(inserted), before.lines);
            } else {
                QCOMPARE(inserted.lines, before.lines);
            }

            LineArray replaced = before;
            LineArray deleted = before;
            INI_Section_Delete(deleted, section);
            if (INI_Section_Replace(replaced, section, block)) {
                ++done[1];
                const QList<QByteArray> left = withoutBlock(replaced);
                QCOMPARE(left, deleted.hasContent() ? deleted.lines : left);
            } else {
                QCOMPARE(replaced.lines, before.lines);
            }

            LineArray renamed = before;
            const bool wasRenamed = INI_Section_Rename(renamed, section, u"New one"_s).ok;
            done[2] += wasRenamed;
            QCOMPARE(renamed.lines.size(), before.lines.size());
            qsizetype different = 0;
            for (qsizetype i = 0; i < before.lines.size(); ++i)
                different += renamed.lines.at(i) != before.lines.at(i);
            QCOMPARE(different, qsizetype(wasRenamed));
        }
        QVERIFY(done[0] > 300 && done[1] > 300 && done[2] > 300);
    }
};

VT_TEST_CLASS(TestProperties)
#include "test_properties.moc"
