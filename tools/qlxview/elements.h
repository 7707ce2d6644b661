// Elements and properties as comparing and merging see them: by who they are, not by where they
// stand in the file.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "description.h"

/// The children with a name for each that is unique among them: tag and identifier, or the "name"
/// property, or the class; a number tells equal ones apart.
using NamedChildren = std::vector<std::pair<std::string, QLX_RawPropertyContainer*>>;
[[nodiscard]] NamedChildren NameChildren(const QLX_RawPropertyContainer& container);

/// Name, type and filter of a property: what it is found again by.
using PropertyID = std::tuple<std::string, QLX_PropertyType, QLX_PropertyFilter>;
/// All properties of one element. The views point into its sets.
using PropertyMap = std::map<PropertyID, QLX_PropertyView>;
[[nodiscard]] PropertyMap PropertiesOf(const QLX_RawPropertyContainer* container);

/// "Frame (rect) [Layout Compact]".
[[nodiscard]] std::string PropertyLabel(const PropertyID& id);
/// The value as the source writes it, texts in double quotes.
[[nodiscard]] std::string QuotedValue(const QLX_PropertyView& view);
/// Whether two views of the same type hold the same value.
[[nodiscard]] bool SameValue(const QLX_PropertyView& a, const QLX_PropertyView& b);
/// Whether two elements are the same with all that is in them; comments do not count.
[[nodiscard]] bool SameTree(const QLX_RawPropertyContainer& a, const QLX_RawPropertyContainer& b);
