#pragma once

#include <session/project/ProjectDocument.h>

#include <gtest/gtest.h>

#include <string>

/** What the document below is written as, beside a case file "cases.csv". */
inline constexpr const char* sampleProjectText = R"(<?xml version="1.0" encoding="UTF-8"?>
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

/** A document with something in every field, for a case file of that path. */
inline ProjectDocument sampleProject(const std::string& caseFile)
{
    ProjectDocument project;
    project.caseFile.path = caseFile;
    project.caseFile.fingerprint.bytes = 120;
    project.caseFile.fingerprint.sha256 = std::string(64, 'a');
    project.caseFile.separator = ';';
    project.caseFile.hasDecimalComma = true;
    project.variables = {{"x", Variable::Independent, ProjectDocument::Range(-0.5, 1e300)},
                         {"y", Variable::Dependent, {}},
                         {"z", Variable::Dependent, ProjectDocument::Range(2, 2)},
                         {"note", Variable::Unassigned, {}}};
    project.outputs = {"z", "y"};
    project.excluded = {0, 2, 3, 4, 11};
    project.sweeps = {{"x", 11, ProjectDocument::Range(1, 0.1)}};
    return project;
}

/** A text with one part of it replaced. */
inline std::string with(const std::string& part, const std::string& replacement,
                        std::string text = sampleProjectText)
{
    const std::size_t at = text.find(part);
    EXPECT_NE(at, std::string::npos) << part;
    return text.replace(at, part.size(), replacement);
}
