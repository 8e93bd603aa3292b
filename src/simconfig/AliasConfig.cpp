// Loading, following and re-pointing. Checking and mending stand in AliasConfig_Repair.cpp.
#include "simconfig/AliasConfig.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/Suppression.h"
#include "simconfig/engine/ConfigNormalizer.h"
#include "simconfig/engine/INI_Lines.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

const QString aliasSection = u"fltsim"_s;
const QString aliasKey = u"alias"_s;
/// The simulator follows one; more are followed only to tell where they end.
constexpr int longestChain = 16;
constexpr int mostBackups = 1000;

/// Nothing but blanks and comments.
bool isEmptyText(const LineArray& lines)
{
    return std::all_of(lines.lines.cbegin(), lines.lines.cend(), [](const QByteArray& line) {
        const QByteArrayView text = QByteArrayView(line).trimmed();
        return text.isEmpty() || text.front() == '/' || text.front() == ';' || text.front() == '\'';
    });
}

} // namespace

AliasConfig::AliasConfig(const Facts& facts,
                         ConfigAccess access,
                         const Files& files,
                         const GlobalRecord& global)
    : m_files(files), m_global(global), m_facts(facts), m_access(access), m_own(access.ansi)
{}

// --- loading -----------------------------------------------------------------------------------

bool AliasConfig::Load(const QString& configurationFile)
{
    m_error.clear();
    sConfigurationFile = configurationFile;
    sAlias.clear();
    sTargetFile.clear();
    m_own = Definition(m_access.ansi);
    m_followed = {};
    m_trees.clear();
    m_protocol.reset();
    if (!configurationFile.isEmpty()) {
        m_protocol = std::make_unique<SaveProtocol>(m_facts.kind, configurationFile);
        m_protocol->noteLoading(m_access);
        m_own = read(configurationFile);
        sAlias = m_own.alias;
    }
    if (!sAlias.isEmpty()) {
        m_followed = follow(sAlias);
        sTargetFile = m_followed.file;
    }
    m_state = loadedState();
    return m_state == Good;
}

int AliasConfig::loadedState() const
{
    if (sConfigurationFile.isEmpty())
        return NoTarget;
    if (!m_own.exists)
        return FileMissing;
    if (!m_own.unreadable.isEmpty())
        return m_facts.notValid;
    if (m_own.original)
        return sAlias.isEmpty() ? Good : OriginalAndAlias;
    if (sAlias.isEmpty())
        return m_own.empty ? int(NoOriginal) : m_facts.notValid;
    if (!m_followed.exists)
        return ReferenceMissing;
    if (m_followed.original.isEmpty())
        return ReferenceNotValid;
    return m_followed.direct ? Good : NoOriginal;
}

AliasConfig::Definition AliasConfig::read(const QString& file) const
{
    Definition result(m_access.ansi);
    result.file = file;
    result.exists = isFile(file);
    if (!result.exists)
        return result;
    const ResultOf<QByteArray> bytes = ini::File_ReadAllText(m_access.actions, file);
    if (!bytes) {
        result.unreadable = bytes.text;
        return result;
    }
    const ResultOf<NormalizedConfig> text = normalizeConfig(*bytes, m_access.ansi);
    if (!text) {
        result.unreadable = text.text;
        return result;
    }
    result.lines = LineArray::ofBytes(text->bytes, m_access.ansi);
    result.empty = isEmptyText(result.lines);
    if (!result.empty) {
        result.unfit = formProblem(*bytes, text, m_facts.noun.toString());
        result.mended = text->done;
    }
    result.original = defines(result.lines);
    result.alias =
        ini::INI_Profile_GetValue(profile::ProfileFile::ofBytes(text->bytes, m_access.ansi),
                                  aliasSection,
                                  aliasKey,
                                  QString(),
                                  profile::maxBuffer)
            .value;
    return result;
}

QString AliasConfig::targetOf(const QString& alias, bool& exists, QString* problem) const
{
    const QStringList paths = aliastarget::candidates(m_global, alias, m_facts.aliasKind, problem);
    for (const QString& path : paths) {
        exists = isFile(path);
        if (exists)
            return m_files.spelled(path);
    }
    exists = false;
    return paths.value(0);
}

AliasConfig::Followed AliasConfig::follow(const QString& alias) const
{
    Followed result;
    QSet<NoCase> seen{NoCase{sConfigurationFile}};
    QString text = alias;
    for (int hop = 0; hop < longestChain && !text.isEmpty(); ++hop) {
        bool exists = false;
        QString problem;
        const QString file = targetOf(text, exists, &problem);
        if (hop == 0) {
            result.file = file;
            result.exists = exists;
            result.problem = problem;
        }
        if (!exists || seen.contains(NoCase{file}))
            return result;
        seen.insert(NoCase{file});
        const Definition target = read(file);
        if (target.original) {
            result.original = file;
            result.direct = hop == 0;
            return result;
        }
        text = target.alias;
    }
    return result;
}

AliasConfig::Definition AliasConfig::definition() const
{
    if (m_own.original || sAlias.isEmpty() || m_followed.original.isEmpty())
        return m_own;
    return read(m_followed.original);
}

QString AliasConfig::DefinitionFile_Get() const
{
    return m_own.original ? sConfigurationFile : m_followed.original;
}

QString AliasConfig::Title_Get() const
{
    for (const QString& top : m_global.aircraftTypeFolders) {
        if (winpath::isBelow(sConfigurationFile, top))
            return winpath::withoutTrailing(
                winpath::relativeTo(winpath::parent(sConfigurationFile), top));
    }
    return sConfigurationFile;
}

void AliasConfig::FoundFiles::add(const QString& path)
{
    if (path.isEmpty() || m_seen.contains(NoCase{path}))
        return;
    m_seen.insert(NoCase{path});
    m_paths.append(m_files.spelled(path));
}

QString AliasConfig::placeOf(const QString& folder, const QString& named)
{
    return winpath::normalised(winpath::isAbsolute(named) ? named : winpath::join(folder, named));
}

bool AliasConfig::isFile(const QString& path) const
{
    const std::optional<FileInfo> info = m_access.actions.info(path);
    return info && !info->folder;
}

bool AliasConfig::isFolder(const QString& path) const
{
    const std::optional<FileInfo> info = m_access.actions.info(path);
    return info && info->folder;
}

void AliasConfig::forEachEntry(
    const LineArray& lines,
    const std::function<void(const QString&, QByteArrayView, QByteArrayView)>& visit)
{
    QString section;
    QByteArray room;
    for (const QByteArray& line : lines.lines) {
        if (const std::optional<QString> name = ini::sectionOfLine(lines, line)) {
            section = *name;
            continue;
        }
        if (!line.contains('='))
            continue;
        if (const auto entry = ini::splitView(ini::strippedView(line, room).data))
            visit(section, ini::keyBytes(entry->key), entry->value);
    }
}

// --- re-pointing -------------------------------------------------------------------------------

Result AliasConfig::failed(int state, const Result& why)
{
    m_state = state;
    m_error = stateMessage(state);
    if (!why.text.isEmpty() && why.text != m_error)
        m_error += u' ' + why.text;
    return Result::failure(m_error, why.kind == ErrorKind::None ? ErrorKind::Failed : why.kind);
}

QString AliasConfig::Alias_TextFor(const QString& configurationFile) const
{
    const QString folder = winpath::withoutTrailing(winpath::parent(configurationFile));
    QStringList tops = m_global.aircraftTypeFolders;
    tops.append(m_global.simulatorFolder);
    for (const QString& top : tops) {
        if (!winpath::isBelow(folder, top))
            continue;
        // A folder of that name below an earlier one would be taken instead.
        const QString text = winpath::relativeTo(folder, top);
        bool exists = false;
        if (winpath::same(targetOf(text, exists, nullptr), configurationFile))
            return text;
    }
    return {};
}

/// \a written: as it is to stand in the file, which for an alias of an alias is where that one
/// ends.
Result AliasConfig::checkAlias(const QString& alias, QString& written)
{
    const Followed target = follow(alias);
    if (target.original.isEmpty())
        return failed(WouldNotBeValid, Result::failure(target.problem));
    if (const int unfit = unfitAsTarget(read(target.original)); unfit != Good)
        return failed(unfit, {});
    written = Alias_TextFor(target.original);
    if (written.isEmpty())
        return failed(WouldNotBeValid, {});
    return Result::success();
}

ResultOf<LineArray> AliasConfig::aliasLines(const QString& alias) const
{
    LineArray lines(m_access.ansi);
    if (Result filled = lines.append({u"[fltsim]"_s, u"alias="_s + alias}); !filled)
        return filled;
    return lines;
}

/// A backup from an earlier edit is never refreshed, so a definition that is about to go may need
/// one of its own: "Panel 2.vtb", ...
Result AliasConfig::keepDefinition() const
{
    FileActions& actions = m_access.actions;
    const ResultOf<QByteArray> now = actions.read(sConfigurationFile, configFileLimit);
    if (!now)
        return now.error();
    const QString first = m_protocol->backupFile();
    const QString stem = winpath::parent(first) + winpath::baseName(first);
    for (int number = 1; number < mostBackups; ++number) {
        const QString path =
            number == 1 ? first : stem + u' ' + QString::number(number) + u".vtb"_s;
        if (!actions.info(path))
            return actions.copy(sConfigurationFile, path);
        const ResultOf<QByteArray> kept = actions.read(path, configFileLimit);
        if (kept && *kept == *now)
            return Result::success();
    }
    return Result::failure(u"There are too many backups in '"_s + m_protocol->folder() + u"'."_s);
}

Result AliasConfig::writeAlias(const QString& alias)
{
    const ResultOf<LineArray> lines = aliasLines(alias);
    if (!lines)
        return failed(NotUpdated, lines.error());
    const auto writeWhole = [&] {
        return ini::INI_File_Write(m_access.actions, sConfigurationFile, *lines);
    };
    Result written;
    if (!m_own.exists) {
        written = writeWhole();
    } else if (IsAlias()) {
        written = m_protocol->saveBy(m_access, [&] {
            return ini::INI_Profile_SetValue(
                m_access.actions, m_access.ansi, aliasSection, aliasKey, alias, sConfigurationFile);
        });
    } else {
        if (const Result kept = keepDefinition(); !kept)
            return failed(m_facts.notKept, kept);
        written = m_protocol->saveBy(m_access, writeWhole);
    }
    return written ? written : failed(NotUpdated, written);
}

Result AliasConfig::Alias_Check(const QString& alias)
{
    QString written;
    Result checked = checkAlias(alias, written);
    if (checked)
        sTargetFile = follow(written).original;
    return checked;
}

Result AliasConfig::Alias_Set(const QString& alias)
{
    m_error.clear();
    if (sConfigurationFile.isEmpty())
        return failed(NoTarget, {});
    QString written;
    if (Result checked = checkAlias(alias, written); !checked)
        return checked;
    if (const int whole = m_own.original ? unfitAsAlias() : int(Good); whole != Good)
        return failed(whole, {});
    if (Result done = writeAlias(written); !done)
        return done;
    if (!Load(QString(sConfigurationFile)))
        return failed(NotUpdated, Result::failure(State_GetMessage()));
    return Result::success();
}

// --- backup, suppression -----------------------------------------------------------------------

QString AliasConfig::BackupFile_Get() const
{
    return SaveProtocol(m_facts.kind, sConfigurationFile).backupFile();
}

Result AliasConfig::BackupConfigurationFile_Restore()
{
    if (sConfigurationFile.isEmpty())
        return failed(NoTarget, {});
    const Result restored = m_protocol->restore(m_access);
    if (!restored)
        return failed(NotRestored, restored);
    Load(QString(sConfigurationFile));
    return restored;
}

bool AliasConfig::SuppressionStatus_Load(Connection& database) const
{
    return suppression::isSuppressed(database, m_access.actions, m_facts.table, sConfigurationFile);
}

Result AliasConfig::SuppressionStatus_Save(Connection& database, bool suppressed) const
{
    return suppression::setSuppressed(
        database, m_access.actions, m_facts.table, sConfigurationFile, suppressed);
}

} // namespace vt
