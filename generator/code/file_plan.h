#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "plan/plan.h"

/// Which files there are, what each defines, and what each includes.
namespace Quillon9Generator::Code {

/// How the types are divided among headers. Where they are divided, there are several sources, too.
enum class Split {
  None,      ///< one header and one source
  BySchema,  ///< a header for each schema document
  ByType     ///< a header for each type
};

/// What a header has of one namespace, but for the classes.
struct NamespacePart {
  Plan::Namespace const* ns = nullptr;
  std::vector<Plan::Enumeration const*> enumerations;  ///< those that are not nested
  std::vector<Plan::Root const*> roots;
};

/// A header, with the types that it defines and the functions that belong to them.
struct HeaderFile {
  std::string path;           ///< relative to the output folder: orders/item.h
  bool isMain = false;        ///< named like the first namespace: it brings in all others, and declares ReadRoot()
  bool isCollective = false;  ///< named like a namespace: it brings in all headers of that
  std::vector<Plan::Class const*> classes;  ///< those that are not nested, in an order in which they can be defined
  std::vector<NamespacePart> parts;         ///< in the order of the plan
  std::vector<HeaderFile const*> includes;  ///< what defines the types that must be complete, in order of paths
  /// Classes that are declared at the beginning, since another header defines them, or this one below their first use.
  std::vector<Plan::Class const*> declared;

  /// Whether it defines \p cls, which may be nested.
  bool Defines(Plan::Class const& cls) const;
  /// The classes of \p ns among those of the header.
  std::vector<Plan::Class const*> ClassesOf(Plan::Namespace const& ns) const;
  /// The part for \p ns, which is empty where it has none.
  NamespacePart PartOf(Plan::Namespace const& ns) const;

  std::set<Plan::Class const*> defined;  ///< the same as classes
};

/// A source, which defines what some headers declare.
struct SourceFile {
  std::string path;
  bool isMain = false;  ///< defines ReadRoot(), and what the sources share
  std::vector<HeaderFile const*> headers;
  std::vector<HeaderFile const*> includes;  ///< in order of paths
};

/// The files of a plan, the main ones first. The plan has to outlive them.
struct FilePlan {
  std::vector<std::unique_ptr<HeaderFile>> headers;
  std::vector<SourceFile> sources;
};

FilePlan MakeFilePlan(Plan::Plan const& plan, Split split);

}  // namespace Quillon9Generator::Code
