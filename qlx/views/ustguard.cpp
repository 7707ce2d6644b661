#include "qlx/views/ustguard.h"

namespace {

StGuard* sInnermost = nullptr; // not owned

} // namespace

StGuard::StGuard(const TObject* object) noexcept : mObject(object), mOuter(sInnermost) {
    sInnermost = this;
}

StGuard::~StGuard() { sInnermost = mOuter; }

void StGuard::ObjectIsGone(const TObject* object) noexcept {
    for (StGuard* guard = sInnermost; guard; guard = guard->mOuter)
        if (guard->mObject == object)
            guard->mObject = nullptr;
}
