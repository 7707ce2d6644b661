// Pictures that view descriptions name.
#pragma once

#include <string>

#include "qlx/foundation/uobject.h"
#include "qlx/imaging/qlx_image.h"

/// The PNG that a description names for one of its containers. Where the description was read from
/// a file (QLX_ViewMemento::GetFolder) the name is relative to that file's folder and stays inside
/// it: descriptions come from anywhere, and showing one shall not open whatever it names. Without a
/// memento, which is a property set made by code, any path is taken as it is.
///
/// Null when the name is empty, and when the picture cannot be read; that is a problem of the view
/// server's (TViewServer::TakeProblems) then, and is traced.
[[nodiscard]] QLX_API QLX_Image::Ptr
QLX_ReadDescribedPicture(QLX_RawPropertyContainer* container,
                         const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                         const std::string& name);
