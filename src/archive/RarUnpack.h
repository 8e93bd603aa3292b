// Unpacks packed RAR entries through libarchive, and through libunarr where that fails. Neither
// library sees the real archive: each gets a small one made up around the entries, with the packed
// bytes joined from all volumes, so that neither a split nor a lying header elsewhere disturbs it.
// Check sums are not compared here. Both libraries work in a helper program (unpack/), which is
// ended when it is at one entry for too long.
#pragma once

#include "archive/RarDirectory.h"
#include "platform/FileActions.h"
#include "platform/GuardedChild.h"
#include "platform/GuardedStream.h"

#include <memory>
#include <vector>

namespace vt {

/// The helper program, and one that was started and waits to be asked again.
struct UnpackHelper
{
    QString program = helperProgram(QStringLiteral("vantrel-unpack")); ///< full path on the host
    int patienceMs = 10'000; ///< for an entry, and a second for each megabyte of it
    std::unique_ptr<GuardedStream> idle = nullptr;
};

/// How unpacking one entry ended.
struct RarEnd
{
    RarCode code = RarCode::Ok;
    QString why; ///< the library's sentence, without a full stop
    bool sinkRefused = false;
};

/// Entries that need each other, one after another.
class RarUnpacker
{
public:
    virtual ~RarUnpacker() = default;
    /// The next entry's bytes: as many as its header announces, or it ends with a failure. After a
    /// failure nothing follows.
    virtual RarEnd next(const Content::Sink& sink) = 0;
};

/// \a group: packed entries of \a directory in their order; it and \a helper must outlive the
/// unpacker.
[[nodiscard]] std::unique_ptr<RarUnpacker> unpackByLibarchive(const RarDirectory& directory,
                                                              std::vector<const RarEntry*> group,
                                                              UnpackHelper& helper);
/// For versions up to 4 alone.
[[nodiscard]] std::unique_ptr<RarUnpacker> unpackByUnarr(const RarDirectory& directory,
                                                         std::vector<const RarEntry*> group,
                                                         UnpackHelper& helper);

} // namespace vt
