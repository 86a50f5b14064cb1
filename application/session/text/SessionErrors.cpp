#include "session/text/SessionErrors.h"

// The destructors stand here so that the type information of each class exists once, in this
// library: a catch in another shared object compares it.

UsageError::~UsageError() = default;

CaseDataError::~CaseDataError() = default;

DistributionTextError::~DistributionTextError() = default;

FileError::~FileError() = default;

ModelFileError::~ModelFileError() = default;

ProjectDocumentError::~ProjectDocumentError() = default;
