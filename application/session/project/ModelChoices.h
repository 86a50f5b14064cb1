#pragma once

#include <session/cases/CaseDesignColumns.h>

#include <mirel_fitting/ResponseSurfaceOptions.h>
#include <mirel_fitting/ResponseSurfaceStatistics.h>
#include <mirel_fitting/TransformSetting.h>

/** What is chosen about a model besides its type and its variables. A project keeps it. */
struct ModelChoices
{
    ResponseSurfaceOptions responseSurface; ///< with a formula in names of inputs
    CaseDesignColumns designColumns = {};   ///< of response surfaces
    TransformSetting transform = TransformSetting::Usual;
    InputCoding coding = InputCoding::Axial; ///< of the coefficients of response surfaces

    bool selectsTerms() const
    {
        return responseSurface.selection == ResponseSurfaceOptions::Selection::BackwardAicc;
    }

    bool operator==(const ModelChoices& other) const
    {
        return responseSurface == other.responseSurface && designColumns == other.designColumns &&
               transform == other.transform && coding == other.coding;
    }
};
