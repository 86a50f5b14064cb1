#pragma once

#include <mirel_datamanagement/Export.h>
#include <mirel_property/ExceptionBase.h>

/** A change of a project was refused, with the reason for the user; the project is unchanged. */
class MIREL_DATAMANAGEMENT_EXPORT ProjectError : public veska::ExceptionBase
{
public:
    using veska::ExceptionBase::ExceptionBase;
    ~ProjectError() override;

    ProjectError(const ProjectError&) noexcept;            ///< shares the text
    ProjectError& operator=(const ProjectError&) noexcept; ///< shares the text
};
