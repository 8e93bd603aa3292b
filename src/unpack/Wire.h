// What passes between archive/RarUnpack and the helper program vantrel-unpack, both built together
// and on one machine: numbers as the processor has them.
//
// To it: a Request, the sizes of its entries (64 bits each), then the bytes of the archive, unless
// that is the open file 3. From it, for each entry in turn until one fails: pieces (their size
// as 32 bits, then the bytes), a size of 0, an Ended and its text. Then the next request.
#pragma once

#include <cstdint>

namespace vt::unpack {

enum class Library : std::uint32_t
{
    Libarchive = 1,
    Unarr = 2, ///< without bytes, the archive is the open file 3
};

enum class Outcome : std::uint32_t
{
    Ok = 0,
    Damaged = 1,
    NoMemory = 2,
};

struct Request
{
    Library library = Library::Libarchive;
    std::uint32_t entries = 0;
    std::uint64_t bytes = 0; ///< of the archive that follows; 0 when it is a file
};

struct Ended
{
    Outcome outcome = Outcome::Ok;
    std::uint32_t textBytes = 0; ///< of the phrase in UTF-8 that follows
};

inline constexpr std::uint32_t pieceBytes = 256 * 1024;
inline constexpr std::uint32_t textLimit = 4096;
inline constexpr int archiveFile = 3;

} // namespace vt::unpack
