// A whole process from its start to its end: load the library, read a packed description with
// twenty text fields, open the window headless, paint the first frame, end. The clock of the wall,
// programs and libraries in the file cache.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "mediakit/ff/ff_document.h"
#include "qlx/persistence/qlx_binaryformat.h"

extern char** environ;

namespace {

void AddField(QLX_RawPropertyContainer& window, int i) {
    const QLX_PropertyFilter& filter = QLX_PropertyFilter::DefaultFilter();
    const int left = 10 + i % 2 * 205;
    const int top = 10 + i / 2 * 26;
    auto field = std::make_unique<QLX_RawPropertyContainer>("view");
    field->SetStringProperty("class", "TEditText", filter);
    field->SetIDTypeProperty("Identifier", static_cast<std::uint32_t>(i + 1), filter);
    field->SetRectProperty("Frame", {left, top, left + 195, top + 22}, filter);
    field->SetStringProperty("Text", "Field " + std::to_string(i + 1), filter);
    window.AddChild(std::move(field));
}

/// Twenty fields in two columns, packed; the file goes with the object.
class Description {
  public:
    Description() {
        std::filesystem::remove(mPath);
        const QLX_PropertyFilter& filter = QLX_PropertyFilter::DefaultFilter();
        auto* root = new QLX_RawPropertyContainer("viewhierarchy");
        auto window = std::make_unique<QLX_RawPropertyContainer>("view");
        window->SetStringProperty("class", "TWindow", filter);
        window->SetIDTypeProperty("Identifier", Cmn_FourChar("wind"), filter);
        window->SetRectProperty("Frame", {0, 0, 420, 280}, filter);
        for (int i = 0; i < 20; ++i)
            AddField(*window, i);
        root->AddChild(std::move(window));
        QLX_ViewMemento memento(root, "fields");
        const auto document = FF_Document::Create(Sys_FileLoc(mPath));
        QLX_BinaryViewFormat(document.get()).WriteMementos({{"fields", &memento}});
    }
    ~Description() { std::filesystem::remove(mPath); }
    Description(const Description&) = delete;
    Description& operator=(const Description&) = delete;
    [[nodiscard]] const std::string& GetPath() const { return mPath; }

  private:
    std::string mPath = std::filesystem::temp_directory_path() /
                        ("qlx_startup_" + std::to_string(getpid()) + ".views");
};

/// Starts a program and waits for its end; false when it could not or it failed.
bool Run(const char* program, const char* argument) {
    char* arguments[] = {const_cast<char*>(program), const_cast<char*>(argument), nullptr};
    pid_t process = 0;
    if (posix_spawn(&process, program, nullptr, nullptr, arguments, environ) != 0)
        return false;
    int status = 0;
    return waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void Startup(benchmark::State& state, const char* program) {
    const Description description;
    for (auto _ : state) {
        if (!Run(program, description.GetPath().c_str())) {
            state.SkipWithError("the program failed");
            break;
        }
    }
}

void Startup_TwentyFields(benchmark::State& state) { Startup(state, BENCH_QLX_FIELDS); }
BENCHMARK(Startup_TwentyFields)->Unit(benchmark::kMillisecond)->UseRealTime();

#ifdef BENCH_QT_FIELDS
void Startup_TwentyFieldsQt(benchmark::State& state) { Startup(state, BENCH_QT_FIELDS); }
BENCHMARK(Startup_TwentyFieldsQt)
    ->Name("Startup_TwentyFields/qt")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
#endif

} // namespace

BENCHMARK_MAIN();
