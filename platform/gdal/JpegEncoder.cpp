#include "platform/gdal/JpegEncoder.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>

// The library's header needs FILE and size_t before it.
#include <jpeglib.h>

#include "platform/RuntimeError.h"

namespace orvo::gdal {
namespace {

/// Where the library's failures come back to; it knows only C.
struct Trap {
    jpeg_error_mgr manager{};  // stands first: the library hands a pointer to it back
    std::jmp_buf back{};
    char text[JMSG_LENGTH_MAX]{};
};

[[noreturn]] void Fail(j_common_ptr library) {
    auto* const trap = reinterpret_cast<Trap*>(library->err);
    trap->manager.format_message(library, trap->text);
    std::longjmp(trap->back, 1);  // NOLINT(cert-err52-cpp): the library must not be thrown through
}

void Ignore(j_common_ptr, int) {}

void Configure(jpeg_compress_struct& library, const Pixels& pixels, int quality) {
    const bool grey = pixels.form == Form::Grey;
    library.image_width = static_cast<JDIMENSION>(pixels.width);
    library.image_height = static_cast<JDIMENSION>(pixels.height);
    library.input_components = grey ? 1 : 3;
    library.in_color_space = grey ? JCS_GRAYSCALE : JCS_RGB;
    jpeg_set_defaults(&library);
    jpeg_set_quality(&library, quality, TRUE);
    library.optimize_coding = TRUE;
}

void WriteRows(jpeg_compress_struct& library, const Pixels& pixels) {
    while (library.next_scanline < library.image_height) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): the library only reads the row.
        auto* row = const_cast<JSAMPROW>(pixels.bytes.data() + pixels.RowBytes() * library.next_scanline);
        jpeg_write_scanlines(&library, &row, 1);
    }
}

/// Holds no object that needs a destructor, for a failure jumps out of it. False on failure.
bool Compress(Trap& trap, const Pixels& pixels, int quality, unsigned char** bytes, unsigned long* size) {
    jpeg_compress_struct library{};
    library.err = jpeg_std_error(&trap.manager);
    trap.manager.error_exit = Fail;
    trap.manager.emit_message = Ignore;
    if (setjmp(trap.back) != 0) {  // NOLINT(cert-err52-cpp): see Fail
        jpeg_destroy_compress(&library);
        return false;
    }
    jpeg_create_compress(&library);
    jpeg_mem_dest(&library, bytes, size);
    Configure(library, pixels, quality);
    jpeg_start_compress(&library, TRUE);
    WriteRows(library, pixels);
    jpeg_finish_compress(&library);
    jpeg_destroy_compress(&library);
    return true;
}

}  // namespace

std::span<const unsigned char> JpegEncoder::Encode(const Pixels& pixels, int quality) {
    if (pixels.depth != 8 || (pixels.form != Form::Grey && pixels.form != Form::RGB)) {
        throw RuntimeError(Fault::InvalidProcedureCall);
    }
    file_.resize(2 * pixels.bytes.size() + 4096);
    // The library writes into our memory as long as that suffices, and into memory of its own past that.
    unsigned char* bytes = file_.data();
    unsigned long size = file_.size();
    Trap trap;
    const bool done = Compress(trap, pixels, quality, &bytes, &size);
    const std::unique_ptr<unsigned char, decltype(&std::free)> grown(bytes == file_.data() ? nullptr : bytes,
                                                                     &std::free);
    if (!done) throw RuntimeError(static_cast<Long>(Fault::AutomationError), trap.text);
    if (grown) file_.assign(bytes, bytes + size);
    return std::span(file_).first(size);
}

}  // namespace orvo::gdal
