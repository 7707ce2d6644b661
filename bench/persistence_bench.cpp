// What reading descriptions and looking properties up costs, beside what others take for the same.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <expat.h>
#include <malloc.h>

#include "qlx/persistence/qlx_binaryformat.h"
#include "qlx/persistence/qlx_sourceformat.h"

#ifdef QLX_PEER_QT
#include <QtCore/QByteArray>
#include <QtCore/QXmlStreamReader>
#endif
#ifdef QLX_PEER_JUCE
#include <juce_core/juce_core.h>
#include <juce_data_structures/juce_data_structures.h>
#endif

namespace {
/// A description as windows have them: views of six to ten properties, some by layout and language,
/// nested four deep, until it has about so many bytes.
std::string MakeDescription(std::size_t bytes) {
    [[maybe_unused]] static const char* const classes[] = {
        "TButton", "TStaticText", "TSlider", "TNumericEntryText", "TPopupMenu", "TPlateView"};
    std::string text = "<container name=\"Generated\">\n\t<viewhierarchy name=\"Generated\">\n";
    std::uint32_t seed = 12345;
    char line[256];
    const auto random = [&seed](std::uint32_t below) {
        seed = seed * 1664525u + 1013904223u;
        return (seed >> 8) % below;
    };
    int number = 0;
    const auto view = [&](auto& self, int depth) -> void {
        const std::string indent(static_cast<std::size_t>(depth), '\t');
        const auto put = [&](const char* format, auto... arguments) {
            std::snprintf(line, sizeof line, format, arguments...);
            text += indent + "\t" + line + "\n";
        };
        std::snprintf(line, sizeof line, "<view class=\"%s\" Identifier=\"v%03x\">",
                      classes[random(6)], static_cast<unsigned>(number++ & 0xFFF));
        text += indent + line + "\n";
        const int left = static_cast<int>(random(1000));
        const int top = static_cast<int>(random(800));
        put("<property name=\"Enabled\" type=\"bool\" value=\"%s\"/>",
            random(4) ? "true" : "false");
        put("<property name=\"FontSize\" type=\"int32\" value=\"%d\"/>",
            static_cast<int>(9 + random(6)));
        put("<property name=\"Frame\" type=\"rect\" value=\"%d %d %d %d\"/>", top, left, top + 22,
            left + 90);
        put("<property name=\"TextColor\" type=\"rgbcolor\" value=\"0x%x 0x%x 0x%x\"/>",
            static_cast<unsigned>(random(65536)), static_cast<unsigned>(random(65536)),
            static_cast<unsigned>(random(65536)));
        put("<property name=\"Title\" type=\"stringidx\" value=\"KEY_%d\"/>", number);
        put("<property name=\"ToolTip\" type=\"string\" value=\"Shows the level of track %d\"/>",
            static_cast<int>(random(64)));
        put("<property name=\"Frame\" type=\"rect\" value=\"%d %d %d %d\" Layout=\"Compact\"/>",
            top / 2, left / 2, top / 2 + 18, left / 2 + 70);
        if (random(3) == 0)
            put("<property name=\"Frame\" type=\"rect\" value=\"%d %d %d %d\" Language=\"DEU\"/>",
                top, left, top + 22, left + 140);
        const std::uint32_t children = depth < 5 ? random(4) : 0;
        for (std::uint32_t i = 0; i < children; ++i)
            self(self, depth + 1);
        text += indent + "</view> <!-- -->\n";
    };
    while (text.size() < bytes)
        view(view, 2);
    return text + "\t</viewhierarchy> <!--Generated -->\n</container>";
}

const std::string& Description(std::int64_t bytes) {
    static std::unordered_map<std::int64_t, std::string> made;
    std::string& text = made[bytes];
    if (text.empty())
        text = MakeDescription(static_cast<std::size_t>(bytes));
    return text;
}

void ReportBytes(benchmark::State& state, const std::string& text) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    state.counters["ns/byte"] =
        benchmark::Counter(static_cast<double>(state.iterations() * text.size()) * 1e-9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

#define SIZES ->Arg(100'000)->Arg(1'000'000)->Arg(20'000'000)->Unit(benchmark::kMicrosecond)

void Read_ExpatEmptyCallbacks(benchmark::State& state) {
    const std::string& text = Description(state.range(0));
    for (auto _ : state) {
        XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetElementHandler(
            parser, [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
        XML_SetCharacterDataHandler(parser, [](void*, const XML_Char*, int) {});
        benchmark::DoNotOptimize(XML_Parse(parser, text.data(), static_cast<int>(text.size()), 1));
        XML_ParserFree(parser);
    }
    ReportBytes(state, text);
}
BENCHMARK(Read_ExpatEmptyCallbacks)->Name("Description_Read/expat") SIZES;

void Read_Description(benchmark::State& state) {
    const std::string& text = Description(state.range(0));
    Sys_File file("generated.xml", text);
    for (auto _ : state) {
        file.SetPosition(0);
        QLX_XMLParser parser(&file, nullptr);
        std::unique_ptr<QLX_RawPropertyContainer> root(parser.Parse());
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming();
        root.reset();
        state.ResumeTiming();
    }
    ReportBytes(state, text);
}
BENCHMARK(Read_Description)->Name("Description_Read") SIZES;

void Read_DescriptionAndFree(benchmark::State& state) {
    const std::string& text = Description(state.range(0));
    Sys_File file("generated.xml", text);
    for (auto _ : state) {
        file.SetPosition(0);
        QLX_XMLParser parser(&file, nullptr);
        std::unique_ptr<QLX_RawPropertyContainer> root(parser.Parse());
        benchmark::DoNotOptimize(root.get());
    }
    ReportBytes(state, text);
}
BENCHMARK(Read_DescriptionAndFree)->Name("Description_ReadAndFree") SIZES;

#ifdef QLX_PEER_QT
void Read_QXmlStreamReader(benchmark::State& state) {
    const std::string& text = Description(state.range(0));
    const QByteArray bytes = QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
    for (auto _ : state) {
        QXmlStreamReader reader(bytes);
        std::size_t attributes = 0;
        while (!reader.atEnd())
            if (reader.readNext() == QXmlStreamReader::StartElement)
                attributes += static_cast<std::size_t>(reader.attributes().size());
        benchmark::DoNotOptimize(attributes);
    }
    ReportBytes(state, text);
}
BENCHMARK(Read_QXmlStreamReader)->Name("Description_Read/qt") SIZES;
#endif

#ifdef QLX_PEER_JUCE
void Read_JuceValueTree(benchmark::State& state) {
    const std::string& text = Description(state.range(0));
    const juce::String string = juce::String::fromUTF8(text.data(), static_cast<int>(text.size()));
    for (auto _ : state) {
        const juce::ValueTree tree = juce::ValueTree::fromXml(string);
        benchmark::DoNotOptimize(tree.isValid());
    }
    ReportBytes(state, text);
}
BENCHMARK(Read_JuceValueTree)->Name("Description_Read/juce") SIZES;
#endif

std::string Packed(const std::string& text) {
    Sys_File file("generated.xml", text);
    QLX_XMLParser parser(&file, nullptr);
    std::unique_ptr<QLX_RawPropertyContainer> wrapper(parser.Parse());
    const QLX_ViewMemento memento(wrapper->RemoveChild(wrapper->GetFirstChild()).release(), "");
    return QLX_BinaryViewFormat::EncodeMemento(memento);
}

/// As of the text: with the tree freed off the clock, and on it.
template <bool kAndFree>
void Read_Packed(benchmark::State& state) {
    const std::string& text = Description(state.range(0));
    const std::string bytes = Packed(text);
    for (auto _ : state) {
        auto read = QLX_BinaryViewFormat::DecodeMemento(bytes, "generated");
        benchmark::DoNotOptimize(read.get());
        if (!kAndFree) {
            state.PauseTiming();
            read.reset();
            state.ResumeTiming();
        }
    }
    ReportBytes(state, text);
    state.counters["packed/text"] =
        static_cast<double>(bytes.size()) / static_cast<double>(text.size());
}
BENCHMARK(Read_Packed<false>)->Name("Description_ReadPacked") SIZES;
BENCHMARK(Read_Packed<true>)->Name("Description_ReadPackedAndFree") SIZES;

/// A field of /proc/self/status, in bytes.
std::size_t ProcessMemory(const char* field) {
    std::size_t bytes = 0;
    if (std::FILE* const status = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, status))
            if (std::strncmp(line, field, std::strlen(field)) == 0)
                bytes = std::strtoull(line + std::strlen(field), nullptr, 10) * 1024;
        std::fclose(status);
    }
    return bytes;
}

/// How much the process grew at most while the work ran, by the text's size. The text lies on the
/// disk, so that only what a reader needs is counted.
template <class Work>
void ReportPeak(benchmark::State& state, std::size_t textSize, Work work) {
    malloc_trim(0);
    if (std::FILE* const reset = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", reset); // the peak becomes what is in use now
        std::fclose(reset);
    }
    const std::size_t before = ProcessMemory("VmRSS:");
    work();
    state.counters["peak/text"] =
        static_cast<double>(ProcessMemory("VmHWM:") - before) / static_cast<double>(textSize);
}

constexpr std::int64_t kLarge = 20'000'000;
std::string LargeFile() {
    const std::string path = "persistence_bench.xml";
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    const std::string text = MakeDescription(kLarge);
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
    return path;
}

void Memory_Description(benchmark::State& state) {
    const std::string path = LargeFile();
    for (auto _ : state)
        ReportPeak(state, kLarge, [&] {
            Sys_File file(Sys_FileLoc(path), Sys_FileMode::Read);
            QLX_XMLParser parser(&file, nullptr);
            std::unique_ptr<QLX_RawPropertyContainer> root(parser.Parse());
            benchmark::DoNotOptimize(root.get());
        });
    std::remove(path.c_str());
}
BENCHMARK(Memory_Description)
    ->Name("Description_Memory/20000000")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

#ifdef QLX_PEER_JUCE
void Memory_JuceValueTree(benchmark::State& state) {
    const std::string path = LargeFile();
    for (auto _ : state)
        ReportPeak(state, kLarge, [&] {
            const std::string text = Sys_File::ReadAll(Sys_FileLoc(path));
            const juce::ValueTree tree = juce::ValueTree::fromXml(
                juce::String::fromUTF8(text.data(), static_cast<int>(text.size())));
            benchmark::DoNotOptimize(tree.isValid());
        });
    std::remove(path.c_str());
}
BENCHMARK(Memory_JuceValueTree)
    ->Name("Description_Memory/juce/20000000")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
#endif

/// Ten thousand containers, frozen, both filters seen before.
void SetCurrentFilter_Frozen(benchmark::State& state) {
    QLX_RawPropertyContainer root("viewhierarchy");
    const QLX_PropertyFilter compact = QLX_PropertyFilter::MakeFilter("Compact");
    for (int i = 0; i < 9'999; ++i) {
        auto child = std::make_unique<QLX_RawPropertyContainer>("view");
        child->SetInt32Property("FontSize", i, QLX_PropertyFilter::RootFilter());
        child->SetStringProperty("Title", "Mute", QLX_PropertyFilter::RootFilter());
        if (i % 2)
            child->SetInt32Property("FontSize", 9, compact);
        root.AddChild(std::move(child));
    }
    root.FreezeProperties();
    root.SetCurrentFilter(compact);
    root.SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    bool common = true;
    for (auto _ : state) {
        common = !common;
        root.SetCurrentFilter(common ? QLX_PropertyFilter::RootFilter()
                                     : QLX_PropertyFilter::MakeFilter("Compact"));
    }
}
BENCHMARK(SetCurrentFilter_Frozen)
    ->Name("Filter_SelectFrozen/10000")
    ->Unit(benchmark::kMicrosecond);

std::vector<std::string> Names(std::int64_t count) {
    static const char* const stems[] = {"Enabled", "FontSize",     "TextColor", "Title",
                                        "ToolTip", "MinimumWidth", "Alignment", "X"};
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i)
        names.push_back(stems[i % 8] + (i < 8 ? std::string() : std::to_string(i / 8)));
    return names;
}

#define COUNTS ->Arg(4)->Arg(16)->Arg(64)

template <bool kFound>
void LookUp_UnorderedMap(benchmark::State& state) {
    const std::vector<std::string> names = Names(state.range(0));
    std::unordered_map<std::string, std::int32_t> map;
    for (const std::string& name : names)
        map[name] = 1;
    std::vector<std::string> asked = names;
    if (!kFound)
        for (std::string& name : asked)
            name.back() = '~';
    std::size_t next = 0;
    for (auto _ : state) {
        const auto found = map.find(asked[next]);
        benchmark::DoNotOptimize(found == map.end() ? 0 : found->second);
        next = next + 1 == asked.size() ? 0 : next + 1;
    }
}
BENCHMARK(LookUp_UnorderedMap<true>)->Name("Property_FindPresent/std") COUNTS;
BENCHMARK(LookUp_UnorderedMap<false>)->Name("Property_FindAbsent/std") COUNTS;

template <bool kFound>
void LookUp_Container(benchmark::State& state) {
    const std::vector<std::string> names = Names(state.range(0));
    QLX_RawPropertyContainer container("view");
    for (const std::string& name : names)
        container.SetInt32Property(name, 1, QLX_PropertyFilter::RootFilter());
    container.SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::vector<std::string> asked = names;
    if (!kFound)
        for (std::string& name : asked)
            name.back() = '~';
    std::size_t next = 0;
    for (auto _ : state) {
        std::int32_t value = 0;
        benchmark::DoNotOptimize(container.GetInt32Property(asked[next], value));
        benchmark::DoNotOptimize(value);
        next = next + 1 == asked.size() ? 0 : next + 1;
    }
}
BENCHMARK(LookUp_Container<true>)->Name("Property_FindPresent") COUNTS;
BENCHMARK(LookUp_Container<false>)->Name("Property_FindAbsent") COUNTS;
} // namespace

BENCHMARK_MAIN();
