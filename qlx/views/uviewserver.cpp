#include "qlx/views/uviewserver.h"

#include <exception>
#include <map>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/ueventhandler.h"

QLX_DEFINE_CLASS(TViewServer, TObject);

namespace {

TViewServer* sInstalled = nullptr; // null: the framework's own
TViewServer* sOwn = nullptr;       // made on first use, lives as long as the process

struct Source {
    QLX_RawPropertyContainer* container; // kept alive by memento
    TViewServer::MementoPtr memento;
};

std::map<const TObject*, Source>& Sources() {
    static std::map<const TObject*, Source> sSources;
    return sSources;
}

} // namespace

bool TViewServer::sRemembersSources = false;
bool TViewServer::sHasSources = false;

void TViewServer::SetRememberSources(bool remember) { sRemembersSources = remember; }

QLX_RawPropertyContainer* TViewServer::GetSource(const TObject* view) {
    const auto found = Sources().find(view);
    return found == Sources().end() ? nullptr : found->second.container;
}

void TViewServer::KeepSource(const TObject* view, QLX_RawPropertyContainer* container,
                             const MementoPtr& memento) {
    Sources()[view] = {container, memento};
    sHasSources = true;
}

void TViewServer::DropSource(const TObject* view) {
    Sources().erase(view);
    sHasSources = !Sources().empty();
}

std::string TViewServerProblem::AsString() const {
    std::string text = mFile.empty() ? mPath : mFile + ": " + mPath;
    text += ": " + mReason;
    if (!mClassName.empty())
        text += ": " + mClassName;
    return text;
}

// Handlers lie below this floor; they make their behaviours through the server as soon as there is
// one.
TViewServer::TViewServer() {
    TEventHandler::SetObjectMaker(
        [](QLX_RawPropertyContainer* container, const MementoPtr& memento, TView* view) {
            return Get()->NewObject(container, memento, view);
        });
}

TViewServer::~TViewServer() {
    if (sInstalled == this)
        sInstalled = nullptr;
    if (sOwn == this)
        sOwn = nullptr;
}

TViewServer* TViewServer::Get() {
    if (sInstalled)
        return sInstalled;
    if (!sOwn)
        sOwn = new TViewServer;
    return sOwn;
}

TViewServer* TViewServer::Install(TViewServer* server) { return std::exchange(sInstalled, server); }

std::vector<TViewServerProblem> TViewServer::TakeProblems() { return std::exchange(mProblems, {}); }

void TViewServer::AddProblem(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                             const std::string& className, const std::string& reason) {
    // A description of nothing but mistakes is not worth a list of all of them.
    constexpr std::size_t kMostProblems = 1000;
    if (mProblems.size() > kMostProblems)
        return;
    if (mProblems.size() == kMostProblems) {
        mProblems.push_back({"", memento ? memento->GetName() : std::string(), "",
                             "further problems are not listed"});
        return;
    }
    TViewServerProblem problem{className, memento ? memento->GetName() : std::string(),
                               container ? container->GetPath() : std::string(), reason};
    Cmn_Trace(kTrace_Views, "TViewServer: %s", problem.AsString().c_str());
    mProblems.push_back(std::move(problem));
}

TObject* TViewServer::NewObject(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                                TView* view) {
    std::string className;
    container->GetStringProperty("class", className);
    if (className.empty()) {
        AddProblem(container, memento, className, "no class named");
        return nullptr;
    }
    auto* object = static_cast<TObject*>(ClassDesc::NewByClassName(className));
    if (!object) {
        AddProblem(container, memento, className, "unknown class");
        return nullptr;
    }
    try {
        object->ReadContainer(container, memento, view);
    } catch (const std::exception& failure) {
        AddProblem(container, memento, className,
                   std::string("could not read itself (") + failure.what() + ")");
    }
    return object;
}

TObject* TViewServer::Clone() {
    Cmn_Assert("false && \"a view server is not cloned\"", "qlx/views/uviewserver", __LINE__);
    return nullptr;
}
