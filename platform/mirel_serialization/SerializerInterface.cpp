#include <mirel_serialization/SerializerInterface.h>

SerializerInterface::~SerializerInterface() = default;
