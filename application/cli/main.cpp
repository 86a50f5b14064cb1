// Little is linked to the program itself. The toolkits and numerical libraries that its commands
// need take the loader tens of milliseconds, which asking for the version or for help does not.
#include "HelpText.h"
#include "Program.h"

#include <dlfcn.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

/** False also if the text cannot be written: whoever finds out the reason tries again. */
bool answersByItself(int argc, char** argv)
{
    const std::string argument = argc == 2 ? argv[1] : "";
    const bool isVersion = argument == "--version";
    if (!isVersion && argument != "--help" && argument != "-h") {
        return false;
    }
    // A reader that has gone is no reason to be killed.
    std::signal(SIGPIPE, SIG_IGN);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    const std::string text = isVersion ? versionText() : helpText();
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
}

/** Null with the reason if it cannot be loaded. Whole: a call does not fail halfway. */
void* openLibrary(const std::string& name, std::string& reason)
{
    void* const library = dlopen(name.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) {
        reason = dlerror();
    }
    return library;
}

/** Where the program's own libraries are; what stands between the program and the loader, as
 *  sanitizers do, may hide that folder from it. */
void* openCommands(std::string& reason)
{
    const std::string name = SURROGATE_COMMANDS_LIBRARY;
    if (void* const library = openLibrary(name, reason)) {
        return library;
    }
    std::error_code ignored;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    const auto besides = program.parent_path().parent_path() / "lib" / name;
    // That it is not there, either, would hide what the one that was found lacks.
    return std::filesystem::exists(besides, ignored) ? openLibrary(besides, reason) : nullptr;
}

} // namespace

int main(int argc, char* argv[])
{
    if (answersByItself(argc, argv)) {
        return 0;
    }
    std::string reason;
    void* const library = openCommands(reason);
    void* const entry = library == nullptr ? nullptr : dlsym(library, "surrogateProgram");
    if (library != nullptr && entry == nullptr) {
        reason = dlerror();
    }
    if (entry == nullptr) {
        std::fprintf(stderr, "surrogate: The library of the commands cannot be loaded: %s.\n",
                     reason.c_str());
        return 5;
    }
    return reinterpret_cast<decltype(&surrogateProgram)>(entry)(argc, argv);
}
