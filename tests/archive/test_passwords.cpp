// Encrypted ZIP archives as another program makes them: asked for once, opened, or left alone.
#include "ArchiveWorld.h"
#include "archive/ZipDirectory.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <vector>
#include <zip.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

struct Packed
{
    QByteArray name;
    QByteArray bytes;
    quint16 encryption = ZIP_EM_NONE;
    int method = ZIP_CM_DEFLATE;
    const char* password = nullptr; ///< its own
};

/// Through libzip, whose packing knows nothing of our reading.
bool pack(const QString& hostPath, const std::vector<Packed>& files, const QByteArray& password)
{
    zip_t* zip = zip_open(hostPath.toLocal8Bit().constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    bool done = zip != nullptr;
    for (const Packed& file : files) {
        zip_source_t* source =
            zip_source_buffer(zip, file.bytes.constData(), zip_uint64_t(file.bytes.size()), 0);
        const zip_int64_t at = zip_file_add(zip, file.name.constData(), source, 0);
        done = done && at >= 0 &&
               zip_set_file_compression(zip, zip_uint64_t(at), file.method, 0) == 0 &&
               zip_file_set_encryption(zip,
                                       zip_uint64_t(at),
                                       file.encryption,
                                       file.password ? file.password : password.constData()) == 0;
    }
    return zip && zip_close(zip) == 0 && done;
}

} // namespace

class TestPasswords : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void entries_comeWithTheirPassword()
    {
        const QByteArray text = QByteArray("some text ").repeated(3000);
        const Rows<quint16, int, qsizetype> rows = {
            {"traditional", ZIP_EM_TRAD_PKWARE, ZIP_CM_DEFLATE, text.size()},
            {"traditional, stored", ZIP_EM_TRAD_PKWARE, ZIP_CM_STORE, text.size()},
            {"AES 128", ZIP_EM_AES_128, ZIP_CM_DEFLATE, text.size()},
            {"AES 192, stored", ZIP_EM_AES_192, ZIP_CM_STORE, text.size()},
            {"AES 256", ZIP_EM_AES_256, ZIP_CM_DEFLATE, text.size()},
            {"AES 256, few bytes", ZIP_EM_AES_256, ZIP_CM_DEFLATE, 1},
            {"AES 256, large", ZIP_EM_AES_256, ZIP_CM_DEFLATE, ziplimits::wholeEntryBytes + 5},
        };
        for (const auto& [encryption, method, size] : rows) {
            ArchiveWorld w;
            const QByteArray bytes = text.repeated(size / text.size() + 1).first(size);
            QVERIFY(pack(w.host(u"a.zip"_s),
                         {{"d/secret.txt", bytes, encryption, method}, {"plain.txt", "plain"}},
                         "p\xc3\xa4ss"));
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.zip"_s;
            zip.boolPasswords_Ask = true;
            w.prompts.expectText(
                u"Files in the archive 'C:\\a.zip' are encrypted. Enter the archive's password"_s,
                u"wrong"_s);
            w.prompts.expectText(u"This password does not open 'C:\\a.zip'."_s, u"päss"_s);
            QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
            QVERIFY(zip.entryReadable({0, 1}).ok);
            const auto secret = zip.entryBytes({0, 1}, bytes.size());
            QVERIFY2(secret, qPrintable(secret.text));
            QVERIFY(*secret == bytes);
            QCOMPARE(*zip.entryBytes({0, 2}, 10), QByteArray("plain"));
        }
    }

    void innerArchives_areTriedWithTheKnownOne()
    {
        ArchiveWorld w;
        QVERIFY(pack(w.host(u"in.zip"_s), {{"b.txt", "inner", ZIP_EM_AES_256}}, "one"));
        QVERIFY(pack(w.host(u"other.zip"_s), {{"c.txt", "other", ZIP_EM_TRAD_PKWARE}}, "two"));
        QVERIFY(pack(w.host(u"a.zip"_s),
                     {{"in.zip", w.bytes(u"in.zip"_s), ZIP_EM_TRAD_PKWARE},
                      {"other.zip", w.bytes(u"other.zip"_s)}},
                     "one"));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.zip"_s;
        zip.boolPasswords_Ask = zip.boolImbeddedZIPs_Process = true;
        w.prompts.expectText(u"'C:\\a.zip'"_s, u"one"_s);
        w.prompts.expectText(u"'C:\\a.zip\\other.zip'"_s, std::nullopt);
        QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
        QCOMPARE(zip.colZIPContents.size(), size_t(3));
        QCOMPARE(*zip.entryBytes({1, 1}, 10), QByteArray("inner"));
        const auto other = zip.entryBytes({2, 1}, 10);
        QVERIFY(!other && other.text.endsWith(
                              u"is encrypted and cannot be extracted without its password."_s));
        QCOMPARE(zip.sarrayPasswords, QStringList{u"one"_s});
    }

    void severalPasswordsInOneArchive_areAskedForInTurn()
    {
        ArchiveWorld w;
        std::vector<Packed> files = {{"a.txt", "plain"}};
        std::vector<QByteArray> names;
        for (int i = 0; i < 300; ++i) // enough for headers that let a wrong password pass
            names.push_back("n" + QByteArray::number(i));
        for (size_t i = 0; i < names.size(); ++i)
            files.push_back({names[i],
                             names[i].repeated(20),
                             quint16(i % 2 ? ZIP_EM_TRAD_PKWARE : ZIP_EM_AES_128),
                             ZIP_CM_DEFLATE,
                             i % 3 ? "one" : "two"});
        files.push_back({"last.txt", "last", ZIP_EM_AES_256, ZIP_CM_STORE, "three"});
        QVERIFY(pack(w.host(u"a.zip"_s), files, {}));
        CZIP zip(w.services);
        zip.sZIPFile = u"C:\\a.zip"_s;
        zip.boolPasswords_Ask = true;
        w.prompts.expectText(u"Files in the archive 'C:\\a.zip' are encrypted."_s, u"one"_s);
        w.prompts.expectText(
            u" files in the archive 'C:\\a.zip', 'n0' among them, are encrypted with another password."_s,
            u"wrong"_s);
        w.prompts.expectText(u"This password does not open 'C:\\a.zip'. "_s, u"two"_s);
        w.prompts.expectText(
            u"The file 'last.txt' in the archive 'C:\\a.zip' is encrypted with another password."_s,
            std::nullopt);
        QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
        QCOMPARE(zip.sarrayPasswords, (QStringList{u"one"_s, u"two"_s}));
        for (size_t i = 0; i < names.size(); ++i) {
            const auto bytes = zip.entryBytes({0, int(i) + 2}, 1000);
            QVERIFY2(bytes, qPrintable(bytes.text));
            QCOMPARE(*bytes, names[i].repeated(20));
        }
        const Result last = zip.entryReadable({0, int(files.size())});
        QVERIFY2(last.text.contains(u"'last.txt'"_s) &&
                     last.text.contains(u"is encrypted with another password"_s),
                 qPrintable(last.text));

        // What is known is tried without a question.
        w.prompts.expectText(u"The file 'last.txt'"_s, u"three"_s);
        QVERIFY2(zip.Test(), qPrintable(zip.resultText()));
    }

    void damage_isToldAsDamage_withTheRightPassword()
    {
        const Rows<quint16, int, int, bool> rows = {
            {"contents, traditional", ZIP_EM_TRAD_PKWARE, ZIP_CM_DEFLATE, 20, false},
            {"contents, AES", ZIP_EM_AES_256, ZIP_CM_STORE, 30, false},
            {"only one", ZIP_EM_AES_128, ZIP_CM_DEFLATE, 30, true},
            {"only one, traditional", ZIP_EM_TRAD_PKWARE, ZIP_CM_STORE, 20, true},
            {"header", ZIP_EM_AES_128, ZIP_CM_DEFLATE, -40, false},
        };
        for (const auto& [encryption, method, at, alone] : rows) {
            ArchiveWorld w;
            std::vector<Packed> files = {
                {"small.txt", QByteArray("some 0123456789"), encryption, method}};
            if (!alone)
                files.push_back({"large.txt", QByteArray("0123456789").repeated(30), encryption});
            QVERIFY(pack(w.host(u"a.zip"_s), files, "one"));
            QByteArray bytes = w.bytes(u"a.zip"_s);
            const qsizetype data = bytes.indexOf("small.txt") + 9 + (encryption == 1 ? 0 : 11);
            if (at < 0)
                bytes[bytes.indexOf("PK\3\4") + 30] = 'S';
            else
                bytes[data + at] = char(bytes.at(data + at) ^ 0x55);
            w.write(u"a.zip"_s, bytes);
            CZIP zip(w.services);
            zip.sZIPFile = u"C:\\a.zip"_s;
            zip.boolPasswords_Ask = true;
            w.prompts.expectText(u"are encrypted"_s, u"one"_s);
            QVERIFY2(zip.GetItems(), qPrintable(zip.resultText()));
            const auto small = zip.entryBytes({0, 1}, 1000);
            QVERIFY2(!small && small.text.contains(at < 0 ? u"is refused: its header"_s
                                                          : u"is damaged: "_s),
                     qPrintable(small.text));
            if (!alone)
                QCOMPARE(zip.entryBytes({0, 2}, 1000)->size(), 300);
        }
    }
};

VT_TEST_CLASS(TestPasswords)

#include "test_passwords.moc"
