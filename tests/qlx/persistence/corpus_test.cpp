// Sixteen windows as a host has them, in three layouts and four languages: every form gives back
// what the files say.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "qlx/persistence/qlx_binaryformat.h"
#include "qlx/persistence/qlx_sourceformat.h"

namespace {
std::vector<Sys_FileLoc> Corpus() {
    std::vector<Sys_FileLoc> sources;
    for (const auto& entry : std::filesystem::directory_iterator(QLX_TEST_DATA "/views"))
        if (entry.path().extension() == ".xml")
            sources.emplace_back(entry.path().generic_string());
    std::sort(sources.begin(), sources.end());
    return sources;
}

std::unique_ptr<QLX_ViewMemento> ReadFrom(const Sys_FileLoc& source) {
    return std::unique_ptr<QLX_ViewMemento>(QLX_SourceViewFormat(source).ReadMemento(nullptr));
}

TEST(Corpus, HasWindowsLayoutsAndLanguages) {
    std::set<std::string> values;
    for (const Sys_FileLoc& source : Corpus()) {
        const auto memento = ReadFrom(source);
        values.merge(memento->GetRoot()->GetFilterValues());
        EXPECT_EQ(memento->GetStringTables().size(), 4u) << source.GetPath();
    }
    EXPECT_GE(Corpus().size(), 12u);
    EXPECT_EQ(values, (std::set<std::string>{"Compact", "DEU", "FRA", "JPN", "Wide"}));
}

TEST(Corpus, IsWrittenAsItStands) {
    const Sys_FileLoc folder(std::string(QLX_TEST_OUTPUT) + "/views");
    std::filesystem::create_directories(folder.GetPath());
    for (const Sys_FileLoc& source : Corpus()) {
        SCOPED_TRACE(source.GetPath());
        const auto memento = ReadFrom(source);
        const Sys_FileLoc copy = folder.GetChild(source.GetName());
        QLX_SourceViewFormat(copy).WriteMemento(memento.get(), LineEndings::Unix);
        std::list<Sys_FileLoc> files;
        QLX_SourceViewFormat(source).GetSalientFiles(files);
        EXPECT_EQ(files.size(), 5u);
        for (const Sys_FileLoc& file : files)
            EXPECT_EQ(Sys_File::ReadAll(folder.GetChild(file.GetName())), Sys_File::ReadAll(file));
    }
}

TEST(Corpus, SurvivesPacking) {
    for (const Sys_FileLoc& source : Corpus()) {
        SCOPED_TRACE(source.GetPath());
        const auto memento = ReadFrom(source);
        const auto unpacked = QLX_BinaryViewFormat::DecodeMemento(
            QLX_BinaryViewFormat::EncodeMemento(*memento), memento->GetName());
        EXPECT_EQ(QLX_SourceViewFormat::WriteToText(*unpacked->GetRoot(), LineEndings::Unix),
                  Sys_File::ReadAll(source));
        EXPECT_EQ(unpacked->GetStringTables(), memento->GetStringTables());
    }
}

TEST(Corpus, ShowsTextsInEveryLanguage) {
    const auto memento = ReadFrom(Sys_FileLoc(QLX_TEST_DATA "/views/BounceDialog.xml"));
    const struct {
        QLX_Language::ELanguage mLanguage;
        const char* mText;
    } rows[] = {
        {QLX_Language::English, "Cancel"},
        {QLX_Language::German, "Abbrechen"},
        {QLX_Language::French, "Annuler"},
        {QLX_Language::Japanese, "\xE3\x82\xAD\xE3\x83\xA3\xE3\x83\xB3\xE3\x82\xBB\xE3\x83\xAB"},
        {QLX_Language::Korean, ""}}; // no table
    for (const auto& row : rows)
        EXPECT_EQ(memento->GetLocalizedStringProperty(row.mLanguage, "CANCEL"), row.mText);
}

TEST(Corpus, BackupsStandBeside) {
    const Sys_FileLoc folder(std::string(QLX_TEST_OUTPUT) + "/backup");
    std::filesystem::create_directories(folder.GetPath());
    const Sys_FileLoc source = folder.GetChild("Transport.xml");
    const auto memento = ReadFrom(Sys_FileLoc(QLX_TEST_DATA "/views/Transport.xml"));
    QLX_SourceViewFormat(source).WriteMemento(memento.get(), LineEndings::Windows);
    EXPECT_EQ(QLX_SourceViewFormat::LineEndingsFor(source), LineEndings::Windows);
    QLX_SourceViewFormat::BackupFiles(source);
    for (const char* name : {"Transport.xml", "Transport.ENU.str", "Transport.JPN.str"})
        EXPECT_EQ(Sys_File::ReadAll(folder.GetChild(std::string(name) + ".bak")),
                  Sys_File::ReadAll(folder.GetChild(name)));
}
} // namespace
