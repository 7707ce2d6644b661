#include "qlx/foundation/uclassdesc.h"

#include <algorithm>
#include <new>

#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_memory.h"
#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_file.h"

CIterator::~CIterator() = default;

// Constant-initialised: descriptors register themselves while other static objects are being built.
constinit ClassDesc* ClassDesc::fgClassDescList = nullptr;
constinit short ClassDesc::fgNextClassID = 0;
std::map<int, const ClassDesc*> ClassDesc::sClassDescListByID;
std::map<std::string, const ClassDesc*> ClassDesc::sClassDescListByName;

ClassDesc::ClassDesc(const char* name, std::uint64_t size, DefaultConstructor constructor,
                     const ClassDesc* base)
    : mDefaultConstructor(constructor), mClassName(name), mClassSize(size) {
    Register(base);
}

ClassDesc::~ClassDesc() { delete mSubClasses; }

void ClassDesc::SetFields(const char* name, std::uint64_t size, DefaultConstructor constructor) {
    mClassName = name;
    mClassSize = size;
    mDefaultConstructor = constructor;
}

void ClassDesc::Unlink() {
    for (ClassDesc** link = &fgClassDescList; *link; link = &(*link)->mNext) {
        if (*link == this) {
            *link = mNext;
            return;
        }
    }
}

void ClassDesc::Initialize(const ClassDesc* base) {
    Unlink();
    delete mSubClasses;
    mSubClasses = nullptr;
    mBase = nullptr;
    Register(base);
}

void ClassDesc::Register(const ClassDesc* base) {
    mClassID = AssignNewClassID();
    if (base != this)
        mBase = base;
    mNext = fgClassDescList;
    fgClassDescList = this;
}

short ClassDesc::AssignNewClassID() { return ++fgNextClassID; }

void ClassDesc::AddBaseClass(const ClassDesc* base) {
    // A base that descends from this class would close a ring.
    const bool isRing = base && base->DescendsFrom(this, false);
    if (!mBase && !isRing)
        mBase = base;
}

void ClassDesc::AddSubClass(const ClassDesc* subclass) {
    if (subclass == this)
        return;
    if (mSubClasses &&
        std::find(mSubClasses->begin(), mSubClasses->end(), subclass) != mSubClasses->end())
        return;
    try {
        if (!mSubClasses)
            mSubClasses =
                new (Cmn_AllocateOrFail(sizeof *mSubClasses)) std::vector<const ClassDesc*>;
        mSubClasses->push_back(subclass);
    } catch (const std::bad_alloc&) {
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    }
}

const ClassDesc* ClassDesc::GetSubClass(int n) const {
    if (!mSubClasses || n < 1 || static_cast<std::size_t>(n) > mSubClasses->size())
        return nullptr;
    return (*mSubClasses)[static_cast<std::size_t>(n) - 1];
}

bool ClassDesc::DescendsFrom(const ClassDesc* other, bool flag) const {
    CBaseClassIterator ancestors(this, flag);
    for (; ancestors.More(); ancestors.Advance())
        if (ancestors.CurrentClassDesc() == other)
            return true;
    return false;
}

void* ClassDesc::Call_DefaultConstructor() const {
    return mDefaultConstructor ? mDefaultConstructor() : nullptr;
}

void ClassDesc::InitUClassDesc() {
    for (const ClassDesc* d = fgClassDescList; d; d = d->mNext) {
        sClassDescListByName[d->mClassName] = d;
        sClassDescListByID[d->mClassID] = d;
    }
    for (const ClassDesc* d = fgClassDescList; d; d = d->mNext)
        if (d->mBase)
            const_cast<ClassDesc*>(d->mBase)->AddSubClass(d);
}

const ClassDesc* ClassDesc::GetClassDescFromClassID(short id) { return sClassDescListByID[id]; }

const ClassDesc* ClassDesc::GetClassDescFromClassName(const std::string& name) {
    return sClassDescListByName[name];
}

void* ClassDesc::NewByClassID(short id) {
    const ClassDesc* found = GetClassDescFromClassID(id);
    if (!found) {
        Cmn_TraceWrite("%d", id);
        Cmn_RaiseFailure(kFailure_UnknownClassID);
    }
    return found->Call_DefaultConstructor();
}

void* ClassDesc::NewByClassName(const std::string& name) {
    const ClassDesc* found = GetClassDescFromClassName(name);
    return found ? found->Call_DefaultConstructor() : nullptr;
}

CClassIterator::CClassIterator(const ClassDesc* start, bool flag)
    : mStart(start), mCurrent(start), mFlag(flag) {}
CClassIterator::~CClassIterator() = default;

bool CClassIterator::More() { return mCurrent != nullptr; }
void CClassIterator::Reset() { mCurrent = mStart; }
void CClassIterator::Advance() {
    if (mCurrent)
        mCurrent = mCurrent->GetNextClassDesc();
}
const ClassDesc* CClassIterator::CurrentClassDesc() { return mCurrent; }
const ClassDesc* CClassIterator::FirstClassDesc() {
    Reset();
    return mCurrent;
}
const ClassDesc* CClassIterator::NextClassDesc() {
    Advance();
    return mCurrent;
}

CBaseClassIterator::~CBaseClassIterator() = default;

void CBaseClassIterator::Advance() {
    if (mCurrent)
        mCurrent = mCurrent->GetBaseClass(1);
}

void ClassDesc::DumpClassHierarchy() {
    std::string text;
    for (const ClassDesc* d = fgClassDescList; d; d = d->mNext) {
        text += d->mClassName;
        char separator = ':';
        CBaseClassIterator ancestors(d);
        for (ancestors.Advance(); ancestors.More(); ancestors.Advance()) {
            text += separator;
            text += ancestors.CurrentClassDesc()->GetClassName();
            separator = ',';
        }
        text += '\n';
    }
    const Sys_FileLoc file = Sys_FileLoc::ApplicationFolder().GetChild("class_hierarchy.txt");
    try {
        Sys_SafeWriter::Replace(file, text);
    } catch (const Sys_FileError& error) {
        Cmn_Trace(kTrace_Files, "%s", error.what());
    }
}
