#include "session/text/SessionErrors.h"

// The destructors stand here so that the type information of each class exists once, in this
// library: a catch in another shared object compares it.

UsageError::UsageError(const std::string& message) : ExceptionBase(message) {}

UsageError::~UsageError() = default;

CaseDataError::CaseDataError(const std::string& message) : ExceptionBase(message) {}

CaseDataError::~CaseDataError() = default;

DistributionTextError::DistributionTextError(const std::string& message) : ExceptionBase(message) {}

DistributionTextError::~DistributionTextError() = default;

FileError::FileError(const std::string& message) : ExceptionBase(message) {}

FileError::~FileError() = default;

ModelFileError::ModelFileError(const std::string& message) : ExceptionBase(message) {}

ModelFileError::~ModelFileError() = default;

ProjectDocumentError::ProjectDocumentError(const std::string& message) : ExceptionBase(message) {}

ProjectDocumentError::~ProjectDocumentError() = default;
