// How long region operations take beside pixman, Qt and JUCE, and beside the pairwise algorithms
// that define our lists. Names: Region_<operation>_<shape>/<rectangles>/<who>; all of a row work on
// the same rectangles.
//
// Shapes: "random" is that many overlapping rectangles at constant density in each operand;
// "lattice" is the black fields of a chessboard against the white ones, so that a union joins
// everything; "windows" is a window's typical dirty rectangles, united one by one. Random ones and
// windows are many, taken in turn: a processor learns the few branches of one small input by heart,
// which tells nothing of the next one.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "qlx/foundation/qlx_region.h"
#include "tests/support/literal_region.h"

#ifdef BENCH_PIXMAN
#include <pixman.h>
#endif
#ifdef BENCH_QT
#include <QRegion>
#endif
#ifdef BENCH_JUCE
#include "bench/peers/juce_regions.h"
#endif

namespace {

using Rect = Cmn_Rect<int>;
using Rects = std::vector<Rect>;
using benchmark::DoNotOptimize;

// Input

struct Operands {
    Rects mFirst;
    Rects mSecond;
};

// At the density of so many; and as many, or more.
Rects RandomRects(int count, std::uint64_t seed, int made = 0) {
    std::mt19937_64 random(seed);
    const int side = static_cast<int>(32 * std::sqrt(count)) + 32;
    std::uniform_int_distribution<int> place(0, side);
    std::uniform_int_distribution<int> size(8, 40);
    Rects rects;
    for (int i = 0; i < std::max(count, made); ++i) {
        const int x = place(random);
        const int y = place(random);
        rects.emplace_back(x, y, x + size(random), y + size(random));
    }
    return rects;
}

Operands LatticeOperands(int count) {
    Operands operands;
    const int columns = 2 * static_cast<int>(std::ceil(std::sqrt(count)));
    for (int i = 0; static_cast<int>(operands.mSecond.size()) < count; ++i) {
        const int x = i % columns;
        const int y = i / columns;
        Rects& rects = (x + y) % 2 == 0 ? operands.mFirst : operands.mSecond;
        rects.emplace_back(x * 16, y * 16, x * 16 + 16, y * 16 + 16);
    }
    return operands;
}

// One pair, or of random ones as many as fit into the processor's outer cache.
std::vector<Operands> MakeOperands(bool lattice, int count) {
    if (lattice)
        return {LatticeOperands(count)};
    std::vector<Operands> pairs;
    const auto pairCount = static_cast<std::uint64_t>(std::clamp(32000 / count, 8, 512));
    for (std::uint64_t i = 0; i < pairCount; ++i)
        pairs.push_back({RandomRects(count, 2 * i + 1), RandomRects(count, 2 * i + 2)});
    return pairs;
}

// Twenty dirty rectangles of a mixer window: meters side by side, value fields, a scrolled list and
// a few invalidated twice.
Rects WindowRects(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    const auto below = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random);
    };
    Rects rects;
    while (rects.size() < 20) {
        const int strip = below(16) * 80;
        switch (below(5)) {
        case 0: // a meter
            rects.emplace_back(strip + 50, 300 + below(100), strip + 62, 620);
            break;
        case 1: // a value field
            rects.emplace_back(strip + 8, 640, strip + 48, 656);
            break;
        case 2: // a fader knob's old and new place
            rects.emplace_back(strip + 10, 300 + below(280), strip + 40, 600);
            break;
        case 3: // rows of a list
            rects.emplace_back(0, 16 * below(12), 400, 16 * below(12) + 200);
            break;
        default: // the counter
            rects.emplace_back(500 + below(10) * 14, 40, 514 + below(10) * 14 + 140, 80);
        }
    }
    return rects;
}

constexpr int kSequences = 512;
const std::vector<Rects>& WindowSequences() {
    static const std::vector<Rects> sequences = [] {
        std::vector<Rects> made;
        for (int i = 0; i < kSequences; ++i)
            made.push_back(WindowRects(static_cast<std::uint64_t>(i) + 1));
        return made;
    }();
    return sequences;
}

// One adapter a library: Make from rectangles, the operations by value, and accumulation in place.

struct Ours {
    using Region = QLX_Region;
    static Region Make(const Rects& rects) {
        Region region;
        for (const Rect& rect : rects)
            region.UniteWith(rect);
        return region;
    }
    static Region Union(const Region& a, const Region& b) { return a.Union(b); }
    static Region Intersection(const Region& a, const Region& b) { return a.Intersection(b); }
    static Region Difference(const Region& a, const Region& b) { return a.Difference(b); }
    static Region Copy(const Region& a) { return a; }
    static bool Contains(const Region& a, int x, int y) { return a.ContainsPoint({x, y}); }
    static void Add(Region& region, const Rect& rect) { region.UniteWith(rect); }
    static Region WithAdded(const Region& region, const Rect& rect) { return region.Union(rect); }
    static bool IsEmpty(const Region& a) { return a.IsEmpty(); }
};

struct Literal {
    using Region = Rects;
    // The same list, as the tests assure; by itself it would take minutes.
    static Region Make(const Rects& rects) {
        const QLX_Region made = Ours::Make(rects);
        return {made.GetRectList().begin(), made.GetRectList().end()};
    }
    static Region Union(const Region& a, const Region& b) { return literal::Union(a, b); }
    static Region Intersection(const Region& a, const Region& b) {
        return literal::Intersection(a, b);
    }
    static Region Difference(const Region& a, const Region& b) { return literal::Difference(a, b); }
    static Region WithAdded(const Region& region, const Rect& rect) {
        return literal::Union(region, {rect});
    }
};

#ifdef BENCH_PIXMAN
struct Pixman {
    class Region {
      public:
        Region() { pixman_region32_init(&mRegion); }
        Region(const Region& other) : Region() {
            pixman_region32_copy(&mRegion, const_cast<pixman_region32_t*>(&other.mRegion));
        }
        Region(Region&& other) noexcept : mRegion(other.mRegion) {
            pixman_region32_init(&other.mRegion);
        }
        Region& operator=(Region&& other) noexcept {
            std::swap(mRegion, other.mRegion);
            return *this;
        }
        ~Region() { pixman_region32_fini(&mRegion); }
        // The interface takes operands as not constant but does not change them.
        [[nodiscard]] pixman_region32_t* Get() const {
            return const_cast<pixman_region32_t*>(&mRegion);
        }

      private:
        pixman_region32_t mRegion;
    };
    static Region Make(const Rects& rects) {
        Region region;
        for (const Rect& rect : rects)
            Add(region, rect);
        return region;
    }
    static Region Union(const Region& a, const Region& b) {
        Region result;
        pixman_region32_union(result.Get(), a.Get(), b.Get());
        return result;
    }
    static Region Intersection(const Region& a, const Region& b) {
        Region result;
        pixman_region32_intersect(result.Get(), a.Get(), b.Get());
        return result;
    }
    static Region Difference(const Region& a, const Region& b) {
        Region result;
        pixman_region32_subtract(result.Get(), a.Get(), b.Get());
        return result;
    }
    static Region Copy(const Region& a) { return a; }
    static bool Contains(const Region& a, int x, int y) {
        return pixman_region32_contains_point(a.Get(), x, y, nullptr) != 0;
    }
    static void Add(Region& region, const Rect& rect) {
        pixman_region32_union_rect(region.Get(), region.Get(), rect.left, rect.top,
                                   static_cast<unsigned>(rect.right - rect.left),
                                   static_cast<unsigned>(rect.bottom - rect.top));
    }
    static Region WithAdded(const Region& region, const Rect& rect) {
        Region result;
        pixman_region32_union_rect(result.Get(), region.Get(), rect.left, rect.top,
                                   static_cast<unsigned>(rect.right - rect.left),
                                   static_cast<unsigned>(rect.bottom - rect.top));
        return result;
    }
    static bool IsEmpty(const Region& a) { return pixman_region32_not_empty(a.Get()) == 0; }
};
#endif

#ifdef BENCH_QT
struct Qt {
    using Region = QRegion;
    static QRect ToQt(const Rect& rect) {
        return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
    }
    static Region Make(const Rects& rects) {
        Region region;
        for (const Rect& rect : rects)
            region += ToQt(rect);
        return region;
    }
    static Region Union(const Region& a, const Region& b) { return a.united(b); }
    static Region Intersection(const Region& a, const Region& b) { return a.intersected(b); }
    static Region Difference(const Region& a, const Region& b) { return a.subtracted(b); }
    static Region Copy(const Region& a) { return a; }
    static bool Contains(const Region& a, int x, int y) { return a.contains(QPoint(x, y)); }
    static void Add(Region& region, const Rect& rect) { region += ToQt(rect); }
    static Region WithAdded(const Region& region, const Rect& rect) {
        return region.united(ToQt(rect));
    }
    static bool IsEmpty(const Region& a) { return a.isEmpty(); }
};
#endif

#ifdef BENCH_JUCE
struct Juce {
    using Region = JuceRegion;
    static Region Make(const Rects& rects) { return Region(rects); }
    static Region Union(const Region& a, const Region& b) {
        Region result(a);
        result.Add(b);
        return result;
    }
    static Region Intersection(const Region& a, const Region& b) {
        Region result(a);
        result.Intersect(b);
        return result;
    }
    static Region Difference(const Region& a, const Region& b) {
        Region result(a);
        result.Subtract(b);
        return result;
    }
    static Region Copy(const Region& a) { return a; }
    static bool Contains(const Region& a, int x, int y) { return a.ContainsPoint(x, y); }
    static void Add(Region& region, const Rect& rect) { region.Add(rect); }
    static Region WithAdded(const Region& region, const Rect& rect) {
        Region result(region);
        result.Add(rect);
        return result;
    }
    static bool IsEmpty(const Region& a) { return a.Count() == 0; }
};
#endif

// Pairs of operands, made once for all repetitions and operations, as that takes longer than most.
template <class Library>
const std::vector<std::pair<typename Library::Region, typename Library::Region>>&
GetPairs(bool lattice, int count) {
    using Region = typename Library::Region;
    static std::map<std::pair<bool, int>, std::vector<std::pair<Region, Region>>> all;
    auto& pairs = all[{lattice, count}];
    if (pairs.empty()) {
        for (const Operands& operands : MakeOperands(lattice, count))
            pairs.emplace_back(Library::Make(operands.mFirst), Library::Make(operands.mSecond));
    }
    return pairs;
}

// Measurements

void Register(const std::string& name, std::function<void(benchmark::State&)> run) {
    benchmark::RegisterBenchmark(name.c_str(), std::move(run))->Unit(benchmark::kMicrosecond);
}

template <class Library, class Operation>
void RegisterBinary(const std::string& operation, bool lattice, int count, const char* who,
                    Operation perform) {
    const std::string name = "Region_" + operation + (lattice ? "_lattice/" : "_random/") +
                             std::to_string(count) + "/" + who;
    Register(name, [lattice, count, perform](benchmark::State& state) {
        const auto& pairs = GetPairs<Library>(lattice, count);
        std::size_t pair = 0;
        for (auto _ : state) {
            DoNotOptimize(perform(pairs[pair].first, pairs[pair].second));
            pair = pair + 1 < pairs.size() ? pair + 1 : 0;
        }
    });
}

template <class Library>
void RegisterSets(bool lattice, int count, const char* who) {
    using Region = typename Library::Region;
    RegisterBinary<Library>("Union", lattice, count, who,
                            [](const Region& a, const Region& b) { return Library::Union(a, b); });
    RegisterBinary<Library>(
        "Intersection", lattice, count, who,
        [](const Region& a, const Region& b) { return Library::Intersection(a, b); });
    RegisterBinary<Library>(
        "Difference", lattice, count, who,
        [](const Region& a, const Region& b) { return Library::Difference(a, b); });
}

template <class Library>
void RegisterWindows(const char* who) {
    Register(std::string("Region_Dirty20ByValue_windows/20/") + who, [](benchmark::State& state) {
        std::size_t sequence = 0;
        for (auto _ : state) {
            typename Library::Region region;
            for (const Rect& rect : WindowSequences()[sequence++ % kSequences])
                region = Library::WithAdded(region, rect);
            DoNotOptimize(region);
        }
    });
}

template <class Library>
void RegisterWindowsInPlace(const char* who) {
    Register(std::string("Region_Dirty20InPlace_windows/20/") + who, [](benchmark::State& state) {
        std::size_t sequence = 0;
        for (auto _ : state) {
            typename Library::Region region;
            for (const Rect& rect : WindowSequences()[sequence++ % kSequences])
                Library::Add(region, rect);
            DoNotOptimize(region);
        }
    });
}

template <class Library>
void RegisterQueries(int count, const char* who) {
    const std::string size = "/" + std::to_string(count) + "/" + who;
    Register("Region_ContainsPoint_random" + size, [count](benchmark::State& state) {
        const auto& region = GetPairs<Library>(false, count).front().first;
        const Rects places = RandomRects(count, 3, 4096);
        std::size_t place = 0;
        for (auto _ : state) {
            const Rect& rect = places[place++ % places.size()];
            DoNotOptimize(Library::Contains(region, rect.left, rect.top));
        }
    });
    Register("Region_Copy_random" + size, [count](benchmark::State& state) {
        const auto& region = GetPairs<Library>(false, count).front().first;
        for (auto _ : state)
            DoNotOptimize(Library::Copy(region));
    });
}

template <class Library>
void RegisterEmpty(const char* who) {
    Register(std::string("Region_Empty_none/0/") + who, [](benchmark::State& state) {
        for (auto _ : state) {
            typename Library::Region region;
            DoNotOptimize(Library::IsEmpty(region));
        }
    });
}

template <class Library>
void RegisterAll(const char* who, bool pairwise = false) {
    RegisterWindowsInPlace<Library>(who);
    RegisterWindows<Library>(who);
    for (const bool lattice : {false, true}) {
        for (const int count : {1, 10, 32, 100, 1000, 4000}) {
            if (!pairwise || count <= 1000)
                RegisterSets<Library>(lattice, count, who);
        }
    }
    for (const int count : {10, 1000})
        RegisterQueries<Library>(count, who);
    RegisterEmpty<Library>(who);
}

void RegisterEverything() {
    RegisterAll<Ours>("qlx");
#ifdef BENCH_PIXMAN
    RegisterAll<Pixman>("pixman");
#endif
#ifdef BENCH_QT
    RegisterAll<Qt>("qregion");
#endif
#ifdef BENCH_JUCE
    RegisterAll<Juce>("juce", /*pairwise*/ true);
#endif
    RegisterWindows<Literal>("literal");
    for (const bool lattice : {false, true}) {
        for (const int count : {32, 100, 1000})
            RegisterSets<Literal>(lattice, count, "literal");
    }
}

} // namespace

int main(int argc, char** argv) {
    RegisterEverything();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
