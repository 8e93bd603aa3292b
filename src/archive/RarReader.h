// Reads entries of one RAR archive. Stored ones come straight from the volumes; packed ones are
// unpacked by a library; those of a solid archive, which need what stands before them, are unpacked
// once, in order, and set aside. Sizes and check sums are compared here, whoever unpacked.
#pragma once

#include "archive/ArchiveReader.h"
#include "archive/RarDirectory.h"
#include "archive/RarUnpack.h"

#include <QByteArray>

#include <memory>
#include <vector>

namespace vt {

class RarReader final : public ArchiveReader
{
public:
    explicit RarReader(std::shared_ptr<const RarDirectory> directory, UnpackHelper helper = {});
    ~RarReader() override;

    [[nodiscard]] Result readable(int key) const override;

    /// Key k is entry k - 1 of the directory. Entries of a solid archive come fast in their order
    /// and again afterwards.
    Result read(int key, const Content::Sink& sink) override;

    /// A RarCode.
    [[nodiscard]] int lastCode() const override { return int(m_code); }

    [[nodiscard]] RarCode code() const { return m_code; }

    [[nodiscard]] const RarDirectory& directory() const { return *m_directory; }

    /// Unpacks what is no entry, such as a comment, whole; refused when larger than \a limit.
    [[nodiscard]] ResultOf<QByteArray> readAlone(const RarEntry& entry, qint64 limit);

private:
    struct Group;
    struct Saved;

    void formGroups();
    Result check(int key, RarCode& code) const;
    [[nodiscard]] Result told(const RarEntry& entry, const QString& why) const;
    Result failed(const RarEntry& entry, RarCode code, const QString& why);
    Result ended(const RarEntry& entry, const RarEnd& end);
    Result wrongSum(const RarEntry& entry);
    Result readStored(const RarEntry& entry, const Content::Sink& sink);
    Result readWhole(const RarEntry& entry, const Content::Sink& sink);
    Result readLarge(const RarEntry& entry, const Content::Sink& sink);
    Result unpackWhole(const RarEntry& entry, QByteArray& to);
    Result readSolid(const RarEntry& entry, Group& group, size_t place, const Content::Sink& sink);
    void unpackSolid(Group& group, size_t place);
    Result deliver(const ByteSource& from, qint64 offset, qint64 bytes, const Content::Sink& sink);

    std::shared_ptr<const RarDirectory> m_directory;
    UnpackHelper m_helper; ///< the unpackers of groups give theirs back to it
    std::vector<std::unique_ptr<Group>> m_groups;
    /// Of each entry: its group (-1 for none, -2 when it needs one that cannot be unpacked) and the
    /// place in it.
    std::vector<std::pair<int, size_t>> m_places;
    std::unique_ptr<Spool> m_spool;
    QByteArray m_whole;
    RarCode m_code = RarCode::Ok;
};

} // namespace vt
