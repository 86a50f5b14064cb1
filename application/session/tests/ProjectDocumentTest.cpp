#include <session/ProjectDocument.h>

#include "ProjectSample.h"
#include "TemporaryFolder.h"

#include <session/SessionErrors.h>

#include <gtest/gtest.h>

#include <string>

namespace {
/** The document that the sample is written as, beside its case file "cases.csv". */
constexpr const char* sampleText = R"(<?xml version="1.0" encoding="UTF-8"?>
<SurrogateProject Version="1">
  <CaseFile Bytes="120" DecimalMark="comma" Path="cases.csv" Separator="semicolon" Sha256="aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"/>
  <Variables>
    <Variable Lower="-0.5" Name="x" Role="independent" Upper="1e+300"/>
    <Variable Name="y" Role="dependent"/>
    <Variable Lower="2" Name="z" Role="dependent" Upper="2"/>
    <Variable Name="note" Role="unassigned"/>
  </Variables>
  <Outputs>
    <Output Name="z"/>
    <Output Name="y"/>
  </Outputs>
  <ExcludedCases>1,3-5,12</ExcludedCases>
  <Sweeps>
    <Sweep Count="11" From="1" Name="x" To="0.1"/>
  </Sweeps>
</SurrogateProject>
)";
} // namespace

TEST(ProjectDocument, IsWrittenAsOneElementPerFieldWithSortedAttributes)
{
    const TemporaryFolder folder;

    sampleProject(folder.path("cases.csv")).save(folder.path("p.surrogate.xml"));

    EXPECT_EQ(folder.read("p.surrogate.xml"), sampleText);
}

TEST(ProjectDocument, ComesBackAsItWasSaved)
{
    const TemporaryFolder folder;
    const ProjectDocument project = sampleProject(folder.path("cases.csv"));
    project.save(folder.path("p.surrogate.xml"));

    const ProjectDocument loaded = ProjectDocument::load(folder.path("p.surrogate.xml"));

    EXPECT_EQ(loaded.caseFile.path, folder.path("cases.csv"));
    EXPECT_TRUE(loaded.caseFile.fingerprint == project.caseFile.fingerprint);
    EXPECT_EQ(loaded.caseFile.separator, ';');
    EXPECT_TRUE(loaded.caseFile.hasDecimalComma);
    ASSERT_EQ(loaded.variables.size(), 4u);
    EXPECT_EQ(loaded.variables[0].name, "x");
    EXPECT_EQ(loaded.variables[0].role, Variable::Independent);
    EXPECT_EQ(loaded.variables[0].range, project.variables[0].range);
    EXPECT_FALSE(loaded.variables[1].range);
    EXPECT_EQ(loaded.outputs, project.outputs);
    EXPECT_EQ(loaded.excluded, project.excluded);
    ASSERT_EQ(loaded.sweeps.size(), 1u);
    EXPECT_EQ(loaded.sweeps[0].count, 11u);
    EXPECT_EQ(loaded.sweeps[0].range, project.sweeps[0].range);
}
