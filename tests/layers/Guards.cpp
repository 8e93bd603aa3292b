#include "Guards.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

struct Layer
{
    QLatin1StringView folder; ///< below src/
    QList<QLatin1StringView> mayUse;
};

/// The arrows, from the ground up; docs/architecture.md draws them.
const QList<Layer>& layers()
{
    using Folders = QList<QLatin1StringView>;
    static const Folders files{"shell"_L1, "platform"_L1};
    static const Folders records = Folders{"archive"_L1, "simconfig/engine"_L1} + files;
    static const Folders objects = Folders{"simconfig"_L1, "addondb"_L1} + records;
    static const Folders knowledge = Folders{"traffic"_L1, "catalogue"_L1} + objects;
    static const Folders operations =
        Folders{"install"_L1, "import"_L1, "remove"_L1, "session"_L1} + knowledge;
    static const Folders tools = Folders{"ui"_L1, "shell/forms"_L1} + operations;
    static const Folders choosing = Folders{"archive/forms"_L1} + tools;
    static const Folders windows =
        Folders{"addondb/forms"_L1, "ui/forms"_L1, "install/forms"_L1, "remove/forms"_L1} +
        choosing;
    static const QList<Layer> all{
        {"platform"_L1, {}},
        {"guarded"_L1, {}},
        {"picture"_L1, {"guarded"_L1}},
        {"unpack"_L1, {"guarded"_L1}},
        {"shell"_L1, {"platform"_L1}},
        {"simconfig/engine"_L1, files},
        {"archive"_L1, Folders{"unpack"_L1} + files},
        {"addondb"_L1, records},
        {"simconfig"_L1, Folders{"addondb"_L1} + records},
        {"catalogue"_L1, objects},
        {"traffic"_L1, Folders{"addondb"_L1} + records},
        {"install"_L1, knowledge},
        {"import"_L1, Folders{"catalogue"_L1} + objects},
        {"remove"_L1, knowledge},
        {"session"_L1, knowledge},
        {"ui"_L1, operations},
        {"shell/forms"_L1, files},
        {"archive/forms"_L1, tools},
        {"addondb/forms"_L1, tools},
        {"ui/forms"_L1, choosing},
        {"install/forms"_L1, choosing},
        {"remove/forms"_L1, choosing},
        {"demo"_L1, operations},
        {"cli"_L1, Folders{"ui"_L1} + operations},
        {"app"_L1, windows},
    };
    return all;
}

/// The layer whose folder is the longest that holds \a path (relative to src/).
const Layer* layerOf(const QString& path)
{
    const Layer* best = nullptr;
    for (const Layer& layer : layers())
        if (path.startsWith(layer.folder + '/'_L1) &&
            (!best || layer.folder.size() > best->folder.size()))
            best = &layer;
    return best;
}

QString at(const QString& path, qsizetype line, const QString& why)
{
    return path + u':' + QString::number(line) + u": "_s + why;
}

QString wrongInclude(const Layer& from, const QString& included)
{
    if (!included.contains(u'/'))
        return u"\""_s + included + u"\" is included without its folder"_s;
    const Layer* to = layerOf(included);
    if (!to)
        return u"\""_s + included + u"\" lies in a folder without a place among the layers"_s;
    if (to == &from || from.mayUse.contains(to->folder))
        return {};
    return QString(from.folder) + u" may not use "_s + QString(to->folder) + u" (\""_s + included +
           u"\")"_s;
}

/// Every file that the text of a CMakeLists.txt in \a folder names, relative to the root.
QSet<QString> listedFiles(const QString& folder, const QString& text)
{
    static const QRegularExpression comment(u"#[^\\n]*"_s);
    static const QRegularExpression name(u"[^\\s()\";]+\\.cpp"_s);
    const QString code = QString(text).remove(comment);
    QSet<QString> listed;
    for (auto it = name.globalMatch(code); it.hasNext();) {
        QString file = it.next().captured();
        if (file.startsWith("${PROJECT_SOURCE_DIR}/"_L1))
            file = file.mid(file.indexOf(u'/') + 1);
        else
            file = folder + u'/' + file;
        listed += QDir::cleanPath(file);
    }
    return listed;
}

} // namespace

SourceTexts readSources(const QString& root, const QStringList& folders, const QStringList& endings)
{
    SourceTexts texts;
    const QDir top(root);
    for (const QString& folder : folders) {
        QDirIterator files(top.filePath(folder), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            const bool wanted =
                std::any_of(endings.begin(), endings.end(), [&path](const QString& ending) {
                    return path.endsWith(ending);
                });
            QFile file(path);
            if (wanted && file.open(QIODevice::ReadOnly))
                texts.insert(top.relativeFilePath(path), QString::fromUtf8(file.readAll()));
        }
    }
    return texts;
}

QStringList wrongIncludes(const SourceTexts& sources)
{
    static const QRegularExpression include(u"^\\s*#\\s*include\\s+\"([^\"]+)\""_s);
    QStringList faults;
    for (auto source = sources.cbegin(); source != sources.cend(); ++source) {
        const Layer* from = layerOf(source.key().mid(4)); // without "src/"
        if (!from) {
            faults += at(source.key(), 1, u"its folder has no place among the layers"_s);
            continue;
        }
        const QStringList lines = source.value().split(u'\n');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            const QRegularExpressionMatch match = include.match(lines.at(i));
            if (!match.hasMatch())
                continue;
            if (const QString why = wrongInclude(*from, match.captured(1)); !why.isEmpty())
                faults += at(source.key(), i + 1, why);
        }
    }
    return faults;
}

QStringList unlistedSources(const SourceTexts& sources, const SourceTexts& buildFiles)
{
    QSet<QString> listed;
    for (auto file = buildFiles.cbegin(); file != buildFiles.cend(); ++file)
        listed += listedFiles(QFileInfo(file.key()).path(), file.value());
    QStringList faults;
    for (auto source = sources.cbegin(); source != sources.cend(); ++source)
        if (source.key().endsWith(u".cpp"_s) && !listed.contains(source.key()))
            faults += at(source.key(), 1, u"no CMakeLists.txt lists this file"_s);
    return faults;
}

QStringList deadTests(const SourceTexts& tests)
{
    static const QRegularExpression slot(u"\\bvoid\\s+(\\w+)\\s*\\(\\s*\\)"_s);
    static const QRegularExpression skip(u"\\bQSKIP\\s*\\("_s);
    QStringList faults;
    for (auto test = tests.cbegin(); test != tests.cend(); ++test) {
        QMap<QString, qsizetype> slotLines;
        const QStringList lines = test.value().split(u'\n');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (const auto match = slot.match(lines.at(i)); match.hasMatch())
                slotLines.insert(match.captured(1), i + 1);
            if (skip.match(lines.at(i)).hasMatch())
                faults += at(test.key(), i + 1, u"a test may not skip itself"_s);
        }
        for (auto it = slotLines.cbegin(); it != slotLines.cend(); ++it)
            if (it.key().endsWith(u"_data"_s) && !slotLines.contains(it.key().chopped(5)))
                faults += at(test.key(), it.value(), it.key() + u"() has no test of its name"_s);
    }
    return faults;
}

} // namespace vt::test
