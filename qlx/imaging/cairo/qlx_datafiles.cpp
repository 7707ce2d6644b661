#include "qlx/imaging/cairo/qlx_datafiles.h"

#include <cstdlib>
#include <fstream>

#include <dlfcn.h>

namespace {

[[nodiscard]] bool IsThere(const std::string& path) { return std::ifstream(path).good(); }

[[nodiscard]] std::string LibraryFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&QLX_FindDataFile), &info) == 0 || !info.dli_fname)
        return {};
    const std::string path = info.dli_fname;
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash);
}

} // namespace

std::string QLX_FindDataFile(const std::string& name) {
    if (const char* folder = std::getenv("QLX_DATA_DIR")) {
        const std::string path = std::string(folder) + '/' + name;
        if (IsThere(path))
            return path;
    }
    // lib/ and lib/<triplet>/ of a prefix; then build/<preset>/bin/ of the source folder.
    std::string folder = LibraryFolder();
    for (int up = 0; up < 4 && !folder.empty(); ++up) {
        for (const char* data : {"/share/qlx/", "/data/"}) {
            std::string path = folder;
            path.append(data).append(name);
            if (IsThere(path))
                return path;
        }
        folder += "/..";
    }
    return {};
}
