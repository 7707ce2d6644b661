#include "qlx/views/udescribedpicture.h"

#include <stdexcept>

#include "basekit/sys/sys_file.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uviewserver.h"

namespace {
/// Whether a name leads to a place inside the folder that it is taken in, on every platform: no
/// root, no drive, no step upwards, and no separator but '/'.
bool StaysInside(const std::string& name) {
    if (name[0] == '/' || name.find_first_of(std::string("\\:\0", 3)) != std::string::npos)
        return false;
    for (std::size_t at = 0; at <= name.size();) {
        const std::size_t slash = std::min(name.find('/', at), name.size());
        if (name.compare(at, slash - at, "..") == 0)
            return false;
        at = slash + 1;
    }
    return true;
}

QLX_Image::Ptr Read(const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                    const std::string& name) {
    if (!memento)
        return QLX_Image::FromPNGFile(name);
    if (!StaysInside(name))
        throw std::runtime_error("the picture \"" + name +
                                 "\" lies outside the description's folder");
    return QLX_Image::FromPNGFile(Sys_FileLoc(memento->GetFolder()).GetChild(name).GetPath());
}
} // namespace

QLX_Image::Ptr QLX_ReadDescribedPicture(QLX_RawPropertyContainer* container,
                                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                                        const std::string& name) {
    if (name.empty())
        return {};
    try {
        return Read(memento, name);
    } catch (const std::exception& reason) {
        std::string className;
        if (container->HasCurrentSet())
            container->GetCurrentSet().GetStringProperty("class", className);
        TViewServer::Get()->AddProblem(container, memento, className, reason.what());
    }
    return {};
}
