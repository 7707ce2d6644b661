// Trees as text, for people who debug: views, handler chains, properties with the filters they came
// from; and views as a graph for Graphviz.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"
#include "qlx/foundation/qlx_fwd.h"

/// "TButton 'play' frame VRect(10, 10, 60, 30) hidden target". Marks that are usual (shown,
/// enabled) are left out. Null gives "".
[[nodiscard]] QLX_API std::string QLX_DumpView(TView* view);
/// The same for a tree: a line a view, two blanks a level. Null gives "".
[[nodiscard]] QLX_API std::string QLX_DumpViews(TView* root);
/// The handlers from this one to the end of its chain, a line each, with their behaviours indented.
[[nodiscard]] QLX_API std::string QLX_DumpHandlerChain(TEventHandler* handler);
/// The properties that a container answers with its current filter, a line each in the order of
/// their names: "Frame rect = 12 12 28 152 [Layout=Compact]", the filter being the one that stores
/// the value, "[common]" the one without attributes. A container that has no current filter gives
/// "".
[[nodiscard]] QLX_API std::string QLX_DumpProperties(const QLX_RawPropertyContainer* container);
/// The views as a directed graph in the DOT language.
[[nodiscard]] QLX_API std::string QLX_DumpViewsAsGraph(TView* root);
