// The settings of the library in a host's document: read as undoable changes that undo takes back,
// and written so that another manager reads the same.
#include "FuzzCheck.h"

#include <surrogatemodel/SurrogateModelManager.h>
#include <surrogatemodel/SurrogateModelManagerSerializer.h>
#include <surrogatemodel/SurrogateModelUserDistCollection.h>

#include <mirel_analyzercommon/GuardedUndoStack.h>
#include <mirel_analyzercommon/UndoStack.h>
#include <mirel_datamanagement/Project.h>
#include <mirel_datapipeline/ProjectDataPipelineManager.h>

#include <boost/make_shared.hpp>

#include <QDomDocument>

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using Manager = boost::shared_ptr<SurrogateModelManager>;

bool haveSameSettings(const Manager& left, const Manager& right)
{
    return left->type()->get() == right->type()->get() &&
           left->independentVars()->get() == right->independentVars()->get() &&
           left->evaluationPoint()->get() == right->evaluationPoint()->get();
}

/** Whether there are characters that XML cannot hold: QDomDocument reads them, we write U+FFFD. */
bool hasForeignCharacters(const std::string& text)
{
    const auto isControl = [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' &&
               byte != '\r';
    };
    return std::any_of(text.begin(), text.end(), isControl) ||
           text.find("&#") != std::string::npos || text.find("\xEF\xBF") != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    QDomDocument document;
    if (hasForeignCharacters(text) ||
        !document.setContent(QByteArray::fromStdString(text), false)) {
        return 0;
    }
    const auto project = boost::make_shared<Project>();
    Project::setProject(project);
    project->addNumericVariable("x", Variable::Independent, {1, 2, 3});
    project->addNumericVariable("y", Variable::Dependent, {1, 4, 9});
    project->addNumericVariable("z", Variable::Independent, {-1e300, 0, 7});
    const auto pipeline = boost::make_shared<ProjectDataPipelineManager>(project);
    const auto manager = boost::make_shared<SurrogateModelManager>(pipeline);
    const auto untouched = boost::make_shared<SurrogateModelManager>(pipeline);
    const auto other = boost::make_shared<SurrogateModelManager>(pipeline);
    GuardedUndoStack& stack = UndoStack().stack();
    stack.clear();

    try {
        QDomElement root = document.documentElement();
        SurrogateModelManagerSerializer(manager).deserialize(root);
    } catch (const std::out_of_range&) { // an unknown mode
    }
    const int steps = stack.count();
    QDomDocument written;
    QDomElement element = SurrogateModelManagerSerializer(manager).serialize(written);
    SurrogateModelManagerSerializer(other).deserialize(element);
    FUZZ_CHECK(haveSameSettings(manager, other));

    stack.setIndex(steps);
    stack.setIndex(0);
    FUZZ_CHECK(haveSameSettings(manager, untouched));
    stack.clear();
    return 0;
}
