#include <session/model/ModelFile.h>

#include "CvdSession.h"
#include "MessageOf.h"
#include "TemporaryFolder.h"

#include <session/cases/VariableNames.h>
#include <session/text/SessionErrors.h>

#include <gtest/gtest.h>
#include <vtkDoubleArray.h>
#include <vtkTable.h>

#include <string>
#include <utility>
#include <vector>

namespace {
ExportedModel cvdModel(CaseSession::ModelType type)
{
    CaseSession session(cvdCases(), cvdRoles, {}, type);
    return ModelFile::exported(session, nullptr);
}

std::vector<double> columnOf(vtkTable& table, vtkIdType column)
{
    auto* const array = vtkDoubleArray::SafeDownCast(table.GetColumn(column));
    return {array->GetPointer(0), array->GetPointer(0) + array->GetNumberOfTuples()};
}

/** The last column of a small grid. */
std::vector<double> evaluated(CaseSession& session)
{
    session.sweep(0, "10 - 70 : 4");
    session.sweepEvenly(1, 3);
    return columnOf(*session.evaluate().table, 3);
}
} // namespace

TEST(ModelFile, IsKnownByItsName)
{
    EXPECT_TRUE(ModelFile::isModelFile("a.json"));
    EXPECT_FALSE(ModelFile::isModelFile(".json"));
    EXPECT_FALSE(ModelFile::isModelFile("a.json.csv"));
    EXPECT_FALSE(ModelFile::isModelFile("json"));
}

TEST(ModelFile, AnExportedModelHasTheRolesAndRangesOfItsSession)
{
    const ExportedModel model = cvdModel(CaseSession::Kriging);

    EXPECT_TRUE(model.isKriging());
    ASSERT_EQ(model.inputs.size(), 2u);
    EXPECT_EQ(model.inputs[1].name, "H2/WF6");
    EXPECT_EQ(model.inputs[1].minimum, 2.0);
    EXPECT_EQ(model.inputs[1].maximum, 10.0);
    ASSERT_EQ(model.outputs.size(), 2u);
    EXPECT_EQ(model.outputs[0].name, "Stress");
}

TEST(ModelFile, AnExportedModelHoldsItsInputsWhereItsSessionDid)
{
    ExportedModel model;
    {
        CaseSession cases(cvdCases(), cvdRoles, {}, CaseSession::ResponseSurface);
        cases.holdAtMedians({0, 1});
        cases.stayAt(1, "3.25");
        model = ModelFile::exported(cases, nullptr);
    }
    model = readExportedModel(exportModel(model, ExportFormat::Json));

    EXPECT_EQ(CaseSession(model).heldValues(), (std::vector<double>{42.0, 3.25}));
    model.inputs[0].held.reset();
    EXPECT_EQ(CaseSession(model).heldValues(), (std::vector<double>{4.0, 3.25}));
}

TEST(ModelFile, WarningsNameTheInputs)
{
    CaseTable table = cvdCases();
    table.columns[0].numbers.assign(table.cases, 42.0);
    CaseSession cases(std::move(table), cvdRoles, {}, CaseSession::Kriging);

    const ExportedModel model = ModelFile::exported(cases, nullptr);

    EXPECT_EQ(model.outputs[0].model.warnings.front(),
              "\"Pressure\" is constant over the cases and was ignored.");
    EXPECT_EQ(model.outputs[0].model.warnings, cases.fit().outputs[0].warnings);
}

TEST(ModelFile, ASessionOfAnExportedModelHasItsReport)
{
    ExportedModel model;
    {
        CaseSession cases(cvdCases(), cvdRoles, {}, CaseSession::ResponseSurface);
        model = ModelFile::exported(cases, nlohmann::ordered_json{{"remark", "checked"}});
    }

    EXPECT_EQ(CaseSession(model).exportedReport(), (nlohmann::ordered_json{{"remark", "checked"}}));
}

TEST(ModelFile, ASessionOfAnExportedModelEvaluatesToTheLastBit)
{
    for (const CaseSession::ModelType type : {CaseSession::Kriging, CaseSession::ResponseSurface}) {
        std::vector<double> expected;
        ExportedModel model;
        {
            CaseSession cases(cvdCases(), cvdRoles, {}, type);
            expected = evaluated(cases);
            model = ModelFile::exported(cases, nullptr);
        }
        CaseSession session(model);

        EXPECT_EQ(session.modelType(), type);
        EXPECT_EQ(namesOf(session.outputs()), (std::vector<std::string>{"Stress", "Uniformity"}));
        EXPECT_EQ(evaluated(session), expected);
    }
}

TEST(ModelFile, ReadsWhatWasWritten)
{
    const TemporaryFolder folder;
    for (const CaseSession::ModelType type : {CaseSession::Kriging, CaseSession::ResponseSurface}) {
        const ExportedModel model = cvdModel(type);
        const std::string path = folder.write("model.json", exportModel(model, ExportFormat::Json));
        for (const ExportFormat format : {ExportFormat::Text, ExportFormat::Json, ExportFormat::C,
                                          ExportFormat::Python, ExportFormat::Excel}) {
            EXPECT_EQ(exportModel(ModelFile::read(path), format), exportModel(model, format));
        }
    }
}

TEST(ModelFile, WhatCannotBeUsedIsAModelFileError)
{
    const TemporaryFolder folder;
    EXPECT_THROW(ModelFile::read(folder.path("none.json")), FileError);
    EXPECT_THROW(ModelFile::read(folder.write("model.json", "{}")), ModelFileError);

    ExportedModel twice = cvdModel(CaseSession::Kriging);
    twice.outputs[1].name = "Pressure";
    const std::string path = folder.write("model.json", exportModel(twice, ExportFormat::Json));
    EXPECT_NE(messageOf<ModelFileError>([&] { ModelFile::read(path); }).find("\"Pressure\""),
              std::string::npos);
}
