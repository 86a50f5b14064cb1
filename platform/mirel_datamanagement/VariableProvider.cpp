#include <mirel_datamanagement/VariableProvider.h>

VariableProvider::VariableProvider() = default;
VariableProvider::VariableProvider(const VariableProvider&) = default;
VariableProvider& VariableProvider::operator=(const VariableProvider&) = default;
VariableProvider::~VariableProvider() = default;
