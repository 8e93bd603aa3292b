#include "remove/AddonRemoval.h"

#include "remove/CAddonRemover.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Why a removal or copy that ran to its end is not whole.
Result notWhole(const CAddonRemover& remover, bool copied)
{
    const Results& results = remover.results();
    const QString cause = results.texts(resultgroup::failedSpecialActions)
                              .value(0, results.texts(resultgroup::notProcessed).value(0));
    return Result::failure(u"'"_s + remover.record().name + u"' was not "_s +
                           (copied ? u"copied"_s : u"removed"_s) + u" whole. "_s + cause);
}

} // namespace

RemovedAddon
removeAddon(Context& context, Connection& database, qint64 masterKey, const RemovalOptions& options)
{
    CAddonRemover remover(context, database, masterKey, options);
    RemovedAddon removed;
    removed.key = masterKey;
    removed.ended = remover.Remove_Begin();
    if (!removed.ended)
        removed.result = remover.failure();
    else if (remover.anyFailed())
        removed.result = notWhole(remover, options.method == RemovalMethod::Copy);
    removed.name = remover.record().name;
    removed.results = remover.results();
    removed.target = remover.target();
    return removed;
}

} // namespace vt
