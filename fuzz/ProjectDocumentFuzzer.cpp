// A project document: refused with a sentence; or saved again as a document that saves as the same
// bytes, and loaded by a workspace as one undoable step, or not at all.
#include "FuzzCheck.h"

#include <session/model/Workspace.h>
#include <session/project/ProjectDocument.h>
#include <session/text/SessionErrors.h>

#include <mirel_analyzercommon/GuardedUndoStack.h>
#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

/** Removed at the end with what is in it. */
struct Folder
{
    Folder() { FUZZ_CHECK(mkdtemp(path.data()) != nullptr); }
    ~Folder() { std::filesystem::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string path = (std::filesystem::temp_directory_path() / "fuzz-XXXXXX").string();
};

std::string contentOf(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

CaseTable fourColumns()
{
    CaseTable table;
    table.cases = 5;
    for (const char* const name : {"x", "y", "z", "note"}) {
        table.columns.emplace_back();
        table.columns.back().name = name;
        table.columns.back().numbers = {1, 4, 9, 16, 25};
    }
    CaseColumn& note = table.columns.back();
    note.isNumeric = false;
    note.numbers.clear();
    note.texts = {"a", "b", "", "d", "e"};
    return table;
}

/** All that a document may change, as text. */
std::string stateOf(const Workspace& workspace)
{
    std::ostringstream state;
    state << workspace.modelType() << workspace.modelChoices().responseSurface.formula
          << static_cast<int>(workspace.modelChoices().responseSurface.terms)
          << static_cast<int>(workspace.modelChoices().transform);
    for (const VarPtr& variable : workspace.project().variables()) {
        state << variable.lock()->nature() << variable.lock()->range().first << ' '
              << variable.lock()->range().second;
    }
    for (const std::size_t row : workspace.project().excludedRows()) {
        state << " -" << row;
    }
    for (const VarPtr& input : workspace.manager()->independentVars()->get()) {
        state << ' ' << input.lock()->name();
    }
    const auto point = workspace.manager()->evaluationPoint()->get();
    for (const std::string& name : point.getVarNameSet()) {
        state << name << point.getMode(name) << point.getUserDistString(name);
    }
    for (const std::size_t input : workspace.sweptInputs()) {
        state << " s" << input;
    }
    return state.str();
}

void checkWorkspace(const ProjectDocument& document)
{
    Workspace workspace(fourColumns());
    GuardedUndoStack& stack = UndoStack().stack();
    stack.clear();
    const std::string before = stateOf(workspace);
    try {
        workspace.load(document);
    } catch (const ProjectDocumentError&) {
        FUZZ_CHECK(stateOf(workspace) == before);
        FUZZ_CHECK(stack.count() == 0);
        return;
    }
    const std::string after = stateOf(workspace);
    FUZZ_CHECK(stack.count() <= 1);
    stack.undo();
    FUZZ_CHECK(stateOf(workspace) == before);
    stack.redo();
    FUZZ_CHECK(stateOf(workspace) == after);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const Folder folder;
    const std::string given = folder.path + "/given.surrogate.xml";
    const std::string once = folder.path + "/once.surrogate.xml";
    const std::string twice = folder.path + "/twice.surrogate.xml";
    std::ofstream(given, std::ios::binary)
        << std::string_view(reinterpret_cast<const char*>(bytes), size);
    try {
        const ProjectDocument document = ProjectDocument::load(given);
        document.save(once);
        ProjectDocument::load(once).save(twice);
        FUZZ_CHECK(contentOf(once) == contentOf(twice));
        checkWorkspace(document);
    } catch (const ProjectDocumentError& error) {
        FUZZ_CHECK(error.what()[0] != '\0');
    }
    return 0;
}
