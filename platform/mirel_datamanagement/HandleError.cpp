#include <mirel_datamanagement/WeakPtr.h>

HandleError::HandleError(const HandleError&) noexcept = default;
HandleError& HandleError::operator=(const HandleError&) noexcept = default;
HandleError::~HandleError() = default;

void HandleError::throwNullHandle()
{
    throw HandleError("A null handle was given where a variable or record of the project is "
                      "expected.");
}

void HandleError::throwDestroyedObject()
{
    throw HandleError("The variable or record of this handle no longer exists: its project has "
                      "been closed.");
}
