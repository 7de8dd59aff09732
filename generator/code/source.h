#pragma once

#include <memory>
#include <vector>

#include "code/file_plan.h"
#include "code/text.h"
#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// Makes the sources of a plan. It looks at all of them first, because some tables are shared.
class SourcePrinter {
 public:
  /// \p plan and \p files must outlive it.
  SourcePrinter(Plan::Plan const& plan, FilePlan const& files);
  ~SourcePrinter();

  /// Append what \p source, one of the files, defines, after its first line.
  void Print(Text& text, SourceFile const& source) const;

 private:
  class Section;

  Plan::Plan const& m_plan;
  std::vector<std::unique_ptr<Section>> m_sections;
};

}  // namespace Quillon9Generator::Code
