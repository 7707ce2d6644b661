// qlxview strings: string tables follow their descriptions, and go to translators and back.
#include <algorithm>
#include <cstdio>

#include "basekit/cmn/cmn_string.h"
#include "command.h"
#include "description.h"
#include "po.h"

namespace {
using Language = QLX_Language::ELanguage;

struct Options {
    std::vector<std::string> mFiles;
    std::vector<std::string> mLanguages;
    std::string mLanguage;
    std::string mPO;
    bool mPrune = false;
    bool mCheck = false;
};

/// By language; names of locales as translators' tools want them.
constexpr const char* kLocales[QLX_Language::kLanguageCount] = {"en", "ja", "ko", "zh_CN", "zh_TW",
                                                                "fr", "it", "de", "es"};

Language ParseLanguage(const std::string& code) {
    Language language = QLX_Language::English;
    if (!QLX_Language::FindLanguage(code, language))
        throw std::runtime_error("there is no language \"" + code +
                                 "\"; there are: ENU JPN KOR CHS CHT FRA ITA DEU ESP");
    return language;
}

Language ParseTranslation(const std::string& code) {
    const Language language = ParseLanguage(code);
    if (language == QLX_Language::English)
        throw std::runtime_error("English is what is translated from; name another language");
    return language;
}

/// The keys that a description uses, each with the places where.
std::map<std::string, std::vector<std::string>> UsedKeys(const Description& description) {
    std::map<std::string, std::vector<std::string>> keys;
    const QLX_RawPropertyContainer* const root = description.GetRoot();
    for (const QLX_RawPropertyContainer* node = root; node;) {
        for (const auto& [filter, set] : node->GetFilterPropertyMap()) {
            for (std::size_t i = 0; i < set.GetCount(); ++i) {
                const QLX_PropertyView view = set.GetAt(i);
                if (view.mType != qlx_PropType_String_Key || view.mText.empty())
                    continue;
                const auto place = description.GetPlace(
                    PropertyKey{node, filter, view.mType, std::string(view.mName)});
                keys[std::string(view.mText)].push_back(
                    Sys_FileLoc(description.GetPath()).GetName() + ":" +
                    std::to_string(place.mLine));
            }
        }
        const QLX_RawPropertyContainer* next = node->GetFirstChild();
        for (; !next && node != root; node = node->GetParent())
            next = node->GetNextSibling();
        node = next;
    }
    return keys;
}

/// Writes one language's table when it differs from what is there, and says so.
void WriteTable(const Description& description, Language language, const Options& options) {
    const Sys_FileLoc loc = description.GetTableLoc(language);
    const auto& tables = description.GetMemento().GetStringTables();
    const auto table = tables.find(language);
    const std::string before = loc.IsFile() ? Sys_File::ReadAll(loc) : std::string();
    const LineEndings endings =
        loc.IsFile() ? QLX_SourceViewFormat::LineEndingsFor(loc) : description.GetLineEndings();
    std::string name = QLX_GetStringTableName(before);
    if (name.empty())
        name = description.GetMemento().GetName();
    const std::string after =
        QLX_WriteStringTable(table == tables.end() ? QLX_StringTable() : table->second, name,
                             endings, &description.GetTableNotes(language));
    if (after == before)
        return;
    if (options.mCheck) {
        std::printf("%s: not up to date\n", loc.GetPath().c_str());
        gExitStatus = std::max<int>(gExitStatus, kExitFound);
        return;
    }
    Sys_SafeWriter::Replace(loc, after);
    std::printf("%s: written\n", loc.GetPath().c_str());
}

void Prune(QLX_StringTable& table, const std::map<std::string, std::vector<std::string>>& used) {
    for (auto entry = table.begin(); entry != table.end();)
        entry = used.count(entry->first) ? std::next(entry) : table.erase(entry);
}

void ForEachFile(const Options& options, void (*work)(Description&, const Options&)) {
    for (const std::string& path : options.mFiles) {
        if (const auto description = LoadDescription(path))
            work(*description, options);
        else
            gExitStatus = kExitFailed;
    }
}

void Extract(Description& description, const Options& options) {
    const auto used = UsedKeys(description);
    QLX_StringTable& english = description.GetMemento().GetStringTables()[QLX_Language::English];
    for (const auto& key : used)
        english.emplace(key.first, QLX_StringTableEntry());
    if (options.mPrune)
        Prune(english, used);
    WriteTable(description, QLX_Language::English, options);
}

/// The languages that are named, or all that have a table.
std::vector<Language> TranslationsOf(const Description& description, const Options& options) {
    std::vector<Language> languages;
    for (const std::string& code : options.mLanguages)
        languages.push_back(ParseTranslation(code));
    if (languages.empty())
        for (const auto& table : description.GetMemento().GetStringTables())
            if (table.first != QLX_Language::English)
                languages.push_back(table.first);
    return languages;
}

void MergeTables(Description& description, const Options& options) {
    const auto used = UsedKeys(description);
    auto& tables = description.GetMemento().GetStringTables();
    const QLX_StringTable english = tables[QLX_Language::English];
    for (const Language language : TranslationsOf(description, options)) {
        QLX_StringTable& table = tables[language];
        for (const auto& [key, entry] : english) {
            // A text that changed keeps what it was translated from, so that check tells.
            QLX_StringTableEntry& mine = table[key];
            if (mine.mLocalized.empty() || mine.mSource.empty())
                mine.mSource = entry.mLocalized;
        }
        if (options.mPrune)
            Prune(table, used);
        WriteTable(description, language, options);
    }
}

void Export(const Options& options) {
    const Language language = ParseTranslation(options.mLanguage);
    std::vector<POEntry> entries;
    for (const std::string& path : options.mFiles) {
        const auto description = LoadDescription(path);
        if (!description) {
            gExitStatus = kExitFailed;
            return;
        }
        const auto used = UsedKeys(*description);
        auto& tables = description->GetMemento().GetStringTables();
        const QLX_StringTable& english = tables[QLX_Language::English];
        const QLX_StringTable& table = tables[language];
        for (const auto& [key, source] : english) {
            POEntry entry;
            entry.mContext = description->GetMemento().GetName() + "|" + key;
            entry.mSource = source.mLocalized;
            if (const auto places = used.find(key); places != used.end())
                entry.mPlaces = places->second;
            const auto notes = description->GetTableNotes(QLX_Language::English).mComments;
            if (const auto note = notes.find(key); note != notes.end())
                for (const std::string& line : note->second)
                    entry.mNotes.push_back(
                        line.substr(std::min(line.find_first_not_of("/ "), line.size())));
            if (const auto mine = table.find(key); mine != table.end()) {
                entry.mText = mine->second.mLocalized;
                if (!entry.mText.empty() && !mine->second.mSource.empty() &&
                    mine->second.mSource != entry.mSource) {
                    entry.mFuzzy = true;
                    entry.mHasPrevious = true;
                    entry.mPrevious = mine->second.mSource;
                }
            }
            entries.push_back(std::move(entry));
        }
    }
    const std::string text = WritePO(entries, kLocales[language], "view descriptions");
    if (options.mPO == "-") {
        std::fwrite(text.data(), 1, text.size(), stdout);
        return;
    }
    Sys_SafeWriter::Replace(Sys_FileLoc(options.mPO), text);
    std::printf("%s: %zu texts\n", options.mPO.c_str(), entries.size());
}

void SayOfEntry(const Options& options, const POEntry& entry, const std::string& what) {
    std::fprintf(stderr, "%s:%d: %s\n", options.mPO.c_str(), entry.mLine, what.c_str());
    gExitStatus = std::max<int>(gExitStatus, kExitFound);
}

void Import(const Options& options) {
    const Language language = ParseTranslation(options.mLanguage);
    const std::vector<POEntry> entries =
        ReadPO(Sys_File::ReadAll(Sys_FileLoc(options.mPO)), options.mPO);
    std::map<std::string, const POEntry*> byContext;
    for (const POEntry& entry : entries)
        if (!byContext.emplace(entry.mContext, &entry).second)
            SayOfEntry(options, entry, "\"" + entry.mContext + "\" stands twice; the first counts");
    std::vector<std::unique_ptr<Description>> descriptions;
    for (const std::string& path : options.mFiles) {
        descriptions.push_back(LoadDescription(path));
        if (!descriptions.back()) {
            gExitStatus = kExitFailed;
            return;
        }
    }
    for (const auto& description : descriptions) {
        auto& tables = description->GetMemento().GetStringTables();
        const QLX_StringTable english = tables[QLX_Language::English];
        for (const auto& source : english) {
            const std::string& key = source.first;
            const auto found = byContext.find(description->GetMemento().GetName() + "|" + key);
            if (found == byContext.end())
                continue;
            const POEntry& entry = *found->second;
            byContext.erase(found);
            // One that the translator has still to look at is no translation yet.
            if (entry.mFuzzy || entry.mText.empty())
                continue;
            tables[language][key] = {entry.mSource, entry.mText};
        }
        WriteTable(*description, language, options);
    }
    for (const auto& left : byContext)
        SayOfEntry(options, *left.second,
                   "\"" + left.first + "\" is no text of these descriptions; not imported");
}

CLI::App* AddPart(CLI::App& strings, const char* name, const char* help, const char* example,
                  const std::shared_ptr<Options>& options) {
    CLI::App* const part = strings.add_subcommand(name, help);
    part->add_option("FILE", options->mFiles, "XML sources")->required();
    part->footer(std::string("Example: qlxview strings ") + example);
    return part;
}

void AddStringsCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Brings string tables up to date, to translators and back");
    command->require_subcommand(1);
    command->footer("In PO files the context is the description's name, \"|\" and the key.\n"
                    "Example: qlxview strings export -l DEU -o deu.po views/*.xml");
    const auto options = std::make_shared<Options>();
    CLI::App* const extract =
        AddPart(*command, "extract", "Adds the keys that a description uses to its English table",
                "extract views/Mix.xml", options);
    CLI::App* const merge =
        AddPart(*command, "merge", "Adds what the English table has to the other languages' tables",
                "merge -l ITA views/*.xml", options);
    merge->add_option("-l,--language", options->mLanguages,
                      "Which; without it all that have a table");
    for (CLI::App* const part : {extract, merge}) {
        part->add_flag("--prune", options->mPrune, "Remove keys that the description does not use");
        part->add_flag("--check", options->mCheck, "Change nothing; name what is not up to date");
    }
    extract->callback([options] { ForEachFile(*options, Extract); });
    merge->callback([options] { ForEachFile(*options, MergeTables); });
    CLI::App* const toPO = AddPart(*command, "export", "Writes one language's texts as a PO file",
                                   "export -l DEU -o deu.po views/*.xml", options);
    toPO->add_option("-o,--output", options->mPO, "The PO file; - is standard output")->required();
    CLI::App* const fromPO =
        AddPart(*command, "import", "Takes translations from a PO file into the tables",
                "import -l DEU -i deu.po views/*.xml", options);
    fromPO->add_option("-i,--input", options->mPO, "The PO file")->required();
    for (CLI::App* const part : {toPO, fromPO})
        part->add_option("-l,--language", options->mLanguage, "JPN, DEU, ...")->required();
    toPO->callback([options] { Export(*options); });
    fromPO->callback([options] { Import(*options); });
}
const ToolCommand gStrings(50, "strings", AddStringsCommand);
} // namespace
