#include "qlx/views/uviewaccessibility.h"

#include <utility>

namespace {
QLX_AccessibilityListener* sListener = nullptr;
}

QLX_AccessibilityListener::~QLX_AccessibilityListener() = default;

QLX_AccessibilityListener* QLX_AccessibilityListener::Get() { return sListener; }

QLX_AccessibilityListener* QLX_AccessibilityListener::Install(QLX_AccessibilityListener* listener) {
    return std::exchange(sListener, listener);
}
