// The simulator's scenery library (Scenery.cfg): its areas in file order, adding, removing, editing
// and saving with two generations of backups.
// Byte-preserving: areas that were not edited, cache sections, comments and everything unknown are
// written as they were read, and removing the areas that were added gives the old file back.
#pragma once

#include "simconfig/CSceneryCfgItem.h"
#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"
#include "simconfig/engine/SaveProtocol.h"

#include <QList>
#include <QMultiHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

class CSceneryCfgMgr
{
public:
    /// \a simulatorFolder: what relative locations are relative to.
    CSceneryCfgMgr(ConfigAccess access, QString file, QString simulatorFolder);

    /// A missing file fails with "... was not found."; a file without areas succeeds with
    /// "Scenery configuration file does not have any scenery areas." as remark. UTF-16, NULs and
    /// bare LF line ends are refused.
    [[nodiscard]] Result SceneryCfg_Load();

    [[nodiscard]] const QString& file() const { return m_file; }

    /// In file order; the index is what the functions below take.
    [[nodiscard]] const QList<CSceneryCfgItem>& areas() const { return m_items; }

    [[nodiscard]] int highestArea() const { return m_highestArea; }

    [[nodiscard]] int highestLayer() const { return m_highestLayer; }

    /// Index of the first area of that number, -1 for none.
    [[nodiscard]] qsizetype indexOfArea(int area) const;
    /// Areas whose location is \a folder (absolute, or relative to the simulator's folder), without
    /// regard to case and form, in file order.
    [[nodiscard]] QList<qsizetype> areasOfFolder(const QString& folder) const;
    /// The area that belongs to a folder: of several the one numbered \a recordedArea, else the
    /// last one; -1 for none.
    [[nodiscard]] qsizetype areaForFolder(const QString& folder, int recordedArea = 0) const;

    enum AddCode : int
    {
        Added = 0,
        UserDeclined = 1,
        NotAdded = 2, ///< the text says why
    };

    struct AddResult
    {
        bool added = false;
        int code = Added;
        QString text;
        int area = 0;
        int layer = 0;
    };

    /// Above all others: next number above the highest, next layer above the highest. With \a ask
    /// the user confirms when an area covers the folder already. Nothing is written before Save.
    AddResult SceneryCfg_AddArea(const QString& title,
                                 const QString& folder,
                                 bool ask,
                                 bool active = true,
                                 bool required = false);
    /// False when \a index names no area. Others keep their numbers and layers.
    bool SceneryCfg_RemoveArea(qsizetype index);
    /// The area of areaForFolder().
    bool SceneryCfg_RemoveArea(const QString& folder, int recordedArea);
    /// Replaces the parameters of an area; unknown keys follow "Local". Fails on characters that
    /// the code page lacks. Equal parameters leave the area's own lines alone.
    [[nodiscard]] Result setArea(qsizetype index, const CSceneryCfgItem& item);
    [[nodiscard]] Result setActive(qsizetype index, bool active);

    /// Values of the section "[GENERAL]" (Title, Description, Clean_on_Exit, ...).
    [[nodiscard]] std::optional<QString> General_Get(const QString& key) const;
    [[nodiscard]] Result General_Set(const QString& key, const QString& value);

    /// What that section says of the scenery world as a whole.
    struct SceneryWorld
    {
        QString sTitle;
        QString sDescription;
        bool boolClean_on_Exit = false;

        friend bool operator==(const SceneryWorld&, const SceneryWorld&) = default;
    };

    [[nodiscard]] SceneryWorld General_World() const;
    /// Writes only what differs. Fails, with nothing taken, as checkGeneral() says and on
    /// characters that the code page lacks.
    [[nodiscard]] Result General_SetWorld(const SceneryWorld& world);

    /// Asks when others changed the file or it is read-only, keeps two backups, writes. A success
    /// carries "Scenery configuration file was updated." or "Nothing to write to scenery
    /// configuration file." as remark; kind Declined after a No. The file is whole in any case.
    [[nodiscard]] Result SceneryCfg_Save();
    /// The newer backup becomes the older, the file the newer.
    [[nodiscard]] Result SceneryCfg_Backup();
    /// The newer backup over the file; with \a ask the user confirms. Call SceneryCfg_Load() after.
    [[nodiscard]] Result SceneryCfg_Backup_Restore(bool ask);

    [[nodiscard]] QString newerBackup() const; ///< ".vtb"
    [[nodiscard]] QString olderBackup() const; ///< ".vt2"

    /// Whether Save has anything to write.
    [[nodiscard]] bool modified() const;

    /// The file's lines as they would be saved now.
    [[nodiscard]] LineArray lines() const;
    /// What Save would change, for a plan.
    [[nodiscard]] ConfigChange changes() const;

    /// Codes of a check of one area; 0 is none.
    enum Problem : int
    {
        NoProblem = 0,
        FolderMissing = 1,
        SubfolderMissing = 2,
        NoSceneryFiles = 3,
        LayerDisabled = 4,
    };

    [[nodiscard]] Problem SceneryCfg_Validate(const CSceneryCfgItem& item,
                                              const Files& files) const;
    /// The sentence of a code; an inactive area adds that it will not appear.
    [[nodiscard]] static QString problemText(int code, bool active, const QString& simulatorName);
    /// Title and body of the report on one area.
    [[nodiscard]] QString SceneryCfg_Validate_Report(const CSceneryCfgItem& item,
                                                     const Files& files,
                                                     const QString& simulatorName) const;
    /// Absolute folder of an area (the remote one without a local), ending in "\"; empty without
    /// a location.
    [[nodiscard]] QString folderOf(const CSceneryCfgItem& item) const;

    /// What the editor says about parameters before it takes them.
    struct EditCheck
    {
        QString error;     ///< set when the parameters cannot be taken
        QStringList notes; ///< remarks that do not stand in the way
    };

    /// \a index: the area being edited, -1 for a new one. \a highestAllowedLayer bounds the layer.
    [[nodiscard]] EditCheck checkArea(const CSceneryCfgItem& item,
                                      qsizetype index,
                                      int highestAllowedLayer,
                                      const Files& files) const;
    [[nodiscard]] static EditCheck checkGeneral(const QString& title, const QString& description);

private:
    enum class BlockKind
    {
        Other, ///< what stands before the first header, and unknown sections
        General,
        Area,
        Cache,
    };

    /// One section, or what precedes the first.
    struct Block
    {
        BlockKind kind = BlockKind::Other;
        bool empty = true; ///< no line at all, which is less than one empty line
        QByteArray text;   ///< lines with CR LF between; of unedited ones a view into m_source
    };

    using ByteLines = QList<QByteArray>;

    void parse(const QByteArray& bytes);
    [[nodiscard]] std::optional<QString> generalValue(const QString& key, bool raw) const;
    [[nodiscard]] ByteLines linesOf(const Block& block) const;
    static void setLines(Block& block, const ByteLines& lines);
    [[nodiscard]] QByteArray joined() const;
    void readParameter(QByteArrayView line, CSceneryCfgItem& item, quint32& seen) const;
    [[nodiscard]] ResultOf<ByteLines> headLines(const CSceneryCfgItem& item) const;
    [[nodiscard]] ByteLines rewritten(const Block& block, const ByteLines& head) const;
    void insertArea(const CSceneryCfgItem& item, const ByteLines& head);
    [[nodiscard]] qsizetype blockOf(qsizetype index) const;
    void recount();
    void indexFolders() const;
    [[nodiscard]] QString formOf(const QString& location) const;
    [[nodiscard]] static Prompt addQuestion(const CSceneryCfgItem& existing,
                                            const CSceneryCfgItem& proposed);
    [[nodiscard]] QString savedAs() const;
    Result confirmSave(bool& readOnly);
    Result write(const QByteArray& bytes, bool readOnly);
    Result failedSave(const Result& why);

    ConfigAccess m_access;
    QString m_file;
    QString m_simulatorFolder;
    FileStamp m_stamp;
    QByteArray m_loaded;   ///< the file as it was read or last saved
    QByteArray m_source;   ///< what unedited blocks point into; never changed while they live
    QList<Block> m_blocks; ///< the file in order; the first is what precedes any header
    QList<CSceneryCfgItem> m_items; ///< of the area blocks, in their order
    QList<int> m_ids;               ///< of the areas, never used twice: what m_byFolder names
    mutable QMultiHash<QString, int> m_byFolder; ///< folded form of the location to id
    mutable bool m_foldersIndexed = false;       ///< made when first asked for
    int m_nextId = 0;
    int m_highestArea = 0;
    int m_highestLayer = 0;
};

} // namespace vt
