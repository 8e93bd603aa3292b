// Repairs the files of one add-on that are missing or damaged: finds candidates, takes those that
// were chosen, and copies them into place under the journal. What a copy replaces is kept below
// "Backups\"; the records follow, so that a later removal gives back what it would have given.
#pragma once

#include "addondb/Connection.h"
#include "platform/FileTransaction.h"
#include "remove/CRepairItemGroup.h"
#include "shell/Context.h"
#include "shell/Results.h"

#include <QString>

#include <memory>

namespace vt {

class RepairSearch;

class CRepairPresentationManager
{
public:
    /// Both must outlive this. Only RepairItems_Fix() writes; it needs the database open for that.
    CRepairPresentationManager(Context& context, Connection& database);
    ~CRepairPresentationManager();
    CRepairPresentationManager(const CRepairPresentationManager&) = delete;
    CRepairPresentationManager& operator=(const CRepairPresentationManager&) = delete;

    /// Binds a recorded add-on and notes its missing and damaged files. A file that a later add-on
    /// covers is that one's. Kind Failed for an unknown key.
    Result Setup(qint64 masterKey);
    /// "Searching for repair files...". Fails when files are missing or damaged and none of them
    /// has a candidate; kind Declined when the user stopped it.
    Result RepairItems_Analyze();
    /// Chooses the most recent candidate of every item.
    void RepairItems_ChooseMostRecent();
    /// "Repairing...". Copies the chosen candidates; one that fails leaves its item unrepaired and
    /// the others are done. A failed result means that nothing was changed.
    Result RepairItems_Fix();

    [[nodiscard]] const AddonRecord& addon() const { return m_addon; }

    [[nodiscard]] CRepairItemGroup& items() { return m_items; }

    /// Files of this add-on that are not whole.
    [[nodiscard]] bool anythingDamaged() const { return !m_items.colRepairItems().empty(); }

    /// What the last RepairItems_Fix() did: "Processed", "Not Processed", the special actions.
    [[nodiscard]] const Results& results() const { return m_results; }

    /// Each missing file in a line, and what to do about them; empty when none is missing.
    [[nodiscard]] QString missingFilesText() const;

private:
    struct Work;

    Result begin(Work& work);
    Result placeOne(Work& work, CRepairItem& item);
    Result recordAll(Work& work);
    void tell(Work& work, const QList<StepFailure>& failures);

    Context& m_context;
    Connection& m_database;
    AddonRecord m_addon;
    CRepairItemGroup m_items;
    std::unique_ptr<RepairSearch> m_search;
    Results m_results;
};

} // namespace vt
