// Any bytes as an XML source: an error, or a tree that is written and read back to the same text.
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/persistence/qlx_sourceformat.h"

namespace {
std::unique_ptr<QLX_RawPropertyContainer> Read(const std::string& text) {
    Sys_File file("fuzz.xml", text);
    QLX_XMLParser parser(&file, nullptr);
    return std::unique_ptr<QLX_RawPropertyContainer>(parser.Parse());
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Cmn_SetAssertionHandler([](const char*, const char*, int) {});
    const auto root = Read(std::string(reinterpret_cast<const char*>(data), size));
    if (!root)
        return 0;
    root->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    std::string text;
    try {
        text = QLX_SourceViewFormat::WriteToText(*root, LineEndings::Unix);
    } catch (const std::runtime_error&) {
        return 0; // a name that the reader took and XML has not
    }
    // The wrapper is one level more than the reader may have been given already.
    Sys_File file("again.xml", text);
    QLX_XMLParser parser(&file, nullptr);
    parser.SetMaximumDepth(QLX_XMLParser::kDefaultMaximumDepth + 1);
    const std::unique_ptr<QLX_RawPropertyContainer> again(parser.Parse());
    if (!again || !again->GetFirstChild() ||
        QLX_SourceViewFormat::WriteToText(*again->GetFirstChild(), LineEndings::Unix) != text)
        std::abort();
    return 0;
}
