#include "pngWrite.h"

#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

// libpng reports errors through longjmp; the message is kept for the caller.
void onPngError(png_structp png, png_const_charp message)
{
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}

void onPngWarning(png_structp, png_const_charp) {}

} // namespace

bool writeRgbPng(const std::string& path, int width, int height, const uint8_t* rgb, std::string* why)
{
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) {
        *why = std::strerror(errno);
        return false;
    }
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, why, onPngError, onPngWarning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    // Built before setjmp: a longjmp back into this frame must not skip a destructor.
    std::vector<png_const_bytep> rows(static_cast<size_t>(height));
    for (int y = 0; y < height; ++y)
        rows[size_t(y)] = rgb + size_t(y) * size_t(width) * 3;
    bool written = false;
    if (!info) {
        *why = "out of memory";
    } else if (setjmp(png_jmpbuf(png)) == 0) {
        png_init_io(png, file);
        png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        png_write_rows(png, const_cast<png_bytepp>(rows.data()), png_uint_32(height));
        png_write_end(png, nullptr);
        written = true;
    }
    png_destroy_write_struct(&png, &info);
    if (std::fclose(file) != 0 && written) {
        *why = std::strerror(errno);
        written = false;
    }
    return written;
}
