#include "PictureLibrary.h"

#include <plot/PictureService.h>
#include <session/report/SessionReport.h>
#include <session/text/SessionErrors.h>

#include <dlfcn.h>

#include <filesystem>
#include <string>

namespace {
/** The library where the program's own libraries are; null if it is not there. */
void* openPictures()
{
    const std::string name = SURROGATE_PLOT_LIBRARY;
    void* const library = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    Dl_info session = {};
    if (library != nullptr ||
        dladdr(reinterpret_cast<const void*>(&SessionReport::summaryText), &session) == 0) {
        return library;
    }
    // What stands between the program and the loader, as sanitizers do, hides the program's
    // folders from it.
    const auto folder = std::filesystem::path(session.dli_fname).parent_path();
    return dlopen((folder / name).c_str(), RTLD_NOW | RTLD_LOCAL);
}
} // namespace

const PictureService& pictureLibrary()
{
    // Never unloaded: the toolkit leaves handlers behind that run at the very end.
    static const PictureService* const service = [] {
        void* const library = openPictures();
        void* const entry =
            library == nullptr ? nullptr : dlsym(library, "surrogatePictureService");
        if (entry == nullptr) {
            throw FileError(std::string("The library that draws pictures cannot be loaded: ") +
                            dlerror() + '.');
        }
        return reinterpret_cast<decltype(&surrogatePictureService)>(entry)();
    }();
    return *service;
}
