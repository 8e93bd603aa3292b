#include "archive/MTKUnrar.h"

using namespace Qt::StringLiterals;

namespace vt::MTKUnrar {

QString openingText(RarCode code)
{
    switch (code) {
    case RarCode::NoMemory:
        return u"Not enough memory"_s;
    case RarCode::BadData:
        return u"Archive header broken"_s;
    case RarCode::BadArchive:
        return u"File is not RAR archive"_s;
    case RarCode::Open:
        return u"Cannot open file"_s;
    default:
        return u"Unknown error"_s;
    }
}

QString commentText(RarCode code)
{
    switch (code) {
    case RarCode::NoMemory:
        return u"Not enough memory"_s;
    case RarCode::BadData:
        return u"Broken comment"_s;
    case RarCode::UnknownFormat:
        return u"Unknown comment format"_s;
    case RarCode::SmallBuffer:
        return u"Buffer too small, comments not completely read"_s;
    default:
        return u"Unknown error"_s;
    }
}

QString processingText(RarCode code, bool password)
{
    switch (code) {
    case RarCode::BadData:
        return password ? u"CRC error - Wrong password?"_s : u"CRC error"_s;
    case RarCode::BadArchive:
        return u"Bad volume"_s;
    case RarCode::UnknownFormat:
        return u"Unknown archive format"_s;
    case RarCode::Open:
        return u"Volume open error"_s;
    case RarCode::Create:
        return u"File create error"_s;
    case RarCode::Close:
        return u"File close error"_s;
    case RarCode::Read:
        return u"Read error"_s;
    case RarCode::Write:
        return u"Write error"_s;
    case RarCode::Relocation:
        return u"Post exactraction file relocation error"_s;
    default:
        return u"Unknown error"_s;
    }
}

} // namespace vt::MTKUnrar
