#include "qlx/views/qlx_windowport.h"

#include <utility>

namespace {
QLX_WindowPortFactory* sFactory = nullptr;
}

QLX_WindowPortClient::~QLX_WindowPortClient() = default;

QLX_WindowPort::~QLX_WindowPort() = default;

QLX_WindowPortFactory::~QLX_WindowPortFactory() = default;

QLX_WindowPortFactory* QLX_WindowPortFactory::Get() { return sFactory; }

QLX_WindowPortFactory* QLX_WindowPortFactory::Install(QLX_WindowPortFactory* factory) {
    return std::exchange(sFactory, factory);
}
