#include <mirel_fitting/TermSelectionScope.h>

namespace {

thread_local TermSelectionScope::Selection selectionOfThread =
    SurrogateResponseSurfaceModel::Selection::All;

} // namespace

TermSelectionScope::TermSelectionScope(Selection selection) : outer(selectionOfThread)
{
    selectionOfThread = selection;
}

TermSelectionScope::~TermSelectionScope()
{
    selectionOfThread = outer;
}

TermSelectionScope::Selection TermSelectionScope::current()
{
    return selectionOfThread;
}
