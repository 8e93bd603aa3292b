// File actions that are carried out at once: a temporary file beside the target, synced, renamed.
// For what stands alone (a setting, a configuration file saved by itself); what belongs together
// goes through a Transaction.
#pragma once

#include "platform/FileActions.h"
#include "platform/Gate.h"

namespace vt {

class DirectActions final : public FileActions
{
public:
    enum class Sync
    {
        Each, ///< a file that was written survives a power cut
        None, ///< for what can be written again: temporary files, plain extraction of an archive
    };

    /// \a gate must outlive this.
    explicit DirectActions(Gate& gate, Sync sync = Sync::Each) : m_gate(gate), m_sync(sync) {}

    [[nodiscard]] ResultOf<QByteArray> read(const QString& path, qint64 limit) override;
    [[nodiscard]] std::optional<FileInfo> info(const QString& path) override;
    Result replace(const QString& path, const QByteArray& bytes) override;
    ResultOf<Fingerprint> place(const QString& path, const Content& content) override;
    Result keep(const QString& from, const QString& to) override;
    Result copy(const QString& from, const QString& to) override;
    Result remove(const QString& path) override;
    Result makeFolder(const QString& folder) override;
    Result removeEmptyFolder(const QString& folder) override;

    /// \a from takes the place of \a to, at once; both in one folder. On failure both stand as
    /// before.
    Result moveOver(const QString& from, const QString& to);

private:
    Gate& m_gate;
    Sync m_sync;
    quint64 m_counter = 0;
};

} // namespace vt
