#pragma once

#include <surrogatemodel/SurrogateModelFactory.h>

#include <property/Property.h>

#include <boost/make_shared.hpp>

/** Makes the default models, with a choice that concerns response surfaces only. */
class ChoosingFactory : public SurrogateModelFactory
{
public:
    ChoosingFactory()
    {
        choice->connectSignalChanged(
            [this](int) { emitChanged(SurrogateModelManagerInterface::ResponseSurface); });
    }

    using SurrogateModelFactory::emitChanged;

    const boost::shared_ptr<veska::Property<int>> choice =
        boost::make_shared<veska::Property<int>>();
};
