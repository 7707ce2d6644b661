// Where the description's files lie, and reading them. The XML reader and the writer have sources
// of their own.
#include "qlx/persistence/qlx_sourceformat.h"

#include <stdexcept>
#include <utility>

#include "qlx/persistence/qlx_stringtable.h"

namespace {
constexpr const char* kRootName = "viewhierarchy";

constexpr struct {
    const char* mElement;
    const char* mName;
    bool mRequired;
    QLX_PropertyType mType;
} kWellKnown[] = {
    {"imagepropslist", "name", true, qlx_PropType_String},
    {"imageproperties", "ImageName", true, qlx_PropType_String},
    {"imagecomposite", "name", true, qlx_PropType_String},
    {"layer", "name", true, qlx_PropType_String},
    {"fontstyles", "name", true, qlx_PropType_String},
    {"fontstyle", "name", true, qlx_PropType_String},
    {"viewhierarchy", "name", false, qlx_PropType_String},
    {"viewhierarchy", "resid", false, qlx_PropType_String},
    {"container", "name", true, qlx_PropType_String},
    {"view", "IDX", false, qlx_PropType_String},
    {"view", "class", true, qlx_PropType_String},
    {"view", "Identifier", true, qlx_PropType_IDType},
    {"view", "Language", false, qlx_PropType_String},
    {"behavior", "class", true, qlx_PropType_String},
    {"behavior", "Identifier", true, qlx_PropType_IDType},
    {"adorner", "class", false, qlx_PropType_String},
    {"adorner", "Identifier", false, qlx_PropType_IDType},
    {"drawingenvironment", "class", true, qlx_PropType_String},
    {"state", "class", true, qlx_PropType_String},
};

std::map<std::string, std::vector<QLX_WellKnownProperty>> MakeWellKnownProperties() {
    std::map<std::string, std::vector<QLX_WellKnownProperty>> table;
    for (const auto& row : kWellKnown)
        table[row.mElement].push_back({row.mElement, row.mName, row.mRequired, row.mType});
    return table;
}

Sys_FileLoc BackupLoc(const Sys_FileLoc& loc) { return loc.GetSibling(loc.GetName() + ".bak"); }
} // namespace

std::string QLX_SourceProblem::ToString() const {
    std::string text = mFile;
    if (mLine > 0)
        text += ":" + std::to_string(mLine) + ":" + std::to_string(mColumn);
    return text + ": " + mReason;
}

QLX_SourceViewFormat::QLX_SourceViewFormat(Sys_FileLoc source, Sys_FileSystem& fileSystem)
    : mSource(std::move(source)), mFileSystem(fileSystem) {
    for (int i = 0; i < QLX_Language::kLanguageCount; ++i) {
        const auto language = static_cast<QLX_Language::ELanguage>(i);
        mStringTableLocs[language] =
            mSource.GetSibling(mSource.GetStem() + "." + QLX_Language::GetFileCode(language) + "." +
                               GetStringFileType().GetExtension());
    }
}

QLX_ViewMemento* QLX_SourceViewFormat::ReadMemento(QLX_RawPropertyContainerFactory* factory) {
    mProblems.clear();
    std::unique_ptr<QLX_RawPropertyContainer> wrapper;
    try {
        Sys_File file(mSource, Sys_FileMode::Read, mFileSystem);
        QLX_XMLParser parser(&file, factory);
        parser.SetMaximumDepth(mMaximumDepth);
        parser.SetObserver(mObserver);
        wrapper.reset(parser.Parse());
        mProblems = parser.GetProblems();
    } catch (const Sys_FileError& error) {
        mProblems.push_back({error.GetPath(), 0, 0, QLX_SourceProblem::kError, error.GetReason()});
    }
    if (!wrapper)
        throw std::runtime_error("Malformed XML file: no container returned");
    wrapper->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    QLX_RawPropertyContainer* root = nullptr;
    for (QLX_RawPropertyContainer* child = wrapper->GetFirstChild(); child;
         child = child->GetNextSibling()) {
        if (!root && child->GetName() == kRootName)
            root = child;
        else
            mProblems.push_back({mSource.GetPath(), 0, 0, QLX_SourceProblem::kWarning,
                                 "the wrapper's \"" + child->GetName() +
                                     "\" is no part of the description and is not kept",
                                 /*lost*/ true});
    }
    if (!root) {
        mProblems.push_back({mSource.GetPath(), 0, 0, QLX_SourceProblem::kError,
                             "the wrapper has no \"viewhierarchy\" in it"});
        throw std::runtime_error("Malformed source: nothing in container");
    }
    std::string name;
    if (!root->GetStringProperty("name", name) || name.empty())
        name = mSource.GetStem();
    auto memento = std::make_unique<QLX_ViewMemento>(wrapper->RemoveChild(root).release(), name);
    memento->SetFolder(mSource.GetParent().GetPath());
    ReadStringTables(*memento);
    return memento.release();
}

void QLX_SourceViewFormat::ReadStringTables(QLX_ViewMemento& memento) {
    for (const auto& [language, loc] : mStringTableLocs) {
        if (!loc.IsFile())
            continue;
        try {
            memento.GetStringTables()[language] =
                QLX_ReadStringTable(Sys_File::ReadAll(loc), loc.GetPath(), &mProblems);
        } catch (const Sys_FileError& error) {
            mProblems.push_back(
                {error.GetPath(), 0, 0, QLX_SourceProblem::kError, error.GetReason()});
            throw;
        }
    }
}

void QLX_SourceViewFormat::WriteMemento(const QLX_ViewMemento* memento, LineEndings endings) {
    std::vector<std::unique_ptr<Sys_SafeWriter>> writers;
    const auto write = [&](const Sys_FileLoc& loc, const std::string& text) {
        writers.push_back(std::make_unique<Sys_SafeWriter>(loc, mFileSystem));
        writers.back()->Write(text);
    };
    const std::string source = WriteToText(*memento->GetRoot(), endings);
    std::map<QLX_Language::ELanguage, std::string> tables;
    for (const auto& [language, table] : memento->GetStringTables())
        tables[language] = QLX_WriteStringTable(table, memento->GetName(), endings);
    for (const auto& [language, text] : tables)
        write(GetStringTableFileLoc(language), text);
    write(mSource, source);
    for (const auto& writer : writers)
        writer->Commit();
}

LineEndings QLX_SourceViewFormat::LineEndingsFor(const Sys_FileLoc& loc) {
    if (!loc.IsFile())
        return LineEndings::Unix;
    // Only as much as it takes to see the first line's end.
    Sys_File file(loc, Sys_FileMode::Read);
    char block[1024];
    for (;;) {
        const std::size_t count = file.Read(block, sizeof block - 1);
        const std::string_view text(block, count);
        const std::size_t end = text.find_first_of("\r\n");
        if (end == std::string_view::npos && count == sizeof block - 1)
            continue;
        // A carriage return at the block's end may have its line feed in the next one.
        const std::size_t more = end + 1 == count ? file.Read(block + count, 1) : 0;
        return Sys_DetectLineEndings(std::string_view(block, count + more));
    }
}

void QLX_SourceViewFormat::GetSalientFiles(std::list<Sys_FileLoc>& files) const {
    files.push_back(mSource);
    for (const auto& table : mStringTableLocs)
        if (table.second.IsFile())
            files.push_back(table.second);
}

const Sys_FileLoc&
QLX_SourceViewFormat::GetStringTableFileLoc(const QLX_Language::ELanguage& language) const {
    const auto found = mStringTableLocs.find(language);
    return found == mStringTableLocs.end() ? mStringTableLocs.begin()->second : found->second;
}

void QLX_SourceViewFormat::BackupFiles(const Sys_FileLoc& source) {
    std::list<Sys_FileLoc> files;
    QLX_SourceViewFormat(source).GetSalientFiles(files);
    for (const Sys_FileLoc& file : files)
        Sys_SafeWriter::Replace(BackupLoc(file), Sys_File::ReadAll(file));
}

const Sys_FileType& QLX_SourceViewFormat::GetSourceFileType() { return Sys_FileType::XML(); }

const Sys_FileType& QLX_SourceViewFormat::GetStringFileType() {
    static const Sys_FileType type("Quarry String File", "str");
    return type;
}

const std::map<std::string, std::vector<QLX_WellKnownProperty>>&
QLX_SourceViewFormat::GetWellKnownProperties() {
    static const auto table = MakeWellKnownProperties();
    return table;
}

bool QLX_SourceViewFormat::IsWellKnownProperty(const std::string& element,
                                               const std::string& property, bool& required) {
    const auto found = GetWellKnownProperties().find(element);
    if (found == GetWellKnownProperties().end())
        return false;
    for (const QLX_WellKnownProperty& known : found->second) {
        if (known.mName == property) {
            required = known.mRequired;
            return true;
        }
    }
    return false;
}
