// The object model: making an object by its class's name, cloning and freeing it, asking whether it
// is of a class; and the containers. Peers: plain new and a copy constructor, dynamic_cast, and
// std::vector with std::sort.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "qlx/foundation/uobject.h"
#include "qlx/views/udynamicarray.h"

namespace {

/// A chain of ten classes, registered like any other, and the same chain known to the language
/// only.
template <int Depth>
class TChain : public TChain<Depth - 1> {
  public:
    const ClassDesc* GetClassDescDynamic() const override { return &fgClassDesc; }
    static void* _DefaultConstructor() { return static_cast<TObject*>(new TChain); }
    static ClassDesc fgClassDesc;
};
template <>
class TChain<0> : public TObject {
  public:
    const ClassDesc* GetClassDescDynamic() const override { return &fgClassDesc; }
    static void* _DefaultConstructor() { return static_cast<TObject*>(new TChain); }
    static ClassDesc fgClassDesc;
};
ClassDesc TChain<0>::fgClassDesc("TChain0", sizeof(TChain<0>), &TChain<0>::_DefaultConstructor,
                                 &TObject::fgClassDesc);
template <int Depth>
ClassDesc TChain<Depth>::fgClassDesc("TChain", sizeof(TChain<Depth>),
                                     &TChain<Depth>::_DefaultConstructor,
                                     &TChain<Depth - 1>::fgClassDesc);
using Deepest = TChain<9>; // ten classes below TObject

/// The cost of the object without the registry.
struct Plain {
    virtual ~Plain() = default;
    short field = 0;
};

void Class_NewByName(benchmark::State& state) {
    ClassDesc::InitUClassDesc();
    const std::string name = "TObject";
    for (auto _ : state)
        static_cast<TObject*>(ClassDesc::NewByClassName(name))->Free();
}
void Class_NewByName_plain(benchmark::State& state) {
    for (auto _ : state) {
        auto* object = new Plain;
        benchmark::DoNotOptimize(object);
        delete object;
    }
}
void Class_NewByID(benchmark::State& state) {
    ClassDesc::InitUClassDesc();
    const short id = TObject::fgClassDesc.GetClassID();
    for (auto _ : state)
        static_cast<TObject*>(ClassDesc::NewByClassID(id))->Free();
}
void Class_NewByID_plain(benchmark::State& state) { Class_NewByName_plain(state); }
void Class_CloneAndFree(benchmark::State& state) {
    TObject object;
    for (auto _ : state)
        object.Clone()->Free();
}
void Class_CloneAndFree_plain(benchmark::State& state) {
    const Plain original;
    for (auto _ : state) {
        auto* object = new Plain(original);
        benchmark::DoNotOptimize(object);
        delete object;
    }
}

/// The question goes up the whole chain: the base is the last of ten.
void Class_DescendsFrom(benchmark::State& state) {
    const std::unique_ptr<TObject> object(new Deepest);
    for (auto _ : state) {
        TObject* asked = object.get();
        benchmark::DoNotOptimize(asked);
        bool is = asked->DescendsFrom(&TChain<0>::fgClassDesc);
        benchmark::DoNotOptimize(is);
    }
}
void Class_DescendsFrom_plain(benchmark::State& state) { // dynamic_cast over the same ten levels
    const std::unique_ptr<TObject> object(new Deepest);
    for (auto _ : state) {
        TObject* asked = object.get();
        benchmark::DoNotOptimize(asked);
        auto* is = dynamic_cast<TChain<0>*>(asked);
        benchmark::DoNotOptimize(is);
    }
}

void List_Append(benchmark::State& state) {
    TObject object;
    for (auto _ : state) {
        TList list;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            list.InsertLast(&object);
        benchmark::DoNotOptimize(list.GetSize());
    }
}
void List_Append_std(benchmark::State& state) {
    TObject object;
    for (auto _ : state) {
        std::vector<TObject*> list;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            list.push_back(&object);
        benchmark::DoNotOptimize(list.data());
    }
}

std::vector<TObject*> ShuffledObjects(std::vector<TObject>& objects) {
    std::vector<TObject*> pointers;
    for (TObject& object : objects)
        pointers.push_back(&object);
    std::shuffle(pointers.begin(), pointers.end(), std::mt19937(5));
    return pointers;
}
short CompareAddresses(TObject* a, TObject* b, void*) {
    return static_cast<short>(a < b ? -1 : a > b);
}
void List_Sort(benchmark::State& state) {
    std::vector<TObject> objects(static_cast<std::size_t>(state.range(0)));
    const std::vector<TObject*> shuffled = ShuffledObjects(objects);
    TList list;
    list.InsertElementsBefore(1, shuffled.data(), static_cast<int>(shuffled.size()));
    for (auto _ : state) {
        list.ReplaceElementsAt(1, shuffled.data(), static_cast<int>(shuffled.size()));
        list.SortBy(&CompareAddresses, nullptr);
    }
}
void List_Sort_std(benchmark::State& state) {
    std::vector<TObject> objects(static_cast<std::size_t>(state.range(0)));
    const std::vector<TObject*> shuffled = ShuffledObjects(objects);
    std::vector<TObject*> list = shuffled;
    auto compare = &CompareAddresses; // called through a pointer, as the list calls it
    benchmark::DoNotOptimize(compare);
    for (auto _ : state) {
        list = shuffled;
        std::sort(list.begin(), list.end(),
                  [compare](TObject* a, TObject* b) { return compare(a, b, nullptr) < 0; });
        benchmark::DoNotOptimize(list.data());
    }
}

} // namespace

BENCHMARK(Class_NewByName);
BENCHMARK(Class_NewByName_plain)->Name("Class_NewByName/plain");
BENCHMARK(Class_NewByID);
BENCHMARK(Class_NewByID_plain)->Name("Class_NewByID/plain");
BENCHMARK(Class_CloneAndFree);
BENCHMARK(Class_CloneAndFree_plain)->Name("Class_CloneAndFree/plain");
BENCHMARK(Class_DescendsFrom)->Name("Class_DescendsFrom10");
BENCHMARK(Class_DescendsFrom_plain)->Name("Class_DescendsFrom10/plain");
BENCHMARK(List_Append)->Arg(10)->Arg(1000);
BENCHMARK(List_Append_std)->Name("List_Append/std")->Arg(10)->Arg(1000);
BENCHMARK(List_Sort)->Arg(100)->Arg(10000);
BENCHMARK(List_Sort_std)->Name("List_Sort/std")->Arg(100)->Arg(10000);

BENCHMARK_MAIN();
