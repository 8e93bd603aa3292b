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
    /// \a gate must outlive this.
    explicit DirectActions(Gate& gate) : m_gate(gate) {}

    [[nodiscard]] ResultOf<QByteArray> read(const QString& path, qint64 limit) override;
    [[nodiscard]] std::optional<FileInfo> info(const QString& path) override;
    Result replace(const QString& path, const QByteArray& bytes) override;
    ResultOf<Fingerprint> place(const QString& path, const Content& content) override;
    Result keep(const QString& from, const QString& to) override;
    Result copy(const QString& from, const QString& to) override;
    Result remove(const QString& path) override;
    Result makeFolder(const QString& folder) override;
    Result removeEmptyFolder(const QString& folder) override;

private:
    Gate& m_gate;
    quint64 m_counter = 0;
};

} // namespace vt
