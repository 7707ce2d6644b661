#include "qlx/views/uviewserver.h"

#include <exception>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/persistence/qlx_persistence.h"

QLX_DEFINE_CLASS(TViewServer, TObject);

namespace {

TViewServer* sInstalled = nullptr; // null: the framework's own
TViewServer* sOwn = nullptr;       // made on first use, lives as long as the process

} // namespace

std::string TViewServerProblem::AsString() const {
    std::string text = mFile.empty() ? mPath : mFile + ": " + mPath;
    text += ": " + mReason;
    if (!mClassName.empty())
        text += ": " + mClassName;
    return text;
}

TViewServer::TViewServer() = default;

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
