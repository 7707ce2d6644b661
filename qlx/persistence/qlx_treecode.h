// The bytes of one description inside a packed file. Not for hosts: QLX_BinaryViewFormat offers it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "qlx/persistence/qlx_persistence.h"

/// Numbers are of variable length, seven bits a byte, low bits first. Names stand once, in a pool
/// at the front, and are named by their place in it.
class QLX_TreeCode {
  public:
    [[nodiscard]] static std::string Encode(const QLX_ViewMemento& memento);
    /// Throws std::runtime_error for bytes that Encode does not write. Takes memory in proportion
    /// to the bytes, whatever they claim.
    [[nodiscard]] static std::unique_ptr<QLX_ViewMemento>
    Decode(std::string_view bytes, const std::string& name, int maximumDepth);

  private:
    class Encoder;
    class Decoder;
};
