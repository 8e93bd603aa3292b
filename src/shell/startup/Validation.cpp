#include "shell/startup/Validation.h"

#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Programs of simulators later than FS X, in the order in which they are looked for; the first
/// one found gives the code, beginning with 5.
constexpr std::array laterPrograms = {
    u"fs2008.exe", u"fs2009.exe", u"fs2010.exe", u"fs11.exe", u"fsxi.exe"};
constexpr int firstLaterCode = 5;

class Tests
{
public:
    Tests(const Files& files, const QString& folder) : m_files(files), m_folder(folder) {}

    void failWhen(bool failed, int code = 0)
    {
        if (!failed)
            return;
        m_result.passed = false;
        m_result.code = code;
    }

    [[nodiscard]] bool noFolder(QStringView name) const
    {
        return !m_files.isFolder(m_folder + name.toString());
    }

    [[nodiscard]] bool file(QStringView name) const
    {
        return m_files.isFile(m_folder + name.toString());
    }

    [[nodiscard]] bool fileOfAtLeast(QStringView name, qint64 bytes) const
    {
        const std::optional<FileInfo> info = m_files.info(m_folder + name.toString());
        return info && !info->folder && info->size >= bytes;
    }

    Validation m_result{false, false, true, 0};

private:
    const Files& m_files;
    const QString& m_folder;
};

void testFsx(Tests& tests)
{
    tests.failWhen(tests.noFolder(u"ShadersHLSL"), 1);
    tests.failWhen(tests.noFolder(u"Missions"), 2);
    tests.failWhen(tests.fileOfAtLeast(u"Fs2002.exe", 140'001), 3);
    tests.failWhen(tests.fileOfAtLeast(u"fs9.exe", 400'001), 4);
    for (size_t i = 0; i < laterPrograms.size(); ++i) {
        if (tests.file(laterPrograms[i])) {
            tests.failWhen(true, firstLaterCode + static_cast<int>(i));
            break;
        }
    }
}

void testFs2004(Tests& tests)
{
    tests.failWhen(tests.noFolder(u"Config"), 1);
    tests.failWhen(tests.fileOfAtLeast(u"Fs2002.exe", 140'001), 3);
    tests.failWhen(tests.file(u"fsx.exe"), 4);
    tests.failWhen(tests.file(u"fs10.exe"), 5);
}

void testFs2002(Tests& tests)
{
    tests.failWhen(!tests.file(u"Scenery.cfg") || !tests.file(u"Fs2002.cfg"));
    tests.failWhen(tests.fileOfAtLeast(u"Fs2000.exe", 150'001));
    tests.failWhen(tests.file(u"fs9.exe") || tests.file(u"Fs2004.cfg"));
}

QString belongsToAnother(const QString& program, const QString& simulator)
{
    return u"it holds '"_s + program + u"', which belongs to "_s + simulator;
}

QString causeFsx(int code)
{
    switch (code) {
    case 1:
        return u"the folder 'ShadersHLSL' is missing"_s;
    case 2:
        return u"the folder 'Missions' is missing"_s;
    case 3:
        return belongsToAnother(u"Fs2002.exe"_s, u"Flight Simulator 2002"_s);
    case 4:
        return belongsToAnother(u"fs9.exe"_s, u"Flight Simulator 2004"_s);
    default:
        return belongsToAnother(
            QString::fromUtf16(laterPrograms[static_cast<size_t>(code - firstLaterCode)]),
            u"a later simulator"_s);
    }
}

QString causeFs2004(int code)
{
    switch (code) {
    case 1:
        return u"the folder 'Config' is missing"_s;
    case 3:
        return belongsToAnother(u"Fs2002.exe"_s, u"Flight Simulator 2002"_s);
    case 4:
        return belongsToAnother(u"fsx.exe"_s, u"Flight Simulator X"_s);
    default:
        return belongsToAnother(u"fs10.exe"_s, u"a later simulator"_s);
    }
}

} // namespace

Validation validateSimulator(const Files& files, const QString& folder, int generation)
{
    const QString path = winpath::asFolder(folder);
    Tests tests(files, path);
    switch (generation) {
    case FS2002:
        testFs2002(tests);
        break;
    case FS2004:
        testFs2004(tests);
        break;
    default:
        testFsx(tests);
    }
    tests.m_result.hasFolder = files.isFolder(path);
    tests.m_result.hasExecutable = tests.file(simulatorExecutable(generation));
    return tests.m_result;
}

QString validationCause(const Validation& validation, int generation)
{
    if (!validation.hasFolder)
        return u"the folder does not exist"_s;
    if (!validation.hasExecutable)
        return u"'"_s + simulatorExecutable(generation) + u"' is missing"_s;
    if (generation == FS2002)
        return u"'Scenery.cfg' or 'Fs2002.cfg' is missing, or another simulator's files lie there"_s;
    return generation == FS2004 ? causeFs2004(validation.code) : causeFsx(validation.code);
}

} // namespace vt
