#include "cli/AddonKey.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::cli {

ResultOf<qint64> addonKey(const QString& typed)
{
    bool number = false;
    const qint64 key = typed.toLongLong(&number);
    if (number)
        return key;
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (!typed.isEmpty() && std::all_of(typed.cbegin(), typed.cend(), isDigit))
        return unknownAddon(typed);
    return Result::failure(
        u"'"_s + typed + u"' is not the key of an add-on; 'vantrelctl list' shows the keys."_s,
        ErrorKind::Usage);
}

Result unknownAddon(const QString& key)
{
    return Result::failure(u"There is no add-on with the key "_s + key +
                           u"; 'vantrelctl list' shows those that are recorded."_s);
}

} // namespace vt::cli
