// What a registered class reads from its container, learnt by letting it read and listening.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "qlx/persistence/qlx_persistence.h"

/// A property that a class asks for.
struct ReadProperty {
    std::string mDefault;     ///< the value that stands when the property is absent
    bool mHasDefault = false; ///< whether the class asked once without finding it
};
using ReadProperties = std::map<std::pair<std::string, QLX_PropertyType>, ReadProperty>;

class ClassSchema {
  public:
    ClassSchema();

    /// Whether a class of that name is registered.
    [[nodiscard]] bool IsKnown(const std::string& className) const;
    /// What a new object of the class asks an empty container for.
    const ReadProperties& Get(const std::string& className);
    /// The same for one element as it stands, whose values may make the class ask for more; added
    /// to what Get answers. The container has a current filter.
    ReadProperties GetFor(const std::string& className, QLX_RawPropertyContainer& container,
                          const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento);

  private:
    std::map<std::string, ReadProperties> mSchemas;
};
