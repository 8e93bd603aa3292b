// vantrel-picture WIDTH: reads a picture from standard input and writes it as JPEG, no wider than
// WIDTH, to standard output. A program of its own because decoding the files of strangers may take
// all memory, all time, or end in a fault: it limits itself first and opens no file.
//
// Exit status: 0 done; 1 no picture that could be used, one phrase on standard error; 2 wrong
// usage.
#include "guarded/Limits.h"

#include <FreeImage.h>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr rlim_t memoryLimit = 768UL * 1024 * 1024;
constexpr rlim_t secondsLimit = 10;
constexpr std::size_t inputLimit = 64UL * 1024 * 1024;
/// 64 million points are 256 MB as 32-bit values.
constexpr unsigned long long pointsLimit = 64ULL * 1000 * 1000;
constexpr int jpegQuality = 85;
/// A picture is at most this many times as high as the width asked for.
constexpr int tallest = 4;

[[noreturn]] void refuse(const std::string& why)
{
    std::fprintf(stderr, "%s\n", why.c_str());
    std::exit(1);
}

std::vector<BYTE> standardInput()
{
    std::vector<BYTE> bytes;
    std::vector<BYTE> piece(64 * 1024);
    for (;;) {
        const std::size_t got = std::fread(piece.data(), 1, piece.size(), stdin);
        if (got == 0)
            return bytes;
        if (bytes.size() + got > inputLimit)
            refuse("it is larger than 64 MB");
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(got));
    }
}

std::string grouped(unsigned number)
{
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, 1, ',');
    return text;
}

void checkSize(FIBITMAP* picture)
{
    const unsigned width = FreeImage_GetWidth(picture);
    const unsigned height = FreeImage_GetHeight(picture);
    if (width == 0 || height == 0)
        refuse("it has no points");
    if (static_cast<unsigned long long>(width) * height > pointsLimit)
        refuse("it claims to have " + grouped(width) + " x " + grouped(height) +
               " points, and at most 64 million are allowed");
}

FIBITMAP* decoded(FIMEMORY* memory, FREE_IMAGE_FORMAT format)
{
    if (FreeImage_FIFSupportsNoPixels(format)) {
        FIBITMAP* header = FreeImage_LoadFromMemory(format, memory, FIF_LOAD_NOPIXELS);
        if (!header)
            refuse("it is damaged, or is no picture of a known form");
        checkSize(header);
        FreeImage_Unload(header);
        FreeImage_SeekMemory(memory, 0, SEEK_SET);
    }
    FIBITMAP* picture = FreeImage_LoadFromMemory(format, memory, 0);
    if (!picture || !FreeImage_HasPixels(picture))
        refuse("it is damaged, or is no picture of a known form");
    checkSize(picture);
    return picture;
}

/// What the picture was turned into; the picture itself goes.
FIBITMAP* instead(FIBITMAP* picture, FIBITMAP* turned)
{
    if (picture && picture != turned)
        FreeImage_Unload(picture);
    return turned;
}

/// Eight bits a colour, on white where it is transparent.
FIBITMAP* opaque(FIBITMAP* picture)
{
    const FREE_IMAGE_TYPE type = FreeImage_GetImageType(picture);
    if (type == FIT_RGBF || type == FIT_RGBAF)
        picture = instead(picture, FreeImage_ToneMapping(picture, FITMO_REINHARD05, 0, 0));
    else if (type != FIT_BITMAP && type != FIT_RGB16 && type != FIT_RGBA16)
        picture = instead(picture, FreeImage_ConvertToStandardType(picture, TRUE));
    if (picture && (FreeImage_IsTransparent(picture) || type == FIT_RGBA16)) {
        RGBQUAD white = {255, 255, 255, 0};
        picture = instead(picture, FreeImage_ConvertTo32Bits(picture));
        if (picture)
            picture = instead(picture, FreeImage_Composite(picture, FALSE, &white, nullptr));
    }
    return picture ? instead(picture, FreeImage_ConvertTo24Bits(picture)) : nullptr;
}

/// The size that fits into the width (and the height), never enlarged.
FIBITMAP* scaled(FIBITMAP* picture, int width)
{
    const double has[] = {double(FreeImage_GetWidth(picture)),
                          double(FreeImage_GetHeight(picture))};
    double factor = 1.0;
    factor = has[0] * factor > width ? width / has[0] : factor;
    factor = has[1] * factor > width * tallest ? width * tallest / has[1] : factor;
    if (factor >= 1.0)
        return picture;
    const int w = int(has[0] * factor + 0.5);
    const int h = int(has[1] * factor + 0.5);
    return instead(picture,
                   FreeImage_Rescale(picture, w > 0 ? w : 1, h > 0 ? h : 1, FILTER_CATMULLROM));
}

} // namespace

int main(int argc, char** argv)
{
    const int width = argc == 2 ? std::atoi(argv[1]) : 0;
    if (width < 1 || width > 4096) {
        std::fprintf(stderr, "vantrel-picture WIDTH: 1 to 4096\n");
        return 2;
    }
    if (!vt::guarded::limitMyself(memoryLimit) || !vt::guarded::limitTo(RLIMIT_CPU, secondsLimit))
        refuse("its decoder could not be limited");
    std::vector<BYTE> bytes = standardInput();
    FreeImage_Initialise(TRUE);
    FIMEMORY* memory = FreeImage_OpenMemory(bytes.data(), static_cast<DWORD>(bytes.size()));
    const FREE_IMAGE_FORMAT format = FreeImage_GetFileTypeFromMemory(memory, 0);
    if (format == FIF_UNKNOWN || !FreeImage_FIFSupportsReading(format))
        refuse("it is no picture of a known form");
    FIBITMAP* picture = opaque(decoded(memory, format));
    if (picture)
        picture = scaled(picture, width);
    FIMEMORY* out = FreeImage_OpenMemory(nullptr, 0);
    BYTE* data = nullptr;
    DWORD size = 0;
    if (!picture || !FreeImage_SaveToMemory(FIF_JPEG, picture, out, jpegQuality) ||
        !FreeImage_AcquireMemory(out, &data, &size))
        refuse("it could not be brought to the size of a preview");
    const bool written = std::fwrite(data, 1, size, stdout) == size && std::fflush(stdout) == 0;
    FreeImage_Unload(picture);
    FreeImage_CloseMemory(out);
    FreeImage_CloseMemory(memory);
    FreeImage_DeInitialise();
    return written ? 0 : 1;
}
