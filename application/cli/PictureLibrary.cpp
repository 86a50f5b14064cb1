#include "PictureLibrary.h"

#include <plot/PictureService.h>
#include <session/SessionErrors.h>

#include <dlfcn.h>

const PictureService& pictureLibrary()
{
    // Looked for where the program's own libraries are; never unloaded, since the toolkit leaves
    // handlers behind that run at the very end.
    static const PictureService* const service = [] {
        void* const library = dlopen(SURROGATE_PLOT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
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
