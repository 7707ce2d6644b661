// qlxview pack, unpack and list: the binary form of many descriptions in one file.
#include <cstdio>

#include "command.h"
#include "description.h"
#include "mediakit/ff/ff_document.h"
#include "qlx/persistence/qlx_binaryformat.h"

namespace {
struct Options {
    std::vector<std::string> mFiles;
    std::string mOutput;
    std::string mFolder = ".";
    bool mVerify = false;
};

std::string TextOf(const QLX_ViewMemento& memento) {
    return QLX_SourceViewFormat::WriteToText(*memento.GetRoot(), LineEndings::Unix);
}

/// Unpacks everything again and compares it with the sources. The packed bytes are decoded without
/// selecting or freezing, which leave marks of their own.
bool Verify(FF_Document& document, const std::vector<std::unique_ptr<Description>>& sources) {
    bool same = true;
    QLX_BinaryViewFormat format(&document);
    for (const auto& source : sources) {
        const QLX_ViewMemento& memento = source->GetMemento();
        const std::unique_ptr<QLX_ViewMemento> unpacked(
            format.ReadMemento(memento.GetName(), /*trim*/ false));
        if (unpacked && TextOf(*unpacked) == TextOf(memento) &&
            unpacked->GetStringTables() == memento.GetStringTables())
            continue;
        std::fprintf(stderr, "%s: unpacking gives something else\n", source->GetPath().c_str());
        same = false;
    }
    return same;
}

void Pack(const Options& options) {
    const StCurrentLanguage english(QLX_Language::English);
    std::vector<std::unique_ptr<Description>> sources;
    std::map<std::string, QLX_ViewMemento*> mementos;
    for (const std::string& path : options.mFiles) {
        auto description = LoadDescription(path);
        if (!description) {
            gExitStatus = kExitFailed;
            return;
        }
        QLX_ViewMemento& memento = description->GetMemento();
        if (!mementos.emplace(memento.GetName(), &memento).second)
            throw std::runtime_error(path + ": the name \"" + memento.GetName() +
                                     "\" is another description's already");
        sources.push_back(std::move(description));
    }
    // Made in memory, so that a pack file is there whole and verified or not at all.
    auto made = std::make_unique<Sys_File>(options.mOutput, std::string());
    Sys_File& file = *made;
    FF_Document document(std::move(made));
    QLX_BinaryViewFormat(&document).WriteMementos(mementos);
    if (options.mVerify && !Verify(document, sources)) {
        gExitStatus = kExitFound;
        return;
    }
    std::string bytes(static_cast<std::size_t>(file.GetSize()), '\0');
    file.SetPosition(0);
    bytes.resize(file.Read(bytes.data(), bytes.size()));
    Sys_SafeWriter::Replace(Sys_FileLoc(options.mOutput), bytes);
    std::printf("%s: %zu descriptions%s\n", options.mOutput.c_str(), sources.size(),
                options.mVerify ? ", verified" : "");
}

void Unpack(const Options& options) {
    const StCurrentLanguage english(QLX_Language::English);
    const auto document = FF_Document::Open(Sys_FileLoc(options.mOutput), Sys_FileMode::Read);
    QLX_BinaryViewFormat format(document.get());
    for (const std::string& name : options.mFiles.empty() ? format.GetNames() : options.mFiles) {
        if (!format.HasKeyNamed(name))
            throw std::runtime_error(options.mOutput + ": there is no description \"" + name +
                                     "\"");
        // A name is not trusted to be a file's.
        if (name.empty() || name[0] == '.' || name.find_first_of("/\\:") != std::string::npos)
            throw std::runtime_error(options.mOutput + ": the name \"" + name +
                                     "\" is no file name");
        const std::unique_ptr<QLX_ViewMemento> memento(format.ReadMemento(name, /*trim*/ false));
        const Sys_FileLoc source = Sys_FileLoc(options.mFolder).GetChild(name + ".xml");
        QLX_SourceViewFormat(source).WriteMemento(memento.get(), LineEndings::Unix);
        std::printf("%s\n", source.GetPath().c_str());
    }
}

void List(const Options& options) {
    const auto document = FF_Document::Open(Sys_FileLoc(options.mOutput), Sys_FileMode::Read);
    if (document->WasTorn())
        std::printf("(a write broke off; this is what was there before it)\n");
    QLX_BinaryViewFormat format(document.get());
    for (const std::string& name : format.GetNames())
        std::printf("%10llu  %s\n", static_cast<unsigned long long>(format.GetPackedSize(name)),
                    name.c_str());
}

void AddPackCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Compiles descriptions and their string tables into one file");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFiles, "XML sources")->required();
    command->add_option("-o,--output", options->mOutput, "The pack file, replaced if it is there")
        ->required();
    command->add_flag("--verify", options->mVerify,
                      "Prove that unpacking gives what format writes, comments aside");
    command->footer("Example: qlxview pack --verify -o views.qlxpack views/*.xml");
    command->callback([options] { Pack(*options); });
}
const ToolCommand gPack(70, "pack", AddPackCommand);

void AddUnpackCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(name, "Writes the sources of a pack file");
    const auto options = std::make_shared<Options>();
    command->add_option("PACK", options->mOutput, "The pack file")->required();
    command->add_option("NAME", options->mFiles, "Which descriptions; without a name all");
    command->add_option("-C,--folder", options->mFolder, "Where to write them");
    command->footer("Example: qlxview unpack views.qlxpack -C /tmp/views Transport");
    command->callback([options] { Unpack(*options); });
}
const ToolCommand gUnpack(71, "unpack", AddUnpackCommand);

void AddListCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Names the descriptions of a pack file with their sizes");
    const auto options = std::make_shared<Options>();
    command->add_option("PACK", options->mOutput, "The pack file")->required();
    command->footer("Example: qlxview list views.qlxpack");
    command->callback([options] { List(*options); });
}
const ToolCommand gList(72, "list", AddListCommand);
} // namespace
