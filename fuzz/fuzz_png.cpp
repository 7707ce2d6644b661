// Any bytes as a PNG: a reason why not, or a picture that is the same when written and read again.

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "qlx/imaging/qlx_image.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    QLX_Image::Ptr image;
    try {
        image = QLX_Image::FromPNG(std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const std::runtime_error&) {
        return 0;
    }
    if (!image || image->GetWidth() * image->GetHeight() > 65536)
        return image ? 0 : (std::abort(), 0);
    // Where alpha is low, straight colours in the file hold less than premultiplied ones: what was
    // written once stays.
    const QLX_Image::Ptr once = QLX_Image::FromPNG(image->ToPNG());
    const QLX_Image::Ptr twice = QLX_Image::FromPNG(once->ToPNG());
    if (once->GetBounds() != image->GetBounds() || !twice->IsEqual(*once)) {
        std::fprintf(stderr, "the picture changed when it was written and read\n");
        std::abort();
    }
    return 0;
}
