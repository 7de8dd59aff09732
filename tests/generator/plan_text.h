#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "plan/make_plan.h"
#include "schema_files.h"

namespace Quillon9Generator::Testing {

/// A schema of the target namespace urn:t, in which names without a prefix are those of XML Schema. The body begins on
/// line 1.
inline Schema::SchemaSet SchemaOf(std::string const& body, SchemaFiles& files) {
  files.Write("a.xsd",
              "<schema xmlns='http://www.w3.org/2001/XMLSchema' xmlns:t='urn:t' targetNamespace='urn:t' "
              "elementFormDefault='qualified'>" +
                  body + "</schema>");
  return files.Load({"a.xsd"});
}

/// The plan for that schema as text without the target namespace; in front of it the errors of the schema, and after it
/// the warnings.
inline std::string PlanText(std::string const& body, Plan::PlanOptions options = {}) {
  SchemaFiles files;
  Schema::SchemaSet const set = SchemaOf(body, files);
  options.cppNamespace = "N";
  Schema::Diagnostics diagnostics;
  std::string text = Print(MakePlan(set, options, diagnostics));
  for (Schema::Diagnostic const& each : diagnostics.All()) text += Format(each) + "\n";
  text = Replaced(Replaced(std::move(text), "namespace N in n\n", ""), "{urn:t}", "");
  return "\n" + files.Diagnostics() + Replaced(std::move(text), files.Path(""), "");
}

struct PlanCase {
  char const* name;
  char const* schema;
  char const* plan;
};

inline std::string NameOfCase(testing::TestParamInfo<PlanCase> const& tested) { return tested.param.name; }

}  // namespace Quillon9Generator::Testing
