#include <mirel_fitting/SurrogateModelInterface.h>

SurrogateModelInterface::Error::Error(const std::string& message) : veska::ExceptionBase(message) {}

SurrogateModelInterface::Error::Error(const Error&) noexcept = default;
SurrogateModelInterface::Error&
SurrogateModelInterface::Error::operator=(const Error&) noexcept = default;
SurrogateModelInterface::Error::~Error() = default;

SurrogateModelInterface::~SurrogateModelInterface() = default;
