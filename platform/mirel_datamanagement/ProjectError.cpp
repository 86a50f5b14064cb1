#include <mirel_datamanagement/ProjectError.h>

ProjectError::ProjectError(const ProjectError&) noexcept = default;
ProjectError& ProjectError::operator=(const ProjectError&) noexcept = default;
ProjectError::~ProjectError() = default;
