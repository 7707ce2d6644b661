// Any bytes as a packed file and, past the container's checksums, as one packed description.
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "basekit/cmn/cmn_assert.h"
#include "mediakit/ff/ff_document.h"
#include "qlx/persistence/qlx_binaryformat.h"

namespace {
void AsDescription(std::string_view bytes) {
    std::unique_ptr<QLX_ViewMemento> memento;
    try {
        memento = QLX_BinaryViewFormat::DecodeMemento(bytes, "fuzz");
    } catch (const std::runtime_error&) {
        return;
    }
    const std::string written = QLX_BinaryViewFormat::EncodeMemento(*memento);
    if (QLX_BinaryViewFormat::EncodeMemento(
            *QLX_BinaryViewFormat::DecodeMemento(written, "again")) != written)
        std::abort();
}

void AsFile(std::string_view bytes) {
    try {
        FF_Document document(std::make_unique<Sys_File>("fuzz.qlxpack", std::string(bytes)));
        QLX_BinaryViewFormat format(&document);
        for (const std::string& name : format.GetNames())
            delete format.ReadMemento(name, /*trim*/ false);
    } catch (const std::runtime_error&) {
        // Told with file and reason.
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Cmn_SetAssertionHandler([](const char*, const char*, int) {});
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    AsDescription(bytes);
    AsFile(bytes);
    return 0;
}
