// The shape of every iterator of the framework.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// Walks something from a start: Reset, then while More, look and Advance.
class QLX_API CIterator {
  public:
    virtual ~CIterator();
    [[nodiscard]] virtual bool More() = 0;
    virtual void Reset() = 0;
    virtual void Advance() = 0;
};
