// Looks for files that can stand in for missing or damaged ones: in the File Cabinet, the add-on's
// own folder, "Originals\", the source if it is still there, and the simulator's folders, in this
// order. A file is found by its name (in the source or as installed) and the recorded size; when
// one with the recorded bytes is among them, those with other bytes are left out. Reads only.
#pragma once

#include "addondb/AddonRecords.h"
#include "remove/CRepairItemGroup.h"
#include "shell/Context.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <memory>
#include <vector>

namespace vt {

class CZIP;

class RepairSearch
{
public:
    /// \a context must outlive this.
    RepairSearch(Context& context, const AddonRecord& addon);
    ~RepairSearch();
    RepairSearch(const RepairSearch&) = delete;
    RepairSearch& operator=(const RepairSearch&) = delete;

    /// Collects the candidates of every item. False when the user stopped it.
    bool find(CRepairItemGroup& items);

    /// The candidate's bytes for FileActions::place(); valid as long as this object.
    [[nodiscard]] ResultOf<Content> content(const RepairCandidate& candidate) const;

private:
    void searchFolder(const QString& folder);
    void searchSource();
    void searchArchive(const QString& file, bool innerToo);
    void offer(RepairCandidate candidate);
    [[nodiscard]] bool holdsRecorded(RepairCandidate& candidate, const CRepairItem& item) const;

    Context& m_context;
    const AddonRecord m_addon;
    QHash<NoCase, QList<CRepairItem*>> m_wanted; ///< by name; while find() runs
    QSet<NoCase> m_seen;                         ///< full paths of candidates already looked at
    std::vector<std::unique_ptr<CZIP>> m_archives;
};

} // namespace vt
